// SPDX-License-Identifier: Apache-2.0
//
// Each column and row of the box has two neighbours in the pattern and a weight, computed once. If the
// pattern repeats within the box, a row is mixed when it is first needed and copied afterwards; otherwise
// only runs of covered pixels are mixed. The plain form is tests/reference/PatternReference.h.

#include "effect/kernels/PatternTile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "foundation/SafeConvert.h"
#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr double kMinScale = 0.1;
constexpr float kFirstWhole = 8388608;  // floats from here on have no fraction
constexpr int64_t kLeastColumns = 256;  // of a tile: shorter patterns are repeated in it

#define ZVEX_KERNELS "effect/kernels/PatternKernels.inc"
#include "raster/ForEachTarget.h"

using TargetBaseline::kStrip;

// The two columns (or rows) of the pattern that a column (or row) of the box is mixed from.
struct Sample {
    uint32_t first, second;  // columns (rows) of the pattern
    uint32_t weight;         // of the second, 0..254; the first has 255 minus this
};

// Pixels until one side of the pattern repeats.
int periodOf(float scale, uint32_t size) {
    return truncateToInt(scale * static_cast<float>(size));
}

Sample sampleAt(int pixel, float scale, uint32_t size) {
    const float place = static_cast<float>(pixel % periodOf(scale, size)) / scale;
    // Not std::floor, which is a function call on machines without an instruction for it.
    const float whole = place < kFirstWhole ? static_cast<float>(static_cast<int>(place)) : place;
    Sample sample;
    // For sizes of millions of pixels, the division can round up to the size.
    sample.first = std::min(truncateToUnsigned(whole), size - 1);
    sample.second = sample.first + 1 < size ? sample.first + 1 : 0;
    sample.weight = static_cast<uint32_t>(truncateToInt((place - whole) * 255.0));
    return sample;
}

// Like premultiplyTaps, for any opacity. An opacity above 1 may give an alpha beyond a byte: then the word
// keeps its low 8 bits, and products overflow as 32-bit words do.
void premultiplyBeyond(uint32_t* words, int count, float opacity) {
    for (int i = 0; i < count; ++i) {
        const uint32_t alpha = truncateToUnsigned(opacity * static_cast<float>(words[i] & 0xFF));
        const auto scaled = [=](int shift) {
            return std::min<uint32_t>(255, (((words[i] >> shift & 0xFF) + 1) * alpha) >> 8);
        };
        words[i] = alpha << 24 | scaled(8) << 16 | scaled(16) << 8 | scaled(24);
    }
}

bool isCoveredAnywhere(const uint8_t* coverage, int count) {
    return ZVEX_ON_TARGET(isCovered(coverage, count));
}

}  // namespace

bool PatternTile::isUsable(const ZvBitmap* pattern, float scale) {
    if (pattern == nullptr || pattern->pixels == nullptr || pattern->bytesPerPixel != 4) return false;
    return scale >= kMinScale && periodOf(scale, pattern->width) > 0 && periodOf(scale, pattern->height) > 0;
}

bool PatternTile::make(const ZvBitmap& pattern, float scale, float opacity, int width, int height) {
    mPattern = &pattern;
    mScale = scale;
    mOpacity = opacity;
    const int64_t period = periodOf(scale, pattern.width);
    mRowPeriod = periodOf(scale, pattern.height);
    mColumns = static_cast<int>(std::min<int64_t>(width, (kLeastColumns + period - 1) / period * period));
    mKeepsRows = mRowPeriod < height;
    mRepeats = mKeepsRows || mColumns < width;
    if (!mFirsts.allocate(mColumns) || !mSeconds.allocate(mColumns) || !mWeights.allocate(mColumns))
        return false;
    for (int x = 0; x < mColumns; ++x) {
        const auto at = static_cast<size_t>(x);
        const Sample sample = sampleAt(x, scale, pattern.width);
        mFirsts[at] = static_cast<int32_t>(sample.first);
        mSeconds[at] = static_cast<int32_t>(sample.second);
        mWeights[at] = sample.weight;
    }
    if (!mRepeats) return true;
    const int rows = mKeepsRows ? mRowPeriod : 1;
    if (!mTile.allocate(rows, mColumns) || !mTileRows.allocate(rows)) return false;
    std::fill_n(mTileRows.get(), rows, -1);
    return true;
}

void PatternTile::row(uint32_t* words, const uint8_t* coverage, int first, int count, int y) {
    if (mRepeats && isCoveredAnywhere(coverage, count)) return takeFromTile(words, coverage, first, count, y);
    uint32_t strip[kStrip];
    for (int begin = 0; begin < count; begin += kStrip) {
        const int n = std::min(kStrip, count - begin);
        if (!isCoveredAnywhere(coverage + begin, n)) {
            std::fill_n(words + begin, n, 0u);
            continue;
        }
        mix(strip, first + begin, n, y);
        ZVEX_ON_TARGET(takeCovered(words + begin, strip, coverage + begin, n));
    }
}

// Mixes at most a strip of columns of the tile.
void PatternTile::mix(uint32_t* words, int first, int count, int y) const {
    const Sample row = sampleAt(y, mScale, mPattern->height);
    const auto* taps = reinterpret_cast<const TargetBaseline::Tap*>(mPattern->pixels);
    const auto* upper = taps + size_t{row.first} * mPattern->width;
    const auto* lower = taps + size_t{row.second} * mPattern->width;
    ZVEX_ON_TARGET(mixTaps(words, upper, lower, row.weight, mFirsts.get() + first, mSeconds.get() + first,
                           mWeights.get() + first, count));
    if (mOpacity >= 0 && mOpacity <= 1) {
        ZVEX_ON_TARGET(premultiplyTaps(words, count, mOpacity));
    } else {
        premultiplyBeyond(words, count, mOpacity);
    }
}

void PatternTile::takeFromTile(uint32_t* words, const uint8_t* coverage, int first, int count, int y) {
    const int row = y % mRowPeriod, at = mKeepsRows ? row : 0;
    uint32_t* tile = mTile.get() + static_cast<size_t>(at) * static_cast<size_t>(mColumns);
    int& held = mTileRows[static_cast<size_t>(at)];
    if (held != row) {
        for (int x = 0; x < mColumns; x += kStrip) mix(tile + x, x, std::min(kStrip, mColumns - x), y);
        held = row;
    }
    for (int begin = 0; begin < count;) {
        const int column = (first + begin) % mColumns;
        const int n = std::min(count - begin, mColumns - column);
        ZVEX_ON_TARGET(takeCovered(words + begin, tile + column, coverage + begin, n));
        begin += n;
    }
}

}  // namespace Zvex
