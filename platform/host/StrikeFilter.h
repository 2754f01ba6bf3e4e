// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_STRIKEFILTER_H_
#define ZVEX_PLATFORM_HOST_STRIKEFILTER_H_

#include <cstddef>
#include <cstdint>

namespace host {

// The position of a bitmap's pixels: x' = xx * x + xy * y + x0, y' = yy * y + y0, y downwards. xx and yy are
// not 0.
struct StrikePlace {
    float xx = 1, xy = 0, yy = 1, x0 = 0, y0 = 0;
};

// Draws 8-bit alpha as the platform's canvas draws a bitmap at medium quality. When shrinking, it takes the
// last halving of the bitmap that is not smaller than the target; a halved pixel is the mean of four pixels
// (weights 1 2 1 along an odd side), rounded down. It then blends four pixels with weights of 16 parts on
// each axis, rounded down. A pixel whose centre is outside the bitmap does not change.
void filterStrike(const uint8_t* source, int width, int height, ptrdiff_t stride, int step,
                  const StrikePlace& place, uint8_t* target, int targetWidth, int targetHeight);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_STRIKEFILTER_H_
