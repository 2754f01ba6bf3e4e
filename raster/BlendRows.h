// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_BLENDROWS_H_
#define ZVEX_RASTER_BLENDROWS_H_

#include <cstddef>
#include <cstdint>

// One row of every blend, without clipping: ZvBlender calls them for the part of a row that lies on its
// target. Built for several instruction sets (raster/ForEachTarget.h). The plain forms, one pixel at a time,
// are tests/reference/BlenderReference.h.
//
// Division by 255 is (value + 1) * weight >> 8 throughout: at most `weight`, for a value up to 255, and
// `value` itself for a weight of 255. It is not that division: of 127 and 2 it makes 1 although 127 * 2 / 255
// is less, and of 3 and 63 it makes 0 although 3 * 63 / 255 is nearer to 1. Channels of a premultiplied
// colour never exceed its alpha, and then no sum exceeds 255; targets and sources need not keep that promise,
// so sums saturate.
//
// For all: `target` is `count` pixels of red, green, blue, alpha, premultiplied, unless said otherwise; it
// must not overlap the source; no alignment is asked of bytes. `color` is 0xAARRGGBB. Any count, 0 included;
// nothing is allocated.
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

// Coverage to straight colour with that coverage in its alpha; writes every pixel.
void fill8To32(uint8_t* target, const uint8_t* coverage, size_t count, uint32_t color);
// Coverage to coverage, one byte a pixel: the larger of the two.
void max8To8(uint8_t* target, const uint8_t* coverage, size_t count);

// Exchanges the first and the third byte of every pixel, in place.
void exchangeRedBlue(uint8_t* pixels, size_t count);

}  // namespace Zvex::BlendRows

#endif  // ZVEX_RASTER_BLENDROWS_H_
