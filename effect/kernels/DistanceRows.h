// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_DISTANCEROWS_H_
#define ZVEX_EFFECT_KERNELS_DISTANCEROWS_H_

#include <cstdint>
#include <memory>

#include "effect/kernels/Buffer.h"
#include "raster/ZvRect.h"

namespace Zvex {

// The levels of a part of a plane. All other pixels of the plane are full, or none is.
struct PlacedLevels {
    const uint8_t* pixels;
    ZvRect rect;  // of the plane
    bool isFullAround;
};

// The distances of a plane, row by row from the top, without keeping a whole plane of floats. The plane is
// given as levels, in bytes of packed rows: 0 for a full pixel, from which distances are measured, 1 to 254
// for a partly covered one, 255 for any other. Its number of pixels must fit an int.
class DistanceRows {
public:
    virtual ~DistanceRows() = default;

    // Part of the transform of a plane of the given size: the distance to the nearest full pixel, or
    // `radius`, at least 1, if that is less. Other levels are not told apart. The part must hold the levels
    // and, if all around them is full, full pixels at its edges. The cost for each pixel is small and hardly
    // grows with the radius. In planes of more than 4095 rows or columns, rounded sums affect the distances;
    // there, if all around is full, a row of the levels also costs what a row of the whole plane costs, and a
    // column likewise. Null if memory is short.
    static std::unique_ptr<DistanceRows> transform(const PlacedLevels& levels, int width, int height,
                                                   const ZvRect& part, int radius);

    // searchNearest on the plane of values ramp[level]. The ramp rises with the level: ramp[0] is 0,
    // ramp[255] the radius. With `outward`, searchOutward; then ramp[0] is at most 0 and ramp[255] at least
    // 1. Levels and ramp must outlive the rows. A radius below 1 leaves the values unchanged. Null if memory
    // is short.
    static std::unique_ptr<DistanceRows> search(const uint8_t* levels, int width, int height, int radius,
                                                const float* ramp, bool outward);

    // Measures the next row. Call it at most once for each row.
    void next() { measure(line(mY)), ++mY; }
    // Row y, one of the last three measured.
    const float* row(int y) const { return line(y); }

protected:
    DistanceRows(int width, int height) : mWidth(width), mHeight(height) {}
    bool allocate();
    // Row mY; up to kPadding floats beyond the row may be written.
    virtual void measure(float* row) = 0;

    static constexpr int kPadding = 64;
    const int mWidth, mHeight;
    int mY = 0;

private:
    float* line(int y) const { return mLines.get() + y % 3 * (int64_t{mWidth} + kPadding); }

    Buffer<float> mLines;  // the last three rows
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_DISTANCEROWS_H_
