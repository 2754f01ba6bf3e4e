// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COVERAGERASTER_H_
#define ZVEX_PLATFORM_HOST_COVERAGERASTER_H_

#include <cstdint>
#include <vector>

namespace host {

// The area of each pixel that closed polygons cover. Lines are cut at pixel borders. Each pixel adds up the
// height by which its lines climb, and twice the area left of them. Windings add up; areas that are wound
// around twice are covered once. Coordinates have 8 fraction bits.
class CoverageRaster {
public:
    // Pixels 0 to width and height; lines may lie anywhere.
    CoverageRaster(int width, int height);

    void moveTo(int64_t x, int64_t y);
    void lineTo(int64_t x, int64_t y);

    // The pixels' levels, 0 to 255, rounded down as in FreeType and mapped through a table. The rows with the
    // greatest y come first.
    void levels(const uint8_t (&table)[256], uint8_t* target) const;

private:
    struct Cell {
        int32_t cover = 0, area = 0;
    };
    void add(int64_t column, int64_t row, int64_t fromX, int64_t fromY, int64_t toX, int64_t toY);

    int mWidth, mHeight;
    std::vector<Cell> mCells;  // each row has one more cell in front, for everything left of it
    int64_t mX = 0, mY = 0;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COVERAGERASTER_H_
