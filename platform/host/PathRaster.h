// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_PATHRASTER_H_
#define ZVEX_PLATFORM_HOST_PATHRASTER_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace host {

// Fills closed polygons as the platform's canvas fills paths, row by row. Each edge's share of a row's pixels
// comes from a trapezoid or triangles, in the canvas's own low-precision arithmetic, and the shares are added
// up. Windings add up; areas that are wound around twice are covered once.
class PathRaster {
public:
    // With `fillsRight`, edges that go up (y downwards) begin the covered part, else they end it.
    PathRaster(int width, int height, bool fillsRight);

    // x in pixels, y in quarters of one.
    void line(double fromX, double fromY, double toX, double toY);

    // Levels of 0 to 255.
    void levels(uint8_t* target) const;

private:
    void strip(int row, int64_t left, int64_t right, int64_t climb, int full, bool begins);
    void put(int row, int64_t column, int change);
    uint8_t* levelsOfRow(size_t row, uint8_t* target) const;

    int mWidth, mHeight;
    bool mFillsRight;
    // The difference of each level from that of the pixel before, in blocks of pixels. Only blocks that an
    // edge touches have values; there are few, so most of this memory is never touched.
    size_t mBlocks;  // in a row
    std::unique_ptr<int[]> mChanges;
    std::vector<uint8_t> mTouched;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_PATHRASTER_H_
