// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PATHRASTER_H_
#define ZVEX_PLATFORM_HOST_PATHRASTER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// Fills closed polygons as the platform's canvas fills paths: row by row, each edge's share of a row's pixels
// found by a trapezoid or by triangles in its own short arithmetic, and added up. Windings add up; what is
// wound around twice is covered once.
class PathRaster {
public:
    // Edges that rise, y downwards, begin what is covered (`fillsRight`) or end it.
    PathRaster(int width, int height, bool fillsRight);

    // Pixels; y in quarters of one.
    void line(double fromX, double fromY, double toX, double toY);

    // Levels of 0 to 255.
    void levels(uint8_t* target) const;

private:
    void strip(int row, int64_t left, int64_t right, int64_t climb, int full, bool begins);
    void put(int row, int64_t column, int change);

    int mWidth, mHeight;
    bool mFillsRight;
    std::vector<int> mChanges;  // of the level from the pixel before
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PATHRASTER_H_
