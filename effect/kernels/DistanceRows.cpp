// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/DistanceRows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "effect/kernels/DistanceTransform.h"
#include "effect/kernels/NearestFull.h"
#include "effect/kernels/OutwardSearch.h"
#include "foundation/OutOfMemory.h"
#include "raster/CpuTarget.h"
#include "raster/Rects.h"

namespace Zvex {

namespace {

#define ZVEX_KERNELS "effect/kernels/DistanceRowsKernels.inc"
#include "raster/ForEachTarget.h"

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

// The largest radius on open ground for which the true minimum is searched.
constexpr int kFarthestSearched = 160;

int exactColumns(int height) {
    const int64_t tallest = int64_t{height} * height;
    if (tallest >= kExact) return 0;
    return static_cast<int>(std::sqrt(static_cast<double>(kExact - tallest)));
}

// A copy of the levels with the pixels around them.
bool padLevels(Buffer<uint8_t>* plane, const PlacedLevels& levels, const ZvRect& part) {
    const ptrdiff_t width = widthOf(part);
    if (!plane->allocate(heightOf(part), width)) return false;
    std::fill_n(plane->get(), heightOf(part) * width, levels.isFullAround ? uint8_t{0} : uint8_t{255});
    uint8_t* to = plane->get() + (levels.rect.top - part.top) * width + (levels.rect.left - part.left);
    for (ptrdiff_t y = 0; y < heightOf(levels.rect); ++y)
        std::copy_n(levels.pixels + y * widthOf(levels.rect), widthOf(levels.rect), to + y * width);
    return true;
}

// Part of the transform of a large plane, from envelopes. If nothing is full around the levels, the envelopes
// begin and end with them: the parabolas around lie above all others. Else rows and columns beside the levels
// are transformed once for all equal ones.
class PlaneRows : public DistanceRows {
public:
    PlaneRows(const PlacedLevels& levels, int width, int height, const ZvRect& part, int radius)
        : DistanceRows(widthOf(part), heightOf(part)),
          mRadius(radius),
          mWholeWidth(width),
          mWholeHeight(height),
          mPart(part),
          mRect(levels.rect),
          mIsFull(levels.isFullAround) {}

    bool make(const PlacedLevels& levels) {
        const int longest = std::max(mWholeWidth, mWholeHeight);
        if (!mEnvelope.allocate(longest) || !mLine.allocate(longest) || !mBeside.allocate(mHeight) ||
            !mSquares.allocate(mHeight, widthOf(mRect)) || !allocate()) {
            return false;
        }
        return transformColumns(levels.pixels);
    }

private:
    static constexpr int kColumns = 16;  // transformed together
    // Rows beside the levels that are kept, by the root of the square that all their columns have. It is a
    // whole number, and small: rounding is all that makes it differ from 0.
    static constexpr int kMostKept = 16;

    bool transformColumns(const uint8_t* levels) {
        Buffer<float> columns;
        if (!columns.allocate(kColumns, mHeight)) return false;
        std::fill_n(mLine.get(), mWholeHeight, mIsFull ? 0.0f : kEndlessSquare);
        transformLine(mBeside.get(), 0, mWholeHeight);
        const int width = widthOf(mRect);
        for (int x = 0; x < width; x += kColumns) {
            const int count = std::min(kColumns, width - x);
            for (int i = 0; i < count; ++i)
                transformColumn(columns.get() + i * ptrdiff_t{mHeight}, levels + x + i);
            for (ptrdiff_t y = 0; y < mHeight; ++y) {
                for (int i = 0; i < count; ++i)
                    mSquares.get()[y * width + x + i] = columns.get()[i * ptrdiff_t{mHeight} + y];
            }
        }
        return true;
    }

    void transformColumn(float* result, const uint8_t* levels) {
        int first = mRect.bottom, last = mRect.top;  // pixels unlike those around
        for (int y = mRect.top; y < mRect.bottom; ++y) {
            const bool isFull = levels[ptrdiff_t{y - mRect.top} * widthOf(mRect)] == 0;
            mLine.get()[y] = isFull ? 0.0f : kEndlessSquare;
            if (isFull == mIsFull) continue;
            first = std::min(first, y);
            last = y + 1;
        }
        if (first >= last) {
            std::copy_n(mBeside.get(), mHeight, result);
        } else {
            transformLine(result, mIsFull ? 0 : first, mIsFull ? mWholeHeight : last);
        }
    }

    void transformLine(float* result, int begin, int end) {
        mEnvelope.find(mLine.get(), begin, end);
        mEnvelope.squares(result, mLine.get(), mPart.top, mPart.bottom);
    }

    void measure(float* row) override {
        const float beside = mBeside[static_cast<size_t>(mY)], root = std::sqrt(beside);
        const int width = widthOf(mRect);
        const float* squares = mSquares.get() + ptrdiff_t{mY} * width;
        if (!mIsFull || root >= kMostKept ||
            std::any_of(squares, squares + width, [=](float square) { return square != beside; })) {
            measureRow(row, beside, squares);
            return;
        }
        Buffer<float>& kept = mKept[static_cast<int>(root)];
        if (kept.get() == nullptr) {
            measureRow(row, beside, squares);
            if (kept.allocate(mWidth)) std::copy_n(row, mWidth, kept.get());
        } else {
            std::copy_n(kept.get(), mWidth, row);
        }
    }

    void measureRow(float* row, float beside, const float* squares) {
        if (mIsFull) std::fill_n(mLine.get(), mWholeWidth, beside);
        std::copy_n(squares, widthOf(mRect), mLine.get() + mRect.left);
        mEnvelope.find(mLine.get(), mIsFull ? 0 : mRect.left, mIsFull ? mWholeWidth : mRect.right);
        const float limit = static_cast<float>(mRadius);
        ZVEX_ON_TARGET(envelopeRoots(row, mPart.left, mPart.right, mLine.get(), mEnvelope.vertices(),
                                     mEnvelope.bounds(), limit));
    }

    int mRadius, mWholeWidth, mWholeHeight;
    ZvRect mPart, mRect;  // of the whole plane: the part to measure, and the levels
    bool mIsFull;
    LineTransform mEnvelope;
    Buffer<float> mLine;
    Buffer<float> mSquares;          // of the columns with levels, row by row
    Buffer<float> mBeside;           // of all other columns
    Buffer<float> mKept[kMostKept];  // rows
};

// The transform of a plane alone, from the true minimum, and from the envelope only where that could differ.
class TransformRows : public DistanceRows {
public:
    static bool fits(int height, int radius) {
        return exactColumns(height) > 0 && int64_t{radius} * radius <= kExact;
    }

    TransformRows(int width, int height, int radius)
        : DistanceRows(width, height), mRadius(radius), mExact(exactColumns(height)) {}

    bool make(const PlacedLevels& levels, const ZvRect& part) {
        Buffer<uint8_t> plane;
        if (!padLevels(&plane, levels, part)) return false;
        const bool wide = mWidth > mExact;
        if (wide && (!mEnvelope.allocate(mWidth) || !mEnd.allocate(mWidth, 2))) return false;
        const int reachX = std::min(mRadius, mWidth - 1), reachY = std::min(mRadius, mHeight - 1);
        return mFull.make(plane.get(), mWidth, 0, mHeight - 1, reachX, reachY, wide ? mHeight : reachY + 1) &&
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
    static bool fits(int width, int height, const ZvRect& part) {
        constexpr int64_t kMostPixels = 4;  // for each of the part
        return int64_t{width} * height <= kMostPixels * widthOf(part) * heightOf(part);
    }

    PartRows(int width, int height, const ZvRect& part, int radius)
        : DistanceRows(widthOf(part), heightOf(part)), mPart(part), mRows(width, height, radius) {}

    bool make(const PlacedLevels& levels, const ZvRect& whole) {
        if (!mRows.make(levels, whole)) return false;
        for (int y = 0; y < mPart.top; ++y) mRows.next();
        return allocate();
    }

private:
    void measure(float* row) override {
        mRows.next();
        std::copy_n(mRows.row(mPart.top + mY) + mPart.left, mWidth, row);
    }

    ZvRect mPart;
    TransformRows mRows;
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

std::unique_ptr<DistanceRows> DistanceRows::transform(const PlacedLevels& levels, int width, int height,
                                                      const ZvRect& part, int radius) {
    // A part has the same minimum as the whole. The columns after it do not affect it if they begin where
    // sums are still exact: full pixels end the parabolas, and others are higher than all parabolas.
    const bool isWhole = widthOf(part) == width && heightOf(part) == height;
    const bool isExact = part.right <= exactColumns(height) - kRoundedSlopes;
    // The search for a far minimum costs more than the envelope.
    const bool isFar = radius > kFarthestSearched && !levels.isFullAround;
    if (TransformRows::fits(height, radius) && !isFar) {
        if (isWhole || isExact)
            return made(tryMake<TransformRows>(widthOf(part), heightOf(part), radius), levels, part);
        if (PartRows::fits(width, height, part))
            return made(tryMake<PartRows>(width, height, part, radius), levels, ZvRect(0, 0, width, height));
    }
    return made(tryMake<PlaneRows>(levels, width, height, part, radius), levels);
}

std::unique_ptr<DistanceRows> DistanceRows::search(const uint8_t* levels, int width, int height, int radius,
                                                   const float* ramp, bool outward) {
    const LevelPlane plane = {levels, ramp};
    if (radius < 1) return made(tryMake<RampRows>(width, height, plane));
    return made(tryMake<SearchRows>(width, height, plane, outward), plane, radius);
}

}  // namespace Zvex
