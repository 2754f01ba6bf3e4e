// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_
#define ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// The exact Euclidean distance transform of Felzenszwalb and Huttenlocher (2012): each line becomes the lower
// envelope of the parabolas over its pixels. The cost does not depend on the distances. It handles full
// pixels only; see DistanceSearch.h for the fractions of partly covered ones.

// Stands for "no distance" in a plane; its square root exceeds any picture.
constexpr float kEndlessSquare = 1e20f;

// result[q] = the smallest of values[p] + (q - p)^2, in squared pixels. The arrays must not overlap. A count
// below 1 writes nothing. The envelope is found in single precision: close to the crossing of two parabolas,
// and in rows of several thousand pixels, it may take the wrong one of the two, slightly above the true
// minimum. False, with nothing written, if memory is short.
bool squaredDistances(float* result, const float* values, int count);

// The same over a plane of packed rows, columns first, then rows, in place. Set the pixels of one kind to 0
// and the others to kEndlessSquare: each of the others becomes its squared distance to the nearest pixel of
// the first kind. Null planes and empty sizes are left alone.
bool squaredDistances(float* plane, int width, int height);

// The transform of single lines, with its memory.
class LineTransform {
public:
    // For lines of up to `longest` pixels.
    bool allocate(int longest) {
        return mVertices.allocate(longest) && mBounds.allocate(int64_t{longest} + 1);
    }
    // See squaredDistances. With `first`, as if the line began at that pixel.
    void run(float* result, const float* values, int count, int first = 0) const {
        find(values, first, count);
        squares(result + first, values, first, count);
    }
    // Finds the envelope of the pixels begin..end - 1, at least one. `values` is where the line begins.
    void find(const float* values, int begin, int end) const;
    // Writes the envelope at the pixels begin..end - 1, which may lie beyond the ones it was found for.
    void squares(float* result, const float* values, int begin, int end) const;

    const int* vertices() const { return mVertices.get(); }
    const float* bounds() const { return mBounds.get(); }

private:
    Buffer<int> mVertices;  // the lowest points of the envelope's parabolas, from left to right
    Buffer<float> mBounds;  // parabola k is the lowest from mBounds[k] to mBounds[k + 1]
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_
