// SPDX-License-Identifier: Apache-2.0
//
// The transform is the lower envelope of parabolas after Felzenszwalb and Huttenlocher (2012). The
// definitions are in tests/reference/DistanceReference.h.

#include "effect/kernels/Distance.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "effect/kernels/Buffer.h"
#include "effect/kernels/SquareRoots.h"
#include "foundation/OutOfMemory.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"

namespace Zvex {

namespace {

constexpr float ENDLESS = 1e20f;
constexpr float INFINITE = std::numeric_limits<float>::infinity();

float squareOf(int64_t offset) {
    return static_cast<float>(offset * offset);
}

// The parabolas of the envelope, from left to right.
struct Envelope {
    Buffer<int> vertices;  // their lowest points
    Buffer<float> bounds;  // parabola k is the lowest from bounds[k] to bounds[k + 1]

    bool allocate(int count) { return vertices.allocate(count) && bounds.allocate(int64_t{count} + 1); }
};

// Where the parabolas over p and q > p cross.
float crossing(const float* values, int p, int q) {
    return ((values[q] + squareOf(q)) - (values[p] + squareOf(p))) / static_cast<float>(2 * (int64_t{q} - p));
}

// From `first` on, as if there were nothing before it.
void transformLine(float* result, const float* values, int count, const Envelope& envelope, int first = 0) {
    int* vertices = envelope.vertices.get();
    float* bounds = envelope.bounds.get();
    int last = 0;
    vertices[0] = first;
    bounds[0] = -ENDLESS;
    bounds[1] = ENDLESS;
    for (int q = first + 1; q < count; ++q) {
        float begin = crossing(values, vertices[last], q);
        // The first one stays whatever the values are: none of an image's reach beyond -ENDLESS.
        while (last > 0 && begin <= bounds[last]) begin = crossing(values, vertices[--last], q);
        ++last;
        vertices[last] = q;
        bounds[last] = begin;
        bounds[last + 1] = ENDLESS;
    }
    last = 0;
    for (int q = first; q < count; ++q) {
        while (bounds[last + 1] < static_cast<float>(q)) ++last;
        const int vertex = vertices[last];
        result[q] = values[vertex] + squareOf(int64_t{q} - vertex);
    }
}

float cappedRoot(float square, int radius) {
    const float limit = static_cast<float>(radius);
    return square > limit * limit ? limit : std::sqrt(square);
}

// In a plane of 0 and ENDLESS the envelope is the true minimum as long as x^2 and the square of a height fit
// a float together: all sums and differences are exact, then, and so few that no crossing is rounded across a
// pixel (two crossings with whole pixels differ by 1 / (2 * 4096) at least, floats below 4096 by no more).
// How many columns that is.
constexpr int64_t EXACT = 1 << 24;

int exactColumns(int height) {
    const int64_t tallest = int64_t{height} * height;
    if (tallest >= EXACT) return 0;
    return static_cast<int>(std::sqrt(static_cast<double>(EXACT - tallest)));
}

// The squared distances of a row that is wider than that, of the steps in each of its columns, from the pixel
// that is returned on; before it they are the true minimum. That pixel is one of the nearest kind itself, a
// little before the sums are rounded: it stays in the envelope, and what is behind it is not seen from before
// it.
int transformEnd(float* line, const int16_t* steps, int width, int height, int exact,
                 const Envelope& envelope) {
    constexpr int ROUNDED_SLOPES = 16;  // so near the rounded parabolas might push it out
    int first = std::max(exact - ROUNDED_SLOPES, 0);
    while (first > 0 && steps[first] != 0) --first;
    float* values = line + width;
    for (int x = first; x < width; ++x) values[x] = steps[x] < height ? squareOf(steps[x]) : ENDLESS;
    transformLine(line, values, width, envelope, first);
    return first;
}

// Rows are looked at in blocks of so many pixels.
constexpr int BLOCK = 64;

// By how much the four neighbours of a pixel offer more than it, in parts of LEADS, cut off; -LEADS where
// they bring nothing.
//
// A neighbour hides the pixel from every other that is nearer to the neighbour or not further away from it
// than the lead makes up for. What is still seen of most pixels, on slopes, is a narrow sector.
struct Leads {
    int8_t left, right, above, below;
};
constexpr int LEADS = 64, LEAD_INDICES = 2 * LEADS;

// A pixel between 0 and 1 that others may be near to.
struct Seed {
    static constexpr bool PARTED = false;  // whether what is hidden in the middle is worth passing over
    int x;
    float value;
    Leads leads;
};

// What is seen of a seed in a row some rows away, by its leads.
struct Sight {
    int16_t last[LEAD_INDICES];  // the greatest dx past a neighbour on that side: at most the reach, maybe
                                 // below 0
    int16_t far[LEAD_INDICES];   // the greatest |dx| past the neighbour on the other side; -1 is none
    int16_t near[LEAD_INDICES];  // the greatest |dx| that is hidden by the neighbour on the way
};

// For how many rows anything is seen of a seed between two of its neighbours, at most, by coarser leads.
constexpr int EXTENT_STEP = 4, EXTENT_INDICES = LEAD_INDICES / EXTENT_STEP;
using Extents = int16_t[EXTENT_INDICES][EXTENT_INDICES];

// What a window's seeds bring: the distances, and what is seen of a seed. Rows 0 to the reach.
struct SeedWindow {
    const float* roots;  // of dx = 0 in row 0
    int64_t span;        // floats, from row to row
    const Sight* sights;
    // One of the sides, and the other or the one above or below; those above and below.
    Extents sides, sideAndFar, nearAndSide, nearAndFar;
};

// A row's pixels above 1, in pieces of PIECE that go together.
constexpr int PIECE = 16;
struct HighRow {
    const float *above, *high, *below;  // the others less than all numbers; with the rows next to it
    // Of each piece, the rows to the next one of pixels below 0: downwards, of every row from firstRow to
    // the last one searched; and the least, either way, of all pieces within the reach to the left and
    // the right.
    const int16_t* gaps;
    const int16_t *up, *down;
    int firstRow, pieces;
};
struct Piece {
    static constexpr bool PARTED = true;
    int x;
    const float* high;
    const int16_t* gaps;
    int firstRow, pieces;
};

// Rows of what pixels are offered, in a ring: row y is number y % count.
struct OfferRows {
    float* lines;  // the first pixel of the first one
    int64_t span;  // floats, from line to line
    int count;
    int begin, end;  // the rows that are wanted
};

#define ZVEX_KERNELS "effect/kernels/DistanceKernels.inc"
#include "raster/ForEachTarget.h"

constexpr int MOST_LANES = 16;

// The roots of a window, mirrored: row(dy)[dx] is the distance to the pixel (dx, dy) further, for dx of
// either sign. A window larger than the plane is cut to it.
class RootRows {
public:
    bool make(int width, int height, int radius) {
        reachX_ = std::min(radius, width - 1);
        reachY_ = std::min(radius, height - 1);
        if (!roots_.allocate(int64_t{reachY_} + 1, span())) return false;
        for (int64_t dy = 0; dy <= reachY_; ++dy) {
            float* middle = rowOf(dy);
            for (int64_t dx = 0; dx <= reachX_; ++dx)
                middle[dx] = middle[-dx] = integerRoot(dx * dx + dy * dy);
            std::fill(middle + reachX_ + 1, middle - reachX_ + span(), INFINITE);
        }
        return true;
    }

    const float* row(int64_t dy) const { return rowOf(dy < 0 ? -dy : dy); }
    int reachX() const { return reachX_; }
    int reachY() const { return reachY_; }
    // The floats of a row from dx = -reachX on, with a register's more; beyond the window they are infinite.
    int64_t span() const { return 2 * int64_t{reachX_} + 1 + MOST_LANES; }

private:
    float* rowOf(int64_t dy) const { return roots_.get() + dy * span() + reachX_; }

    Buffer<float> roots_;
    int reachX_ = 0, reachY_ = 0;
};

// Where the seeds of a window are seen, for each row of it.
class Sights {
public:
    // Distances from `limit` on are of no interest.
    bool make(const RootRows& roots, float limit) {
        if (!rows_.allocate(int64_t{roots.reachY()} + 1)) return false;
        for (int dy = 0; dy <= roots.reachY(); ++dy) makeRow(dy, roots, limit);
        return true;
    }
    void describe(SeedWindow& window, int reach) const {
        window.sights = rows_.get();
        const auto measure = [&](Extents& extents, const auto& isSeen) {
            // The more of a lead, the less is seen.
            for (int i = 0; i < EXTENT_INDICES; ++i) {
                for (int j = 0, dy = reach; j < EXTENT_INDICES; ++j) {
                    while (dy > 0 &&
                           !isSeen(rows_[static_cast<size_t>(dy)], i * EXTENT_STEP, j * EXTENT_STEP))
                        --dy;
                    extents[i][j] = static_cast<int16_t>(dy);
                }
            }
        };
        measure(window.sides, [](const Sight& s, int i, int j) { return -s.last[i] <= s.last[j]; });
        measure(window.sideAndFar, [](const Sight& s, int i, int j) { return -s.last[i] <= s.far[j]; });
        measure(window.nearAndSide, [](const Sight& s, int i, int j) { return s.near[i] < s.last[j]; });
        measure(window.nearAndFar, [](const Sight& s, int i, int j) { return s.near[i] < s.far[j]; });
    }

private:
    void makeRow(int dy, const RootRows& roots, float limit) {
        const float* here = roots.row(dy);
        const float* before = dy > 0 ? roots.row(dy - 1) : nullptr;
        const float* further = dy < roots.reachY() ? roots.row(dy + 1) : nullptr;
        const int reach = roots.reachX();
        // More than the sums of values and roots are rounded by.
        const float rounding = 1e-3f + 1e-6f * static_cast<float>(std::max(reach, roots.reachY()));
        int end = reach;
        while (end >= 0 && !(here[end] < limit)) --end;
        Sight& sight = rows_[static_cast<size_t>(dy)];
        int hidden = 0, far = end, seen = 0, covered = -1;
        for (int i = 0; i < LEAD_INDICES; ++i) {
            const float lead = static_cast<float>(i - LEADS) / LEADS, cost = lead - rounding;
            // Beyond a neighbour that is lower all is hidden. Before it, as far as the step to it costs less
            // than its lead; it may lie outside the window of a pixel at the window's edge.
            while (lead > 0 && hidden < reach && here[hidden + 1] - here[hidden] <= cost) ++hidden;
            while (lead > 0 && far >= 0 && further != nullptr && further[far] - here[far] <= cost) --far;
            sight.far[i] = static_cast<int16_t>(far);
            // Beyond one that is higher, as far as the step to it gains more.
            if (i == 0) seen = reach;
            while (lead < 0 && seen > 0 && here[seen] - here[seen - 1] >= -cost) --seen;
            sight.last[i] = static_cast<int16_t>(std::min(lead < 0 ? seen : -hidden, end));
            while (lead < 0 && before != nullptr && covered < reach &&
                   here[covered + 1] - before[covered + 1] >= -cost)
                ++covered;
            sight.near[i] = static_cast<int16_t>(lead < 0 ? covered : reach);
        }
    }

    Buffer<Sight> rows_;
};

// The nearest full pixels, those at or below 0, within a window, row by row: down and up the columns first,
// by steps, then along the rows, by squares. What a square stands for is looked up: distances are monotone,
// so the smallest wins.
class FullRows {
public:
    // The squares of wider windows do not fit.
    static bool fit(int64_t reachX, int64_t reachY) {
        return reachX * reachX + reachY * reachY < FAR && reachY < INT16_MAX - 1;
    }

    // For the rows `first` to `last` of a plane of which the full pixels are 0, or below. `most` steps, more
    // than reachY, are as many as matter.
    template <typename Value>
    bool make(const Value* plane, int width, int first, int last, int reachX, int reachY, int most) {
        width_ = width;
        reachX_ = reachX;
        none_ = reachY + 1;
        narrow_ = std::max(reachX, reachY) <= NARROWEST;
        const int64_t line = int64_t{width} + 2 * int64_t{reachX} + 4 * BLOCK;
        if (!(narrow_ ? narrowLine_.allocate(line) : wideLine_.allocate(line)) ||
            !steps_.allocate(int64_t{last} - first + 1, width) || !current_.allocate(width)) {
            return false;
        }
        if (narrow_) std::fill_n(narrowLine_.get(), line, NARROW_FAR);
        if (!narrow_) std::fill_n(wideLine_.get(), line, FAR);
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

    // Goes to the next row, the first one to begin with. Whether it has any within the reach.
    bool next() {
        const int16_t* up = next_;
        next_ += width_;
        int16_t* steps = current_.get();
        if (narrow_) return ZVEX_ON_TARGET(stepDown(narrow(), steps, up, width_, none_, NARROW_FAR));
        return ZVEX_ON_TARGET(stepDown(wide(), steps, up, width_, none_, FAR));
    }
    // Of that row, the steps to the nearest one in each column.
    const int16_t* steps() const { return current_.get(); }
    // Of that row, the distances: of squares up to `last` their roots, taken from a table unless that is
    // null, else `far`. Writes up to BLOCK - 1 floats beyond the row.
    void nearest(float* row, const float* roots, int last, float far) const {
        if (narrow_) {
            ZVEX_ON_TARGET(nearestInRow(row, narrow(), width_, reachX_, NARROW_FAR, roots, last, far));
        } else {
            ZVEX_ON_TARGET(nearestInRow(row, wide(), width_, reachX_, FAR, roots, last, far));
        }
    }

private:
    static constexpr int NARROWEST = 90;
    static constexpr int16_t NARROW_FAR = 16384;
    static constexpr int32_t FAR = 1 << 30;
    static_assert(
        2 * NARROWEST * NARROWEST < NARROW_FAR && NARROW_FAR + NARROWEST * NARROWEST <= INT16_MAX,
        "the squares of a window are below what stands for none, which fits with one of them added");

    int16_t* narrow() const { return narrowLine_.get() + reachX_ + BLOCK; }
    int32_t* wide() const { return wideLine_.get() + reachX_ + BLOCK; }

    Buffer<int16_t> steps_, current_;
    Buffer<int16_t> narrowLine_;  // the squares of a row; one of the two
    Buffer<int32_t> wideLine_;
    const int16_t* next_ = nullptr;
    int width_ = 0, reachX_ = 0, none_ = 0;
    bool narrow_ = false;
};

// Where the seeds are.
struct LevelPlane {
    const uint8_t* levels;  // 0 is full, 255 neither that nor a seed
    const float* ramp;      // their values
};
struct ValuePlane {
    const float* values;
};

// The pixels between 0 and 1, row by row.
class Seeds {
public:
    // Takes those of the rows `first` to `last`.
    template <typename Plane>
    bool collect(const Plane& plane, int width, int height, int first, int last) {
        first_ = first;
        const int64_t rows = int64_t{last} - first + 1;
        if (!begins_.allocate(rows + 1)) return false;
        begins_[0] = 0;
        for (int y = first; y <= last; ++y) {
            const size_t row = static_cast<size_t>(y - first);
            begins_[row + 1] = begins_[row] + count(plane, ptrdiff_t{y} * width, width);
        }
        const size_t all = begins_[static_cast<size_t>(rows)];
        if (!seeds_.allocate(std::max<int64_t>(1, static_cast<int64_t>(all)))) return false;
        for (int y = first; y <= last; ++y) {
            if (begin(y) != end(y))
                take(seeds_.get() + begins_[static_cast<size_t>(y - first)], plane, y, width, height);
        }
        return true;
    }

    const Seed* begin(int y) const { return seeds_.get() + begins_[static_cast<size_t>(y - first_)]; }
    const Seed* end(int y) const { return seeds_.get() + begins_[static_cast<size_t>(y - first_) + 1]; }

private:
    static size_t count(const LevelPlane& plane, ptrdiff_t row, int width) {
        return static_cast<size_t>(ZVEX_ON_TARGET(countFractions(plane.levels + row, width)));
    }
    static size_t count(const ValuePlane& plane, ptrdiff_t row, int width) {
        const float* values = plane.values + row;
        return static_cast<size_t>(std::count_if(values, values + width, isFraction));
    }

    static bool isFraction(float value) { return value > 0.0f && value < 1.0f; }

    // Calls visit(x) for each seed of a row.
    template <typename Visit>
    static void forSeeds(const LevelPlane& plane, ptrdiff_t row, int width, Visit visit) {
        const uint8_t* levels = plane.levels + row;
        int x = 0;
        for (; x < width - 7; x += 8) {
            uint64_t word;
            std::memcpy(&word, levels + x, sizeof word);
            // The high bits of the bytes that are neither 0 nor 255.
            for (uint64_t bits = filled(word) & filled(~word); bits != 0; bits &= bits - 1)
                visit(x + __builtin_ctzll(bits) / 8);
        }
        for (; x < width; ++x) {
            if (levels[x] != 0 && levels[x] != 255) visit(x);
        }
    }
    // The high bits of the bytes that are not 0.
    static uint64_t filled(uint64_t word) {
        constexpr uint64_t LOW = 0x7F7F7F7F7F7F7F7Fu;
        return (((word & LOW) + LOW) | word) & ~LOW;
    }
    template <typename Visit>
    static void forSeeds(const ValuePlane& plane, ptrdiff_t row, int width, Visit visit) {
        for (int x = 0; x < width; ++x) {
            if (isFraction(plane.values[row + x])) visit(x);
        }
    }

    static float valueAt(const LevelPlane& plane, ptrdiff_t at) { return plane.ramp[plane.levels[at]]; }
    static float valueAt(const ValuePlane& plane, ptrdiff_t at) { return plane.values[at]; }

    static int8_t lead(float value, float neighbour) {
        if (!(neighbour < 1.0f)) return -LEADS;
        return static_cast<int8_t>(std::floor((value - std::max(0.0f, neighbour)) * LEADS));
    }

    template <typename Plane>
    static void take(Seed* next, const Plane& plane, int y, int width, int height) {
        const ptrdiff_t row = ptrdiff_t{y} * width;
        forSeeds(plane, row, width, [&](int x) {
            const ptrdiff_t at = row + x;
            Seed seed;
            seed.x = x;
            seed.value = valueAt(plane, at);
            seed.leads.left = lead(seed.value, x > 0 ? valueAt(plane, at - 1) : INFINITE);
            seed.leads.right = lead(seed.value, x < width - 1 ? valueAt(plane, at + 1) : INFINITE);
            seed.leads.above = lead(seed.value, y > 0 ? valueAt(plane, at - width) : INFINITE);
            seed.leads.below = lead(seed.value, y < height - 1 ? valueAt(plane, at + width) : INFINITE);
            *next++ = seed;
        });
    }

    Buffer<Seed> seeds_;
    Buffer<size_t> begins_;
    int first_ = 0;
};

// What each pixel's window offers it, row by row: the smallest of the distances to full pixels and of the
// values of the seeds plus the distances to these.
class NearestRows {
public:
    // For the rows begin..end - 1. Distances from `limit` on are of no interest. False when memory is short.
    template <typename Plane, typename Value>
    bool make(const Plane& plane, const Value* pixels, int width, int height, int radius, float limit,
              int begin, int end) {
        width_ = width;
        height_ = height;
        y_ = begin;
        if (!roots_.make(width, height, radius) || !sights_.make(roots_, limit)) return false;
        const int reachX = roots_.reachX(), reachY = roots_.reachY(), first = above(begin),
                  last = below(end - 1);
        lastSquare_ = reachX * reachX + reachY * reachY;
        if (!distances_.allocate(int64_t{lastSquare_} + 1) ||
            !full_.make(pixels, width, first, last, reachX, reachY, reachY + 1) ||
            !seeds_.collect(plane, width, height, first, last)) {
            return false;
        }
        for (int dy = 0; dy <= reachY; ++dy) {
            for (int dx = 0; dx <= reachX; ++dx)
                distances_[static_cast<size_t>(dx * dx + dy * dy)] = roots_.row(dy)[dx];
        }
        for (int y = first; y < begin; ++y) full_.next();
        window_.roots = roots_.row(0);
        window_.span = roots_.span();
        sights_.describe(window_, reachY);
        seeded_ = first;
        lastSeeded_ = last;
        return makeLines(begin, end);
    }

    // The next row; infinity where the window has none. Null if it has none anywhere.
    float* next() {
        const int y = y_++;
        for (; seeded_ <= std::min(below(y), lastSeeded_); ++seeded_) {
            while (prepared_ < rows_.end && prepared_ - seeded_ <= roots_.reachY()) prepare(prepared_++);
            const Seed* seeds = seeds_.begin(seeded_);
            const ptrdiff_t count = seeds_.end(seeded_) - seeds;
            if (count == 0) continue;
            const int last = std::min(seeded_ + roots_.reachY(), rows_.end - 1);
            for (int row = std::max(seeded_ - roots_.reachY(), y); row <= last; ++row)
                found_[static_cast<size_t>(row % rows_.count)] = true;
            ZVEX_ON_TARGET(spreadSeeds(rows_, seeds, count, seeded_, roots_.reachY(), window_));
        }
        return found_[static_cast<size_t>(y % rows_.count)] ? line(y) : nullptr;
    }

    // The seeds of a row.
    const Seed* begin(int y) const { return seeds_.begin(y); }
    const Seed* end(int y) const { return seeds_.end(y); }

private:
    int above(int y) const { return std::max(0, y - roots_.reachY()); }
    int below(int y) const { return y < height_ - roots_.reachY() ? y + roots_.reachY() : height_ - 1; }

    bool makeLines(int begin, int end) {
        const int64_t padding = int64_t{roots_.reachX()} + BLOCK;
        rows_.span = width_ + 2 * padding;
        rows_.count =
            static_cast<int>(std::min<int64_t>(2 * int64_t{roots_.reachY()} + 1, int64_t{end} - begin));
        rows_.begin = prepared_ = begin;
        rows_.end = end;
        if (!lines_.allocate(rows_.count, rows_.span) || !found_.allocate(rows_.count)) return false;
        std::fill_n(lines_.get(), rows_.count * rows_.span, INFINITE);
        rows_.lines = lines_.get() + padding;
        return true;
    }
    float* line(int y) const { return rows_.lines + y % rows_.count * rows_.span; }

    // A row before any seeds.
    void prepare(int y) {
        const bool found = full_.next();
        found_[static_cast<size_t>(y % rows_.count)] = found;
        if (found) {
            full_.nearest(line(y), distances_.get(), lastSquare_, INFINITE);
        } else {
            std::fill_n(line(y), width_, INFINITE);
        }
    }

    RootRows roots_;
    Sights sights_;
    SeedWindow window_;
    OfferRows rows_;
    Buffer<float> lines_;  // of rows_, each with a window's reach on either side
    Buffer<bool> found_;
    int seeded_ = 0, lastSeeded_ = 0;  // the next row whose seeds are to be spread, the last one
    int prepared_ = 0;                 // the next row to prepare
    Buffer<float> distances_;          // of each square that is the sum of two within the reach
    FullRows full_;
    Seeds seeds_;
    int width_ = 0, height_ = 0, y_ = 0, lastSquare_ = 0;
};

// Finds for every row what its pixels are offered and has keep(values, nearest, width) make the row's new
// values of it. No seed and no full pixel changes during a search.
template <typename Keep>
bool searchNearestRows(const DistanceSearch& s, Keep keep) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    if (!FullRows::fit(std::min(s.radius, s.width - 1), std::min(s.radius, s.height - 1))) return false;
    NearestRows rows;
    if (!rows.make(ValuePlane{s.plane}, s.plane, s.width, s.height, s.radius, INFINITE, begin, end))
        return false;
    for (int y = begin; y < end; ++y) {
        const float* nearest = rows.next();
        if (nearest != nullptr) keep(s.plane + ptrdiff_t{y} * s.width, nearest, s.width);
    }
    return true;
}

// Windows up to this reach are looked through whole.
constexpr int LAST_WHOLE_REACH = 8;

// What each pixel's window offers it, row by row, for the inward search: the smallest of the distances to
// pixels above 1, less their values. These pixels are seeds of the negative value, then, and hide each other
// just so: p from q if a neighbour n of p, within q's window and above 1, too, has
//
//     values[n] - values[p] > |q - n| - |q - p|
//
// for it offers more. What is hidden by a hidden neighbour is so by the one that hides that: the offers rise,
// so there is an end to it. The leads are rounded down and the roots compared with a margin, so that no
// offer's rounding counts; on a slope nearly all but the ray across the edge is hidden, and there all are
// looked at, as their roundings decide.
//
// Pixels go in pieces with the least of their leads: they hide what each of them hides, then, or less. More
// than what is seen may be looked at: all are pixels of the window.
class HighestRows {
public:
    // For the rows begin..end - 1. The roots have to outlive it. False when memory is short.
    bool make(const DistanceSearch& s, const RootRows& roots, int begin, int end) {
        search_ = s;
        roots_ = &roots;
        const int reachY = roots.reachY();
        y_ = begin - 1;
        first_ = next_ = std::max(0, begin - reachY);
        prepared_ = begin;
        last_ = end <= s.height - reachY ? end - 1 + reachY : s.height - 1;
        far_ = static_cast<int16_t>(reachY + 1);
        if (!sights_.make(roots, INFINITE) || !makeGaps(begin, end) || !makeHigh()) return false;
        window_.roots = roots.row(0);
        window_.span = roots.span();
        sights_.describe(window_, reachY);
        return makeLines(begin, end);
    }

    // Goes to the next row, the first one to begin with. False, and no further, if a value is infinite.
    bool next() {
        ++y_;
        const int64_t until = std::min<int64_t>(int64_t{y_} + roots_->reachY(), last_);
        for (; next_ <= until; ++next_) {
            for (; prepared_ < rows_.end && prepared_ - next_ <= roots_->reachY(); ++prepared_)
                std::fill_n(line(prepared_), search_.width, INFINITE);
            if (!spreadRow(next_)) return false;
        }
        return true;
    }
    // Of that row.
    const float* offers() const { return line(y_); }

private:
    // Over the rows before those to search, too, to look down from.
    bool makeGaps(int begin, int end) {
        const int width = search_.width;
        pieces_ = (width - 1) / PIECE + 1;
        reach_ = (roots_->reachX() - 1) / PIECE + 1;
        const int64_t padded = pieces_ + 2 * int64_t{reach_};
        if (!gaps_.allocate(int64_t{end} - first_, pieces_) || !none_.allocate(pieces_) ||
            !up_.allocate(padded) || !down_.allocate(padded) || !least_.allocate(2, pieces_)) {
            return false;
        }
        std::fill_n(none_.get(), pieces_, far_);
        std::fill_n(up_.get(), padded, far_);
        std::fill_n(down_.get(), padded, far_);
        const int16_t* below = none_.get();
        for (int y = end - 1; y >= first_; --y) {
            int16_t* row = gaps_.get() + ptrdiff_t{y - first_} * pieces_;
            if (y >= begin) {
                ZVEX_ON_TARGET(findGaps(row, below, search_.plane + ptrdiff_t{y} * width, width, far_));
            } else {
                for (int i = 0; i < pieces_; ++i)
                    row[i] = std::min<int16_t>(static_cast<int16_t>(below[i] + 1), far_);
            }
            below = row;
        }
        return true;
    }

    bool makeHigh() {
        const int64_t padding = 2 * int64_t{roots_->reachX()} + BLOCK;
        highSpan_ = search_.width + 2 * padding;
        if (!high_.allocate(3, highSpan_)) return false;
        std::fill_n(high_.get(), 3 * highSpan_, -INFINITE);
        highBegin_ = high_.get() + padding;
        return true;
    }

    bool makeLines(int begin, int end) {
        const int64_t padding = int64_t{roots_->reachX()} + BLOCK;
        rows_.span = search_.width + 2 * padding;
        rows_.count =
            static_cast<int>(std::min<int64_t>(2 * int64_t{roots_->reachY()} + 1, int64_t{end} - begin));
        rows_.begin = begin;
        rows_.end = end;
        if (!lines_.allocate(rows_.count, rows_.span)) return false;
        std::fill_n(lines_.get(), rows_.count * rows_.span, INFINITE);
        rows_.lines = lines_.get() + padding;
        return true;
    }

    float* line(int y) const { return rows_.lines + y % rows_.count * rows_.span; }
    float* high(int y) const { return highBegin_ + (y + 3) % 3 * highSpan_; }

    bool findHighRow(int y) {
        if (y <= last_)
            return ZVEX_ON_TARGET(
                findHigh(high(y), search_.plane + ptrdiff_t{y} * search_.width, search_.width));
        std::fill_n(high(y), search_.width, -INFINITE);
        return true;
    }

    bool spreadRow(int y) {
        if ((y == first_ && !findHighRow(y)) || !findHighRow(y + 1)) return false;
        const int16_t* gaps = y < rows_.end ? gaps_.get() + ptrdiff_t{y - first_} * pieces_ : none_.get();
        int16_t *up = up_.get() + reach_, *down = down_.get() + reach_, *leastUp = least_.get(),
                *leastDown = leastUp + pieces_;
        std::copy_n(gaps, pieces_, down);
        ZVEX_ON_TARGET(stepGaps(up, down, pieces_, far_));
        ZVEX_ON_TARGET(leastGaps(leastUp, up, pieces_, reach_));
        ZVEX_ON_TARGET(leastGaps(leastDown, down, pieces_, reach_));
        const HighRow row = {high(y - 1), high(y),   high(y + 1), gaps_.get(),
                             leastUp,     leastDown, first_,      pieces_};
        ZVEX_ON_TARGET(spreadHigh(rows_, row, y, roots_->reachY(), window_));
        return true;
    }

    DistanceSearch search_ = {};
    const RootRows* roots_ = nullptr;
    Sights sights_;
    SeedWindow window_;
    OfferRows rows_;
    Buffer<float> lines_;  // of rows_, each with a window's reach on either side
    Buffer<float> high_;   // the row to spread and the ones beside it
    float* highBegin_ = nullptr;
    int64_t highSpan_ = 0;
    Buffer<int16_t> gaps_, none_, up_, down_, least_;  // see HighRow
    int16_t far_ = 0;                                  // more than the reach
    int pieces_ = 0, reach_ = 0;                       // of a row, of a window to one side
    int y_ = 0, prepared_ = 0;
    int first_ = 0, next_ = 0, last_ = 0;  // the rows that offer
};

// The inward search of one row as it is defined, in place.
void searchRowInward(const DistanceSearch& s, const RootRows& roots, int y) {
    const int64_t reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t top = std::max<int64_t>(0, y - reachY),
                  bottom = std::min<int64_t>(s.height, y + reachY + 1);
    for (int x = 0; x < s.width; ++x) {
        float& value = s.plane[ptrdiff_t{y} * s.width + x];
        if (!(value < 0.0f)) continue;
        float best = value;  // the pixel itself is in the window, but offers only what it has reached
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

bool isBelowZero(const float* values, int width) {
    return std::any_of(values, values + width, [](float value) { return value < 0.0f; });
}

// The order of the inward search counts only once a pixel rises above 1. Until one would, a row's pixels can
// be found side by side; from such a row on all is done one pixel after the other.
//
// Rows from y on by looking through whole windows, until such a row, which y is then, or `end`. False when
// memory is short.
bool searchWindowsInward(const DistanceSearch& s, const RootRows& roots, int& y, int end) {
    Buffer<float> highRow, least;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t padded = int64_t{s.width} + 2 * MOST_LANES;
    if (!highRow.allocate(padded + 2 * int64_t{reachX}) || !least.allocate(padded)) return false;
    std::fill_n(highRow.get(), padded + 2 * int64_t{reachX}, -INFINITE);
    float* high = highRow.get() + reachX;
    for (; y < end; ++y) {
        float* values = s.plane + ptrdiff_t{y} * s.width;
        if (!isBelowZero(values, s.width)) continue;
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

bool squaredDistances(float* result, const float* values, int count) {
    if (result == nullptr || values == nullptr || count < 1) return true;
    Envelope envelope;
    if (!envelope.allocate(count)) return false;
    transformLine(result, values, count, envelope);
    return true;
}

bool squaredDistances(float* plane, int width, int height) {
    if (plane == nullptr || width < 1 || height < 1) return true;
    Envelope envelope;
    Buffer<float> line, column;
    const int longest = std::max(width, height);
    if (!envelope.allocate(longest) || !line.allocate(longest) || !column.allocate(longest)) return false;
    for (int x = 0; x < width; ++x) {
        float* top = plane + x;
        for (ptrdiff_t y = 0; y < height; ++y) line[static_cast<size_t>(y)] = top[y * width];
        transformLine(column.get(), line.get(), height, envelope);
        for (ptrdiff_t y = 0; y < height; ++y) top[y * width] = column[static_cast<size_t>(y)];
    }
    for (ptrdiff_t y = 0; y < height; ++y) {
        float* row = plane + y * width;
        std::copy_n(row, width, line.get());
        transformLine(row, line.get(), width, envelope);
    }
    return true;
}

struct DistanceRows::Rows {
    const uint8_t* levels;
    int width, height, radius;
    int y = 0;
    Buffer<float> lines;  // the last three rows
    int64_t span = 0, padding = BLOCK;

    // The search.
    bool searches = false, outward = false;
    const float* ramp = nullptr;
    NearestRows nearest;

    // The transform: of the full pixels, or of the plane where these do not do.
    FullRows full;
    Envelope envelope;
    Buffer<float> end;
    int exact = 0;
    Buffer<float> plane;

    bool makeLines() {
        span = width + 2 * padding;
        if (!lines.allocate(3, span)) return false;
        std::fill_n(lines.get(), 3 * span, 0.0f);
        return true;
    }
    float* line(int row) const { return lines.get() + row % 3 * span + padding; }

    bool makeSearch() {
        searches = true;
        if (radius < 1) return makeLines();
        const int reachX = std::min(radius, width - 1), reachY = std::min(radius, height - 1);
        if (!FullRows::fit(reachX, reachY) ||
            !nearest.make(LevelPlane{levels, ramp}, levels, width, height, radius,
                          outward ? INFINITE : ramp[255], 0, height)) {
            return false;
        }
        return makeLines();
    }

    bool makeTransform() {
        exact = exactColumns(height);
        if (exact < 1 || int64_t{radius} * radius > EXACT) return makePlane() && makeLines();
        const bool wide = width > exact;
        if (wide && (!envelope.allocate(width) || !end.allocate(width, 2))) return false;
        const int reachX = std::min(radius, width - 1), reachY = std::min(radius, height - 1);
        return full.make(levels, width, 0, height - 1, reachX, reachY, wide ? height : reachY + 1) &&
               makeLines();
    }

    bool makePlane() {
        if (!plane.allocate(height, width)) return false;
        const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
        for (size_t i = 0; i < count; ++i) plane[i] = levels[i] == 0 ? 0.0f : ENDLESS;
        if (!squaredDistances(plane.get(), width, height)) return false;
        for (size_t i = 0; i < count; ++i) plane[i] = cappedRoot(plane[i], radius);
        return true;
    }

    void transformRow(float* row) {
        const float limit = static_cast<float>(radius);
        if (plane.get() != nullptr) {
            std::copy_n(plane.get() + ptrdiff_t{y} * width, width, row);
        } else if (!full.next()) {
            std::fill_n(row, width, limit);
        } else {
            int begin = width;
            if (width > exact) begin = transformEnd(end.get(), full.steps(), width, height, exact, envelope);
            full.nearest(row, nullptr, radius * radius, limit);
            for (int x = begin; x < width; ++x) row[x] = cappedRoot(end[static_cast<size_t>(x)], radius);
        }
    }

    void searchRow(float* row) {
        if (radius < 1) {
            const uint8_t* levelsHere = levels + ptrdiff_t{y} * width;
            for (int x = 0; x < width; ++x) row[x] = ramp[levelsHere[x]];
            return;
        }
        const float* offers = nearest.next();
        if (offers == nullptr) {
            std::fill_n(row, width, ramp[255]);
        } else {
            if (outward) {
                ZVEX_ON_TARGET(boundRow(row, offers, width, ramp[255], ramp[0]));
            } else {
                ZVEX_ON_TARGET(limitRow(row, offers, width, ramp[255]));
            }
            for (const Seed* seed = nearest.begin(y); seed != nearest.end(y); ++seed)
                row[seed->x] = seed->value;
        }
    }
};

DistanceRows::~DistanceRows() {
    delete rows_;
}

bool DistanceRows::make(const uint8_t* levels, int width, int height, int radius) {
    delete rows_;
    rows_ = tryMake<Rows>().release();
    if (rows_ == nullptr) return false;
    rows_->levels = levels;
    rows_->width = width;
    rows_->height = height;
    rows_->radius = radius;
    return true;
}

bool DistanceRows::transform(const uint8_t* levels, int width, int height, int radius) {
    return make(levels, width, height, radius) && rows_->makeTransform();
}

bool DistanceRows::search(const uint8_t* levels, int width, int height, int radius, const float* ramp,
                          bool outward) {
    if (!make(levels, width, height, radius)) return false;
    rows_->ramp = ramp;
    rows_->outward = outward;
    return rows_->makeSearch();
}

void DistanceRows::next() {
    float* row = rows_->line(rows_->y);
    if (rows_->searches) {
        rows_->searchRow(row);
    } else {
        rows_->transformRow(row);
    }
    ++rows_->y;
}

const float* DistanceRows::row(int y) const {
    return rows_->line(y);
}

bool searchNearest(const DistanceSearch& search) {
    return searchNearestRows(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepNearest(values, nearest, width));
    });
}

bool searchOutward(const DistanceSearch& search) {
    return searchNearestRows(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepOutward(values, nearest, width));
    });
}

bool searchInward(const DistanceSearch& s) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    RootRows roots;
    if (!roots.make(s.width, s.height, s.radius)) return false;
    int y = begin;
    const bool narrow = std::max(roots.reachX(), roots.reachY()) <= LAST_WHOLE_REACH;
    if (narrow || !FullRows::fit(roots.reachX(), roots.reachY())) {
        if (!searchWindowsInward(s, roots, y, end)) return false;
    } else {
        HighestRows rows;
        if (!rows.make(s, roots, begin, end)) return false;
        while (y < end && rows.next() &&
               ZVEX_ON_TARGET(keepInward(s.plane + ptrdiff_t{y} * s.width, rows.offers(), s.width)))
            ++y;
    }
    for (; y < end; ++y) searchRowInward(s, roots, y);
    return true;
}

}  // namespace Zvex
