// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneLayout.h"

#include <hwui/MinikinSkia.h>
#include <hwui/MinikinUtils.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "foundation/ZvString.h"
#include "platform/host/LayoutGlyphs.h"
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

class LineShaper {
public:
    LineShaper(ZvTextObject& object, const android::Typeface& typeface, const std::u16string& text)
        : mPaint(object.GetPaint()), mTypeface(typeface), mText(text) {}

    const uint16_t* units() const { return reinterpret_cast<const uint16_t*>(mText.data()); }
    int length() const { return static_cast<int>(mText.size()); }

    // The place in the text from which the clusters of a line's layout are counted.
    int contextOf(int start) const { return std::max(start - kContext, 0); }

    // Passes only as much text around the line as shaping looks at. Otherwise each of a long paragraph's
    // lines would cost the paragraph's length. Widths and heights do not depend on the rest.
    minikin::Layout layOut(int start, int end) const {
        const int begin = contextOf(start);
        const int limit = std::min(end + kContext, length());
        return android::MinikinUtils::doLayout(&mPaint, minikin::Bidi::DEFAULT_LTR, &mTypeface,
                                               units() + begin, static_cast<size_t>(start - begin),
                                               static_cast<size_t>(end - start),
                                               static_cast<size_t>(limit - begin), nullptr);
    }

private:
    static constexpr int kContext = 64;

    const android::Paint mPaint;
    const android::Typeface& mTypeface;
    const std::u16string& mText;
};

// The glyphs at the positions where the text object will draw them: a line's ink begins where the line
// begins, and the top of its image is at a whole pixel.
std::vector<LineGlyph> glyphsOf(const minikin::Layout& layout, const minikin::MinikinRect& ink, int context) {
    const float dx = -ink.mLeft, dy = -ink.mTop - std::trunc(-ink.mTop);
    std::vector<LineGlyph> glyphs(layout.nGlyphs());
    for (size_t i = 0; i < glyphs.size(); ++i) {
        const int index = static_cast<int>(i);
        const auto* font = static_cast<const android::MinikinFontSkia*>(layout.getFont(index));
        glyphs[i].cluster = host::LayoutGlyphs::clusterOf(layout, index) + static_cast<size_t>(context);
        glyphs[i].face = font->GetSkTypeface()->face().get();
        const minikin::MinikinRect& box = host::LayoutGlyphs::inkOf(layout, index);
        glyphs[i].box = {box.mLeft + dx, box.mTop + dy, box.mRight + dx, box.mBottom + dy};
    }
    return glyphs;
}

// The text object's own UTF-16 form of UTF-8 is right up to U+1FFFF alone; it keeps surrogates as they are.
std::wstring wideOf(const std::string& text) {
    std::wstring wide;
    const auto length = static_cast<int64_t>(text.size());
    for (int64_t i = 0; i < length;) {
        UChar32 c;
        U8_NEXT(text.data(), i, length, c);
        if (c > 0x1FFFF) wide += static_cast<wchar_t>(U16_LEAD(c));
        wide += static_cast<wchar_t>(c > 0x1FFFF ? U16_TRAIL(c) : c < 0 ? 0xFFFD : c);
    }
    return wide;
}

}  // namespace

void setText(ZvTextObject& object, const Scene& scene, const SceneFonts& fonts) {
    ZvString text;
    if (!object.SetTypeface(fonts.typeface) || text.Construct(wideOf(scene.text).c_str()) == 0 ||
        !object.SetText(&text)) {
        throw Failure("TEXT: the text could not be taken over");
    }
    android::Paint paint = paintOf(scene.style);
    object.SetPaint(paint);
}

int wrapWidthOf(const Scene& scene) {
    if (scene.width == 0) return 0;
    const int width = scene.width - scene.padding.left - scene.padding.right;
    if (width < 1) throw UsageError("--width: the padding leaves no room for text");
    return width;
}

LaidOutText layOutText(ZvTextObject& object, const Scene& scene, const SceneFonts& fonts) {
    LaidOutText laidOut;
    int length = 0;
    const std::unique_ptr<uint16_t[]> units(object.GetText()->GetUTF16(length));
    if (units) laidOut.text.assign(units.get(), units.get() + length);

    const LineShaper shaper(object, *fonts.typeface, laidOut.text);
    const auto measure = [&](int start, int end) {
        return start < end ? shaper.layOut(start, end).getAdvance() : 0.0f;
    };
    const auto wrapWidth = static_cast<float>(wrapWidthOf(scene));
    const auto size = static_cast<float>(scene.style.size);
    const FontFacts& font = fonts.first().facts;
    int top = 0;
    for (const host::LineRange& range :
         host::breakLines(shaper.units(), shaper.length(), wrapWidth, measure)) {
        minikin::MinikinRect ink;
        float advance = 0;
        std::vector<LineGlyph>& glyphs = laidOut.glyphs.emplace_back();
        ColourRun& colours = laidOut.colours.emplace_back();
        if (range.start < range.visibleEnd) {
            const minikin::Layout layout = shaper.layOut(range.start, range.visibleEnd);
            layout.getBounds(&ink);
            advance = layout.getAdvance();
            glyphs = glyphsOf(layout, ink, shaper.contextOf(range.start));
            colours = colourRunOf(layout, ink, object.GetPaint());
        }
        if (!(advance <= kMaxLineAdvance)) {
            throw UsageError(
                "--size: a line of the text is wider than 65535 pixels; lower --size or set --width");
        }
        Zvex::LaidOutLine line;
        const int ascent = static_cast<int>(std::ceil(std::max(font.ascent * size, -ink.mTop)));
        const int descent = static_cast<int>(std::ceil(std::max(font.descent * size, ink.mBottom)));
        line.top = top;
        line.baseline = top + ascent;
        line.bottom = line.baseline + descent;
        line.ascent = -ascent;
        line.descent = descent;
        line.width = advance;
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

std::vector<uint32_t> byteOffsets(const std::string& text) {
    std::vector<uint32_t> offsets;
    offsets.reserve(text.size() + 1);
    for (size_t i = 0; i <= text.size(); ++i) {
        const unsigned char byte = i < text.size() ? static_cast<unsigned char>(text[i]) : 0;
        if ((byte & 0xC0) == 0x80) continue;
        offsets.push_back(static_cast<uint32_t>(i));
        if (byte >= 0xF0) offsets.push_back(static_cast<uint32_t>(i));  // a pair
    }
    return offsets;
}

}  // namespace Zvex::scene
