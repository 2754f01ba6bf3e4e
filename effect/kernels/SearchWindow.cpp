// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/SearchWindow.h"

#include <algorithm>

#include "effect/kernels/SquareRoots.h"

namespace Zvex {

bool WindowRoots::make(int width, int height, int radius) {
    mReachX = std::min(radius, width - 1);
    mReachY = std::min(radius, height - 1);
    if (!mRoots.allocate(int64_t{mReachY} + 1, span())) return false;
    for (int64_t dy = 0; dy <= mReachY; ++dy) {
        float* middle = rowOf(dy);
        for (int64_t dx = 0; dx <= mReachX; ++dx) middle[dx] = middle[-dx] = integerRoot(dx * dx + dy * dy);
        std::fill(middle + mReachX + 1, middle - mReachX + span(), kInfinite);
    }
    return true;
}

bool WindowVisibility::make(const WindowRoots& roots, float limit) {
    const int reach = roots.reachY();
    const int64_t size = kAdvantages * (int64_t{reach} + 1);
    if (!mRanges.allocate(3, size)) return false;
    mView.ranges = {mRanges.get(), mRanges.get() + size, mRanges.get() + 2 * size, reach + 1};
    for (int dy = 0; dy <= reach; ++dy) makeRow(dy, roots, limit);
    mView.roots = roots.row(0);
    mView.span = roots.span();
    const VisibleRanges& r = mView.ranges;
    const auto meet = [](int left, int right) { return -left <= right; };
    const auto leaveGap = [](int hidden, int visible) { return hidden < visible; };
    countRows(mView.sides, r.side, r.side, meet);
    countRows(mView.sideAndBehind, r.side, r.behind, meet);
    countRows(mView.betweenAndSide, r.between, r.side, leaveGap);
    countRows(mView.betweenAndBehind, r.between, r.behind, leaveGap);
    return true;
}

template <typename IsVisible>
void WindowVisibility::countRows(VisibleRows& rows, const int16_t* one, const int16_t* other,
                                 IsVisible isVisible) {
    const int step = kCoarse * mView.ranges.rows;
    for (int i = 0; i < kCoarseAdvantages; ++i, one += step) {
        // A greater advantage leaves less visible.
        const int16_t* with = other;
        for (int j = 0, dy = mView.ranges.rows - 1; j < kCoarseAdvantages; ++j, with += step) {
            while (dy > 0 && !isVisible(one[dy], with[dy])) --dy;
            rows[i][j] = static_cast<int16_t>(dy);
        }
    }
}

void WindowVisibility::makeRow(int dy, const WindowRoots& roots, float limit) {
    const float* here = roots.row(dy);
    const float* nearer = dy > 0 ? roots.row(dy - 1) : nullptr;
    const float* further = dy < roots.reachY() ? roots.row(dy + 1) : nullptr;
    const int reach = roots.reachX();
    // More than rounding can change the sums of values and roots.
    const float margin = 1e-3f + 1e-6f * static_cast<float>(std::max(reach, roots.reachY()));
    int end = reach;
    while (end >= 0 && !(here[end] < limit)) --end;
    const VisibleRanges& ranges = mView.ranges;
    int before = 0, behind = end, beyond = reach, between = -1;
    for (int i = 0; i < kAdvantages; ++i) {
        const float advantage = static_cast<float>(i - kAdvantageSteps) / kAdvantageSteps,
                    detour = advantage - margin;
        if (advantage > 0) {
            // A lower neighbour on a side hides everything beyond it. It also hides pixels before it as long
            // as the detour to it costs less than its advantage. A neighbour behind the seed does only the
            // latter: it may lie outside the window of a pixel at the window's edge.
            while (before < reach && here[before + 1] - here[before] <= detour) ++before;
            while (behind >= 0 && further != nullptr && further[behind] - here[behind] <= detour) --behind;
        } else if (advantage < 0) {
            // A higher neighbour hides pixels beyond it as long as the step to it shortens the way by more
            // than it is higher.
            while (beyond > 0 && here[beyond] - here[beyond - 1] >= -detour) --beyond;
            while (nearer != nullptr && between < reach && here[between + 1] - nearer[between + 1] >= -detour)
                ++between;
        }
        const int at = ranges.at(i, dy);
        ranges.side[at] = static_cast<int16_t>(std::min(advantage < 0 ? beyond : -before, end));
        ranges.behind[at] = static_cast<int16_t>(behind);
        ranges.between[at] = static_cast<int16_t>(advantage < 0 ? between : reach);
    }
}

bool CandidateRows::make(const WindowRoots& roots, int width, int begin, int end) {
    const int64_t padding = int64_t{roots.reachX()} + kPadding;
    mView.span = width + 2 * padding;
    mView.count = static_cast<int>(std::min<int64_t>(2 * int64_t{roots.reachY()} + 1, int64_t{end} - begin));
    mView.begin = begin;
    mView.end = end;
    if (!mLines.allocate(mView.count, mView.span)) return false;
    std::fill_n(mLines.get(), mView.count * mView.span, kInfinite);
    mView.lines = mLines.get() + padding;
    return true;
}

}  // namespace Zvex
