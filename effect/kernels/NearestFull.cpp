// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/NearestFull.h"

#include <algorithm>
#include <cstddef>

#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr int BLOCK = 64;  // pixels of a row that are skipped together

#define ZVEX_KERNELS "effect/kernels/NearestFullKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

template <typename Value>
bool NearestFull::make(const Value* plane, int width, int first, int last, int reachX, int reachY, int most) {
    width_ = width;
    reachX_ = reachX;
    none_ = reachY + 1;
    isNarrow_ = std::max(reachX, reachY) <= NARROWEST;
    const int64_t line = int64_t{width} + 2 * int64_t{reachX} + 4 * BLOCK;
    if (!(isNarrow_ ? narrowLine_.allocate(line) : wideLine_.allocate(line)) ||
        !steps_.allocate(int64_t{last} - first + 1, width) || !current_.allocate(width)) {
        return false;
    }
    if (isNarrow_) std::fill_n(narrowLine_.get(), line, NARROW_FAR);
    if (!isNarrow_) std::fill_n(wideLine_.get(), line, FAR);
    std::fill_n(current_.get(), width, static_cast<int16_t>(most));
    const int16_t* below = current_.get();
    for (int y = last; y >= first; --y) {
        int16_t* row = steps_.get() + ptrdiff_t{y - first} * width;
        ZVEX_ON_TARGET(stepUp(row, below, plane + ptrdiff_t{y} * width, width, most));
        below = row;
    }
    next_ = steps_.get();
    return true;
}

template bool NearestFull::make(const uint8_t*, int, int, int, int, int, int);
template bool NearestFull::make(const float*, int, int, int, int, int, int);

bool NearestFull::next() {
    const int16_t* up = next_;
    next_ += width_;
    int16_t* steps = current_.get();
    if (isNarrow_) return ZVEX_ON_TARGET(stepDown(narrow(), steps, up, width_, none_, NARROW_FAR));
    return ZVEX_ON_TARGET(stepDown(wide(), steps, up, width_, none_, FAR));
}

void NearestFull::distances(float* row, const float* roots, int last, float far) const {
    if (isNarrow_) {
        ZVEX_ON_TARGET(nearestInRow(row, narrow(), width_, reachX_, NARROW_FAR, roots, last, far));
    } else {
        ZVEX_ON_TARGET(nearestInRow(row, wide(), width_, reachX_, FAR, roots, last, far));
    }
}

int16_t* NearestFull::narrow() const {
    return narrowLine_.get() + reachX_ + BLOCK;
}

int32_t* NearestFull::wide() const {
    return wideLine_.get() + reachX_ + BLOCK;
}

}  // namespace Zvex
