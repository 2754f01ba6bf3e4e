// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_
#define ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_

namespace Zvex {

// Distances that keep the fractions of partly covered pixels, and so the smooth edges. They look only within
// a window and measure with the roots of SquareRoots.h.

// One search over the rows rowBegin..rowEnd - 1 of a plane of packed rows, whose number of pixels must fit an
// int. A pixel's window is the square of pixels within `radius` of it along both axes, cut at the plane's
// edges. A radius below 1, a null plane or an empty size changes nothing.
struct DistanceSearch {
    float* plane;
    int height, width;
    int radius;
    int rowBegin, rowEnd;  // half-open; clamped to the plane
};

// All three return false, and leave the plane unchanged, if memory is short.

// Every pixel becomes the smallest of itself and, for each pixel of value below 1 in its window, that value
// plus the distance to it. No value may be negative. Rows may be split in any way: values below 1 do not
// change and no other value falls below 1.
//
// Costs a little for every pixel. Each pixel between 0 and 1 also costs the part of its window that its lower
// neighbours leave visible. Also false for windows that reach further than 23170 pixels both ways.
bool searchNearest(const DistanceSearch& search);

// Every pixel above 0 with pixels below 1 in its window becomes the smallest of their distances, each plus
// that pixel's value if it is above 0. Its own old value does not count, so in a corner of the window a pixel
// may get more than the radius. Values may be anything. Rows may be split in any way; the cost is that of
// searchNearest.
bool searchOutward(const DistanceSearch& search);

// Every pixel below 0 becomes the largest of itself and, for each pixel of value above 1 in its window, that
// value minus the distance to it. It works in place, row by row and from left to right: a pixel that rises
// above 1 counts for those after it, so rows can be split only into ranges done in order. But after
// searchOutward, with this radius or a larger one, over all rows that the windows reach, nothing rises above
// 0 and the order does not matter. Pixels above 1 within the radius cost most: see InwardSearch.cpp.
bool searchInward(const DistanceSearch& search);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCESEARCH_H_
