// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COLOURGLYPHS_H_
#define ZVEX_PLATFORM_HOST_COLOURGLYPHS_H_

#include <cstdint>
#include <vector>

#include "platform/host/FontFace.h"
#include "platform/host/FreeTypeFace.h"

namespace host {

// The colour glyphs of a font, as alpha: bitmap strikes and layers. The calls return false for a glyph that
// has no colour.
class ColourGlyphs {
public:
    void open(FreeTypeFace& font);

    bool box(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphBox* box) const;
    bool draw(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
              GlyphImage* image) const;
    // The advance of a colour glyph, as the phone measures it.
    float advance(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) const;

private:
    // One glyph's bitmap and its position in the style: source pixels per target pixel.
    struct Strike;
    bool loadStrike(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, bool metricsOnly,
                    Strike* strike) const;
    static GlyphBox strikeBox(const Strike& strike, const GlyphStyle& style, int quarterX);
    static void drawStrike(const Strike& strike, const GlyphStyle& style, int quarterX, GlyphImage& image);
    template <typename Visit>
    bool forEachLayer(FreeTypeFace& font, uint32_t glyph, Visit visit) const;
    bool layersBox(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                   GlyphBox* box) const;
    void drawLayers(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                    GlyphImage& image) const;

    bool mHasStrikes = false;
    std::vector<uint8_t> mPaletteAlphas;  // of the first palette
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COLOURGLYPHS_H_
