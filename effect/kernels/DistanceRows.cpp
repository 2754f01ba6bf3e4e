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

// Full pixels closer than this to the first other column might be hidden by rounded parabolas.
constexpr int kRoundedSlopes = 16;

int exactColumns(int height) {
    const int64_t tallest = int64_t{height} * height;
    if (tallest >= kExact) return 0;
    return static_cast<int>(std::sqrt(static_cast<double>(kExact - tallest)));
}

// The transform of a plane within a larger one. Columns of the larger one without both kinds of pixels are
// all equal, so one of them is transformed for all. Rows are transformed one by one, in their full length.
class PlaneRows : public DistanceRows {
public:
    PlaneRows(int width, int height, int radius, const WholePlane& whole)
        : DistanceRows(width, height), mRadius(radius), mWhole(whole) {}

    bool make(const uint8_t* levels) {
        const int longest = std::max(mWhole.width, mWhole.height);
        if (!mEnvelope.allocate(longest) || !mLine.allocate(longest) || !mResult.allocate(longest) ||
            !mPlaces.allocate(mWidth) || !mEqual.allocate(mHeight) || !findPlaces(levels) ||
            !mSquares.allocate(mHeight, std::max(mPlaced, 1)) || !allocate()) {
            return false;
        }
        transformColumn(nullptr, mEqual.get(), 1);
        for (int x = 0; x < mWidth; ++x) {
            const int place = mPlaces[static_cast<size_t>(x)];
            if (place >= 0) transformColumn(levels + x, mSquares.get() + place, mPlaced);
        }
        return true;
    }

private:
    float outside() const { return mWhole.isFull ? 0.0f : kEndlessSquare; }

    // Gives each column with both kinds of pixels a place in mSquares.
    bool findPlaces(const uint8_t* levels) {
        Buffer<uint8_t> differs;
        if (!differs.allocate(mWidth)) return false;
        std::fill_n(differs.get(), mWidth, uint8_t{0});
        for (ptrdiff_t y = 0; y < mHeight; ++y) {
            const uint8_t* row = levels + y * mWidth;
            for (int x = 0; x < mWidth; ++x)
                differs[static_cast<size_t>(x)] |= static_cast<uint8_t>((row[x] == 0) != mWhole.isFull);
        }
        for (int x = 0; x < mWidth; ++x)
            mPlaces[static_cast<size_t>(x)] = differs[static_cast<size_t>(x)] != 0 ? mPlaced++ : -1;
        return true;
    }

    // Writes the plane's part of a column to every `step`th float. Null is a column like those outside.
    void transformColumn(const uint8_t* levels, float* squares, int step) {
        std::fill_n(mLine.get(), mWhole.height, outside());
        float* line = mLine.get() + mWhole.y;
        for (ptrdiff_t y = 0; levels != nullptr && y < mHeight; ++y)
            line[y] = levels[y * mWidth] == 0 ? 0.0f : kEndlessSquare;
        mEnvelope.run(mResult.get(), mLine.get(), mWhole.height);
        for (ptrdiff_t y = 0; y < mHeight; ++y) squares[y * step] = mResult.get()[mWhole.y + y];
    }

    void measure(float* row) override {
        std::fill_n(mLine.get(), mWhole.width, mEqual[static_cast<size_t>(mY)]);
        const float* squares = mSquares.get() + ptrdiff_t{mY} * mPlaced;
        for (int x = 0; x < mWidth; ++x) {
            const int place = mPlaces[static_cast<size_t>(x)];
            if (place >= 0) mLine.get()[mWhole.x + x] = squares[place];
        }
        mEnvelope.run(mResult.get(), mLine.get(), mWhole.width);
        for (int x = 0; x < mWidth; ++x) row[x] = cappedRoot(mResult.get()[mWhole.x + x], mRadius);
    }

    int mRadius;
    WholePlane mWhole;
    LineTransform mEnvelope;
    Buffer<float> mLine, mResult;
    Buffer<int> mPlaces;     // of the columns in mSquares; -1 for a column like those outside
    Buffer<float> mEqual;    // the squares of the latter
    Buffer<float> mSquares;  // the squares of the others, row by row
    int mPlaced = 0;
};

// The same for a plane alone, from the true minimum, and from the envelope only where that could differ.
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

// Part of the transform of a plane that is not much larger.
class PartRows : public DistanceRows {
public:
    static bool fits(int width, int height, const WholePlane& whole) {
        constexpr int64_t kMostPixels = 4;  // for each of the part
        return int64_t{whole.width} * whole.height <= kMostPixels * width * height;
    }

    PartRows(int width, int height, int radius, const WholePlane& whole)
        : DistanceRows(width, height), mWhole(whole), mRows(whole.width, whole.height, radius) {}

    bool make(const uint8_t* levels) {
        if (!mLevels.allocate(mWhole.height, mWhole.width)) return false;
        std::fill_n(mLevels.get(), int64_t{mWhole.width} * mWhole.height,
                    mWhole.isFull ? uint8_t{0} : uint8_t{255});
        for (ptrdiff_t y = 0; y < mHeight; ++y) {
            std::copy_n(levels + y * mWidth, mWidth,
                        mLevels.get() + (mWhole.y + y) * mWhole.width + mWhole.x);
        }
        if (!mRows.make(mLevels.get())) return false;
        for (int y = 0; y < mWhole.y; ++y) mRows.next();
        return allocate();
    }

private:
    void measure(float* row) override {
        mRows.next();
        std::copy_n(mRows.row(mWhole.y + mY) + mWhole.x, mWidth, row);
    }

    WholePlane mWhole;
    TransformRows mRows;
    Buffer<uint8_t> mLevels;
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
    return transform(levels, width, height, radius, {width, height, 0, 0, false});
}

std::unique_ptr<DistanceRows> DistanceRows::transform(const uint8_t* levels, int width, int height,
                                                      int radius, const WholePlane& whole) {
    // A part has the same minimum as the whole. The columns after it do not affect it if they begin where
    // sums are still exact: full pixels end the parabolas, and others are higher than all parabolas.
    const bool isWhole = whole.width == width && whole.height == height;
    const bool isExact = int64_t{whole.x} + width <= exactColumns(whole.height) - kRoundedSlopes;
    if (TransformRows::fits(whole.height, radius)) {
        if (isWhole || isExact) return made(tryMake<TransformRows>(width, height, radius), levels);
        if (PartRows::fits(width, height, whole))
            return made(tryMake<PartRows>(width, height, radius, whole), levels);
    }
    return made(tryMake<PlaneRows>(width, height, radius, whole), levels);
}

std::unique_ptr<DistanceRows> DistanceRows::search(const uint8_t* levels, int width, int height, int radius,
                                                   const float* ramp, bool outward) {
    const LevelPlane plane = {levels, ramp};
    if (radius < 1) return made(tryMake<RampRows>(width, height, plane));
    return made(tryMake<SearchRows>(width, height, plane, outward), plane, radius);
}

}  // namespace Zvex
