// SPDX-License-Identifier: Apache-2.0
#include <SkTextBlob.h>

const SkTextBlobBuilder::RunBuffer& SkTextBlobBuilder::allocRunPos(const SkPaint& font, int count,
                                                                   const SkRect* /*bounds*/) {
    mCurrent = {nullptr, nullptr};
    if (count <= 0 || font.getTextEncoding() != SkPaint::kGlyphID_TextEncoding) return mCurrent;
    auto run = std::make_unique<SkTextBlob::Run>();
    run->font = font;
    run->glyphs.resize(static_cast<size_t>(count));
    run->positions.resize(static_cast<size_t>(count) * 2);
    mCurrent = {run->glyphs.data(), run->positions.data()};
    mRuns.push_back(std::move(run));
    return mCurrent;
}

sk_sp<SkTextBlob> SkTextBlobBuilder::make() {
    mCurrent = {nullptr, nullptr};
    if (mRuns.empty()) return nullptr;
    sk_sp<SkTextBlob> blob(new SkTextBlob(std::move(mRuns)));
    mRuns.clear();
    return blob;
}
