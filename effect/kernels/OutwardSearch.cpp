// SPDX-License-Identifier: Apache-2.0
//
// Outward: from the full and the partly covered pixels to the ground around them. Full pixels, all of value
// 0, are found with integer squares. Partly covered pixels are seeds, see SearchWindow.h.

#include "effect/kernels/OutwardSearch.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "effect/kernels/DistanceSearch.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

#define ZVEX_KERNELS "effect/kernels/OutwardKernels.inc"
#include "raster/ForEachTarget.h"

bool isFraction(float value) {
    return value > 0.0f && value < 1.0f;
}

size_t countSeeds(const LevelPlane& plane, ptrdiff_t row, int width) {
    return static_cast<size_t>(ZVEX_ON_TARGET(countFractions(plane.pixels + row, width)));
}
size_t countSeeds(const ValuePlane& plane, ptrdiff_t row, int width) {
    return static_cast<size_t>(std::count_if(plane.pixels + row, plane.pixels + row + width, isFraction));
}

float valueAt(const LevelPlane& plane, ptrdiff_t at) {
    return plane.ramp[plane.pixels[at]];
}
float valueAt(const ValuePlane& plane, ptrdiff_t at) {
    return plane.pixels[at];
}

// The high bit of each byte that is not 0.
uint64_t filledBytes(uint64_t word) {
    constexpr uint64_t kLow = 0x7F7F7F7F7F7F7F7Fu;
    return (((word & kLow) + kLow) | word) & ~kLow;
}

// Calls visit(x) for each seed of a row.
template <typename Visit>
void forSeeds(const LevelPlane& plane, ptrdiff_t row, int width, Visit visit) {
    const uint8_t* levels = plane.pixels + row;
    int x = 0;
    for (; x < width - 7; x += 8) {
        uint64_t word;
        std::memcpy(&word, levels + x, sizeof word);
        for (uint64_t bits = filledBytes(word) & filledBytes(~word); bits != 0; bits &= bits - 1)
            visit(x + __builtin_ctzll(bits) / 8);
    }
    for (; x < width; ++x) {
        if (levels[x] != 0 && levels[x] != 255) visit(x);
    }
}
template <typename Visit>
void forSeeds(const ValuePlane& plane, ptrdiff_t row, int width, Visit visit) {
    for (int x = 0; x < width; ++x) {
        if (isFraction(plane.pixels[row + x])) visit(x);
    }
}

int8_t advantageOf(float neighbour, float value) {
    if (!(neighbour < 1.0f)) return -kAdvantageSteps;
    return static_cast<int8_t>(std::floor((value - std::max(0.0f, neighbour)) * kAdvantageSteps));
}

}  // namespace

template <typename Plane>
bool Seeds::collect(const Plane& plane, int width, int height, int first, int last) {
    mFirst = first;
    const int64_t rows = int64_t{last} - first + 1;
    if (!mBegins.allocate(rows + 1)) return false;
    size_t count = 0;
    for (int y = first; y <= last; ++y) {
        mBegins[static_cast<size_t>(y - first)] = count;
        count += countSeeds(plane, ptrdiff_t{y} * width, width);
    }
    mBegins[static_cast<size_t>(rows)] = count;
    if (!mSeeds.allocate(std::max<int64_t>(1, static_cast<int64_t>(count)))) return false;
    Seed* next = mSeeds.get();
    for (int y = first; y <= last; ++y) {
        if (begin(y) == end(y)) continue;
        const ptrdiff_t row = ptrdiff_t{y} * width;
        forSeeds(plane, row, width, [&](int x) {
            const ptrdiff_t at = row + x;
            const float value = valueAt(plane, at);
            const auto advantage = [&](bool isInside, ptrdiff_t neighbour) {
                return advantageOf(isInside ? valueAt(plane, neighbour) : kInfinite, value);
            };
            *next++ = {x,
                       value,
                       {advantage(x > 0, at - 1), advantage(x < width - 1, at + 1),
                        advantage(y > 0, at - width), advantage(y < height - 1, at + width)}};
        });
    }
    return true;
}

template <typename Plane>
bool OutwardRows::make(const Plane& plane, int width, int height, int radius, float limit, int begin,
                       int end) {
    mWidth = width;
    mHeight = height;
    mY = mPrepared = begin;
    if (!NearestFull::fits(std::min(radius, width - 1), std::min(radius, height - 1)) ||
        !mRoots.make(width, height, radius) || !mVisibility.make(mRoots, limit)) {
        return false;
    }
    const int reachX = mRoots.reachX(), reachY = mRoots.reachY();
    const int first = std::max(0, begin - reachY);
    const int last = end <= height - reachY ? end - 1 + reachY : height - 1;
    mLastSquare = reachX * reachX + reachY * reachY;
    if (!mDistances.allocate(int64_t{mLastSquare} + 1) ||
        !mFull.make(plane.pixels, width, first, last, reachX, reachY, reachY + 1) ||
        !mSeeds.collect(plane, width, height, first, last) || !mRows.make(mRoots, width, begin, end) ||
        !mFound.allocate(mRows.view().count)) {
        return false;
    }
    for (int dy = 0; dy <= reachY; ++dy) {
        for (int dx = 0; dx <= reachX; ++dx)
            mDistances[static_cast<size_t>(dx * dx + dy * dy)] = mRoots.row(dy)[dx];
    }
    for (int y = first; y < begin; ++y) mFull.next();
    mNextSeeded = first;
    mLastSeeded = last;
    return true;
}

template bool OutwardRows::make(const LevelPlane&, int, int, int, float, int, int);
template bool OutwardRows::make(const ValuePlane&, int, int, int, float, int, int);

const float* OutwardRows::next() {
    const int y = mY++, reach = mRoots.reachY(), end = mRows.view().end;
    const int until = y < mLastSeeded - reach ? y + reach : mLastSeeded;
    for (; mNextSeeded <= until; ++mNextSeeded) {
        while (mPrepared < end && mPrepared - mNextSeeded <= reach) prepare(mPrepared++);
        const Seed* seeds = mSeeds.begin(mNextSeeded);
        const ptrdiff_t count = mSeeds.end(mNextSeeded) - seeds;
        if (count == 0) continue;
        const int last = std::min(mNextSeeded + reach, end - 1);
        for (int row = std::max(mNextSeeded - reach, y); row <= last; ++row) isFound(row) = true;
        ZVEX_ON_TARGET(writeSeeds(mRows.view(), seeds, count, mNextSeeded, reach, mVisibility.view()));
    }
    return isFound(y) ? mRows.row(y) : nullptr;
}

void OutwardRows::next(float* row, const float* ramp, bool outward) {
    const int y = mY;
    const float* nearest = next();
    if (nearest == nullptr) return static_cast<void>(std::fill_n(row, mWidth, ramp[255]));
    if (outward) {
        ZVEX_ON_TARGET(boundRow(row, nearest, mWidth, ramp[255], ramp[0]));
    } else {
        ZVEX_ON_TARGET(limitRow(row, nearest, mWidth, ramp[255]));
    }
    for (const Seed* seed = mSeeds.begin(y); seed != mSeeds.end(y); ++seed) row[seed->x] = seed->value;
}

void OutwardRows::prepare(int y) {
    isFound(y) = mFull.next();
    if (isFound(y)) {
        mFull.distances(mRows.row(y), mDistances.get(), mLastSquare, kInfinite);
    } else {
        std::fill_n(mRows.row(y), mWidth, kInfinite);
    }
}

namespace {

// For each row, calls keep(values, nearest, width) to compute its new values from the best candidates. No
// seed and no full pixel changes during a search.
template <typename Keep>
bool searchRows(const DistanceSearch& s, Keep keep) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    OutwardRows rows;
    if (!rows.make(ValuePlane{s.plane}, s.width, s.height, s.radius, kInfinite, begin, end)) return false;
    for (int y = begin; y < end; ++y) {
        const float* nearest = rows.next();
        if (nearest != nullptr) keep(s.plane + ptrdiff_t{y} * s.width, nearest, s.width);
    }
    return true;
}

}  // namespace

bool searchNearest(const DistanceSearch& search) {
    return searchRows(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepNearest(values, nearest, width));
    });
}

bool searchOutward(const DistanceSearch& search) {
    return searchRows(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepOutward(values, nearest, width));
    });
}

}  // namespace Zvex
