// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PIXELMATH_H_
#define ZVEX_PLATFORM_HOST_PIXELMATH_H_

#include <cstdint>

// The canvas's roundings, each defined once. They are true divisions by 255, unlike the effect filters' (v +
// 1) * w >> 8.
namespace host {

// a * b / 255 for bytes, rounded to the nearest. There are no ties, because 255 is odd.
constexpr uint32_t multiplyBytes(uint32_t a, uint32_t b) {
    const uint32_t product = a * b + 128;
    return (product + (product >> 8)) >> 8;
}

// Source-over on coverage: s + d * (255 - s) / 255.
constexpr uint8_t coverageOver(uint8_t source, uint8_t target) {
    return static_cast<uint8_t>(source + multiplyBytes(target, 255u - source));
}

// The quotient rounded to the nearest, halves up. n + d / 2 must be below 2^32.
constexpr uint32_t nearestQuotient(uint32_t n, uint32_t d) {
    return (n + d / 2) / d;
}

// Four quotients rounded to the nearest, halves up, one for each of `numerators`. `d` is 1 to 255 * 255, and
// no quotient exceeds 255. Exact in floats: n + d / 2 is below 2^24, so a float holds it exactly. If it is no
// multiple of d, it is at least 1 / d > 2^-16 below the next one. A quotient below 256 is rounded by at most
// 2^-17, so it cannot reach that.
typedef float FourFloats __attribute__((vector_size(16)));
typedef int32_t FourInts __attribute__((vector_size(16)));
inline FourInts nearestQuotients(FourInts numerators, int32_t d) {
    const FourFloats sums = __builtin_convertvector(numerators + d / 2, FourFloats);
    return __builtin_convertvector(sums / static_cast<float>(d), FourInts);
}

// Source-over of the straight colour (red, green, blue) at alpha onto a straight pixel, red, green, blue,
// alpha in memory. Alpha 0 does not change the pixel.
inline void straightOver(uint8_t* pixel, uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha) {
    if (alpha == 0) return;
    if (alpha == 255 || pixel[3] == 0) {  // the general formula gives the source's own bytes here
        pixel[0] = red;
        pixel[1] = green;
        pixel[2] = blue;
        pixel[3] = alpha;
        return;
    }
    const int32_t source = alpha * 255;
    const int32_t target = pixel[3] * (255 - alpha);
    const int32_t sum = source + target;  // 255 <= sum <= 255 * 255; the numerators stay below 255^3 < 2^24
    const FourInts below = {pixel[0], pixel[1], pixel[2], 0}, above = {red, green, blue, 0};
    const FourInts mixed = nearestQuotients(above * source + below * target, sum);
    pixel[0] = static_cast<uint8_t>(mixed[0]);
    pixel[1] = static_cast<uint8_t>(mixed[1]);
    pixel[2] = static_cast<uint8_t>(mixed[2]);
    pixel[3] = static_cast<uint8_t>(nearestQuotient(static_cast<uint32_t>(sum), 255));
}

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PIXELMATH_H_
