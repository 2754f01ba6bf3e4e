// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_
#define ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"

namespace Zvex {

// The exact Euclidean distance transform of Felzenszwalb and Huttenlocher (2012): each line becomes the lower
// envelope of the parabolas over its pixels. It costs the same whatever the distances are, and it knows full
// pixels only: see DistanceSearch.h for the fractions of partly covered ones.

// What stands for "no distance" in a plane; its square root exceeds any picture.
constexpr float kEndlessSquare = 1e20f;

// result[q] = the smallest of values[p] + (q - p)^2, in squared pixels. The arrays must not overlap. count
// below 1 writes nothing. The envelope is found in single precision: near the place where two parabolas
// cross, and in rows of several thousand pixels, the other one may be read, a little above the true minimum.
// False when memory is short, with nothing written.
bool squaredDistances(float* result, const float* values, int count);

// The same over a plane of packed rows, columns first, then rows, in place: with kEndlessSquare on the pixels
// of one kind and 0 on those of the other, each of the former becomes its squared distance to the nearest of
// the latter. Null planes and empty sizes are left alone.
bool squaredDistances(float* plane, int width, int height);

// The transform of single lines, with the memory for it.
class LineTransform {
public:
    // For lines of up to `longest` pixels.
    bool allocate(int longest) {
        return mVertices.allocate(longest) && mBounds.allocate(int64_t{longest} + 1);
    }
    // See squaredDistances. From `first` on, as if the line began there.
    void run(float* result, const float* values, int count, int first = 0) const;

private:
    Buffer<int> mVertices;  // the lowest points of the envelope's parabolas, from left to right
    Buffer<float> mBounds;  // parabola k is the lowest from mBounds[k] to mBounds[k + 1]
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCETRANSFORM_H_
