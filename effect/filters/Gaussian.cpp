// SPDX-License-Identifier: Apache-2.0
//
// A separable blur, 2 * radius + 1 taps a pass. The mirrored taps share a weight and are added before the
// multiplication. The definition is tests/reference/GaussianReference.h.

#include "effect/filters/Gaussian.h"

#include <cmath>
#include <cstddef>

#include "foundation/SafeConvert.h"

namespace Zvex {

namespace {

constexpr double LN_100 = 4.60517;

// Added to sums of two bytes times a weight: the largest is 255 * total, see Gaussian::make.
using Sum = uint32_t;

// sums[x] = weighted sum of the pixels at `step` bytes from each other around pixels[x].
void addTaps(Sum* sums, const uint8_t* pixels, ptrdiff_t step, const Gaussian& kernel, int begin, int end) {
    const Sum middle = static_cast<Sum>(kernel.weights[0]);
    for (int x = begin; x < end; ++x) sums[x] = middle * pixels[x];
    for (int i = 1; i <= kernel.radius; ++i) {
        const Sum weight = static_cast<Sum>(kernel.weights[static_cast<size_t>(i)]);
        const uint8_t* before = pixels - i * step;
        const uint8_t* after = pixels + i * step;
        for (int x = begin; x < end; ++x) sums[x] += weight * (Sum{before[x]} + after[x]);
    }
}

// The means of the sums, which are bytes again.
void divide(uint8_t* means, const Sum* sums, const BlurParam& p) {
    const Sum total = p.kernel->total;
    for (int x = p.xBegin; x < p.xEnd; ++x) {
        means[x] = static_cast<uint8_t>((p.inverted ? 255 * total - sums[x] : sums[x]) / total);
    }
}

}  // namespace

bool Gaussian::make(int newRadius, int scale, GaussianConstant constant) {
    radius = newRadius < 1 ? 0 : newRadius;
    if (!weights.allocate(int64_t{radius} + 1)) return false;
    weights[0] = scale;
    const float squaredRadius = static_cast<float>(radius) * static_cast<float>(radius);
    int64_t sum = scale;
    for (int i = 1; i <= radius; ++i) {
        const float square = static_cast<float>(-int64_t{i} * i);
        const float exponent = constant == GaussianConstant::Double
                                   ? static_cast<float>(square / (squaredRadius / LN_100))
                                   : square / (squaredRadius / static_cast<float>(LN_100));
        const float weight = std::exp(exponent) * static_cast<float>(scale);
        weights[static_cast<size_t>(i)] = truncateToInt(weight + 0.5);
        sum += 2 * int64_t{weights[static_cast<size_t>(i)]};
    }
    if (sum > UINT32_MAX / 255) return false;
    total = static_cast<uint32_t>(sum);
    return true;
}

bool blurPlane(const BlurParam& p) {
    if (p.xBegin >= p.xEnd || p.yBegin >= p.yEnd) return true;
    Buffer<Sum> sums;
    Buffer<uint8_t> line;
    if (!sums.allocate(p.stride) || !line.allocateZeroed(p.stride)) return false;
    for (int y = p.yBegin; y < p.yEnd; ++y) {
        const ptrdiff_t row = ptrdiff_t{y} * p.stride;
        addTaps(sums.get(), p.source + row, p.stride, *p.kernel, p.xBegin, p.xEnd);
        divide(line.get(), sums.get(), p);
        addTaps(sums.get(), line.get(), 1, *p.kernel, p.xBegin, p.xEnd);
        divide(p.target + row, sums.get(), p);
    }
    return true;
}

}  // namespace Zvex
