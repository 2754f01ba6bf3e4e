// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_BLENDROWS_H_
#define ZVEX_RASTER_BLENDROWS_H_

#include <cstddef>
#include <cstdint>

// One row of every blend, without clipping. ZvBlender calls these functions for the part of a row that lies
// on its target. They are built for several instruction sets (raster/ForEachTarget.h). The plain forms, one
// pixel at a time, are in tests/reference/BlenderReference.h.
//
// Instead of dividing by 255, all use (value + 1) * weight >> 8. For a value up to 255 the result is at most
// `weight`; for a weight of 255 it is `value`. It can differ from value * weight / 255: 127 and 2 give 1,
// although the quotient is below 1; 3 and 63 give 0, although the quotient is nearer to 1. A premultiplied
// channel should not exceed its alpha, and then no sum exceeds 255. Targets and sources may break that rule,
// so sums saturate.
//
// For all: `target` is `count` pixels of red, green, blue, alpha, premultiplied unless said otherwise. It
// must not overlap the source. Bytes need no alignment. `color` is 0xAARRGGBB. Any count, 0 included. Nothing
// is allocated.
namespace Zvex::BlendRows {

// One colour through 8-bit coverage. Coverage 0 never changes a pixel.
void srcOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);
void dstOver8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);
void dstOver8To32NSA(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);
void dstOverSA8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);

// Premultiplied words 0xAARRGGBB.
void srcOver32To32(uint8_t* target, const uint32_t* source, size_t count);
void dstOver32To32(uint8_t* target, const uint32_t* source, size_t count);

// Premultiplied bytes: red, green, blue, alpha, or alpha, red, green, blue.
void dstOverRGBA(uint8_t* target, const uint8_t* source, size_t count);
void dstOverARGB(uint8_t* target, const uint8_t* source, size_t count);

// Writes every pixel: the straight colour, with its alpha scaled by the coverage.
void fill8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);
// Coverage to coverage, one byte a pixel: keeps the larger of the two.
void max8To8(uint8_t* target, const uint8_t* coverage, size_t count);

// Exchanges the first and the third byte of every pixel, in place.
void exchangeRedBlue(uint8_t* pixels, size_t count);

}  // namespace Zvex::BlendRows

#endif  // ZVEX_RASTER_BLENDROWS_H_
