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

// The envelope of a plane of 0 and kEndlessSquare gives the true minimum as long as the sum of x^2 and a
// squared height fits a float exactly. Then all sums and differences are exact, and no crossing is rounded
// across a pixel: two crossings with whole pixels differ by at least 1 / (2 * 4096), and floats below 4096
// are that fine. This is the number of columns for which that holds.
constexpr int64_t kExact = 1 << 24;

int exactColumns(int height) {
    const int64_t tallest = int64_t{height} * height;
    if (tallest >= kExact) return 0;
    return static_cast<int>(std::sqrt(static_cast<double>(kExact - tallest)));
}

// The transform of a whole plane.
class PlaneRows : public DistanceRows {
public:
    PlaneRows(int width, int height, int radius) : DistanceRows(width, height), mRadius(radius) {}

    bool make(const uint8_t* levels) {
        if (!mSquares.allocate(mHeight, mWidth)) return false;
        const size_t count = static_cast<size_t>(mWidth) * static_cast<size_t>(mHeight);
        for (size_t i = 0; i < count; ++i) mSquares[i] = levels[i] == 0 ? 0.0f : kEndlessSquare;
        return squaredDistances(mSquares.get(), mWidth, mHeight) && allocate();
    }

private:
    void measure(float* row) override {
        const float* squares = mSquares.get() + ptrdiff_t{mY} * mWidth;
        for (int x = 0; x < mWidth; ++x) row[x] = cappedRoot(squares[x], mRadius);
    }

    int mRadius;
    Buffer<float> mSquares;
};

// The same from the true minimum, and from the envelope only where that could differ.
class TransformRows : public DistanceRows {
public:
    static bool fits(int height, int radius) {
        return exactColumns(height) > 0 && int64_t{radius} * radius <= kExact;
    }

    TransformRows(int width, int height, int radius)
        : DistanceRows(width, height), mRadius(radius), mExact(exactColumns(height)) {}

    bool make(const uint8_t* levels) {
        const bool wide = mWidth > mExact;
        if (wide && (!mEnvelope.allocate(mWidth) || !mEnd.allocate(mWidth, 2))) return false;
        const int reachX = std::min(mRadius, mWidth - 1), reachY = std::min(mRadius, mHeight - 1);
        return mFull.make(levels, mWidth, 0, mHeight - 1, reachX, reachY, wide ? mHeight : reachY + 1) &&
               allocate();
    }

private:
    // Finds the squares of a row that is too wide, from the returned pixel on. That pixel is one of the
    // nearest full kind, shortly before the sums get rounded. It stays in the envelope and hides all pixels
    // before it.
    int transformEnd() {
        constexpr int kRoundedSlopes = 16;  // closer than this, rounded parabolas might hide it
        const int16_t* steps = mFull.steps();
        int first = std::max(mExact - kRoundedSlopes, 0);
        while (first > 0 && steps[first] != 0) --first;
        float* values = mEnd.get() + mWidth;
        for (int x = first; x < mWidth; ++x) {
            const int64_t step = steps[x];
            values[x] = step < mHeight ? static_cast<float>(step * step) : kEndlessSquare;
        }
        mEnvelope.run(mEnd.get(), values, mWidth, first);
        return first;
    }

    void measure(float* row) override {
        const float limit = static_cast<float>(mRadius);
        if (!mFull.next()) {
            std::fill_n(row, mWidth, limit);
            return;
        }
        const int begin = mWidth > mExact ? transformEnd() : mWidth;
        mFull.distances(row, nullptr, mRadius * mRadius, limit);
        for (int x = begin; x < mWidth; ++x) row[x] = cappedRoot(mEnd[static_cast<size_t>(x)], mRadius);
    }

    int mRadius, mExact;
    NearestFull mFull;
    LineTransform mEnvelope;
    Buffer<float> mEnd;
};

// The values of a plane, unchanged.
class RampRows : public DistanceRows {
public:
    RampRows(int width, int height, const LevelPlane& plane) : DistanceRows(width, height), mPlane(plane) {}

    bool make() { return allocate(); }

private:
    void measure(float* row) override {
        const uint8_t* levels = mPlane.pixels + ptrdiff_t{mY} * mWidth;
        for (int x = 0; x < mWidth; ++x) row[x] = mPlane.ramp[levels[x]];
    }

    LevelPlane mPlane;
};

class SearchRows : public DistanceRows {
public:
    SearchRows(int width, int height, const LevelPlane& plane, bool outward)
        : DistanceRows(width, height), mRamp(plane.ramp), mOutward(outward) {}

    bool make(const LevelPlane& plane, int radius) {
        const float limit = mOutward ? kInfinite : mRamp[255];
        return mNearest.make(plane, mWidth, mHeight, radius, limit, 0, mHeight) && allocate();
    }

private:
    void measure(float* row) override { mNearest.next(row, mRamp, mOutward); }

    const float* mRamp;
    bool mOutward;
    OutwardRows mNearest;
};

// The rows, made by `arguments`; null if memory is short.
template <typename Rows, typename... Arguments>
std::unique_ptr<DistanceRows> made(std::unique_ptr<Rows> rows, const Arguments&... arguments) {
    if (rows == nullptr || !rows->make(arguments...)) return nullptr;
    return rows;
}

}  // namespace

bool DistanceRows::allocate() {
    if (!mLines.allocate(3, int64_t{mWidth} + kPadding)) return false;
    std::fill_n(mLines.get(), 3 * (int64_t{mWidth} + kPadding), 0.0f);
    return true;
}

std::unique_ptr<DistanceRows> DistanceRows::transform(const uint8_t* levels, int width, int height,
                                                      int radius) {
    if (TransformRows::fits(height, radius)) {
        return made(tryMake<TransformRows>(width, height, radius), levels);
    }
    return made(tryMake<PlaneRows>(width, height, radius), levels);
}

bool DistanceRows::isMinimum(int width, int height, int radius) {
    return TransformRows::fits(height, radius) && width <= exactColumns(height);
}

std::unique_ptr<DistanceRows> DistanceRows::search(const uint8_t* levels, int width, int height, int radius,
                                                   const float* ramp, bool outward) {
    const LevelPlane plane = {levels, ramp};
    if (radius < 1) return made(tryMake<RampRows>(width, height, plane));
    return made(tryMake<SearchRows>(width, height, plane, outward), plane, radius);
}

}  // namespace Zvex
