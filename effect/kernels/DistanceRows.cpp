// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/DistanceRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "effect/kernels/DistanceTransform.h"
#include "effect/kernels/NearestFull.h"
#include "effect/kernels/OutwardSearch.h"
#include "foundation/OutOfMemory.h"

namespace Zvex {

namespace {

float cappedRoot(float square, int radius) {
    const float limit = static_cast<float>(radius);
    return square > limit * limit ? limit : std::sqrt(square);
}

// In a plane of 0 and ENDLESS_SQUARE the envelope is the true minimum as long as x^2 and the square of a
// height fit a float together: all sums and differences are exact, then, and so few that no crossing is
// rounded across a pixel (two crossings with whole pixels differ by 1 / (2 * 4096) at least, floats below
// 4096 by no more). This is how many columns that holds for.
constexpr int64_t EXACT = 1 << 24;

int exactColumns(int height) {
    const int64_t tallest = int64_t{height} * height;
    if (tallest >= EXACT) return 0;
    return static_cast<int>(std::sqrt(static_cast<double>(EXACT - tallest)));
}

// The transform, from the true minimum where that is the same and else from the envelope.
class TransformRows : public DistanceRows {
public:
    TransformRows(int width, int height, int radius)
        : DistanceRows(width, height), radius_(radius), exact_(exactColumns(height)) {}

    bool make(const uint8_t* levels) {
        if (exact_ < 1 || int64_t{radius_} * radius_ > EXACT) return makePlane(levels) && allocate();
        const bool wide = width_ > exact_;
        if (wide && (!envelope_.allocate(width_) || !end_.allocate(width_, 2))) return false;
        const int reachX = std::min(radius_, width_ - 1), reachY = std::min(radius_, height_ - 1);
        return full_.make(levels, width_, 0, height_ - 1, reachX, reachY, wide ? height_ : reachY + 1) &&
               allocate();
    }

private:
    bool makePlane(const uint8_t* levels) {
        if (!plane_.allocate(height_, width_)) return false;
        const size_t count = static_cast<size_t>(width_) * static_cast<size_t>(height_);
        for (size_t i = 0; i < count; ++i) plane_[i] = levels[i] == 0 ? 0.0f : ENDLESS_SQUARE;
        return squaredDistances(plane_.get(), width_, height_);
    }

    // The squares of a row that is too wide, from the pixel that is returned on. That pixel is one of the
    // nearest full kind, a little before the sums are rounded: it stays in the envelope and hides all that is
    // before it.
    int transformEnd() {
        constexpr int ROUNDED_SLOPES = 16;  // so near the rounded parabolas might push it out
        const int16_t* steps = full_.steps();
        int first = std::max(exact_ - ROUNDED_SLOPES, 0);
        while (first > 0 && steps[first] != 0) --first;
        float* values = end_.get() + width_;
        for (int x = first; x < width_; ++x) {
            const int64_t step = steps[x];
            values[x] = step < height_ ? static_cast<float>(step * step) : ENDLESS_SQUARE;
        }
        envelope_.run(end_.get(), values, width_, first);
        return first;
    }

    void measure(float* row) override {
        if (plane_.get() != nullptr) {
            const float* squares = plane_.get() + ptrdiff_t{y_} * width_;
            for (int x = 0; x < width_; ++x) row[x] = cappedRoot(squares[x], radius_);
        } else if (const float limit = static_cast<float>(radius_); !full_.next()) {
            std::fill_n(row, width_, limit);
        } else {
            const int begin = width_ > exact_ ? transformEnd() : width_;
            full_.distances(row, nullptr, radius_ * radius_, limit);
            for (int x = begin; x < width_; ++x) row[x] = cappedRoot(end_[static_cast<size_t>(x)], radius_);
        }
    }

    int radius_, exact_;
    NearestFull full_;
    LineTransform envelope_;
    Buffer<float> end_;
    Buffer<float> plane_;  // of squares, in place of all the others
};

class SearchRows : public DistanceRows {
public:
    SearchRows(int width, int height, const LevelPlane& plane, bool outward)
        : DistanceRows(width, height), plane_(plane), outward_(outward) {}

    bool make(int radius) {
        searches_ = radius > 0;
        return (!searches_ || nearest_.make(plane_, width_, height_, radius,
                                            outward_ ? INFINITE : plane_.ramp[255], 0, height_)) &&
               allocate();
    }

private:
    void measure(float* row) override {
        if (searches_) {
            nearest_.next(row, plane_.ramp, outward_);
        } else {
            const uint8_t* levels = plane_.pixels + ptrdiff_t{y_} * width_;
            for (int x = 0; x < width_; ++x) row[x] = plane_.ramp[levels[x]];
        }
    }

    LevelPlane plane_;
    bool outward_, searches_ = false;
    OutwardRows nearest_;
};

}  // namespace

bool DistanceRows::allocate() {
    if (!lines_.allocate(3, int64_t{width_} + PADDING)) return false;
    std::fill_n(lines_.get(), 3 * (int64_t{width_} + PADDING), 0.0f);
    return true;
}

std::unique_ptr<DistanceRows> DistanceRows::transform(const uint8_t* levels, int width, int height,
                                                      int radius) {
    auto rows = tryMake<TransformRows>(width, height, radius);
    if (rows == nullptr || !rows->make(levels)) return nullptr;
    return rows;
}

std::unique_ptr<DistanceRows> DistanceRows::search(const uint8_t* levels, int width, int height, int radius,
                                                   const float* ramp, bool outward) {
    auto rows = tryMake<SearchRows>(width, height, LevelPlane{levels, ramp}, outward);
    if (rows == nullptr || !rows->make(radius)) return nullptr;
    return rows;
}

}  // namespace Zvex
