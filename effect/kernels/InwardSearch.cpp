// SPDX-License-Identifier: Apache-2.0
//
// Inward: from the distances around the glyphs to the pixels below 0 within them. Every pixel p above 1 is a
// seed of the negative value, see SearchWindow.h: q's best candidate is the smallest |q - p| - value(p). On a
// slope nearly all but the ray across the edge is hidden, and there all are looked at, as their roundings
// decide.
//
// Seeds are taken a strip of STRIP pixels at a time, with the least of their advantages: a strip hides what
// each of its pixels hides, or less. More than what is visible may be looked at, as all are pixels of the
// window.

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

constexpr int STRIP = 16;

// Windows up to this reach are looked through whole.
constexpr int LAST_WHOLE_REACH = 8;

// A row of seeds: their values, and less than all numbers for what is no seed.
struct SeedRow {
    const float *above, *here, *below;  // with the rows next to it
    // Of each strip, the rows down to the next one with pixels below 0, of every row from firstRow to the
    // last one searched.
    const int16_t* gaps;
    const int16_t *up, *down;  // the least, either way, of all strips within the reach to the left and right
    int firstRow, strips;
};

#define ZVEX_KERNELS "effect/kernels/InwardKernels.inc"
#include "raster/ForEachTarget.h"

// The best candidates of each row's pixels, row by row.
class InwardRows {
public:
    // For the rows begin..end - 1. The roots have to outlive it. False when memory is short.
    bool make(const DistanceSearch& s, const WindowRoots& roots, int begin, int end) {
        search_ = s;
        reach_ = roots.reachY();
        y_ = begin - 1;
        first_ = next_ = std::max(0, begin - reach_);
        prepared_ = begin;
        last_ = end <= s.height - reach_ ? end - 1 + reach_ : s.height - 1;
        far_ = static_cast<int16_t>(reach_ + 1);
        return visibility_.make(roots, INFINITE) && makeGaps(begin, end, roots.reachX()) &&
               makeHigh(roots.reachX()) && rows_.make(roots, s.width, begin, end);
    }

    // Goes to the next row, the first one to begin with. False, and no further, if a value is infinite.
    bool next() {
        ++y_;
        const int64_t until = std::min<int64_t>(int64_t{y_} + reach_, last_);
        for (; next_ <= until; ++next_) {
            for (; prepared_ < rows_.view().end && prepared_ - next_ <= reach_; ++prepared_)
                std::fill_n(rows_.row(prepared_), search_.width, INFINITE);
            if ((next_ == first_ && !findHigh(next_)) || !findHigh(next_ + 1)) return false;
            writeRow(next_);
        }
        return true;
    }
    // Of that row.
    const float* candidates() const { return rows_.row(y_); }

private:
    // Over the rows before those to search, too, to look down from.
    bool makeGaps(int begin, int end, int reachX) {
        const int width = search_.width;
        strips_ = (width - 1) / STRIP + 1;
        reachStrips_ = (reachX - 1) / STRIP + 1;
        const int64_t padded = strips_ + 2 * int64_t{reachStrips_};
        if (!gaps_.allocate(int64_t{end} - first_, strips_) || !none_.allocate(strips_) ||
            !up_.allocate(padded) || !down_.allocate(padded) || !least_.allocate(2, strips_)) {
            return false;
        }
        std::fill_n(none_.get(), strips_, far_);
        std::fill_n(up_.get(), padded, far_);
        std::fill_n(down_.get(), padded, far_);
        const int16_t* below = none_.get();
        for (int y = end - 1; y >= first_; --y) {
            int16_t* row = gaps_.get() + ptrdiff_t{y - first_} * strips_;
            if (y >= begin) {
                ZVEX_ON_TARGET(findGaps(row, below, search_.plane + ptrdiff_t{y} * width, width, far_));
            } else {
                for (int i = 0; i < strips_; ++i)
                    row[i] = std::min<int16_t>(static_cast<int16_t>(below[i] + 1), far_);
            }
            below = row;
        }
        return true;
    }

    bool makeHigh(int reachX) {
        const int64_t padding = 2 * int64_t{reachX} + CandidateRows::PADDING;
        highSpan_ = search_.width + 2 * padding;
        if (!high_.allocate(3, highSpan_)) return false;
        std::fill_n(high_.get(), 3 * highSpan_, -INFINITE);
        highBegin_ = high_.get() + padding;
        return true;
    }
    float* high(int y) const { return highBegin_ + (y + 3) % 3 * highSpan_; }

    bool findHigh(int y) {
        if (y <= last_)
            return ZVEX_ON_TARGET(
                findHigh(high(y), search_.plane + ptrdiff_t{y} * search_.width, search_.width));
        std::fill_n(high(y), search_.width, -INFINITE);
        return true;
    }

    void writeRow(int y) {
        const int16_t* gaps =
            y < rows_.view().end ? gaps_.get() + ptrdiff_t{y - first_} * strips_ : none_.get();
        int16_t *up = up_.get() + reachStrips_, *down = down_.get() + reachStrips_, *leastUp = least_.get(),
                *leastDown = leastUp + strips_;
        std::copy_n(gaps, strips_, down);
        ZVEX_ON_TARGET(stepGaps(up, down, strips_, far_));
        ZVEX_ON_TARGET(leastGaps(leastUp, up, strips_, reachStrips_));
        ZVEX_ON_TARGET(leastGaps(leastDown, down, strips_, reachStrips_));
        const SeedRow row = {high(y - 1), high(y),   high(y + 1), gaps_.get(),
                             leastUp,     leastDown, first_,      strips_};
        ZVEX_ON_TARGET(writeStrips(rows_.view(), row, y, reach_, visibility_.view()));
    }

    DistanceSearch search_ = {};
    WindowVisibility visibility_;
    CandidateRows rows_;
    Buffer<float> high_;  // the rows of SeedRow
    float* highBegin_ = nullptr;
    int64_t highSpan_ = 0;
    Buffer<int16_t> gaps_, none_, up_, down_, least_;  // see SeedRow
    int16_t far_ = 0;                                  // more than the reach
    int strips_ = 0, reachStrips_ = 0;                 // of a row, of a window to one side
    int reach_ = 0;                                    // rows
    int y_ = 0, prepared_ = 0;                         // the row at hand, the next one to fill
    int first_ = 0, next_ = 0, last_ = 0;              // the rows of seeds
};

// The search of one row as it is defined, in place.
void searchRow(const DistanceSearch& s, const WindowRoots& roots, int y) {
    const int64_t reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t top = std::max<int64_t>(0, y - reachY),
                  bottom = std::min<int64_t>(s.height, y + reachY + 1);
    for (int x = 0; x < s.width; ++x) {
        float& value = s.plane[ptrdiff_t{y} * s.width + x];
        if (!(value < 0.0f)) continue;
        float best = value;  // the pixel itself is in the window, but counts only as what it was
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

// Rows from y on by looking through whole windows, until a row in which a pixel would rise above 1, which y
// is then, or `end`. False when memory is short.
bool searchWindows(const DistanceSearch& s, const WindowRoots& roots, int& y, int end) {
    Buffer<float> highRow, least;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t padded = int64_t{s.width} + 2 * WindowRoots::MOST_LANES;
    if (!highRow.allocate(padded + 2 * int64_t{reachX}) || !least.allocate(padded)) return false;
    std::fill_n(highRow.get(), padded + 2 * int64_t{reachX}, -INFINITE);
    float* high = highRow.get() + reachX;
    for (; y < end; ++y) {
        float* values = s.plane + ptrdiff_t{y} * s.width;
        if (std::none_of(values, values + s.width, [](float value) { return value < 0.0f; })) continue;
        std::fill_n(least.get(), padded, INFINITE);
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

// The order of the search counts only once a pixel rises above 1. Until one would, a row's pixels are found
// side by side; from such a row on all is done one pixel after the other.
bool searchInward(const DistanceSearch& s) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    WindowRoots roots;
    if (!roots.make(s.width, s.height, s.radius)) return false;
    int y = begin;
    const bool narrow = std::max(roots.reachX(), roots.reachY()) <= LAST_WHOLE_REACH;
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
