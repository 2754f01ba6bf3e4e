// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_NEARESTFULL_H_
#define ZVEX_EFFECT_KERNELS_NEARESTFULL_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// The distance to the nearest full pixel (one at or below 0) within a window, row by row from the top. First
// the columns are searched, by steps down and up, then each row, by squares. The square becomes a distance by
// a table or a square root. The distance rises with the square, so the smallest square wins.
class NearestFull {
public:
    // Whether a window's squares fit the arithmetic.
    static bool fits(int64_t reachX, int64_t reachY) {
        return reachX * reachX + reachY * reachY < kFar && reachY < INT16_MAX - 1;
    }

    // Prepares the rows `first` to `last` of a plane, of bytes or of floats. Steps are counted up to `most`,
    // which is above reachY. False if memory is short.
    template <typename Value>
    bool make(const Value* plane, int width, int first, int last, int reachX, int reachY, int most);

    // Moves to the next row; at the first call, to the first one. Returns whether any full pixel is within
    // its reach.
    bool next();
    // The steps to the nearest full pixel in each column of that row.
    const int16_t* steps() const { return mCurrent.get(); }
    // The distances of that row. A square up to `last` gives its entry in `roots`, or its square root if
    // `roots` is null; a larger one gives `far`. Writes up to 63 floats beyond the row.
    void distances(float* row, const float* roots, int last, float far) const;

private:
    static constexpr int kNarrowest = 90;
    static constexpr int16_t kNarrowFar = 16384;
    static constexpr int32_t kFar = 1 << 30;
    static_assert(2 * kNarrowest * kNarrowest < kNarrowFar &&
                      kNarrowFar + kNarrowest * kNarrowest <= INT16_MAX,
                  "a window's squares are below what stands for none, which fits with one of them added");

    bool isNarrow() const { return mNarrowLine.get() != nullptr; }
    int16_t* narrow() const;
    int32_t* wide() const;

    Buffer<int16_t> mSteps, mCurrent;
    Buffer<int16_t> mNarrowLine;  // the squares of a row; null if they are in mWideLine
    Buffer<int32_t> mWideLine;
    const int16_t* mNext = nullptr;
    int mWidth = 0, mReachX = 0, mNone = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_NEARESTFULL_H_
