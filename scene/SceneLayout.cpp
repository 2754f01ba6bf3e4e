// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneLayout.h"

#include <hwui/MinikinSkia.h>
#include <hwui/Typeface.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cmath>

#include "foundation/ZvString.h"
#include "platform/host/LineBreaker.h"
#include "scene/Failure.h"
#include "scene/SceneFonts.h"

namespace Zvex::scene {

namespace {

using Zvex::ZvString;
using Zvex::ZvTextObject;

constexpr int kAntiAlias = 1;                // SkPaint's flag bits
constexpr float kMaxLineAdvance = 65535;     // a line's image stores its width in 16 bits
constexpr int kMaxTextHeight = 100'000'000;  // of all lines, shown or not; keeps sums within an int

android::Paint paintOf(const Style& style) {
    android::Paint paint;
    paint.setFlags(kAntiAlias);
    paint.setTextSize(static_cast<float>(style.size));
    paint.setLetterSpacing(static_cast<float>(style.letterSpacing));
    paint.setFontFeatureSettings(style.features);
    return paint;
}

void checkSize(const ShapedLine& line) {
    const InkBox box(line.ink);
    if (!(line.advance <= kMaxLineAdvance)) {
        throw UsageError(
            "--size: a line of the text is wider than 65535 pixels; lower --size or set --width");
    }
    if (int64_t{box.width} * box.height > INT32_MAX)
        throw UsageError("--size: a line of the text has more than 2^31 pixels; lower --size or set --width");
}

// The line's glyphs that may have colours.
ColourRun colourRunOf(const ShapedLine& line, const android::Paint& paint) {
    ColourRun run;
    const InkBox box(line.ink);
    run.left = box.left;
    run.width = box.width;
    run.height = box.height;
    run.baseline = -box.top;
    android::Paint font(paint);
    forEachFont(line, font, [&](size_t begin, size_t end) {
        addGlyphs(run, font, end - begin, [&](size_t i) {
            const ShapedLine::Glyph& glyph = line.glyphs[begin + i];
            return ColourRun::Candidate{glyph.id, glyph.x - static_cast<float>(box.left),
                                        glyph.y - static_cast<float>(box.top), glyph.ink};
        });
    });
    return run;
}

std::vector<LineGlyph> glyphsOf(const ShapedLine& line) {
    std::vector<LineGlyph> glyphs;
    glyphs.reserve(line.glyphs.size());
    for (const ShapedLine::Glyph& glyph : line.glyphs) {
        glyphs.push_back({glyph.cluster,
                          glyph.font->GetSkTypeface()->face().get(),
                          {glyph.ink.mLeft, glyph.ink.mTop, glyph.ink.mRight, glyph.ink.mBottom}});
    }
    return glyphs;
}

// The text object's own UTF-16 form of a wide text is right up to U+1FFFF alone; it keeps surrogates as they
// are.
std::wstring wideOf(const std::u16string& units) {
    std::wstring wide;
    for (size_t i = 0; i < units.size();) {
        UChar32 c;
        U16_NEXT(units.data(), i, units.size(), c);
        if (c > 0x1FFFF) wide += static_cast<wchar_t>(U16_LEAD(c));
        wide += static_cast<wchar_t>(c > 0x1FFFF ? U16_TRAIL(c) : c);
    }
    return wide;
}

std::u16string unitsOf(const std::string& text, std::vector<uint32_t>* offsets) {
    std::u16string units;
    const auto length = static_cast<int64_t>(text.size());
    offsets->reserve(text.size() + 1);
    for (int64_t i = 0; i < length;) {
        const auto offset = static_cast<uint32_t>(i);
        UChar32 c;
        U8_NEXT(text.data(), i, length, c);
        if (c > 0xFFFF) units += static_cast<char16_t>(U16_LEAD(c));
        units += static_cast<char16_t>(c > 0xFFFF ? U16_TRAIL(c) : c < 0 ? 0xFFFD : c);
        offsets->resize(units.size(), offset);
    }
    offsets->push_back(static_cast<uint32_t>(length));
    return units;
}

}  // namespace

SceneText::SceneText(const Scene& scene) : units(unitsOf(scene.text, &offsets)), directions(units) {}

LineShaper shaperOf(const Scene& scene, const SceneFonts& fonts, const SceneText& text) {
    return LineShaper(text.units, text.directions, paintOf(scene.style), fonts.typeface);
}

void setText(ZvTextObject& object, const SceneFonts& fonts, const SceneText& text, const LineShaper& shaper) {
    ZvString string;
    if (!object.SetTypeface(fonts.typeface) || string.Construct(wideOf(text.units).c_str()) == 0 ||
        !object.SetText(&string)) {
        throw Failure("TEXT: the text could not be taken over");
    }
    android::Paint paint = shaper.paintOfText();
    object.SetPaint(paint);
    object.GetFont()->SetLinePainter({std::shared_ptr<void>(), &shaper});  // not owned
}

int wrapWidthOf(const Scene& scene) {
    if (scene.width == 0) return 0;
    const int width = scene.width - scene.padding.left - scene.padding.right;
    if (width < 1) throw UsageError("--width: the padding leaves no room for text");
    return width;
}

LaidOutText layOutText(const LineShaper& shaper, const Scene& scene, const SceneFonts& fonts,
                       const SceneText& text) {
    LaidOutText laidOut;
    const auto measure = [&](int start, int end) { return shaper.shape(start, end).advance; };
    const auto wrapWidth = static_cast<float>(wrapWidthOf(scene));
    const auto size = static_cast<float>(scene.style.size);
    const FontFacts& font = fonts.first().facts;
    int top = 0;
    for (const host::LineRange& range :
         host::breakLines(reinterpret_cast<const uint16_t*>(text.units.data()),
                          static_cast<int>(text.units.size()), wrapWidth, measure)) {
        const ShapedLine shaped = shaper.shape(range.start, range.visibleEnd);
        const minikin::MinikinRect& ink = shaped.ink;
        laidOut.glyphs.push_back(glyphsOf(shaped));
        laidOut.colours.push_back(colourRunOf(shaped, shaper.paintOfText()));
        laidOut.inks.push_back({ink.mLeft, ink.mTop, ink.mRight, ink.mBottom});
        checkSize(shaped);
        Zvex::LaidOutLine line;
        const int ascent = static_cast<int>(std::ceil(std::max(font.ascent * size, -ink.mTop)));
        const int descent = static_cast<int>(std::ceil(std::max(font.descent * size, ink.mBottom)));
        line.top = top;
        line.baseline = top + ascent;
        line.bottom = line.baseline + descent;
        line.ascent = -ascent;
        line.descent = descent;
        line.width = shaped.advance;
        line.start = range.start;
        line.visibleEnd = range.visibleEnd;
        laidOut.lines.push_back(line);
        if (line.bottom > kMaxTextHeight) {
            throw UsageError("--size: the lines of the text are higher than " +
                             std::to_string(kMaxTextHeight) + " pixels in all");
        }
        top = line.bottom;
    }
    return laidOut;
}

}  // namespace Zvex::scene
