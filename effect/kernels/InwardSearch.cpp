// SPDX-License-Identifier: Apache-2.0
//
// Inward: from the distances around the glyphs to the pixels below 0 within them. Every pixel p above 1 is a
// seed of value -value(p), see SearchWindow.h; the best candidate of q is the smallest |q - p| - value(p). On
// a slope nearly everything except the ray across the edge is hidden. On that ray all candidates are equal
// except for rounding, and the rounding decides, so a ray cannot be cut short. Two things can:
//
// - Straight edges along the axes. If p's neighbours on both sides along one axis are at least as high as p,
//   every q beside p's own line is nearer to one of them, and no worse off with it: roots and differences
//   only grow with the distance, however they are rounded. If the two neighbours along the other axis are at
//   least p's value - 1, they are exactly 1 nearer to a q on that line and at most 1 lower: no worse either,
//   since whole numbers have exact roots. Such a p is no seed (keepSeeds). The neighbour that replaces it for
//   q may be none either, but each replacement is nearer to q, so the last one is a seed.
// - Thin glyphs. A q at a distance d from its nearest seed, which is above 1, has a candidate below d - 1. So
//   no q needs a p further away than the largest d - 1 plus value(p).
//
// Seeds are taken in strips of kStrip pixels, with the smallest advantages of the strip: then a strip hides
// no more than each of its pixels does. It may examine more than is visible, which does no harm: all are
// pixels of the window.

#include <algorithm>
#include <cstddef>

#include "effect/kernels/Buffer.h"
#include "effect/kernels/DistanceSearch.h"
#include "effect/kernels/NearestFull.h"
#include "effect/kernels/SearchWindow.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr int kStrip = 16;

// Windows up to this reach are searched whole.
constexpr int kLastWholeReach = 8;

// Up to this one, looking for needless seeds costs more than it saves.
constexpr int kLastPlainReach = 24;

// A row of pixels above 1, and minus infinity for all others.
struct SeedRow {
    const float *above, *here, *below;  // this row and its neighbours
    const float* seeds;                 // this row's seeds
    float deepest;                      // no candidate above this is needed
    // For each strip, the number of rows down to the next one with pixels below 0. There is such a line for
    // every row from firstRow to the last one searched.
    const int16_t* gaps;
    const int16_t *up, *down;  // the fewest rows up and down, of all strips within the reach on either side
    int firstRow, strips;
};

#define ZVEX_KERNELS "effect/kernels/InwardKernels.inc"
#include "raster/ForEachTarget.h"

// The best candidates of all pixels, row by row.
class InwardRows {
public:
    // For the rows begin..end - 1. The roots must outlive it. False if memory is short.
    bool make(const DistanceSearch& s, const WindowRoots& roots, int begin, int end) {
        mSearch = s;
        mReach = roots.reachY();
        mY = begin - 1;
        mFirst = mNext = std::max(0, begin - mReach);
        mPrepared = begin;
        mLast = end <= s.height - mReach ? end - 1 + mReach : s.height - 1;
        mFar = static_cast<int16_t>(mReach + 1);
        mNarrows = std::max(mReach, roots.reachX()) > kLastPlainReach;
        return (!mNarrows || findDeepest(roots, begin, end)) && mVisibility.make(roots, kInfinite) &&
               makeGaps(begin, end, roots.reachX()) && makeHigh(roots.reachX()) &&
               mRows.make(roots, s.width, begin, end);
    }

    // Moves to the next row; at the first call, to the first one. Stops and returns false if a value is
    // infinite.
    bool next() {
        ++mY;
        const int64_t until = std::min<int64_t>(int64_t{mY} + mReach, mLast);
        for (; mNext <= until; ++mNext) {
            for (; mPrepared < mRows.view().end && mPrepared - mNext <= mReach; ++mPrepared)
                std::fill_n(mRows.row(mPrepared), mSearch.width, kInfinite);
            if ((mNext == mFirst && !findHigh(mNext)) || !findHigh(mNext + 1)) return false;
            writeRow(mNext);
        }
        return true;
    }
    // The candidates of that row.
    const float* candidates() const { return mRows.row(mY); }

private:
    // Also covers the rows before the searched ones: gaps are counted downwards from there.
    bool makeGaps(int begin, int end, int reachX) {
        const int width = mSearch.width;
        mStrips = (width - 1) / kStrip + 1;
        mReachStrips = (reachX - 1) / kStrip + 1;
        const int64_t padded = mStrips + 2 * int64_t{mReachStrips};
        if (!mGaps.allocate(int64_t{end} - mFirst, mStrips) || !mNone.allocate(mStrips) ||
            !mUp.allocate(padded) || !mDown.allocate(padded) || !mLeast.allocate(2, mStrips)) {
            return false;
        }
        std::fill_n(mNone.get(), mStrips, mFar);
        std::fill_n(mUp.get(), padded, mFar);
        std::fill_n(mDown.get(), padded, mFar);
        const int16_t* below = mNone.get();
        for (int y = end - 1; y >= mFirst; --y) {
            int16_t* row = mGaps.get() + ptrdiff_t{y - mFirst} * mStrips;
            if (y >= begin) {
                ZVEX_ON_TARGET(findGaps(row, below, mSearch.plane + ptrdiff_t{y} * width, width, mFar));
            } else {
                for (int i = 0; i < mStrips; ++i)
                    row[i] = std::min<int16_t>(static_cast<int16_t>(below[i] + 1), mFar);
            }
            below = row;
        }
        return true;
    }

    // From the nearest pixels above 1, as NearestFull finds them.
    bool findDeepest(const WindowRoots& roots, int begin, int end) {
        const int width = mSearch.width, reachX = roots.reachX(), reachY = roots.reachY();
        constexpr int kBeyond = 63;  // pixels that NearestFull writes behind a row
        NearestFull nearest;
        Buffer<uint8_t> levels;
        Buffer<float> distances;
        if (!levels.allocate(int64_t{mLast} - mFirst + 1, width) ||
            !distances.allocate(int64_t{width} + kBeyond)) {
            return false;
        }
        const float* plane = mSearch.plane + ptrdiff_t{mFirst} * width;
        ZVEX_ON_TARGET(markHigh(levels.get(), plane, (ptrdiff_t{mLast} - mFirst + 1) * width));
        if (!nearest.make(levels.get(), width, 0, mLast - mFirst, reachX, reachY, reachY + 1)) return false;
        float furthest = 1.0f;
        for (int y = mFirst; y < end; ++y) {
            const float* values = mSearch.plane + ptrdiff_t{y} * width;
            if (!nearest.next() || y < begin || !ZVEX_ON_TARGET(isAnyBelow(values, width))) continue;
            nearest.distances(distances.get(), nullptr, reachX * reachX + reachY * reachY, 0.0f);
            furthest = ZVEX_ON_TARGET(furthestBelow(values, distances.get(), width, furthest));
        }
        // More than rounding can change the sums.
        const float margin = 1e-2f + 1e-6f * static_cast<float>(std::max(reachX, reachY));
        mDeepest = furthest - 1.0f + margin;
        return true;
    }

    bool makeHigh(int reachX) {
        const int64_t padding = 2 * int64_t{reachX} + CandidateRows::kPadding;
        mHighSpan = mSearch.width + 2 * padding;
        if (!mHigh.allocate(4, mHighSpan)) return false;
        std::fill_n(mHigh.get(), 4 * mHighSpan, -kInfinite);
        mHighBegin = mHigh.get() + padding;
        mSeeds = mHighBegin + 3 * mHighSpan;
        return true;
    }
    float* high(int y) const { return mHighBegin + (y + 3) % 3 * mHighSpan; }

    bool findHigh(int y) {
        if (y <= mLast)
            return ZVEX_ON_TARGET(
                findHigh(high(y), mSearch.plane + ptrdiff_t{y} * mSearch.width, mSearch.width));
        std::fill_n(high(y), mSearch.width, -kInfinite);
        return true;
    }

    void writeRow(int y) {
        const int16_t* gaps =
            y < mRows.view().end ? mGaps.get() + ptrdiff_t{y - mFirst} * mStrips : mNone.get();
        int16_t *up = mUp.get() + mReachStrips, *down = mDown.get() + mReachStrips, *leastUp = mLeast.get(),
                *leastDown = leastUp + mStrips;
        std::copy_n(gaps, mStrips, down);
        ZVEX_ON_TARGET(stepGaps(up, down, mStrips, mFar));
        ZVEX_ON_TARGET(leastGaps(leastUp, up, mStrips, mReachStrips));
        ZVEX_ON_TARGET(leastGaps(leastDown, down, mStrips, mReachStrips));
        if (mNarrows) ZVEX_ON_TARGET(keepSeeds(mSeeds, high(y - 1), high(y), high(y + 1), mSearch.width));
        const float* seeds = mNarrows ? mSeeds : high(y);
        const SeedRow row = {high(y - 1), high(y), high(y + 1), seeds,  mDeepest,
                             mGaps.get(), leastUp, leastDown,   mFirst, mStrips};
        ZVEX_ON_TARGET(writeStrips(mRows.view(), row, y, mReach, mVisibility.view()));
    }

    DistanceSearch mSearch = {};
    WindowVisibility mVisibility;
    CandidateRows mRows;
    Buffer<float> mHigh;  // the rows of SeedRow
    float *mHighBegin = nullptr, *mSeeds = nullptr;
    bool mNarrows = false;       // looks for needless seeds and for the deepest pixel
    float mDeepest = kInfinite;  // see SeedRow
    int64_t mHighSpan = 0;
    Buffer<int16_t> mGaps, mNone, mUp, mDown, mLeast;  // see SeedRow
    int16_t mFar = 0;                                  // one more than the reach
    int mStrips = 0, mReachStrips = 0;                 // strips of a row; strips of a window, to one side
    int mReach = 0;                                    // rows
    int mY = 0, mPrepared = 0;                         // the current row, and the next one to fill
    int mFirst = 0, mNext = 0, mLast = 0;              // the rows of seeds
};

// The search of one row exactly as it is defined, in place.
void searchRow(const DistanceSearch& s, const WindowRoots& roots, int y) {
    const int64_t reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t top = std::max<int64_t>(0, y - reachY),
                  bottom = std::min<int64_t>(s.height, y + reachY + 1);
    for (int x = 0; x < s.width; ++x) {
        float& value = s.plane[ptrdiff_t{y} * s.width + x];
        if (!(value < 0.0f)) continue;
        float best = value;  // the pixel lies in its own window but counts only with its old value
        const int64_t left = std::max<int64_t>(0, x - reachX),
                      right = std::min<int64_t>(s.width, x + reachX + 1);
        for (int64_t otherY = top; otherY < bottom; ++otherY) {
            const float* row = s.plane + otherY * s.width;
            const float* distances = roots.row(otherY - y);
            for (int64_t otherX = left; otherX < right; ++otherX) {
                if (row[otherX] > 1.0f) best = std::max(best, -(distances[otherX - x] - row[otherX]));
            }
        }
        value = best;
    }
}

// Searches whole windows, from row y on. Stops at `end`, or at a row in which a pixel would rise above 1, and
// sets y to where it stopped. False if memory is short.
bool searchWindows(const DistanceSearch& s, const WindowRoots& roots, int& y, int end) {
    Buffer<float> highRow, least;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t padded = int64_t{s.width} + 2 * WindowRoots::kMostLanes;
    if (!highRow.allocate(padded + 2 * int64_t{reachX}) || !least.allocate(padded)) return false;
    std::fill_n(highRow.get(), padded + 2 * int64_t{reachX}, -kInfinite);
    float* high = highRow.get() + reachX;
    for (; y < end; ++y) {
        float* values = s.plane + ptrdiff_t{y} * s.width;
        if (std::none_of(values, values + s.width, [](float value) { return value < 0.0f; })) continue;
        std::fill_n(least.get(), padded, kInfinite);
        for (int dy = 0; dy <= reachY; ++dy) {
            const bool hasAbove = y >= dy, hasBelow = y < s.height - dy;
            if (!hasAbove && !hasBelow) break;
            const float* above = values + ptrdiff_t{hasAbove ? -dy : dy} * s.width;
            const float* below = values + ptrdiff_t{hasBelow ? dy : -dy} * s.width;
            if (!ZVEX_ON_TARGET(raiseRow(high, above, below, s.width))) continue;
            ZVEX_ON_TARGET(sinkRow(least.get(), values, high, roots.row(dy), s.width, reachX));
        }
        if (!ZVEX_ON_TARGET(keepInward(values, least.get(), s.width))) break;
    }
    return true;
}

}  // namespace

// The order of the search matters only once a pixel rises above 1. Until then, a row's pixels are computed
// side by side. From the first such row on, they are computed one after another.
bool searchInward(const DistanceSearch& s) {
    int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    const auto changes = [&](int y) {
        return ZVEX_ON_TARGET(isAnyBelow(s.plane + ptrdiff_t{y} * s.width, s.width));
    };
    while (begin < end && !changes(begin)) ++begin;
    while (begin < end && !changes(end - 1)) --end;
    if (begin >= end) return true;
    WindowRoots roots;
    if (!roots.make(s.width, s.height, s.radius)) return false;
    int y = begin;
    const bool narrow = std::max(roots.reachX(), roots.reachY()) <= kLastWholeReach;
    if (narrow || !NearestFull::fits(roots.reachX(), roots.reachY())) {
        if (!searchWindows(s, roots, y, end)) return false;
    } else {
        InwardRows rows;
        if (!rows.make(s, roots, begin, end)) return false;
        while (y < end && rows.next() &&
               ZVEX_ON_TARGET(keepInward(s.plane + ptrdiff_t{y} * s.width, rows.candidates(), s.width)))
            ++y;
    }
    for (; y < end; ++y) searchRow(s, roots, y);
    return true;
}

}  // namespace Zvex
