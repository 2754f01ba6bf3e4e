// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COLORGLYPHS_H_
#define ZVEX_PLATFORM_HOST_COLORGLYPHS_H_

#include <cstdint>
#include <vector>

#include "platform/host/FontFace.h"
#include "platform/host/FreeTypeFace.h"
#include "platform/host/PaintGraph.h"

namespace host {

// The colour glyphs of a font, as alpha and in colour: bitmap strikes, layers and painted graphs. The calls
// return false, or no pixels, for a glyph that has no colour.
class ColorGlyphs {
public:
    void open(FreeTypeFace& font, hb_face_t* face);

    // Whether the font has strikes or a palette. Does not change after open.
    bool hasAny() const { return mHasStrikes || !mPalette.empty(); }

    bool box(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphBox* box) const;
    bool draw(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
              GlyphImage* image) const;
    ColorImage paint(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                     uint32_t textColor) const;
    // The advance of a colour glyph, as the phone measures it.
    float advance(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) const;

private:
    // One glyph's bitmap and its position in the style: source pixels per target pixel.
    struct Strike;
    bool loadStrike(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, bool metricsOnly,
                    Strike* strike) const;
    static GlyphBox strikeBox(const Strike& strike, const GlyphStyle& style, int quarterX);
    // Draws one of the bitmap's channels: blue, green, red or alpha.
    static void drawStrike(const Strike& strike, const GlyphStyle& style, int quarterX, int channel,
                           GlyphImage& image);
    static ColorImage paintStrike(const Strike& strike, const GlyphStyle& style, int quarterX);
    template <typename Visit>
    bool forEachLayer(FreeTypeFace& font, uint32_t glyph, Visit visit) const;
    template <typename Visit>
    void drawEachLayer(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                       Visit visit) const;
    bool layersBox(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                   GlyphBox* box) const;
    void drawLayers(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                    GlyphImage& image) const;
    ColorImage paintLayers(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                           uint32_t textColor) const;
    // Whether the glyph consists only of the graph.
    bool isGraphOnly(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) const;

    bool mHasStrikes = false;
    std::vector<uint32_t> mPalette;  // the first one, straight 0xAARRGGBB
    PaintGraph mGraph;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COLORGLYPHS_H_
