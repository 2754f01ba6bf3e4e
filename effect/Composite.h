// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_COMPOSITE_H_
#define ZVEX_EFFECT_COMPOSITE_H_

#include <cstddef>
#include <cstdint>

#include "effect/PixelOrder.h"

namespace Zvex {

class ZvBitmap;

// The last steps of a rendering, on colour pictures of 4 bytes a pixel, in place and without allocations.

// The two functions below leave `picture` unchanged if a bitmap has another depth or no pixels.

// Cross-fades every byte of `picture` (premultiplied) with `back` (premultiplied) by the coverage in mask:
// full coverage keeps picture, none takes back. Pixel i goes with pixel i of the others, row by row, whatever
// their widths, for as many pixels as all three have.
void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask);

// Scales the alpha of a premultiplied picture by textAlpha and makes its colours straight. A pixel whose
// alpha becomes 0 loses its colour.
void finishPicture(ZvBitmap* picture, uint8_t textAlpha);

// The same for one row of `count` pixels, and the text layer's row.

void mergeBackRow(uint8_t* pixels, const uint8_t* back, const uint8_t* coverage, size_t count);

void finishRow(uint8_t* pixels, size_t count, uint8_t textAlpha, PixelOrder order);

// Blends the colour, 0xAARRGGBB, under the pixels through the coverage and scales each pixel by its coverage
// (ZVE_BLEND_DST_OVER_SA). Pixels without coverage become transparent.
void cutRowToGlyphs(uint8_t* pixels, const uint8_t* coverage, size_t count, uint32_t color);

// A picture of nothing but text in one colour (cutRowToGlyphs), with other colours blended under it, each
// through a coverage of its own (ZVE_BLEND_DST_OVER), and finished. Its rows are painted in one pass.
class PlainColors {
public:
    static constexpr size_t kMost = 3;

    // A row's coverage in the columns from `left` to `right` - 1; there is none in others.
    struct Coverage {
        const uint8_t* pixels = nullptr;
        int left = 0, right = 0;
    };

    // The text's colour and those under it, topmost first: 1 to kMost words 0xAARRGGBB, premultiplied if
    // there is more than one.
    PlainColors(const uint32_t* colors, size_t count, uint8_t textAlpha, PixelOrder order);

    // Whether no channel exceeds the alpha.
    static bool isPremultiplied(uint32_t color) {
        const uint32_t alpha = color >> 24;
        return (color >> 16 & 0xFF) <= alpha && (color >> 8 & 0xFF) <= alpha && (color & 0xFF) <= alpha;
    }

    // Paints the columns from `left` to `right` - 1 onto blank pixels, the first of which is `pixels`.
    // `coverages`: one for each colour.
    void paintRow(uint8_t* pixels, int left, int right, const Coverage* coverages) const;

    struct Results {
        uint32_t colors[kMost];
        size_t count;
        uint32_t factors[kMost][4];  // a channel + 1 in both halves of a word, in the order of the result
        uint32_t full[kMost];        // a colour alone, where its coverage is full
        // By the text's coverage: over full coverage of the second colour, or the text alone if it is the
        // only one.
        uint32_t text[256];
        uint8_t textAlpha;
    };

private:
    Results mResults;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COMPOSITE_H_
