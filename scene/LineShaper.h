// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_LINESHAPER_H_
#define ZVEX_SCENE_LINESHAPER_H_

#include <hwui/MinikinSkia.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/MinikinFont.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "scene/ParagraphDirections.h"
#include "text/LinePainter.h"

namespace Zvex::scene {

// One line of positioned glyphs, from left to right: pixels from the line's left end on its baseline, y
// growing downwards. Ink may lie outside 0 to the advance.
struct ShapedLine {
    struct Glyph {
        const android::MinikinFontSkia* font;  // of the typeface
        minikin::FontFakery fakery;
        uint32_t id;
        float x, y;                // of the pen
        uint32_t cluster;          // first unit of the characters that it stands for
        minikin::MinikinRect ink;  // without width and height if it is blank
    };
    std::vector<Glyph> glyphs;
    float advance = 0;
    minikin::MinikinRect ink;  // around all of them; all zero if all are blank
};

// The whole pixels around a line's ink.
struct InkBox {
    explicit InkBox(const minikin::MinikinRect& ink);
    int left, top;      // from the line's left end and baseline
    int width, height;  // at most 65535
};

// Shapes and draws the lines of one text. What is handed over must outlive it, but for the paint.
class LineShaper : public Zvex::LinePainter {
public:
    LineShaper(const std::u16string& text, const ParagraphDirections& directions, const android::Paint& paint,
               std::shared_ptr<const android::Typeface> typeface);

    // The text's units [start, end) as one line. Only as much text around them is passed on as shaping looks
    // at: otherwise each of a long paragraph's lines would cost the paragraph's length.
    ShapedLine shape(int start, int end) const;

    Zvex::DrawnLines::Image paint(const Zvex::DrawnLines::Range& range, float* advance) const override;

    const android::Paint& paintOfText() const { return mPaint; }

private:
    void append(const BidiLevelRun& run, ShapedLine* line) const;

    const std::u16string& mText;
    const ParagraphDirections& mDirections;
    const android::Paint mPaint;
    const std::shared_ptr<const android::Typeface> mTypeface;
};

// Calls f(begin, end) for each run of the line's glyphs in one font, with the paint set up to draw that font.
template <typename F>
void forEachFont(const ShapedLine& line, android::Paint& paint, const F& f) {
    const android::Paint plain(paint);
    for (size_t begin = 0, end = 0; begin < line.glyphs.size(); begin = end) {
        const ShapedLine::Glyph& first = line.glyphs[begin];
        while (end < line.glyphs.size() && line.glyphs[end].font == first.font) ++end;
        paint = plain;
        android::MinikinFontSkia::populateSkPaint(&paint, first.font, first.fakery);
        f(begin, end);
    }
}

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_LINESHAPER_H_
