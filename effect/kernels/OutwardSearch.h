// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_OUTWARDSEARCH_H_
#define ZVEX_EFFECT_KERNELS_OUTWARDSEARCH_H_

#include <cstddef>
#include <cstdint>

#include "effect/kernels/Buffer.h"
#include "effect/kernels/NearestFull.h"
#include "effect/kernels/SearchWindow.h"

namespace Zvex {

// A seed of the outward search: a pixel between 0 and 1.
struct Seed {
    int x;
    float value;
    Advantages advantages;
};

// Where seeds come from: a plane of levels with a ramp that gives their values, or a plane of values.
struct LevelPlane {
    const uint8_t* pixels;  // 0 is full, 255 neither full nor a seed
    const float* ramp;      // 256 values
};
struct ValuePlane {
    const float* pixels;
};

// The seeds of some rows of a plane, row by row.
class Seeds {
public:
    // Reads the seeds of the rows `first` to `last`. False if memory is short.
    template <typename Plane>
    bool collect(const Plane& plane, int width, int height, int first, int last);

    const Seed* begin(int y) const { return mSeeds.get() + mBegins[static_cast<size_t>(y - mFirst)]; }
    const Seed* end(int y) const { return begin(y + 1); }

private:
    Buffer<Seed> mSeeds;
    Buffer<size_t> mBegins;
    int mFirst = 0;
};

// The best candidate of every pixel, row by row. Candidates are the distances to the full pixels of its
// window, and for each seed of the window its value plus the distance to it; the smallest is the best.
class OutwardRows {
public:
    // For the rows begin..end - 1. Distances from `limit` on are not needed. False if memory is short or the
    // window is larger than NearestFull takes.
    template <typename Plane>
    bool make(const Plane& plane, int width, int height, int radius, float limit, int begin, int end);

    // The candidates of the next row; infinity where the window has none. Null if no window of the row has
    // any.
    const float* next();

    // The values of the next row, for a plane of levels. They are the result of searchNearest, or of
    // searchOutward if `outward`, on the values that the ramp gives the levels. Writes up to 63 floats beyond
    // the row.
    void next(float* row, const float* ramp, bool outward);

private:
    void prepare(int y);
    bool& isFound(int y) const { return mFound[static_cast<size_t>(y % mRows.view().count)]; }

    WindowRoots mRoots;
    WindowVisibility mVisibility;
    CandidateRows mRows;
    Buffer<bool> mFound;       // whether a row of the ring has candidates
    Buffer<float> mDistances;  // for each square that is the sum of two within the reach
    NearestFull mFull;
    Seeds mSeeds;
    int mNextSeeded = 0, mLastSeeded = 0;  // the next row whose seeds are to be written, and the last one
    int mPrepared = 0;                     // the next row to fill with distances to full pixels
    int mWidth = 0, mHeight = 0, mY = 0, mLastSquare = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_OUTWARDSEARCH_H_
