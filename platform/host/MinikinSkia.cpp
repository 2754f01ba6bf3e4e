// SPDX-License-Identifier: Apache-2.0
#include <hwui/MinikinSkia.h>

#include <utility>

namespace android {

MinikinFontSkia::MinikinFontSkia(sk_sp<SkTypeface> typeface, const void* fontData, size_t fontSize,
                                 int ttcIndex, const std::vector<minikin::FontVariation>&)
    : MinikinFont(typeface ? static_cast<int32_t>(typeface->uniqueID()) : 0),
      mTypeface(std::move(typeface)),
      mFontData(fontData),
      mFontSize(fontSize),
      mTtcIndex(ttcIndex) {}

MinikinFontSkia::~MinikinFontSkia() = default;

void MinikinFontSkia::populateSkPaint(SkPaint* paint, const minikin::MinikinFont* font,
                                      minikin::FontFakery fakery) {
    paint->setTypeface(static_cast<const MinikinFontSkia*>(font)->RefSkTypeface());
    paint->setFakeBoldText(paint->isFakeBoldText() || fakery.isFakeBold());
    if (fakery.isFakeItalic()) paint->setTextSkewX(paint->getTextSkewX() + kFakeItalicSkew);
}

}  // namespace android
