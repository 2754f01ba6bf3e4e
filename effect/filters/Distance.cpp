// SPDX-License-Identifier: Apache-2.0
//
// The transform is the lower envelope of parabolas after Felzenszwalb and Huttenlocher (2012). The
// definitions are in tests/reference/DistanceReference.h.

#include "effect/filters/Distance.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/filters/Buffer.h"
#include "effect/filters/SquareRoots.h"
#include "raster/CpuTarget.h"

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

bool cappedTransform(float* plane, int width, int height, int radius) {
    if (!squaredDistances(plane, width, height)) return false;
    const size_t count = static_cast<size_t>(width) * static_cast<size_t>(height);
    for (size_t i = 0; i < count; ++i) plane[i] = cappedRoot(plane[i], radius);
    return true;
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

// From where a seed has to be seen, along one axis. A neighbour at or below its value hides it from all that
// lie beyond that neighbour: they are nearer to the neighbour, and roots and sums are monotone.
enum class Side : uint8_t { Before, Both, After, Neither };

// A pixel that others may be near to.
struct Seed {
    int x;
    float value;  // 0 for what is below
    Side columns, rows;
};

#define ZVEX_KERNELS "effect/filters/DistanceKernels.inc"
#include "raster/ForEachTarget.h"

constexpr int MOST_LANES = 16;

// The roots of a window, mirrored: row(dy)[dx] is the distance to the pixel (dx, dy) further, for dx of
// either sign. A window larger than the plane is cut to it.
class RootRows {
public:
    bool make(const DistanceSearch& s) {
        reachX_ = std::min(s.radius, s.width - 1);
        reachY_ = std::min(s.radius, s.height - 1);
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

// The nearest pixels at or below 0 within a window: down and up the columns first, by steps, then along the
// rows, by squares. What a square stands for is looked up: distances are monotone, so the smallest wins.
class FullPixels {
public:
    // The squares of wider windows do not fit.
    static bool fit(int reachX, int reachY) { return std::max(reachX, reachY) <= WIDEST; }

    // For the rows `first` to `last`. `distances` has to be filled after that.
    bool allocate(int width, int first, int last, int reachX, int reachY) {
        width_ = width;
        first_ = first;
        last_ = last;
        reachX_ = reachX;
        reachY_ = reachY;
        const int64_t rows = int64_t{last} - first + 1;
        return steps_.allocate(rows, stride()) && filled_.allocate(rows) && best_.allocate(width) &&
               distances.allocate(int64_t{none()} + 1);
    }

    // The distance of each square that is the sum of two within the reach, and that of none().
    Buffer<float> distances;
    int none() const { return reachX_ * reachX_ + reachY_ * reachY_ + 1; }

    // The steps to the nearest such pixel of the column, `most` or more where there is none so near.
    void step(const float* plane, int most) {
        for (int y = first_; y <= last_; ++y) {
            ZVEX_ON_TARGET(markFull(row(y), plane + ptrdiff_t{y} * width_, width_, most));
            if (y > first_) ZVEX_ON_TARGET(stepOn(row(y), row(y - 1), width_));
        }
        for (int y = last_ - 1; y >= first_; --y) ZVEX_ON_TARGET(stepOn(row(y), row(y + 1), width_));
    }
    const int16_t* steps(int y) const { return row(y); }

    // Makes a row of steps one of squares. Whether it has any within the reach.
    bool square(int y) {
        std::fill_n(row(y) - reachX_, reachX_, NO_SQUARE);
        std::fill_n(row(y) + width_, reachX_, NO_SQUARE);
        const bool any = ZVEX_ON_TARGET(squareSteps(row(y), width_, reachY_ + 1, NO_SQUARE));
        filled_[static_cast<size_t>(y - first_)] = any;
        return any;
    }

    // The distances of a row of squares. False if there is none within the reach: nothing is written then.
    bool nearest(float* result, int y) const {
        if (!filled_[static_cast<size_t>(y - first_)]) return false;
        ZVEX_ON_TARGET(nearestInRow(best_.get(), row(y), width_, reachX_));
        ZVEX_ON_TARGET(rootsOf(result, best_.get(), distances.get(), width_, none()));
        return true;
    }

private:
    static constexpr int WIDEST = 90;
    static constexpr int16_t NO_SQUARE = 16384;
    static_assert(
        2 * WIDEST * WIDEST < NO_SQUARE && NO_SQUARE + WIDEST * WIDEST <= INT16_MAX,
        "the squares of a window are below what stands for none, which fits with one of them added");

    int64_t stride() const { return int64_t{width_} + 2 * int64_t{reachX_}; }
    int16_t* row(int y) const { return steps_.get() + (y - first_) * stride() + reachX_; }

    Buffer<int16_t> steps_;  // then the squares of each column's distances
    Buffer<int16_t> best_;
    Buffer<uint8_t> filled_;
    int width_ = 0, first_ = 0, last_ = 0, reachX_ = 0, reachY_ = 0;
};

// The full pixels of a search, measured in its roots.
bool findFullPixels(FullPixels& full, const DistanceSearch& s, const RootRows& roots, int first, int last) {
    const int reachX = roots.reachX(), reachY = roots.reachY();
    if (!full.allocate(s.width, first, last, reachX, reachY)) return false;
    for (int dy = 0; dy <= reachY; ++dy) {
        for (int dx = 0; dx <= reachX; ++dx)
            full.distances[static_cast<size_t>(dx * dx + dy * dy)] = roots.row(dy)[dx];
    }
    full.distances[static_cast<size_t>(full.none())] = INFINITE;
    full.step(s.plane, reachY + 1);
    for (int y = first; y <= last; ++y) full.square(y);
    return true;
}

// The pixels that others may be near to, row by row: those between 0 and 1, and, unless these are looked for
// apart, those below. Of the latter one all of whose neighbours are at or below 0, too, is left out: seen
// from any pixel outside their region, the neighbour on the way there is nearer, and in the window if this
// one is. What is left of a glyph is its outline.
class Seeds {
public:
    // Takes those of the rows `first` to `last`. None of them changes during a search.
    bool collect(const DistanceSearch& s, int first, int last, bool fractionsOnly) {
        first_ = first;
        const int64_t rows = int64_t{last} - first + 1;
        if (!begins_.allocate(rows + 1) || !parts_.allocate(rows)) return false;
        begins_[0] = 0;
        for (int y = first; y <= last; ++y) {
            const size_t count = fractionsOnly ? fractionsOf(s, y) : take(s, y, nullptr);
            begins_[static_cast<size_t>(y - first) + 1] = begins_[static_cast<size_t>(y - first)] + count;
        }
        const size_t count = begins_[static_cast<size_t>(last - first) + 1];
        if (!seeds_.allocate(std::max<int64_t>(1, static_cast<int64_t>(count)))) return false;
        for (int y = first; y <= last; ++y) {
            Seed* next = seeds_.get() + begins_[static_cast<size_t>(y - first)];
            if (!fractionsOnly) {
                take(s, y, next);
            } else if (begin(y) != end(y)) {
                const float* row = s.plane + ptrdiff_t{y} * s.width;
                ZVEX_ON_TARGET(takeFractions(next, row, y > 0 ? row - s.width : nullptr,
                                             y < s.height - 1 ? row + s.width : nullptr, s.width));
            }
            part(y);
        }
        return true;
    }

    // Those of row y that a row has to know which lies above it (dy < 0), below it (dy > 0) or is that row.
    const Seed* begin(int y, int dy = 0) const {
        const size_t row = static_cast<size_t>(y - first_);
        return seeds_.get() + begins_[row] + (dy > 0 ? parts_[row].fromAbove : 0);
    }
    const Seed* end(int y, int dy = 0) const {
        const size_t row = static_cast<size_t>(y - first_);
        return seeds_.get() + (dy == 0
                                   ? begins_[row + 1]
                                   : begins_[row] + (dy < 0 ? parts_[row].aboveEnd : parts_[row].belowEnd));
    }

private:
    // Ordered by `rows`: those seen from above only, from both sides, from below only, from neither.
    struct Parts {
        size_t fromAbove, aboveEnd, belowEnd;
    };

    void part(int y) {
        const size_t row = static_cast<size_t>(y - first_);
        Seed* const seeds = seeds_.get() + begins_[row];
        Seed* const seedsEnd = seeds_.get() + begins_[row + 1];
        const auto upTo = [&](Seed* from, Side side) {
            return std::partition(from, seedsEnd, [side](const Seed& seed) { return seed.rows == side; });
        };
        Seed* const both = upTo(seeds, Side::Before);
        Seed* const after = upTo(both, Side::Both);
        Seed* const neither = upTo(after, Side::After);
        parts_[row] = {static_cast<size_t>(both - seeds), static_cast<size_t>(after - seeds),
                       static_cast<size_t>(neither - seeds)};
    }

    static size_t fractionsOf(const DistanceSearch& s, int y) {
        return static_cast<size_t>(ZVEX_ON_TARGET(countFractions(s.plane + ptrdiff_t{y} * s.width, s.width)));
    }

    static bool isSeed(const DistanceSearch& s, const float* pixel, int x, int y) {
        if (!(*pixel < 1.0f)) return false;
        if (*pixel > 0.0f) return true;
        return (x > 0 && !(pixel[-1] <= 0.0f)) || (x < s.width - 1 && !(pixel[1] <= 0.0f)) ||
               (y > 0 && !(pixel[-ptrdiff_t{s.width}] <= 0.0f)) ||
               (y < s.height - 1 && !(pixel[s.width] <= 0.0f));
    }

    // Writes the seeds of a row to `next` unless that is null; returns their count.
    static size_t take(const DistanceSearch& s, int y, Seed* next) {
        const float* row = s.plane + ptrdiff_t{y} * s.width;
        size_t count = 0;
        for (int x = 0; x < s.width; ++x) {
            if (!isSeed(s, row + x, x, y)) continue;
            if (next != nullptr) next[count] = Seed{x, std::max(0.0f, row[x]), Side::Both, Side::Both};
            ++count;
        }
        return count;
    }

    Buffer<Seed> seeds_;
    Buffer<size_t> begins_;
    Buffer<Parts> parts_;
    int first_ = 0;
};

// Finds for every row the nearest seeds of its pixels, infinity where the window has none, and has
// keep(values, nearest, width) make the row's new values of them.
template <typename Keep>
bool searchSeeds(const DistanceSearch& s, Keep keep) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    RootRows roots;
    FullPixels full;
    Seeds seeds;
    Buffer<float> row;
    if (!roots.make(s) || !row.allocate(s.width + roots.span())) return false;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const auto above = [=](int y) { return std::max(0, y - reachY); };
    const auto below = [=](int y) { return y < s.height - reachY ? y + reachY : s.height - 1; };
    const bool apart = FullPixels::fit(reachX, reachY);
    if (apart && !findFullPixels(full, s, roots, above(begin), below(end - 1))) return false;
    if (!seeds.collect(s, above(begin), below(end - 1), apart)) return false;
    float* nearest = row.get() + reachX;  // what a seed brings may lie beyond either edge
    std::fill_n(row.get(), s.width + roots.span(), INFINITE);
    for (int y = begin; y < end; ++y) {
        bool found = apart && full.nearest(nearest, y);
        if (!found) std::fill_n(nearest, s.width, INFINITE);
        for (int seedY = above(y); seedY <= below(y); ++seedY) {
            const int side = y < seedY ? -1 : y > seedY ? 1 : 0;
            const Seed* first = seeds.begin(seedY, side);
            const Seed* last = seeds.end(seedY, side);
            if (first == last) continue;
            const float* distances = roots.row(int64_t{seedY} - y) - reachX;
            ZVEX_ON_TARGET(lowerRow(row.get(), first, last, distances, reachX));
            found = true;
        }
        if (found) keep(s.plane + ptrdiff_t{y} * s.width, nearest, s.width);
    }
    return true;
}

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

bool distancesWithin(float* plane, int width, int height, int radius) {
    if (plane == nullptr || width < 1 || height < 1 || radius < 1) return true;
    const int reachX = std::min(radius, width - 1), reachY = std::min(radius, height - 1);
    const int exact = exactColumns(height);
    if (!FullPixels::fit(reachX, reachY) || exact < 1) return cappedTransform(plane, width, height, radius);
    FullPixels full;
    Envelope envelope;
    Buffer<float> line;
    if (!full.allocate(width, 0, height - 1, reachX, reachY)) return false;
    if (width > exact && (!envelope.allocate(width) || !line.allocate(width, 2))) return false;
    for (int square = 0; square <= full.none(); ++square)
        full.distances[static_cast<size_t>(square)] = cappedRoot(static_cast<float>(square), radius);
    full.distances[static_cast<size_t>(full.none())] = static_cast<float>(radius);
    full.step(plane, height);
    for (int y = 0; y < height; ++y) {
        float* row = plane + ptrdiff_t{y} * width;
        int begin = width;
        if (width > exact) begin = transformEnd(line.get(), full.steps(y), width, height, exact, envelope);
        full.square(y);
        if (!full.nearest(row, y)) {
            std::fill_n(row, width, static_cast<float>(radius));
        } else {
            for (int x = begin; x < width; ++x) row[x] = cappedRoot(line[static_cast<size_t>(x)], radius);
        }
    }
    return true;
}

bool searchNearest(const DistanceSearch& search) {
    return searchSeeds(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepNearest(values, nearest, width));
    });
}

bool searchOutward(const DistanceSearch& search) {
    return searchSeeds(search, [](float* values, const float* nearest, int width) {
        ZVEX_ON_TARGET(keepOutward(values, nearest, width));
    });
}

// The order counts only once a pixel rises above 1. Until one would, a row's pixels can be found side by
// side; such a row is done over, one pixel after the other.
bool searchInward(const DistanceSearch& s) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    RootRows roots;
    Buffer<float> highRow, least;
    if (!roots.make(s)) return false;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const int64_t padded = int64_t{s.width} + 2 * MOST_LANES;
    if (!highRow.allocate(padded + 2 * int64_t{reachX}) || !least.allocate(padded)) return false;
    std::fill_n(highRow.get(), padded + 2 * int64_t{reachX}, -INFINITE);
    float* high = highRow.get() + reachX;
    for (int y = begin; y < end; ++y) {
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
        if (!ZVEX_ON_TARGET(keepInward(values, least.get(), s.width))) searchRowInward(s, roots, y);
    }
    return true;
}

}  // namespace Zvex
