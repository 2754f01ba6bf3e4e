// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_GAUSSIAN_H_
#define ZVEX_EFFECT_KERNELS_GAUSSIAN_H_

#include <cstddef>
#include <cstdint>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// The integer Gaussian of the shadows, the glows, the bevel and the emboss, and the separable blur that uses
// it. The middle weight is `scale`, the outermost one hundredth of that.

// Weights are made in single precision. Some effects take the constant ln 100 and the product with the scale
// in double; then a weight of a kernel of radius 963 or more can differ by one.
enum class GaussianConstant { Single, Double };

// How the weighted sums, each below 256 * total, are divided by the weights' total and rounded down.
//
// For a total up to 2^12: the single-precision product of sum and factor, rounded down. The factor exceeds 1
// / total by 2^-22 of it, give or take 2^-23, and rounding changes the product by at most 2^-24 of it. So the
// product is not below sum / total, and above it by less than 256 * 2^-20.8 < 1 / total, which lifts no sum
// to the next quotient.
//
// Else sum * multiplier >> (32 + shift), where 2^shift < total <= 2^(shift + 1) and multiplier = ceil(2^(32 +
// shift) / total). The product exceeds sum / total by less than 1 / total as long as sum * (multiplier *
// total - 2^(32 + shift)) < 2^(32 + shift), which a total up to 2^23 ensures. For larger totals the
// multiplier is 0 and the sums are divided.
struct Divisor {
    float factor = 0;  // 0 if the total is larger
    uint32_t multiplier = 0;
    int shift = 0;
};

struct Gaussian {
    int radius = 0;       // pixels
    uint32_t total = 0;   // weights[0] + 2 * (weights[1] + ... + weights[radius]); every sum is divided by it
    Divisor divisor;      // by total
    Buffer<int> weights;  // radius + 1, from the middle outwards; a byte each

    // weights[i] = scale * exp(-i * i * ln 100 / radius^2), rounded half up; scale is at most 128. A radius
    // below 1 gives the middle weight alone. False if memory is short, or if 255 * total does not fit 32 bits
    // (radii of more than a hundred thousand).
    bool make(int radius, int scale, GaussianConstant constant);
};

// One pass of the blur; its windows run along the rows or down the columns. Pixels are counted along the
// windows from the target's first pixel. The window of target pixel t holds the source pixels t - radius to t
// + radius. The source has the pixels sourceBegin..sourceEnd - 1, the first of them at `source`, and no
// coverage elsewhere.
struct BlurPass {
    const uint8_t* source;
    ptrdiff_t sourceStride;  // bytes
    int sourceBegin, sourceEnd;
    uint8_t* target;  // a pass along the rows may overwrite its source if the strides are equal
    ptrdiff_t targetStride;
    int width, height;    // pixels of the target
    bool sourceInverted;  // a pixel counts as 255 minus its value
    // Means are rounded down. If inverted, the result is 255 minus the mean, subtracted before the division.
    bool inverted;
};

// Passes that share one kernel and their memory.
class Blur {
public:
    // For targets of at most `width` x `height` pixels, along rows and columns. False if memory is short. The
    // kernel must outlive the passes.
    bool prepare(const Gaussian& kernel, int width, int height);

    void rows(const BlurPass& pass);
    void columns(const BlurPass& pass);

private:
    const Gaussian* mKernel = nullptr;
    Buffer<uint8_t> mScratch;
};

// A pass down the columns for kernels that are much wider than the target. It takes the source row by row and
// keeps none of it. The cost of a row grows with the number of different weights that the target's rows give
// it: a few, if neighbouring weights are mostly equal.
class ColumnSums {
public:
    // For `count` rows of the target, from row `first` on, of `width` pixels. False if memory is short. The
    // kernel must outlive the sums.
    bool prepare(const Gaussian& kernel, int first, int count, int width);
    // Adds row y of the source, once. Rows that are not added are empty.
    void add(const uint8_t* row, int y);
    // The means of all rows of the target, packed. Ends the sums.
    void finish(uint8_t* means);

private:
    const Gaussian* mKernel = nullptr;
    int mFirst = 0, mCount = 0, mWidth = 0;
    Buffer<uint32_t> mSums;  // of the first row
    // By how much each further row's sums exceed those of the row above it. Weights fall from the middle, so
    // the changes are at most 255 times the middle weight.
    Buffer<int16_t> mChanges;
};

// The best number of rows for one pass down the columns: few enough to stay in the cache until the next step,
// enough that the rows around them are seldom read again.
int blurBandRows(const Gaussian& kernel);

// Both passes over a rectangle of a plane. Planes are 8-bit, rows packed.
struct BlurParam {
    const uint8_t* source;  // whole plane
    uint8_t* target;        // of the same size; must not overlap source
    int stride;             // bytes, the width of both planes
    const Gaussian* kernel;
    // For each of the two passes: the result is the blur again, rounded differently.
    bool inverted;
    int xBegin, xEnd;  // half-open, columns to write
    int yBegin, yEnd;  // half-open, rows to write; they can be split
};

// Blurs columns, then rows. Each pass is the weighted sum divided by `total`, rounded down. The rectangle
// must keep kernel->radius away from the top and the bottom of the plane, and no window may leave the row. In
// the second pass, columns outside xBegin..xEnd - 1 count as 0. Nothing outside the rectangle is written.
// False, with the target unchanged, if memory is short.
bool blurPlane(const BlurParam& param);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_GAUSSIAN_H_
