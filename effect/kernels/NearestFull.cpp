// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/NearestFull.h"

#include <algorithm>
#include <cstddef>

#include "raster/CpuTarget.h"

namespace Zvex {

namespace {

constexpr int kBlock = 64;  // pixels of a row that are skipped together

#define ZVEX_KERNELS "effect/kernels/NearestFullKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

template <typename Value>
bool NearestFull::make(const Value* plane, int width, int first, int last, int reachX, int reachY, int most) {
    mWidth = width;
    mReachX = reachX;
    mNone = reachY + 1;
    const bool narrows = std::max(reachX, reachY) <= kNarrowest;
    const int64_t line = int64_t{width} + 2 * int64_t{reachX} + 4 * kBlock;
    if (!(narrows ? mNarrowLine.allocate(line) : mWideLine.allocate(line)) ||
        !mSteps.allocate(int64_t{last} - first + 1, width) || !mCurrent.allocate(width)) {
        return false;
    }
    if (narrows) std::fill_n(mNarrowLine.get(), line, kNarrowFar);
    if (!narrows) std::fill_n(mWideLine.get(), line, kFar);
    std::fill_n(mCurrent.get(), width, static_cast<int16_t>(most));
    const int16_t* below = mCurrent.get();
    for (int y = last; y >= first; --y) {
        int16_t* row = mSteps.get() + ptrdiff_t{y - first} * width;
        ZVEX_ON_TARGET(stepUp(row, below, plane + ptrdiff_t{y} * width, width, most));
        below = row;
    }
    mNext = mSteps.get();
    return true;
}

template bool NearestFull::make(const uint8_t*, int, int, int, int, int, int);
template bool NearestFull::make(const float*, int, int, int, int, int, int);

bool NearestFull::next() {
    const int16_t* up = mNext;
    mNext += mWidth;
    int16_t* steps = mCurrent.get();
    if (isNarrow()) return ZVEX_ON_TARGET(stepDown(narrow(), steps, up, mWidth, mNone, kNarrowFar));
    return ZVEX_ON_TARGET(stepDown(wide(), steps, up, mWidth, mNone, kFar));
}

void NearestFull::distances(float* row, const float* roots, int last, float far) const {
    if (isNarrow()) {
        ZVEX_ON_TARGET(nearestInRow(row, narrow(), mWidth, mReachX, kNarrowFar, roots, last, far));
    } else {
        ZVEX_ON_TARGET(nearestInRow(row, wide(), mWidth, mReachX, kFar, roots, last, far));
    }
}

int16_t* NearestFull::narrow() const {
    return mNarrowLine.get() + mReachX + kBlock;
}

int32_t* NearestFull::wide() const {
    return mWideLine.get() + mReachX + kBlock;
}

}  // namespace Zvex
