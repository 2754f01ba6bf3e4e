// SPDX-License-Identifier: Apache-2.0
#include "platform/host/jni/TextMeasure.h"

#include <hb-ot.h>
#include <hwui/MinikinUtils.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <utility>

#include "foundation/ZvString.h"
#include "platform/host/FontFace.h"
#include "platform/host/LineBreaker.h"
#include "platform/host/ShapingFont.h"
#include "platform/host/jni/FontLock.h"
#include "text/FontManager.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObject.h"

namespace hostjava {

namespace {

using Zvex::FontManager;

// The big-endian signed number at byte `offset` of a table; 0 beyond its end.
int readInt16(hb_blob_t* table, unsigned offset) {
    unsigned length = 0;
    const char* data = hb_blob_get_data(table, &length);
    if (length < offset + 2) return 0;
    const auto high = static_cast<uint8_t>(data[offset]), low = static_cast<uint8_t>(data[offset + 1]);
    return static_cast<int16_t>(high << 8 | low);
}

int roundUp(float pixels) {
    return static_cast<int>(std::ceil(std::clamp(pixels, 0.0f, 1e8f)));
}

bool endsLine(uint16_t unit) {
    return unit == '\n' || unit == '\r' || unit == 0x2028 || unit == 0x2029;
}

}  // namespace

TextMeasure::TextMeasure(const char* utf8, std::vector<uint16_t> units, const char* font,
                         const android::Paint& paint)
    : mText(std::move(units)), mPaint(paint) {
    const std::lock_guard<std::mutex> lock(fontLock());
    Zvex::ZvTextObject object;
    Zvex::ZvString text;
    if (!object.Construct() || text.Construct(utf8) == 0 || !object.SetText(&text)) {
        throw std::runtime_error("the text could not be taken over");
    }
    if (font != nullptr && !object.SetFont(font)) {
        throw std::runtime_error(std::string("the font ") + font + " could not be loaded");
    }
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    FontManager::GetInstance()->GetMinikinFontFamilies(families, object.GetFont()->GetFontPath(), weight);
    mTypeface.reset(android::Typeface::createFromFamilies(std::move(families), weight, 0));
    if (mTypeface->fFontCollection->families().empty()) {
        throw std::runtime_error("no font: set a typeface made from a file, or the system's fonts");
    }
}

// Passes only as much text around the line as shaping looks at. Otherwise each of a long paragraph's lines
// would cost the paragraph's length.
minikin::Layout TextMeasure::layOut(int start, int end) const {
    constexpr int kContext = 64;
    const int begin = std::max(start - kContext, 0);
    const int limit = static_cast<int>(std::min(int64_t{end} + kContext, static_cast<int64_t>(mText.size())));
    return android::MinikinUtils::doLayout(&mPaint, minikin::Bidi::DEFAULT_LTR, mTypeface.get(),
                                           mText.data() + begin, static_cast<size_t>(start - begin),
                                           static_cast<size_t>(end - start),
                                           static_cast<size_t>(limit - begin), nullptr);
}

float TextMeasure::advance(int start, int end) const {
    return start < end ? layOut(start, end).getAdvance() : 0;
}

std::vector<MeasuredLine> TextMeasure::lines(int start, int end, float width) const {
    const auto measure = [&](int from, int to) { return advance(start + from, start + to); };
    const FontReach font = reach();
    std::vector<MeasuredLine> lines;
    for (const host::LineRange& range : host::breakLines(mText.data() + start, end - start, width, measure)) {
        MeasuredLine line;
        line.start = start + range.start;
        line.visibleEnd = start + range.visibleEnd;
        line.end = start + range.end;
        line.ascent = font.ascent;
        line.descent = font.descent;
        if (line.start < line.visibleEnd) {
            const minikin::Layout layout = layOut(line.start, line.visibleEnd);
            minikin::MinikinRect ink;
            layout.getBounds(&ink);
            line.width = layout.getAdvance();
            line.ascent = std::max(line.ascent, roundUp(-ink.mTop));
            line.descent = std::max(line.descent, roundUp(ink.mBottom));
        }
        int textEnd = line.end;
        while (textEnd > line.visibleEnd && endsLine(mText[static_cast<size_t>(textEnd) - 1])) --textEnd;
        line.fullWidth = textEnd > line.visibleEnd ? advance(line.start, textEnd) : line.width;
        lines.push_back(line);
    }
    return lines;
}

FontReach TextMeasure::reach() const {
    const auto& families = mTypeface->fFontCollection->families();
    const minikin::FakedFont first = families.front()->getClosestMatch(mTypeface->fStyle);
    hb_font_t* font = first.font->shaping()->hbFont;
    hb_font_extents_t extents = {};
    hb_font_get_h_extents(font, &extents);
    hb_face_t* face = hb_font_get_face(font);
    const std::unique_ptr<hb_blob_t, void (*)(hb_blob_t*)> head(
        hb_face_reference_table(face, HB_TAG('h', 'e', 'a', 'd')), hb_blob_destroy);

    const float size = mPaint.getTextSize();
    const auto em = static_cast<float>(hb_face_get_upem(face));
    const auto pixels = [&](int units) { return roundUp(static_cast<float>(units) / em * size); };
    FontReach reach;
    reach.ascent = pixels(extents.ascender);
    reach.descent = pixels(extents.line_gap - extents.descender);
    reach.top = pixels(readInt16(head.get(), 42));
    reach.bottom = pixels(-readInt16(head.get(), 38));
    return reach;
}

int styleOfFontFile(const char* path) {
    unsigned size = 0;
    const std::unique_ptr<char[]> bytes(Zvex::getFontData(path, size));
    const std::shared_ptr<host::FontFace> face =
        bytes != nullptr ? host::FontFace::open(bytes.get(), size, 0) : nullptr;
    if (face == nullptr) return -1;
    const std::unique_ptr<hb_font_t, void (*)(hb_font_t*)> font(hb_font_create(face->hbFace()),
                                                                hb_font_destroy);
    const bool bold = hb_style_get_value(font.get(), HB_STYLE_TAG_WEIGHT) >= 600;
    const bool italic = hb_style_get_value(font.get(), HB_STYLE_TAG_ITALIC) > 0;
    return (bold ? 1 : 0) | (italic ? 2 : 0);
}

}  // namespace hostjava
