// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCE_H_
#define ZVEX_EFFECT_KERNELS_DISTANCE_H_

#include <cstdint>

namespace Zvex {

// How far the pixels of a plane lie from a glyph's edge, in pixels. Planes are floats, rows packed.
//
// Two methods. The transform is exact between pixels of two kinds, at a cost that does not depend on the
// distance. The searches keep the fractions of partly covered pixels, and so the smooth edges, and look no
// further than a window; they measure in the roots of SquareRoots.h.
//
// All of them return false when memory is short, with the plane as it was, and else true. Null planes and
// empty sizes are left alone.

// result[q] = the smallest of values[p] + (q - p)^2, in squared pixels. The arrays must not overlap. count
// below 1 writes nothing. The lower envelope of the parabolas is found in single precision: near the place
// where two of them cross, and in rows of several thousand pixels, the other one may be read, a little above
// the true minimum.
bool squaredDistances(float* result, const float* values, int count);

// The same over a plane, columns first, then rows, in place: with a large number on the pixels of one kind
// and 0 on those of the other, each of the former becomes its squared distance to the nearest of the latter.
bool squaredDistances(float* plane, int width, int height);

// The distances of a plane row by row, from the top; nothing of the size of a plane of floats is kept. The
// plane is given as levels, bytes of packed rows: 0 for a full pixel, from which distances are measured, 1 to
// 254 for a partly covered one, 255 for any other. It has to fit an int in pixels and to outlive the rows.
class DistanceRows {
public:
    DistanceRows() = default;
    ~DistanceRows();
    DistanceRows(const DistanceRows&) = delete;
    DistanceRows& operator=(const DistanceRows&) = delete;

    // The transform: the distance to the nearest full pixel, or `radius`, at least 1, where it is greater.
    // All other levels are the same. Costs little for each pixel, hardly more for a large radius; up to a
    // height of 4095, beyond that it takes the transform of a plane.
    bool transform(const uint8_t* levels, int width, int height, int radius);

    // searchNearest of the plane of the values ramp[level], which rise with the level: ramp[0] is 0,
    // ramp[255] the radius. `outward`, searchOutward; then ramp[0] is at most 0 and ramp[255] at least 1. The
    // ramp has to outlive the rows. A radius below 1 leaves the values.
    bool search(const uint8_t* levels, int width, int height, int radius, const float* ramp, bool outward);

    // Measures the next row. As many calls as there are rows.
    void next();
    // Row y, one of the last three measured.
    const float* row(int y) const;

private:
    struct Rows;
    bool make(const uint8_t* levels, int width, int height, int radius);

    Rows* rows_ = nullptr;  // owned
};

// One search over the rows rowBegin..rowEnd - 1 of a plane, which has to fit an int in pixels. A pixel's
// window is the square of those within `radius` of it along both axes, cut at the plane's edges; radii below
// 1 change nothing.
struct DistanceSearch {
    float* plane;
    int height, width;
    int radius;
    int rowBegin, rowEnd;  // half-open; cut at the plane's edges
};

// Every pixel becomes the smallest of itself and, over the pixels of value below 1 in its window, of that
// value plus the distance there. No value may be negative. Rows can be split anyhow: nothing that is below 1
// changes, nothing else falls below 1.
//
// Costs a little for every pixel, and for each pixel between 0 and 1 as much of a window as sees it past
// neighbours below its value. False, too, for windows that reach further than 23170 pixels both ways.
bool searchNearest(const DistanceSearch& search);

// Every pixel above 0 with a pixel below 1 in its window becomes the smallest of those pixels' distances,
// each plus that pixel's value if it is above 0. What it was itself no longer counts, so in a corner of the
// window a pixel may end further out than the radius. Values may be anything. Rows can be split anyhow, and
// the cost is that of searchNearest.
bool searchOutward(const DistanceSearch& search);

// Every pixel below 0 becomes the largest of itself and, over the pixels of value above 1 in its window, of
// that value less the distance there. In place, row by row and from left to right: a pixel that rises above 1
// counts for those after it, and rows can be split only into ranges done in order. Once searchOutward, with
// this radius or a larger one, has been over all rows that the windows reach, nothing rises above 0, and the
// order is free. Costs one window for each pixel below 0.
bool searchInward(const DistanceSearch& search);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCE_H_
