// SPDX-License-Identifier: Apache-2.0
//
// Two neighbours and a weight for each column and row are worked out once. What repeats within the box is
// mixed once, when its row is first asked for, and copied from then on; else only stretches with coverage are
// mixed. The definition is tests/reference/PatternReference.h.

#include "effect/kernels/PatternTile.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "foundation/SafeConvert.h"
#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr double MIN_SCALE = 0.1;
constexpr float FIRST_WHOLE = 8388608;  // from here on floats have no fraction
constexpr int64_t LEAST_COLUMNS = 256;  // of a tile: shorter ones are repeated in it

#define ZVEX_KERNELS "effect/kernels/PatternKernels.inc"
#include "raster/ForEachTarget.h"

using TargetBaseline::STRIP;

// What a column (or row) of the box is made of.
struct Sample {
    uint32_t first, second;  // columns (rows) of the pattern
    uint32_t weight;         // of the second, 0..254; the first has the rest of 255
};

// Pixels between two repeats of a side of the pattern.
int periodOf(float scale, uint32_t size) {
    return truncateToInt(scale * static_cast<float>(size));
}

Sample sampleAt(int pixel, float scale, uint32_t size) {
    const float place = static_cast<float>(pixel % periodOf(scale, size)) / scale;
    // Not std::floor, a call on machines without an instruction for it.
    const float whole = place < FIRST_WHOLE ? static_cast<float>(static_cast<int>(place)) : place;
    Sample sample;
    // From millions of pixels on, the division can round up to the size.
    sample.first = std::min(truncateToUnsigned(whole), size - 1);
    sample.second = sample.first + 1 < size ? sample.first + 1 : 0;
    sample.weight = static_cast<uint32_t>(truncateToInt((place - whole) * 255.0));
    return sample;
}

// As premultiplyTaps for any opacity. One above 1 may bring the alpha beyond a byte: its word then keeps the
// low 8 bits, and products run over as 32-bit words do.
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
    return scale >= MIN_SCALE && periodOf(scale, pattern->width) > 0 && periodOf(scale, pattern->height) > 0;
}

bool PatternTile::make(const ZvBitmap& pattern, float scale, float opacity, int width, int height) {
    pattern_ = &pattern;
    scale_ = scale;
    opacity_ = opacity;
    const int64_t period = periodOf(scale, pattern.width);
    rowPeriod_ = periodOf(scale, pattern.height);
    columns_ = static_cast<int>(std::min<int64_t>(width, (LEAST_COLUMNS + period - 1) / period * period));
    keepsRows_ = rowPeriod_ < height;
    repeats_ = keepsRows_ || columns_ < width;
    if (!firsts_.allocate(columns_) || !seconds_.allocate(columns_) || !weights_.allocate(columns_))
        return false;
    for (int x = 0; x < columns_; ++x) {
        const auto at = static_cast<size_t>(x);
        const Sample sample = sampleAt(x, scale, pattern.width);
        firsts_[at] = static_cast<int32_t>(sample.first);
        seconds_[at] = static_cast<int32_t>(sample.second);
        weights_[at] = sample.weight;
    }
    if (!repeats_) return true;
    const int rows = keepsRows_ ? rowPeriod_ : 1;
    if (!tile_.allocate(rows, columns_) || !tileRows_.allocate(rows)) return false;
    std::fill_n(tileRows_.get(), rows, -1);
    return true;
}

void PatternTile::row(uint32_t* words, const uint8_t* coverage, int first, int count, int y) {
    if (repeats_ && isCoveredAnywhere(coverage, count)) return takeFromTile(words, coverage, first, count, y);
    uint32_t strip[STRIP];
    for (int begin = 0; begin < count; begin += STRIP) {
        const int n = std::min(STRIP, count - begin);
        if (!isCoveredAnywhere(coverage + begin, n)) {
            std::fill_n(words + begin, n, 0u);
            continue;
        }
        mix(strip, first + begin, n, y);
        ZVEX_ON_TARGET(takeCovered(words + begin, strip, coverage + begin, n));
    }
}

// At most a strip of columns of the tile.
void PatternTile::mix(uint32_t* words, int first, int count, int y) const {
    const Sample row = sampleAt(y, scale_, pattern_->height);
    const auto* taps = reinterpret_cast<const TargetBaseline::Tap*>(pattern_->pixels);
    const auto* upper = taps + size_t{row.first} * pattern_->width;
    const auto* lower = taps + size_t{row.second} * pattern_->width;
    ZVEX_ON_TARGET(mixTaps(words, upper, lower, row.weight, firsts_.get() + first, seconds_.get() + first,
                           weights_.get() + first, count));
    if (opacity_ >= 0 && opacity_ <= 1) {
        ZVEX_ON_TARGET(premultiplyTaps(words, count, opacity_));
    } else {
        premultiplyBeyond(words, count, opacity_);
    }
}

void PatternTile::takeFromTile(uint32_t* words, const uint8_t* coverage, int first, int count, int y) {
    const int row = y % rowPeriod_, at = keepsRows_ ? row : 0;
    uint32_t* tile = tile_.get() + static_cast<size_t>(at) * static_cast<size_t>(columns_);
    int& held = tileRows_[static_cast<size_t>(at)];
    if (held != row) {
        for (int x = 0; x < columns_; x += STRIP) mix(tile + x, x, std::min(STRIP, columns_ - x), y);
        held = row;
    }
    for (int begin = 0; begin < count;) {
        const int column = (first + begin) % columns_;
        const int n = std::min(count - begin, columns_ - column);
        ZVEX_ON_TARGET(takeCovered(words + begin, tile + column, coverage + begin, n));
        begin += n;
    }
}

}  // namespace Zvex
