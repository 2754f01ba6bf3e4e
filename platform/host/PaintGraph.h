// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PAINTGRAPH_H_
#define ZVEX_PLATFORM_HOST_PAINTGRAPH_H_

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "platform/host/ColorLine.h"
#include "platform/host/FontFace.h"
#include "platform/host/FreeTypeFace.h"

namespace host {

// The first palette's colours, straight 0xAARRGGBB. Numbers beyond them mean the text's colour.
struct PaletteColors {
    const std::vector<uint32_t>* colors;
    uint32_t text;

    uint32_t at(uint32_t number) const { return number < colors->size() ? (*colors)[number] : text; }
};

// The painted glyphs of a font: the COLR table, version 1, has graphs of fills, shapes, transforms and
// composites. This class reads the table itself, because FreeType's calls for it do not check where the table
// ends. Variable values keep their defaults.
//
// A picture is composed of pictures of straight words; each is rounded to bytes when it is joined. Shapes are
// filled from unhinted outlines in 64ths of a pixel; fake bold does not change them. Transforms and gradients
// are computed in double precision; a pixel gets the colour of its centre.
//
// Limits: graphs have a depth of at most 64 and at most 16384 paints, and fill at most 128 times the
// picture's pixels; paints beyond the limits are left out. A picture of more than kMaxGlyphBytes is blank.
class PaintGraph {
public:
    void open(hb_face_t* face);
    bool has(uint32_t glyph) const { return rootOf(glyph) != 0; }

    // The box of the glyph's picture: its clip box, else that of its shapes, rounded outwards.
    GlyphBox box(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX) const;
    ColorImage draw(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX,
                    const PaletteColors& palette) const;

private:
    class Painter;
    // Big-endian; 0 beyond the end of the table.
    uint32_t word(size_t at, int bytes) const;
    int32_t number(size_t at, int bytes) const;
    // Offsets in the table; 0: none.
    size_t rootOf(uint32_t glyph) const;
    size_t clipOf(uint32_t glyph) const;
    size_t layerAt(uint32_t index) const;
    size_t placeOf(size_t base, size_t field, int bytes) const;

    struct Release {
        void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    };
    std::unique_ptr<hb_blob_t, Release> mTable;
    const uint8_t* mBytes = nullptr;
    size_t mSize = 0;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PAINTGRAPH_H_
