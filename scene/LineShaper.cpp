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
#include <utility>

#include "effect/ZvGlyph.h"
#include "platform/host/LayoutGlyphs.h"

namespace Zvex::scene {

namespace {

constexpr int kContext = 64;
constexpr char16_t kEllipsis = u'\u2026';

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

void shift(ShapedLine::Glyph& glyph, float x) {
    glyph.x += x;
    glyph.ink = moved(glyph.ink, x);
}

// Of a line whose parts were laid out from its start, all at x = 0: moves them to where they lie from the
// right.
void turn(const std::vector<std::pair<size_t, float>>& parts, ShapedLine* line) {
    std::vector<ShapedLine::Glyph> glyphs;
    for (size_t i = parts.size(); i-- > 0;) {
        const size_t end = i + 1 < parts.size() ? parts[i + 1].first : line->glyphs.size();
        for (size_t at = parts[i].first; at < end; ++at) {
            shift(line->glyphs[at], line->advance - parts[i].second);
            glyphs.push_back(line->glyphs[at]);
        }
    }
    line->glyphs = std::move(glyphs);
}

bool isSpace(char16_t unit) {
    return unit == u' ' || unit == 0x00A0;
}

// Characters between which a line may be widened, as East Asian text is set: ideographs, kana and their
// marks.
bool isEastAsian(char16_t unit) {
    return (unit >= 0x2E80 && unit <= 0x312F) || (unit >= 0x3190 && unit <= 0xA4CF) ||
           (unit >= 0xF900 && unit <= 0xFAFF) || (unit >= 0xFE30 && unit <= 0xFE4F) ||
           (unit >= 0xFF00 && unit <= 0xFF60) || (unit >= 0xD840 && unit <= 0xD8BF);
}

// Moves glyphs to the right by what `widthAfter` gives for each cluster that ends at glyph i, and the line's
// advance too.
template <typename WidthAfter>
void widen(ShapedLine* line, const WidthAfter& widthAfter) {
    float moved = 0;
    for (size_t i = 0; i < line->glyphs.size(); ++i) {
        shift(line->glyphs[i], moved);
        const bool ends =
            i + 1 == line->glyphs.size() || line->glyphs[i + 1].cluster != line->glyphs[i].cluster;
        if (ends) moved += widthAfter(i, moved);
    }
    line->advance += moved;
}

void widenSpaces(const std::u16string& text, int textEnd, float width, ShapedLine* line) {
    const float end = line->advance;
    widen(line, [&](size_t i, float moved) {
        const std::vector<ShapedLine::Glyph>& glyphs = line->glyphs;
        const size_t unit = glyphs[i].cluster;
        if (unit >= static_cast<size_t>(textEnd) || !isSpace(text[unit])) return 0.0f;
        const float next = i + 1 < glyphs.size() ? glyphs[i + 1].x : end;
        return std::max(width, std::min(glyphs[i].x - moved - next, 0.0f));
    });
}

// Spreads `room` over the line's spaces and the gaps between its East Asian characters, in whole pixels.
void justify(const std::u16string& text, float room, ShapedLine* line) {
    const std::vector<ShapedLine::Glyph>& glyphs = line->glyphs;
    const auto unitOf = [&](size_t i) {
        return glyphs[i].cluster < text.size() ? text[glyphs[i].cluster] : u'\0';
    };
    const auto grows = [&](size_t i) {
        if (i + 1 == glyphs.size() || glyphs[i + 1].cluster == glyphs[i].cluster) return false;
        return isSpace(unitOf(i)) ||
               (isEastAsian(unitOf(i)) && isEastAsian(unitOf(i + 1)) && !isSpace(unitOf(i + 1)));
    };
    int gaps = 0, seen = 0;
    for (size_t i = 0; i < glyphs.size(); ++i) gaps += grows(i) ? 1 : 0;
    if (gaps == 0 || !(room > 0)) return;
    widen(line, [&](size_t i, float moved) {
        if (!grows(i)) return 0.0f;
        ++seen;
        return std::round(room * static_cast<float>(seen) / static_cast<float>(gaps)) - moved;
    });
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

Spacing::Spacing(const Scene& scene, double size)
    : word(static_cast<float>(std::round(scene.style.wordSpacing * size))),
      tabStops(scene.tabStops.begin(), scene.tabStops.end()) {}

LineShaper::LineShaper(const SceneText& text, const android::Paint& paint, const Spacing& spacing,
                       std::shared_ptr<const android::Typeface> typeface)
    : mText(text), mPaint(paint), mSpacing(spacing), mTypeface(std::move(typeface)) {}

// Passes only as much text around the run as shaping looks at. Otherwise each of a long paragraph's lines
// would cost the paragraph's length.
void LineShaper::append(const Units& units, const BidiLevelRun& run, ShapedLine* line) const {
    const int begin = std::max(run.start - kContext, units.base);
    const int limit = std::min(run.end + kContext, units.base + units.count);
    const minikin::Layout layout = android::MinikinUtils::doLayout(
        &mPaint, run.rightToLeft ? minikin::Bidi::FORCE_RTL : minikin::Bidi::FORCE_LTR, mTypeface.get(),
        reinterpret_cast<const uint16_t*>(units.data) + (begin - units.base),
        static_cast<size_t>(run.start - begin), static_cast<size_t>(run.end - run.start),
        static_cast<size_t>(limit - begin), nullptr);
    const float x = line->advance;
    for (int i = 0; i < static_cast<int>(layout.nGlyphs()); ++i) {
        line->glyphs.push_back({static_cast<const android::MinikinFontSkia*>(layout.getFont(i)),
                                layout.getFakery(i), layout.getGlyphId(i), x + layout.getX(i), layout.getY(i),
                                host::LayoutGlyphs::clusterOf(layout, i) + static_cast<uint32_t>(begin),
                                moved(host::LayoutGlyphs::inkOf(layout, i), x)});
    }
    line->advance += layout.getAdvance();
}

ShapedLine LineShaper::shapePart(const Units& units, const LineForm& part) const {
    ShapedLine line;
    for (const BidiLevelRun& run : mText.directions.runsOf(part.start, part.end, part.ellipsis))
        append(units, run, &line);
    if (mSpacing.word != 0) widenSpaces(mText.units, part.end, mSpacing.word, &line);
    return line;
}

// A blank glyph for the tab's cluster.
void LineShaper::addTab(int unit, float x, ShapedLine* line) const {
    static constexpr char16_t kSpace[] = u" ";
    ShapedLine space;
    append({kSpace, unit, 1}, {unit, unit + 1, false}, &space);
    for (ShapedLine::Glyph& glyph : space.glyphs) line->glyphs.push_back(glyph);
    for (size_t i = line->glyphs.size() - space.glyphs.size(); i < line->glyphs.size(); ++i)
        shift(line->glyphs[i], x);
}

float LineShaper::stopAfter(float x) const {
    const std::vector<float>& stops = mSpacing.tabStops;
    if (stops.empty()) return x;
    for (const float stop : stops) {
        if (stop > x) return stop;
    }
    const float last = stops.back();
    const float distance = stops.size() > 1 ? last - stops[stops.size() - 2] : last;
    return last + (std::floor((x - last) / distance) + 1) * distance;
}

ShapedLine LineShaper::shape(const LineForm& form) const {
    std::u16string shortened;
    Units units = {mText.units.data(), 0, static_cast<int>(mText.units.size())};
    if (form.ellipsis) {
        units.base = std::max(form.start - kContext, 0);
        shortened =
            mText.units.substr(static_cast<size_t>(units.base), static_cast<size_t>(form.end - units.base)) +
            kEllipsis;
        units.data = shortened.data();
        units.count = static_cast<int>(shortened.size());
    }
    // The parts between tabs, from the line's start. In a line that begins at the right they go to the left.
    const bool leftward = mText.directions.beginsRight(form.start);
    ShapedLine line;
    std::vector<std::pair<size_t, float>>
        parts;  // the first glyph of each, and its end from the line's start
    for (int at = form.start;;) {
        LineForm part = form;
        const auto begin = mText.units.begin();
        part.start = at;
        part.end = static_cast<int>(std::find(begin + at, begin + form.end, u'\t') - begin);
        const bool last = part.end == form.end;
        part.ellipsis = form.ellipsis && last;
        ShapedLine shaped = shapePart(units, part);
        if (last && form.fill > 0) justify(mText.units, form.fill - line.advance - shaped.advance, &shaped);
        const float x = line.advance;
        const size_t first = line.glyphs.size();
        for (ShapedLine::Glyph& glyph : shaped.glyphs) {
            shift(glyph, leftward ? 0 : x);
            line.glyphs.push_back(glyph);
        }
        line.advance += shaped.advance;
        parts.emplace_back(first, line.advance);
        if (last) break;
        const size_t blank = line.glyphs.size();
        addTab(part.end, leftward ? 0 : line.advance, &line);
        line.advance = stopAfter(line.advance);
        parts.emplace_back(blank, line.advance);
        at = part.end + 1;
    }
    if (leftward && line.advance > 0) turn(parts, &line);
    for (const ShapedLine::Glyph& glyph : line.glyphs) join(&line.ink, glyph.ink);
    return line;
}

Zvex::DrawnLines::Image LineShaper::draw(const LineForm& form, float* advance) const {
    const ShapedLine line = shape(form);
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
