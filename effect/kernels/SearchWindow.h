// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_
#define ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_

#include <cstdint>
#include <limits>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// Shared by the outward and the inward search. Each pixel q looks for its best candidate: the smallest of
//
//     value(p) + |q - p|
//
// over the seeds p in its window, a square around q. Both searches work the other way round: each seed writes
// its candidates to all the pixels around it for which it may be best. These are few, because its neighbours
// hide most of them:
//
//     . . . . . . . .        p: a seed       n: its left neighbour, a lower seed
//     # # # # . . . .
//     # # # # # . . .        A pixel q is hidden from p (#) if n is sure to be better for it:
//     # # n p . . . .            value(n) + |q - n| < value(p) + |q - p|,  in other words
//     # # # # # . . .            value(p) - value(n) > |q - n| - |q - p|
//     # # # # . . . .            n's advantage         the detour by n
//     . . . . . . . .
//
// The detour depends only on the offset from p to q, and from row to row it changes in one direction. So
// tables, made once for a window, give the dx that are still visible for each advantage and each row.
// Advantages are rounded down to steps, and detours are compared with a margin, so that rounding never hides
// a best candidate: every hidden pixel has a better candidate, and the smallest of the others is found by
// comparing. A hidden neighbour may hide as well: the seed that hides it is better still. If n lies outside
// q's window, it hides nothing.
//
// On a slope of distances the advantages of the four neighbours leave a narrow sector visible: the ray across
// the edge. Along that ray all candidates are equal except for rounding, and the rounding decides.

constexpr float kInfinite = std::numeric_limits<float>::infinity();

// By how much each of a seed's four neighbours is lower, in 1/kAdvantageSteps, clamped; -kAdvantageSteps for
// a neighbour that is no seed.
struct Advantages {
    int8_t left, right, above, below;
};
constexpr int kAdvantageSteps = 64, kAdvantages = 2 * kAdvantageSteps;

// The visible parts of the rows 0 to the reach, by the advantage of one neighbour plus kAdvantageSteps: all
// rows of an advantage, then those of the next.
struct VisibleRanges {
    int16_t* side;     // neighbour on a side: the greatest visible dx to that side; may be below 0
    int16_t* behind;   // neighbour behind the seed: the greatest visible |dx|; -1 is none
    int16_t* between;  // neighbour on the way: the greatest hidden |dx|
    int rows;

    int at(int advantage, int dy) const { return advantage * rows + dy; }
};

// In how many rows anything is visible with two neighbours, by coarser advantages.
constexpr int kCoarse = 4, kCoarseAdvantages = kAdvantages / kCoarse;
using VisibleRows = int16_t[kCoarseAdvantages][kCoarseAdvantages];

// A window, as the kernels use it: rows 0 to the reach.
struct WindowView {
    const float* roots;  // at dx = 0 in row 0
    int64_t span;        // floats from row to row
    VisibleRanges ranges;
    VisibleRows sides, sideAndBehind, betweenAndSide, betweenAndBehind;
};

// The best candidates of some rows, as the kernels use them, in a ring: row y is line y % count.
struct CandidateView {
    float* lines;  // first pixel of the first line
    int64_t span;  // floats from line to line
    int count;
    int begin, end;  // the rows that are needed
};

// The distances within a window: row(dy)[dx] is integerRoot(dx^2 + dy^2), for dx and dy of either sign. A
// window larger than the plane is cut to the plane.
class WindowRoots {
public:
    bool make(int width, int height, int radius);

    const float* row(int64_t dy) const { return rowOf(dy < 0 ? -dy : dy); }
    int reachX() const { return mReachX; }
    int reachY() const { return mReachY; }
    // The floats of a row, which begins at dx = -reachX. They include a vector's length of infinities at the
    // end.
    int64_t span() const { return 2 * int64_t{mReachX} + 1 + kMostLanes; }

    static constexpr int kMostLanes = 16;

private:
    float* rowOf(int64_t dy) const { return mRoots.get() + dy * span() + mReachX; }

    Buffer<float> mRoots;
    int mReachX = 0, mReachY = 0;
};

// Tables of what is visible within a window.
class WindowVisibility {
public:
    // Candidates further away than `limit` are not needed. The roots must outlive it.
    bool make(const WindowRoots& roots, float limit);
    const WindowView& view() const { return mView; }

private:
    void makeRow(int dy, const WindowRoots& roots, float limit);
    template <typename IsVisible>
    void countRows(VisibleRows& rows, const int16_t* one, const int16_t* other, IsVisible isVisible);

    Buffer<int16_t> mRanges;
    WindowView mView = {};
};

// The best candidates of as many rows as a window covers. Seeds may write up to a window's reach plus a
// vector beyond either end of a row.
class CandidateRows {
public:
    static constexpr int kPadding = 64;  // floats beyond the reach

    // Prepares the rows begin..end - 1, without candidates.
    bool make(const WindowRoots& roots, int width, int begin, int end);

    float* row(int y) const { return mView.lines + y % mView.count * mView.span; }
    const CandidateView& view() const { return mView; }

private:
    Buffer<float> mLines;
    CandidateView mView = {};
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_
