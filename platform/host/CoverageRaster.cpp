// SPDX-License-Identifier: Apache-2.0
#include "platform/host/CoverageRaster.h"

#include <algorithm>

namespace host {

namespace {

constexpr int64_t kOne = 256;

// The quotient rounded down; d is positive.
int64_t floorQuotient(int64_t n, int64_t d) {
    return n >= 0 ? n / d : -((-n + d - 1) / d);
}

}  // namespace

CoverageRaster::CoverageRaster(int width, int height)
    : mWidth(width),
      mHeight(height),
      mCells((static_cast<size_t>(width) + 1) * static_cast<size_t>(height)) {}

void CoverageRaster::moveTo(int64_t x, int64_t y) {
    mX = x;
    mY = y;
}

// Coordinates are relative to the pixel's corner.
void CoverageRaster::add(int64_t column, int64_t row, int64_t fromX, int64_t fromY, int64_t toX,
                         int64_t toY) {
    if (row < 0 || row >= mHeight || column >= mWidth) return;
    const int64_t place = row * (int64_t{mWidth} + 1) + std::max<int64_t>(column, -1) + 1;
    Cell& cell = mCells[static_cast<size_t>(place)];
    cell.cover += static_cast<int32_t>(toY - fromY);
    cell.area += static_cast<int32_t>((toY - fromY) * (fromX + toX));
}

void CoverageRaster::lineTo(int64_t toX, int64_t toY) {
    int64_t column = floorQuotient(mX, kOne), row = floorQuotient(mY, kOne);
    const int64_t lastColumn = floorQuotient(toX, kOne), lastRow = floorQuotient(toY, kOne);
    int64_t x = mX - column * kOne, y = mY - row * kOne;  // within the pixel
    const int64_t dx = toX - mX, dy = toY - mY;
    mX = toX;
    mY = toY;
    if ((row < 0 && lastRow < 0) || (row >= mHeight && lastRow >= mHeight)) return;
    if (dy == 0) return;
    if (column >= mWidth && lastColumn >= mWidth) return;
    // The sign of `side` and its sums tell on which side of each corner of the pixel the line passes, and so
    // where it leaves the pixel.
    int64_t side = dx * y - dy * x;
    while (column != lastColumn || row != lastRow) {
        if (dx == 0) {
            const int64_t edge = dy > 0 ? kOne : 0;
            add(column, row, x, y, x, edge);
            y = kOne - edge;
            row += dy > 0 ? 1 : -1;
        } else if (side <= 0 && side - dx * kOne > 0) {  // to the left
            const int64_t at = -side / -dx;
            side -= dy * kOne;
            add(column, row, x, y, 0, at);
            x = kOne;
            y = at;
            --column;
        } else if (side - dx * kOne <= 0 && side - dx * kOne + dy * kOne > 0) {  // to the next row
            side -= dx * kOne;
            const int64_t at = -side / dy;
            add(column, row, x, y, at, kOne);
            x = at;
            y = 0;
            ++row;
        } else if (side - dx * kOne + dy * kOne <= 0 && side + dy * kOne >= 0) {  // to the right
            side += dy * kOne;
            const int64_t at = side / dx;
            add(column, row, x, y, kOne, at);
            x = 0;
            y = at;
            ++column;
        } else {  // to the row before
            const int64_t at = side / -dy;
            side += dx * kOne;
            add(column, row, x, y, at, 0);
            x = at;
            y = kOne;
            --row;
        }
    }
    add(column, row, x, y, toX - column * kOne, toY - row * kOne);
}

void CoverageRaster::levels(const uint8_t (&table)[256], uint8_t* target) const {
    for (int row = mHeight - 1; row >= 0; --row) {
        const Cell* cell = &mCells[static_cast<size_t>(row) * (static_cast<size_t>(mWidth) + 1)];
        int64_t cover = cell->cover;
        for (int x = 0; x < mWidth; ++x) {
            ++cell;
            cover += cell->cover;
            int64_t level = (cover * (2 * kOne) - cell->area) >> 9;  // the area counts 2 * 256 * 256
            if (level < 0) level = ~level;
            *target++ = table[std::min<int64_t>(level, 255)];
        }
    }
}

}  // namespace host
