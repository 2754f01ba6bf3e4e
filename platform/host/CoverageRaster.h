// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_COVERAGERASTER_H_
#define ZVEX_PLATFORM_HOST_COVERAGERASTER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace host {

// The area that closed polygons cover of each pixel: lines are cut where they leave a pixel, and a pixel
// keeps the height its lines climb and twice the area left of them. Windings add up; what they wind around
// twice is covered once. Coordinates have 8 fraction bits.
class CoverageRaster {
public:
    // Pixels 0 to width and height; lines may lie anywhere.
    CoverageRaster(int width, int height);

    void moveTo(int64_t x, int64_t y);
    void lineTo(int64_t x, int64_t y);

    // The pixels' levels, 0 to 255, cut as FreeType does and replaced by those of a table; the rows with the
    // greatest y first.
    void levels(const uint8_t (&table)[256], uint8_t* target) const;

private:
    struct Cell {
        int32_t cover = 0, area = 0;
    };
    void add(int64_t column, int64_t row, int64_t fromX, int64_t fromY, int64_t toX, int64_t toY);

    int mWidth, mHeight;
    std::vector<Cell> mCells;  // a row has one more in front, for what lies to the left
    int64_t mX = 0, mY = 0;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_COVERAGERASTER_H_
