// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_COLORRUN_H_
#define ZVEX_SCENE_COLORRUN_H_

#include <hwui/Paint.h>
#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "effect/TextLayers.h"
#include "platform/host/GlyphPen.h"

// Knows nothing of scenes: the Java binding of a desktop contains this file too.
namespace Zvex::scene {

// The glyphs of a line that may have colours of their own, where the text object draws them: counted from the
// top left of the line's image, outside which nothing of the line shows.
struct ColorRun {
    struct Glyph {
        const host::FontFace* face;  // of one of the scene's fonts
        uint32_t id;
        host::GlyphStyle style;
        host::GlyphPen pen;
    };
    // Any glyph of the line: its pen, counted like those above, and its ink.
    struct Candidate {
        uint32_t id;
        float x, y;
        minikin::MinikinRect ink;
    };
    std::vector<Glyph> glyphs;
    // Glyphs whose colours are not read, since the font has them as SVG, and those too large to be painted.
    bool hasSvg = false, hasLarge = false;
    int left = 0;               // of the image, from the line's left end
    int width = 0, height = 0;  // of the image
    int baseline = 0;           // below its top
};
// Adds those of `count` glyphs that may have colours. `font` is set up to draw them.
void addGlyphs(ColorRun& run, const SkPaint& font, size_t count,
               const std::function<ColorRun::Candidate(size_t)>& glyphAt);
// All of a layout; `ink` is the layout's.
ColorRun colorRunOf(const minikin::Layout& layout, const minikin::MinikinRect& ink,
                    const android::Paint& paint);

// A run in the picture: the left end of its image, and its baseline.
struct PlacedRun {
    const ColorRun* run;
    int x, y;
};

// The runs' glyphs within a picture of that size; palettes' references to the text colour get `textColor`.
// Without pixels if none has colours. Throws std::bad_alloc.
Zvex::ColorGlyphLayer drawColorGlyphs(const std::vector<PlacedRun>& runs, uint32_t textColor, int width,
                                      int height);

// Gives the coverage the glyphs' alpha where it has less: the platform draws no coverage for large ones.
void raiseCoverage(Zvex::TextCoverage& coverage, const Zvex::ColorGlyphLayer& glyphs);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_COLORRUN_H_
