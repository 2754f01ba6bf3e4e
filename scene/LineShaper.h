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
#include <vector>

#include "scene/ParagraphDirections.h"
#include "scene/Scene.h"
#include "scene/SceneText.h"
#include "text/DrawnLines.h"

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

// What a line shows.
struct LineForm {
    int start = 0, end = 0;    // units of the text
    float fill = 0;            // the width to which its spaces grow; 0: they do not
    bool ellipsis = false;     // follows the units
    bool beginsRight = false;  // its paragraph does
};

// How the text is spaced.
struct Spacing {
    Spacing(const Scene& scene, double size);

    float word = 0;               // pixels for each space
    std::vector<float> tabStops;  // as the scene has them
};

// Shapes the lines of one text at one size. The text must outlive it.
class LineShaper {
public:
    LineShaper(const SceneText& text, const android::Paint& paint, const Spacing& spacing,
               std::shared_ptr<const android::Typeface> typeface);

    ShapedLine shape(const LineForm& form) const;
    // The line's coverage, with its advance.
    Zvex::DrawnLines::Image draw(const LineForm& form, float* advance) const;

    const SceneText& text() const { return mText; }
    const android::Paint& paint() const { return mPaint; }

private:
    // Units of a text of their own, the first of which is unit `base` of the scene's.
    struct Units {
        const char16_t* data;
        int base, count;
    };
    void append(const Units& units, const BidiLevelRun& run, ShapedLine* line) const;
    // A part without tabs.
    ShapedLine shapePart(const Units& units, const LineForm& part) const;
    void addTab(int unit, float x, ShapedLine* line) const;
    float stopAfter(float x) const;

    const SceneText& mText;
    const android::Paint mPaint;
    const Spacing mSpacing;
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
