// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_GAUSSIAN_H_
#define ZVEX_EFFECT_FILTERS_GAUSSIAN_H_

#include <cstddef>
#include <cstdint>

#include "effect/filters/Buffer.h"

namespace Zvex {

// The integer Gaussian of the shadows, the glows, the bevel and the emboss: weights of which the middle one
// is `scale` and the outermost one hundredth of it, and the separable blur with them.

// The weights are made in single precision but for the constant ln 100, which some effects hold in double:
// a weight of a kernel of radius 963 or more can differ by one.
enum class GaussianConstant { Single, Double };

struct Gaussian {
    int radius = 0;       // pixels
    uint32_t total = 0;   // weights[0] + 2 * (weights[1] + ... + weights[radius]): divides every sum
    Buffer<int> weights;  // radius + 1, from the middle outwards

    // weights[i] = scale * exp(-i * i * ln 100 / radius^2), rounded half up. A radius below 1 gives the
    // middle weight alone. False when memory is short or when 255 * total would not fit 32 bits (radii of
    // more than a hundred thousand).
    bool make(int radius, int scale, GaussianConstant constant);
};

// One pass of the blur over a run of pixels. The windows run along the row (a step of 1 byte) or down the
// column (a step of the stride).
struct BlurRun {
    const uint8_t* source;  // read from radius steps before the first pixel to radius steps after the last
    uint8_t* target;        // `count` pixels; must not overlap source
    int count;              // pixels, side by side in source and in target; 0 writes nothing
    ptrdiff_t step;         // bytes
    const Gaussian* kernel;
    bool inverted;  // gives what 255 lacks of the weighted mean, the difference taken before the division
};

// target[i] = weighted sum around source[i] over `total`, cut off. sums: `count` elements to work in.
void blurRun(const BlurRun& run, uint32_t* sums);

// One blur over a rectangle of a plane. Planes are 8-bit, rows packed.
struct BlurParam {
    const uint8_t* source;  // whole plane
    uint8_t* target;        // of the same size; must not overlap source
    int stride;             // bytes, the width of both planes
    const Gaussian* kernel;
    // For each of the two passes: the result is the blur again, rounded another way.
    bool inverted;
    int xBegin, xEnd;  // half-open, columns to write
    int yBegin, yEnd;  // half-open, rows to write, last so that rows can be split
};

// Blurs columns, then rows; each pass is the weighted sum over `total`, cut off. The rectangle must keep
// kernel->radius away from the top and the bottom of the plane, and no window may leave the row. In the
// second pass, columns outside xBegin..xEnd - 1 count as 0. Writes nothing outside the rectangle, nothing at
// all when that is empty. False when memory is short, with target untouched.
bool blurPlane(const BlurParam& param);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_GAUSSIAN_H_
