// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_NEARESTFULL_H_
#define ZVEX_EFFECT_KERNELS_NEARESTFULL_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// The distance to the nearest full pixel (one at or below 0) within a window, row by row from the top. Each
// column is searched first, by steps down and up, then each row, by squares; the result is a function of the
// square, looked up in a table or the root. It rises with the square, so the smallest square wins.
class NearestFull {
public:
    // Whether a window's squares fit the arithmetic.
    static bool fits(int64_t reachX, int64_t reachY) {
        return reachX * reachX + reachY * reachY < kFar && reachY < INT16_MAX - 1;
    }

    // For the rows `first` to `last` of a plane, of bytes or of floats. Steps are counted up to `most`, above
    // reachY. False when memory is short.
    template <typename Value>
    bool make(const Value* plane, int width, int first, int last, int reachX, int reachY, int most);

    // Goes to the next row, the first one to begin with. Whether any full pixel is within its reach.
    bool next();
    // Of that row, the steps to the nearest full pixel in each column.
    const int16_t* steps() const { return mCurrent.get(); }
    // Of that row, the distances: of squares up to `last` the entries of `roots`, or without that table their
    // square roots; else `far`. Writes up to 63 floats beyond the row.
    void distances(float* row, const float* roots, int last, float far) const;

private:
    static constexpr int kNarrowest = 90;
    static constexpr int16_t kNarrowFar = 16384;
    static constexpr int32_t kFar = 1 << 30;
    static_assert(2 * kNarrowest * kNarrowest < kNarrowFar &&
                      kNarrowFar + kNarrowest * kNarrowest <= INT16_MAX,
                  "a window's squares are below what stands for none, which fits with one of them added");

    int16_t* narrow() const;
    int32_t* wide() const;

    Buffer<int16_t> mSteps, mCurrent;
    Buffer<int16_t> mNarrowLine;  // the squares of a row; one of the two
    Buffer<int32_t> mWideLine;
    const int16_t* mNext = nullptr;
    int mWidth = 0, mReachX = 0, mNone = 0;
    bool mIsNarrow = false;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_NEARESTFULL_H_
