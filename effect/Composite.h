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

// What the rows of a picture of plain text end as: the results of cutRowToGlyphs on transparent pixels and
// finishRow, for each coverage.
class TextColors {
public:
    // `color` is 0xAARRGGBB.
    TextColors(uint32_t color, uint8_t textAlpha, PixelOrder order);

    // Does not change pixels without coverage.
    void paintRow(uint8_t* pixels, const uint8_t* coverage, size_t count) const;

private:
    uint32_t mWords[256];
};

// The same with a second colour blended under the text (ZVE_BLEND_DST_OVER), which has a coverage of its own.
class TextOverColor {
public:
    TextOverColor(uint32_t text, uint32_t under, uint8_t textAlpha, PixelOrder order);

    // Both do not change pixels without any coverage: beside the text, and where `text` is its coverage.
    void paintUnder(uint8_t* pixels, const uint8_t* under, size_t count) const;
    void paintBoth(uint8_t* pixels, const uint8_t* text, const uint8_t* under, size_t count) const;

private:
    uint32_t mText, mUnder;
    uint8_t mTextAlpha;
    PixelOrder mOrder;
    uint32_t mWords[256];  // where the second colour has full coverage
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COMPOSITE_H_
