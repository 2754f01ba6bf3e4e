// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_
#define ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_

#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// What the outward and the inward search share. Each pixel q looks for its best candidate: the smallest of
//
//     value(p) + |q - p|
//
// over the seeds p in its window, a square around q. Both searches go the other way round: each seed writes
// its candidates for all the pixels around it that it may be best for. Those are few, as its neighbours hide
// most of them:
//
//     . . . . . . . .        p: a seed       n: its left neighbour, a lower seed
//     # # # # . . . .
//     # # # # # . . .        A pixel q is hidden from p (#) if n is sure to be better for it:
//     # # n p . . . .            value(n) + |q - n| < value(p) + |q - p|,  in other words
//     # # # # # . . .            value(p) - value(n) > |q - n| - |q - p|
//     # # # # . . . .            n's advantage         the detour by n
//     . . . . . . . .
//
// The detour depends on nothing but where q lies from p, and from row to row it changes one way. So tables,
// made once for a window, tell for each advantage and each row which dx are still visible. Advantages are
// rounded down to steps and detours are compared with a margin, so that no rounding of a candidate counts:
// whatever is hidden has a better candidate, and among the others the smallest is found by comparing. A
// neighbour that is hidden itself does no harm: the one that hides it is better still, and so on to an end.
// Where n itself lies outside q's window it hides nothing.
//
// On a slope of distances the advantages of the four neighbours leave a narrow sector: the ray across the
// edge. Along that ray all candidates are equal but for their roundings, which decide.

constexpr float kInfinite = std::numeric_limits<float>::infinity();

// The advantages of a seed's four neighbours, in 1/kAdvantageSteps, clamped; -kAdvantageSteps for a neighbour
// that is no seed.
struct Advantages {
    int8_t left, right, above, below;
};
constexpr int kAdvantageSteps = 64, kAdvantages = 2 * kAdvantageSteps;

// What is visible of a row some rows away, by each advantage plus kAdvantageSteps of one neighbour.
struct VisibleRange {
    int16_t side[kAdvantages];     // past the one on a side: the greatest dx to that side; may be below 0
    int16_t behind[kAdvantages];   // with one behind the seed: the greatest |dx|; -1 is none
    int16_t between[kAdvantages];  // with one on the way: the greatest |dx| that is hidden
};

// For how many rows anything is visible with two neighbours, by coarser advantages.
constexpr int kCoarse = 4, kCoarseAdvantages = kAdvantages / kCoarse;
using VisibleRows = int16_t[kCoarseAdvantages][kCoarseAdvantages];

// A window for the kernels: rows 0 to the reach.
struct WindowView {
    const float* roots;  // of dx = 0 in row 0
    int64_t span;        // floats, from row to row
    const VisibleRange* ranges;
    VisibleRows sides, sideAndBehind, betweenAndSide, betweenAndBehind;
};

// The best candidates of some rows for the kernels, in a ring: row y is number y % count.
struct CandidateView {
    float* lines;  // the first pixel of the first one
    int64_t span;  // floats, from line to line
    int count;
    int begin, end;  // the rows that are wanted
};

// The distances within a window: row(dy)[dx] is integerRoot(dx^2 + dy^2), for dx and dy of either sign. A
// window larger than the plane is cut to it.
class WindowRoots {
public:
    bool make(int width, int height, int radius);

    const float* row(int64_t dy) const { return rowOf(dy < 0 ? -dy : dy); }
    int reachX() const { return mReachX; }
    int reachY() const { return mReachY; }
    // The floats of a row from dx = -reachX on, with a vector's more, which are infinite.
    int64_t span() const { return 2 * int64_t{mReachX} + 1 + kMostLanes; }

    static constexpr int kMostLanes = 16;

private:
    float* rowOf(int64_t dy) const { return mRoots.get() + dy * span() + mReachX; }

    Buffer<float> mRoots;
    int mReachX = 0, mReachY = 0;
};

// The tables of what is visible within a window.
class WindowVisibility {
public:
    // Candidates further away than `limit` are not wanted. The roots have to outlive it.
    bool make(const WindowRoots& roots, float limit);
    const WindowView& view() const { return mView; }

private:
    void makeRow(int dy, const WindowRoots& roots, float limit);
    template <typename IsVisible>
    void countRows(VisibleRows& rows, int reach, IsVisible isVisible);

    Buffer<VisibleRange> mRanges;
    WindowView mView = {};
};

// The best candidates of as many rows as a window sees at once. Seeds may write a window's reach, and a
// vector, beyond either end of a row.
class CandidateRows {
public:
    static constexpr int kPadding = 64;  // floats beyond the reach

    // For the rows begin..end - 1; without candidates.
    bool make(const WindowRoots& roots, int width, int begin, int end);

    float* row(int y) const { return mView.lines + y % mView.count * mView.span; }
    const CandidateView& view() const { return mView; }

private:
    Buffer<float> mLines;
    CandidateView mView = {};
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SEARCHWINDOW_H_
