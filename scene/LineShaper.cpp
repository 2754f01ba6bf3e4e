// SPDX-License-Identifier: Apache-2.0
#include "scene/LineShaper.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkImageInfo.h>
#include <SkTextBlob.h>
#include <hwui/MinikinUtils.h>
#include <minikin/Layout.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "effect/ZvGlyph.h"
#include "platform/host/LayoutGlyphs.h"

namespace Zvex::scene {

namespace {

constexpr int kContext = 64;

minikin::MinikinRect moved(const minikin::MinikinRect& box, float x) {
    return {box.mLeft + x, box.mTop, box.mRight + x, box.mBottom};
}

bool isBlank(const minikin::MinikinRect& ink) {
    return !(ink.mLeft < ink.mRight) || !(ink.mTop < ink.mBottom);
}

void join(minikin::MinikinRect* box, const minikin::MinikinRect& other) {
    if (isBlank(other)) return;
    if (isBlank(*box)) {
        *box = other;
        return;
    }
    *box = {std::min(box->mLeft, other.mLeft), std::min(box->mTop, other.mTop),
            std::max(box->mRight, other.mRight), std::max(box->mBottom, other.mBottom)};
}

// Draws the line onto coverage of the box's size.
void drawGlyphs(const ShapedLine& line, const InkBox& box, const android::Paint& paint, uint8_t* coverage) {
    const SkImageInfo info =
        SkImageInfo::Make(box.width, box.height, kAlpha_8_SkColorType, kPremul_SkAlphaType);
    SkBitmap bitmap;
    if (!bitmap.installPixels(info, coverage, static_cast<size_t>(box.width))) throw std::bad_alloc();
    SkCanvas canvas(bitmap);
    android::Paint font(paint);
    forEachFont(line, font, [&](size_t begin, size_t end) {
        SkPaint glyphPaint(font);
        glyphPaint.setTextEncoding(SkPaint::kGlyphID_TextEncoding);
        SkTextBlobBuilder builder;
        const SkTextBlobBuilder::RunBuffer& run =
            builder.allocRunPos(glyphPaint, static_cast<int>(end - begin), nullptr);
        for (size_t i = begin; i < end; ++i) {
            const ShapedLine::Glyph& glyph = line.glyphs[i];
            run.glyphs[i - begin] = static_cast<uint16_t>(glyph.id);
            run.pos[2 * (i - begin)] = glyph.x;
            run.pos[2 * (i - begin) + 1] = glyph.y;
        }
        canvas.drawTextBlob(builder.make(), static_cast<float>(-box.left), static_cast<float>(-box.top),
                            glyphPaint);
    });
}

}  // namespace

InkBox::InkBox(const minikin::MinikinRect& ink)
    : left(static_cast<int>(std::floor(ink.mLeft))), top(static_cast<int>(std::floor(ink.mTop))) {
    const auto length = [](int begin, float end) {
        return static_cast<int>(std::min(std::ceil(end) - static_cast<float>(begin), 65535.0f));
    };
    width = length(left, ink.mRight);
    height = length(top, ink.mBottom);
}

LineShaper::LineShaper(const std::u16string& text, const ParagraphDirections& directions,
                       const android::Paint& paint, std::shared_ptr<const android::Typeface> typeface)
    : mText(text), mDirections(directions), mPaint(paint), mTypeface(std::move(typeface)) {}

void LineShaper::append(const BidiLevelRun& run, ShapedLine* line) const {
    const int begin = std::max(run.start - kContext, 0);
    const int limit = std::min(run.end + kContext, static_cast<int>(mText.size()));
    const minikin::Layout layout = android::MinikinUtils::doLayout(
        &mPaint, run.rightToLeft ? minikin::Bidi::FORCE_RTL : minikin::Bidi::FORCE_LTR, mTypeface.get(),
        reinterpret_cast<const uint16_t*>(mText.data()) + begin, static_cast<size_t>(run.start - begin),
        static_cast<size_t>(run.end - run.start), static_cast<size_t>(limit - begin), nullptr);
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        const uint32_t cluster = host::LayoutGlyphs::clusterOf(layout, i) + static_cast<uint32_t>(begin);
        line->glyphs.push_back({static_cast<const android::MinikinFontSkia*>(layout.getFont(i)),
                                layout.getFakery(i), layout.getGlyphId(i), line->advance + layout.getX(i),
                                layout.getY(i), cluster,
                                moved(host::LayoutGlyphs::inkOf(layout, i), line->advance)});
    }
    line->advance += layout.getAdvance();
}

ShapedLine LineShaper::shape(int start, int end) const {
    ShapedLine line;
    for (const BidiLevelRun& run : mDirections.runsOf(start, end)) append(run, &line);
    for (const ShapedLine::Glyph& glyph : line.glyphs) join(&line.ink, glyph.ink);
    return line;
}

Zvex::DrawnLines::Image LineShaper::paint(const Zvex::DrawnLines::Range& range, float* advance) const {
    const ShapedLine line = shape(range.start, range.end);
    *advance = line.advance;
    const InkBox box(line.ink);
    Zvex::DrawnLines::Image image(new Zvex::ZvGlyph);
    image->left = box.left;
    image->baseline = -box.top;
    image->width = static_cast<uint16_t>(box.width);
    image->height = static_cast<uint16_t>(box.height);
    const size_t bytes = size_t{image->width} * image->height;
    image->pixels = new uint8_t[bytes]();
    if (bytes > 0) drawGlyphs(line, box, mPaint, image->pixels);
    return image;
}

}  // namespace Zvex::scene
