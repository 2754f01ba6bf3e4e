// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_STRIKEFILTER_H_
#define ZVEX_PLATFORM_HOST_STRIKEFILTER_H_

#include <cstddef>
#include <cstdint>

namespace host {

// Where a bitmap's pixels come to lie: x' = xx * x + xy * y + x0, y' = yy * y + y0, y downwards. xx and yy
// are not 0.
struct StrikePlace {
    float xx = 1, xy = 0, yy = 1, x0 = 0, y0 = 0;
};

// Draws 8-bit alpha as the platform's canvas draws a bitmap at its medium quality: when shrinking, it takes
// the last halving of the bitmap that is not smaller than the target (each pixel the mean of four, of 1 2 1
// along an odd side, cut), and blends four of its pixels with weights of 16 parts on each axis, cut. A pixel
// whose centre lies outside the bitmap stays as it is.
void filterStrike(const uint8_t* source, int width, int height, ptrdiff_t stride, int step,
                  const StrikePlace& place, uint8_t* target, int targetWidth, int targetHeight);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_STRIKEFILTER_H_
