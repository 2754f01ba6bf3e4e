// SPDX-License-Identifier: Apache-2.0
//
// A separable blur with 2 * radius + 1 taps in each pass. GaussianKernels.inc explains how they are added.
// Windows without coverage are skipped. The plain form is tests/reference/GaussianReference.h.

#include "effect/kernels/Gaussian.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "foundation/SafeConvert.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr double kLn100 = 4.60517;

// The largest total of the weights: 255 times it, the largest possible sum, fits 32 bits.
constexpr int64_t kMaxTotal = UINT32_MAX / 255;

// See Divisor.
constexpr uint32_t kMaxFactorTotal = uint32_t{1} << 12, kMaxMultipliedTotal = uint32_t{1} << 23;

Divisor divisorOf(uint32_t total) {
    Divisor divisor;
    if (total <= kMaxFactorTotal) divisor.factor = static_cast<float>((1 + 0x1p-22) / total);
    if (total < 2 || total > kMaxMultipliedTotal) return divisor;
    while (uint64_t{2} << divisor.shift < total) ++divisor.shift;
    const uint64_t power = uint64_t{1} << (32 + divisor.shift);
    divisor.multiplier = static_cast<uint32_t>((power + total - 1) / total);
    return divisor;
}

// Scratch memory of the kernels: the weights and their sums in groups, then a strip. Enough for every build.
constexpr int64_t kCacheLine = 64;

int64_t weightBytes(int radius) {
    return (8 * (2 * int64_t{radius} + 12) / kCacheLine + 1) * kCacheLine;
}

// A strip of `length` windows.
int64_t stripBytes(int radius, int length) {
    return kCacheLine * (int64_t{length} + 2 * int64_t{radius} + 2 * kCacheLine);
}

struct BlurKernel {
    const int* weights;
    int radius;
    uint32_t total;
    Divisor divisor;
};

uint8_t* alignedToCacheLine(uint8_t* at) {
    return at + (kCacheLine - reinterpret_cast<uintptr_t>(at) % kCacheLine) % kCacheLine;
}

#define ZVEX_KERNELS "effect/kernels/GaussianKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool Gaussian::make(int newRadius, int scale, GaussianConstant constant) {
    radius = newRadius < 1 ? 0 : newRadius;
    if (scale + 2 * int64_t{radius} > kMaxTotal) return false;  // no weight is below 1
    if (!weights.allocate(int64_t{radius} + 1)) return false;
    weights[0] = scale;
    const float squaredRadius = static_cast<float>(radius) * static_cast<float>(radius);
    int64_t sum = scale;
    for (int i = 1; i <= radius; ++i) {
        const float square = static_cast<float>(-int64_t{i} * i);
        const float exponent = constant == GaussianConstant::Double
                                   ? static_cast<float>(square / (squaredRadius / kLn100))
                                   : square / (squaredRadius / static_cast<float>(kLn100));
        const float unit = std::exp(exponent);
        const double weight = constant == GaussianConstant::Double
                                  ? unit * static_cast<double>(scale)
                                  : static_cast<double>(unit * static_cast<float>(scale));
        weights[static_cast<size_t>(i)] = truncateToInt(weight + 0.5);
        sum += 2 * int64_t{weights[static_cast<size_t>(i)]};
    }
    if (sum > kMaxTotal) return false;
    total = static_cast<uint32_t>(sum);
    divisor = divisorOf(total);
    return true;
}

bool Blur::prepare(const Gaussian& kernel, int width, int height) {
    mKernel = &kernel;
    // The kernels count pixels in ints, including those of the windows around the target.
    if (std::max(width, height) + 2 * int64_t{kernel.radius} + 1024 > INT32_MAX) return false;
    return mScratch.allocate(weightBytes(kernel.radius) + kCacheLine +
                             stripBytes(kernel.radius, std::max(width, height)));
}

void Blur::rows(const BlurPass& pass) {
    const BlurKernel kernel = {mKernel->weights.get(), mKernel->radius, mKernel->total, mKernel->divisor};
    uint8_t* scratch = alignedToCacheLine(mScratch.get());
    const ptrdiff_t weights = weightBytes(kernel.radius);
    ZVEX_ON_TARGET(blurRows(pass, kernel, scratch, weights));
}

void Blur::columns(const BlurPass& pass) {
    const BlurKernel kernel = {mKernel->weights.get(), mKernel->radius, mKernel->total, mKernel->divisor};
    uint8_t* scratch = alignedToCacheLine(mScratch.get());
    const ptrdiff_t weights = weightBytes(kernel.radius);
    ZVEX_ON_TARGET(blurColumns(pass, kernel, scratch, weights));
}

bool ColumnSums::prepare(const Gaussian& kernel, int first, int count, int width) {
    mKernel = &kernel;
    mFirst = first;
    mCount = count;
    mWidth = width;
    return mSums.allocateZeroed(width) && mChanges.allocateZeroed(count, width);
}

void ColumnSums::add(const uint8_t* row, int y) {
    const auto weightOf = [&](int target) {
        const int64_t distance = std::abs(int64_t{y} - mFirst - target);
        return distance > mKernel->radius ? 0 : mKernel->weights[static_cast<size_t>(distance)];
    };
    int weight = weightOf(0);
    if (weight != 0) ZVEX_ON_TARGET(addWeighted(mSums.get(), row, weight, mWidth));
    for (int target = 1; target < mCount; ++target) {
        const int change = weightOf(target) - weight;
        if (change == 0) continue;
        weight += change;
        ZVEX_ON_TARGET(addWeighted(mChanges.get() + ptrdiff_t{target} * mWidth, row, change, mWidth));
    }
}

void ColumnSums::finish(uint8_t* means) {
    for (ptrdiff_t target = 0; target < mCount; ++target) {
        const ptrdiff_t at = target * mWidth;
        ZVEX_ON_TARGET(addChanges(mSums.get(), mChanges.get() + at, mWidth));
        ZVEX_ON_TARGET(divideSums(means + at, mSums.get(), mWidth, mKernel->divisor, mKernel->total));
    }
}

int blurBandRows(const Gaussian& kernel) {
    constexpr int64_t kStrip = 64, kMostStrips = 4;  // the largest of all builds
    const int64_t strips = (64 + int64_t{kernel.radius} / 2 + kStrip / 2) / kStrip;
    return static_cast<int>(kStrip * std::min(strips, kMostStrips));
}

bool blurPlane(const BlurParam& p) {
    if (p.xBegin >= p.xEnd || p.yBegin >= p.yEnd) return true;
    const int width = p.xEnd - p.xBegin, height = p.yEnd - p.yBegin, radius = p.kernel->radius;
    const int band = std::min(blurBandRows(*p.kernel), height);
    Blur blur;
    if (!blur.prepare(*p.kernel, width, band)) return false;
    for (int y = 0; y < height; y += band) {
        const int rows = std::min(band, height - y);
        const ptrdiff_t first = ptrdiff_t{p.yBegin + y} * p.stride + p.xBegin;
        uint8_t* target = p.target + first;
        // A nearly full source is nearly empty once inverted; the second pass inverts it back.
        blur.columns({p.source + first - ptrdiff_t{radius} * p.stride, p.stride, -radius, rows + radius,
                      target, p.stride, width, rows, p.inverted, false});
        blur.rows({target, p.stride, 0, width, target, p.stride, width, rows, false, p.inverted});
    }
    return true;
}

}  // namespace Zvex
