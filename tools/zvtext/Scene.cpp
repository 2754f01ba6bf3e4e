// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Scene.h"

#include <hwui/MinikinUtils.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>

#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "platform/host/LayoutGlyphs.h"
#include "platform/host/LineBreaker.h"
#include "text/FontManager.h"
#include "text/LinePlacement.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObject.h"
#include "text/ZvView.h"
#include "tools/zvtext/Failure.h"
#include "tools/zvtext/SceneFonts.h"

namespace zvtext {

namespace {

using Zvex::FontManager;
using Zvex::List;
using Zvex::ZvEffect;
using Zvex::ZvLineInfo;
using Zvex::ZvString;
using Zvex::ZvTextObject;
using Zvex::ZvView;

constexpr int kAntiAlias = 1;                // SkPaint's flag bits
constexpr float kMaxLineAdvance = 65535;     // a line's image stores its width in 16 bits
constexpr int kMaxTextHeight = 100'000'000;  // of all lines, shown or not; keeps sums far from the end of int

int gravityBits(const Scene& scene) {
    static constexpr int kHorizontal[] = {0x3, 0x1, 0x5};   // left, center, right
    static constexpr int kVertical[] = {0x30, 0x10, 0x50};  // top, center, bottom
    return kHorizontal[static_cast<int>(scene.align)] | kVertical[static_cast<int>(scene.gravity)];
}

uint32_t withOpacity(uint32_t color, double opacity) {
    const auto alpha = static_cast<uint32_t>(std::lround((color >> 24) * opacity));
    return alpha << 24 | (color & 0xFFFFFF);
}

// The text's own UTF-16 form keeps characters beyond the second plane only in part; say so instead of drawing
// another character silently.
void warnAboutFarCharacters(const std::string& text) {
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        const auto lead = static_cast<unsigned char>(text[i]), next = static_cast<unsigned char>(text[i + 1]);
        if (lead > 0xF0 || (lead == 0xF0 && next >= 0xA0)) {
            std::fprintf(stderr,
                         "zvtext: warning: characters above U+1FFFF are not supported and come out wrong\n");
            return;
        }
    }
}

// Lays lines out the way the text object will draw them: same paint, same families, same UTF-16 text.
class LineShaper {
public:
    LineShaper(ZvTextObject& object, const android::Paint& paint) : mPaint(paint) {
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        int weight = 400;
        FontManager::GetInstance()->GetMinikinFontFamilies(families, object.GetFont()->GetFontPath(), weight);
        mTypeface.reset(android::Typeface::createFromFamilies(std::move(families), weight, 0));
        int count = 0;
        mText.reset(object.GetText()->GetUTF16(count));
        mLength = mText ? count : 0;
    }

    const uint16_t* text() const { return reinterpret_cast<const uint16_t*>(mText.get()); }
    int length() const { return mLength; }

    // Where in the text the clusters of a line's layout count from.
    int contextOf(int start) const { return std::max(start - kContext, 0); }

    // Around the line only as much of the text as shaping looks at: the whole of it would make a long
    // paragraph's many lines cost its length each. Widths and heights do not depend on the rest.
    minikin::Layout layOut(int start, int end) const {
        const int begin = contextOf(start);
        const int limit = std::min(end + kContext, mLength);
        return android::MinikinUtils::doLayout(&mPaint, minikin::Bidi::DEFAULT_LTR, mTypeface.get(),
                                               text() + begin, static_cast<size_t>(start - begin),
                                               static_cast<size_t>(end - start),
                                               static_cast<size_t>(limit - begin), nullptr);
    }

private:
    static constexpr int kContext = 64;

    const android::Paint& mPaint;
    std::unique_ptr<android::Typeface> mTypeface;
    std::unique_ptr<uint16_t[]> mText;
    int mLength = 0;
};

// A laid-out text: its lines, and of each of them the glyphs from the line's left end and baseline, their
// clusters in UTF-16 units.
struct LaidOutText {
    std::vector<Zvex::LaidOutLine> lines;
    std::vector<std::vector<GlyphMetrics>> glyphs;
};

// The glyphs where the text object will draw them: a line's ink begins where the line begins, and the top of
// its image is a whole pixel.
std::vector<GlyphMetrics> glyphsOf(const minikin::Layout& layout, const minikin::MinikinRect& ink,
                                   int context) {
    const float dx = -ink.mLeft, dy = -ink.mTop - std::trunc(-ink.mTop);
    std::vector<GlyphMetrics> glyphs(layout.nGlyphs());
    for (size_t i = 0; i < glyphs.size(); ++i) {
        const int index = static_cast<int>(i);
        glyphs[i].cluster = host::LayoutGlyphs::clusterOf(layout, index) + static_cast<size_t>(context);
        const minikin::MinikinRect& box = host::LayoutGlyphs::inkOf(layout, index);
        glyphs[i].box = {box.mLeft + dx, box.mTop + dy, box.mRight + dx, box.mBottom + dy};
    }
    return glyphs;
}

// The laid-out lines one below the other from y = 0. A line is as high as the font's metrics say, or as its
// ink where a fallback font's glyphs reach further, so that no line cuts another's marks off.
LaidOutText layOutLines(const Scene& scene, const LineShaper& shaper, const FontFacts& font,
                        float wrapWidth) {
    const auto measure = [&](int start, int end) {
        return start < end ? shaper.layOut(start, end).getAdvance() : 0.0f;
    };
    const auto size = static_cast<float>(scene.style.size);
    LaidOutText text;
    int top = 0;
    for (const host::LineRange& range :
         host::breakLines(shaper.text(), shaper.length(), wrapWidth, measure)) {
        minikin::MinikinRect ink;
        float advance = 0;
        if (range.start < range.visibleEnd) {
            const minikin::Layout layout = shaper.layOut(range.start, range.visibleEnd);
            layout.getBounds(&ink);
            advance = layout.getAdvance();
            text.glyphs.push_back(glyphsOf(layout, ink, shaper.contextOf(range.start)));
        } else {
            text.glyphs.emplace_back();
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
        text.lines.push_back(line);
        if (line.bottom > kMaxTextHeight) {
            throw UsageError("--size: the lines of the text are higher than " +
                             std::to_string(kMaxTextHeight) + " pixels in all");
        }
        top = line.bottom;
    }
    return text;
}

void alignLines(std::vector<Zvex::LaidOutLine>& lines, Scene::Align align, int innerWidth) {
    for (Zvex::LaidOutLine& line : lines) {
        const float room = static_cast<float>(innerWidth) - line.width;
        if (align == Scene::Align::Center) line.left = std::floor(room / 2);
        if (align == Scene::Align::Right) line.left = room;
    }
}

// Offsets in UTF-8 of the units of the text's UTF-16 form, its end included; the text is well formed.
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

// Takes the glyphs; `glyphs` are those of the first line placed.
std::vector<LineMetrics> measureLines(const std::vector<ZvLineInfo>& placed,
                                      std::vector<GlyphMetrics>* glyphs, const Margins& margins,
                                      const std::string& text) {
    const std::vector<uint32_t> offsets = byteOffsets(text);
    const auto offsetOf = [&](size_t unit) { return offsets[std::min(unit, offsets.size() - 1)]; };
    std::vector<LineMetrics> lines;
    for (const ZvLineInfo& info : placed) {
        LineMetrics& line = lines.emplace_back();
        line.start = offsetOf(static_cast<size_t>(info.start));
        line.end = offsetOf(static_cast<size_t>(info.end));
        line.baseline = info.y + margins.top;
        const Box box = {static_cast<float>(info.rect.left), static_cast<float>(info.rect.top),
                         static_cast<float>(info.rect.right), static_cast<float>(info.rect.bottom)};
        line.box = moved(box, margins.left, margins.top);
        line.glyphs = std::move(*glyphs++);
        for (GlyphMetrics& glyph : line.glyphs) {
            glyph.cluster = offsetOf(glyph.cluster);
            glyph.box = moved(glyph.box, info.x + margins.left, line.baseline);
        }
    }
    return lines;
}

void setLines(ZvTextObject& object, const std::vector<ZvLineInfo>& placed) {
    List records;
    records.Construct();
    for (const ZvLineInfo& info : placed) records.Add(new ZvLineInfo(info));
    object.SetLineInfo(&records);  // the text object owns the records now
}

}  // namespace

Rendering renderScene(const Scene& scene) {
    warnAboutFarCharacters(scene.text);
    const SceneFonts fonts = takeFonts(scene);
    warnAboutMissing(fonts, scene.systemFallback);

    ZvTextObject object;
    ZvString text;
    if (!object.Construct() || text.Construct(scene.text.c_str()) == 0 || !object.SetText(&text)) {
        throw Failure("TEXT: the text could not be taken over");
    }
    if (!object.SetFont(fonts.first().key.c_str()))
        throw Failure("--font: '" + scene.font + "' could not be loaded");

    android::Paint paint;
    paint.setFlags(kAntiAlias);
    const Style& style = scene.style;
    paint.setTextSize(static_cast<float>(style.size));
    paint.setLetterSpacing(static_cast<float>(style.letterSpacing));
    paint.setFontFeatureSettings(style.features);
    object.SetPaint(paint);
    object.SetTextColor(withOpacity(style.color, style.opacity));
    object.SetBackgroundColor(withOpacity(style.background.value_or(0), style.opacity),
                              style.background.has_value());
    addEffects(*object.GetEffect(), style.effects);

    const Padding& pad = scene.padding;
    const int wrapWidth = scene.width > 0 ? scene.width - pad.left - pad.right : 0;
    if (scene.width > 0 && wrapWidth < 1) throw UsageError("--width: the padding leaves no room for text");
    const LineShaper shaper(object, paint);
    LaidOutText laidOut = layOutLines(scene, shaper, fonts.first().facts, static_cast<float>(wrapWidth));
    std::vector<Zvex::LaidOutLine>& lines = laidOut.lines;
    const size_t shown = scene.maxLines > 0
                             ? std::min<size_t>(lines.size(), static_cast<size_t>(scene.maxLines))
                             : lines.size();
    // Under a line limit, bottom gravity shows the last lines and any other the first.
    const size_t first = scene.gravity == Scene::Gravity::Bottom ? lines.size() - shown : 0;
    const int linesHeight = lines[first + shown - 1].bottom - lines[first].top;
    float widest = 1;
    for (const Zvex::LaidOutLine& line : lines) widest = std::max(widest, line.width);
    const int innerWidth = wrapWidth > 0 ? wrapWidth : static_cast<int>(std::ceil(widest));
    alignLines(lines, scene.align, innerWidth);

    ZvView& view = *object.GetView();
    const int64_t viewWidth = int64_t{innerWidth} + pad.left + pad.right;
    const int64_t viewHeight =
        scene.height > 0 ? scene.height : int64_t{std::max(linesHeight, 1)} + pad.top + pad.bottom;
    ZvEffect& effect = *object.GetEffect();
    const Margins margins = {effect.getLeftOffset(), effect.getTopOffset(), effect.getRightOffset(),
                             effect.getBottomOffset()};
    const int64_t width = viewWidth + margins.left + margins.right;
    const int64_t height = viewHeight + margins.top + margins.bottom;
    if (width > kMaxSide || height > kMaxSide || width * height > kMaxPixels) {
        throw UsageError(std::string(scene.width > 0 ? "--width" : "--size") + ": the picture would be " +
                         std::to_string(width) + " x " + std::to_string(height) + " pixels; at most " +
                         std::to_string(kMaxSide) + " a side and " + std::to_string(kMaxPixels) + " in all");
    }
    view.gravity = gravityBits(scene);
    view.maxLines = static_cast<int>(shown);
    view.SetSize(static_cast<int>(viewWidth), static_cast<int>(viewHeight));
    view.SetPadding(pad.left, pad.top, pad.right, pad.bottom);
    view.SetBitmapWidth(static_cast<int>(width));
    view.SetBitmapHeight(static_cast<int>(height));
    const std::vector<ZvLineInfo> placed =
        Zvex::placeLines(view, lines.data(), static_cast<int>(lines.size()));
    setLines(object, placed);

    const unsigned int* pixels = object.RenderTextEffect(static_cast<int>(width), static_cast<int>(height));
    if (pixels == nullptr) throw Failure("TEXT: not enough memory for the picture");
    Rendering rendering;
    Picture& picture = rendering.picture;
    picture.width = static_cast<int>(width);
    picture.height = static_cast<int>(height);
    picture.pixels.resize(static_cast<size_t>(width * height));
    std::memcpy(picture.pixels.data(), pixels, picture.pixels.size() * 4);
    rendering.metrics = {picture.width, picture.height, margins, placed.front().y + margins.top,
                         measureLines(placed, &laidOut.glyphs[first], margins, scene.text)};
    if (scene.trim) trimRendering(rendering);
    return rendering;
}

std::string layerKeyInHex(const Style& style) {
    ZvEffect stack;
    addEffects(stack, style.effects);
    const std::unique_ptr<char[]> key(stack.getMapKey(withOpacity(style.color, style.opacity)));
    if (key == nullptr) throw std::bad_alloc();
    std::string hex;
    for (const char* byte = key.get(); *byte != '\0'; ++byte) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x",
                      static_cast<unsigned>(static_cast<unsigned char>(*byte)));
        hex += digits;
    }
    return hex;
}

}  // namespace zvtext
