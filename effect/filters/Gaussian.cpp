// SPDX-License-Identifier: Apache-2.0
//
// A separable blur, 2 * radius + 1 taps a pass. The mirrored taps share a weight and are added before the
// multiplication. The definition is tests/reference/GaussianReference.h.

#include "effect/filters/Gaussian.h"

#include <cmath>
#include <cstddef>

#include "foundation/SafeConvert.h"
#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr double LN_100 = 4.60517;

// Of the weights, so that 255 times them, the largest sum there is, fits 32 bits.
constexpr int64_t MAX_TOTAL = UINT32_MAX / 255;

#define ZVEX_KERNELS "effect/filters/GaussianKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool Gaussian::make(int newRadius, int scale, GaussianConstant constant) {
    radius = newRadius < 1 ? 0 : newRadius;
    if (scale + 2 * int64_t{radius} > MAX_TOTAL) return false;  // no weight is below 1
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
    if (sum > MAX_TOTAL) return false;
    total = static_cast<uint32_t>(sum);
    return true;
}

void blurRun(const BlurRun& run, uint32_t* sums) {
    const Gaussian& kernel = *run.kernel;
    ZVEX_ON_TARGET(sumTaps(sums, run.source, run.count, run.step, kernel.weights.get(), kernel.radius));
    ZVEX_ON_TARGET(storeMeans(run.target, sums, run.count, kernel.total, run.inverted));
}

bool blurPlane(const BlurParam& p) {
    if (p.xBegin >= p.xEnd || p.yBegin >= p.yEnd) return true;
    Buffer<uint32_t> sums;
    Buffer<uint8_t> line;
    if (!sums.allocate(p.stride) || !line.allocateZeroed(p.stride)) return false;
    const int count = p.xEnd - p.xBegin;
    uint8_t* means = line.get() + p.xBegin;
    for (int y = p.yBegin; y < p.yEnd; ++y) {
        const ptrdiff_t first = ptrdiff_t{y} * p.stride + p.xBegin;
        blurRun({p.source + first, means, count, p.stride, p.kernel, p.inverted}, sums.get());
        blurRun({means, p.target + first, count, 1, p.kernel, p.inverted}, sums.get());
    }
    return true;
}

}  // namespace Zvex
