// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_
#define ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_

namespace Zvex {

// Distances that keep the fractions of partly covered pixels, and so the smooth edges. They look no further
// than a window and measure in the roots of SquareRoots.h.

// One search over the rows rowBegin..rowEnd - 1 of a plane of packed rows, which has to fit an int in pixels.
// A pixel's window is the square of those within `radius` of it along both axes, cut at the plane's edges;
// radii below 1 change nothing, null planes and empty sizes are left alone.
struct DistanceSearch {
    float* plane;
    int height, width;
    int radius;
    int rowBegin, rowEnd;  // half-open; cut at the plane's edges
};

// All three return false when memory is short, with the plane as it was, and else true.

// Every pixel becomes the smallest of itself and, over the pixels of value below 1 in its window, of that
// value plus the distance there. No value may be negative. Rows can be split anyhow: nothing that is below 1
// changes, nothing else falls below 1.
//
// Costs a little for every pixel, and for each pixel between 0 and 1 as much of a window as its neighbours of
// lower value leave visible. False, too, for windows that reach further than 23170 pixels both ways.
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
// order is free. Costs most for the pixels above 1 within the radius: see InwardSearch.cpp.
bool searchInward(const DistanceSearch& search);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_
