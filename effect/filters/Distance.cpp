// SPDX-License-Identifier: Apache-2.0
//
// The transform is the lower envelope of parabolas after Felzenszwalb and Huttenlocher (2012). The
// definitions are in tests/reference/DistanceReference.h.

#include "effect/filters/Distance.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "effect/filters/Buffer.h"
#include "effect/filters/SquareRoots.h"

namespace Zvex {

namespace {

constexpr float ENDLESS = 1e20f;

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

void transformLine(float* result, const float* values, int count, const Envelope& envelope) {
    int* vertices = envelope.vertices.get();
    float* bounds = envelope.bounds.get();
    int last = 0;
    vertices[0] = 0;
    bounds[0] = -ENDLESS;
    bounds[1] = ENDLESS;
    for (int q = 1; q < count; ++q) {
        float begin = crossing(values, vertices[last], q);
        // The first one stays whatever the values are: none of an image's reach beyond -ENDLESS.
        while (last > 0 && begin <= bounds[last]) begin = crossing(values, vertices[--last], q);
        ++last;
        vertices[last] = q;
        bounds[last] = begin;
        bounds[last + 1] = ENDLESS;
    }
    last = 0;
    for (int q = 0; q < count; ++q) {
        while (bounds[last + 1] < static_cast<float>(q)) ++last;
        const int vertex = vertices[last];
        result[q] = values[vertex] + squareOf(int64_t{q} - vertex);
    }
}

// The roots of a window, mirrored: row(dy)[dx] is the distance to the pixel (dx, dy) further, for dx of
// either sign. A window larger than the plane is cut to it.
class RootRows {
public:
    bool make(const DistanceSearch& s) {
        reachX_ = std::min(s.radius, s.width - 1);
        reachY_ = std::min(s.radius, s.height - 1);
        if (!roots_.allocate(int64_t{reachY_} + 1, stride())) return false;
        for (int64_t dy = 0; dy <= reachY_; ++dy) {
            float* middle = rowOf(dy);
            for (int64_t dx = 0; dx <= reachX_; ++dx)
                middle[dx] = middle[-dx] = integerRoot(dx * dx + dy * dy);
        }
        return true;
    }

    const float* row(int64_t dy) const { return rowOf(dy < 0 ? -dy : dy); }
    int reachX() const { return reachX_; }
    int reachY() const { return reachY_; }

private:
    int64_t stride() const { return 2 * int64_t{reachX_} + 1; }
    float* rowOf(int64_t dy) const { return roots_.get() + dy * stride() + reachX_; }

    Buffer<float> roots_;
    int reachX_ = 0, reachY_ = 0;
};

// The pixels that others may be near to, row by row. A pixel at or below 0 all of whose neighbours are, too,
// is left out: seen from any pixel outside their region, the neighbour on the way there is nearer, and in the
// window if this one is. What is left of a glyph is its outline.
class Seeds {
public:
    struct Seed {
        int x;
        float value;  // 0 for what is below
    };

    // Takes those of the rows `first` to `last`. None of them changes during a search.
    bool collect(const DistanceSearch& s, int first, int last) {
        first_ = first;
        const size_t count = visit(
            s, last, [](size_t, Seed) {}, [](int, size_t) {});
        if (!seeds_.allocate(std::max<int64_t>(1, static_cast<int64_t>(count)))) return false;
        if (!begins_.allocate(int64_t{last} - first + 2)) return false;
        begins_[0] = 0;
        visit(
            s, last, [this](size_t i, Seed seed) { seeds_[i] = seed; },
            [this](int y, size_t end) { begins_[static_cast<size_t>(y - first_) + 1] = end; });
        return true;
    }

    const Seed* begin(int y) const { return seeds_.get() + begins_[static_cast<size_t>(y - first_)]; }
    const Seed* end(int y) const { return seeds_.get() + begins_[static_cast<size_t>(y - first_) + 1]; }

private:
    static bool isSeed(const DistanceSearch& s, const float* pixel, int x, int y) {
        if (!(*pixel < 1.0f)) return false;
        if (*pixel > 0.0f) return true;
        return (x > 0 && !(pixel[-1] <= 0.0f)) || (x < s.width - 1 && !(pixel[1] <= 0.0f)) ||
               (y > 0 && !(pixel[-ptrdiff_t{s.width}] <= 0.0f)) ||
               (y < s.height - 1 && !(pixel[s.width] <= 0.0f));
    }

    // Calls take(number, seed) for each seed and endRow(y, seeds so far) after each row; returns their count.
    template <typename Take, typename EndRow>
    size_t visit(const DistanceSearch& s, int last, Take take, EndRow endRow) const {
        size_t count = 0;
        for (int y = first_; y <= last; ++y) {
            const float* row = s.plane + ptrdiff_t{y} * s.width;
            for (int x = 0; x < s.width; ++x) {
                if (isSeed(s, row + x, x, y)) take(count++, Seed{x, std::max(0.0f, row[x])});
            }
            endRow(y, count);
        }
        return count;
    }

    Buffer<Seed> seeds_;
    Buffer<size_t> begins_;
    int first_ = 0;
};

// What one seed brings to a row `roots` away: the row's pixels from `begin` to `end` - 1 become the smaller
// of what they are and of the seed's value plus the distance.
void lowerRow(float* row, const float* roots, const Seeds::Seed& seed, int begin, int end) {
    for (int x = begin; x < end; ++x) {
        const float offer = seed.value + roots[x - seed.x];
        row[x] = offer < row[x] ? offer : row[x];
    }
}

// Finds for every row the nearest seeds of its pixels, infinity where the window has none, and has `apply`
// make the row's new values of them.
template <typename Apply>
bool searchSeeds(const DistanceSearch& s, Apply apply) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    RootRows roots;
    Seeds seeds;
    Buffer<float> nearest;
    if (!roots.make(s) || !nearest.allocate(s.width)) return false;
    const int reachX = roots.reachX(), reachY = roots.reachY();
    const auto above = [=](int y) { return std::max(0, y - reachY); };
    const auto below = [=](int y) { return y < s.height - reachY ? y + reachY : s.height - 1; };
    if (!seeds.collect(s, above(begin), below(end - 1))) return false;
    for (int y = begin; y < end; ++y) {
        std::fill_n(nearest.get(), s.width, std::numeric_limits<float>::infinity());
        for (int seedY = above(y); seedY <= below(y); ++seedY) {
            const float* row = roots.row(int64_t{seedY} - y);
            for (const Seeds::Seed* seed = seeds.begin(seedY); seed != seeds.end(seedY); ++seed) {
                const int right = seed->x < s.width - reachX ? seed->x + reachX : s.width - 1;
                lowerRow(nearest.get(), row, *seed, std::max(0, seed->x - reachX), right + 1);
            }
        }
        float* values = s.plane + ptrdiff_t{y} * s.width;
        for (int x = 0; x < s.width; ++x) values[x] = apply(values[x], nearest[static_cast<size_t>(x)]);
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

bool searchNearest(const DistanceSearch& search) {
    return searchSeeds(search, [](float value, float nearest) { return std::min(value, nearest); });
}

bool searchOutward(const DistanceSearch& search) {
    return searchSeeds(search, [](float value, float nearest) {
        return value > 0.0f && nearest < std::numeric_limits<float>::infinity() ? nearest : value;
    });
}

bool searchInward(const DistanceSearch& s) {
    const int begin = std::max(s.rowBegin, 0), end = std::min(s.rowEnd, s.height);
    if (s.plane == nullptr || s.width < 1 || s.radius < 1 || begin >= end) return true;
    RootRows roots;
    if (!roots.make(s)) return false;
    const int64_t reachX = roots.reachX(), reachY = roots.reachY();
    for (int y = begin; y < end; ++y) {
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
    return true;
}

}  // namespace Zvex
