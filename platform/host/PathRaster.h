// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PATHRASTER_H_
#define ZVEX_PLATFORM_HOST_PATHRASTER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/host/PathEdge.h"

namespace host {

// Fills a path as the platform's canvas does, in its own low-precision arithmetic. Windings add up; areas
// that are wound around twice are covered once. The canvas has two ways, which differ by a few levels: a path
// of few points for its size is filled strip by strip (PathWalk.h), another edge by edge.
class PathRaster {
public:
    // The picture's size in pixels, and the place of its top left pixel in the path's coordinates.
    PathRaster(int width, int height, int left, int top);

    // Begins a contour. Contours are closed.
    void moveTo(const PathPoint& to);
    // Adds a line (1 point), a quadratic (2) or a cubic curve (3).
    void add(const PathPoint* points, size_t count);

    // Levels of 0 to 255, in rows of `width`. Call once.
    void fill(uint8_t* target);

private:
    bool hasManyPoints() const;
    std::vector<PathEdge> edges(bool turns) const;
    void addShares(PathEdge* edge);
    void addShare(int row, Fixed height, Fixed from, Fixed to, const PathEdge& edge);
    void put(int row, Fixed column, Fixed change);
    void levelsOfRow(size_t row, uint8_t* target) const;

    int mWidth, mHeight;
    float mLeft, mTop;
    std::vector<PathPoint> mPoints;
    std::vector<uint8_t> mPieces;  // the points of each; 0: a contour begins
    // The difference of each pixel's share from that of the pixel before, in blocks of pixels. Only blocks
    // that an edge touches have values; there are few, so most of this memory is never touched.
    size_t mBlocks;  // in a row
    std::unique_ptr<int[]> mChanges;
    std::vector<uint8_t> mTouched;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PATHRASTER_H_
