// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_STROKEREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_STROKEREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"

// The stroke as defined: each pixel of the picture is the largest value that any pixel of the text gives it
// through the disc.
namespace reference {

struct Disc {
    int side = 0;
    std::vector<int> cells;
};

inline int strokeByte(float unit) {
    return static_cast<int>(std::min(1.0f, std::max(0.0f, unit)) * 255.0f + 0.5f);
}

inline Disc makeDisc(float radius) {
    const int r = static_cast<int>(radius + 0.5f);
    Disc disc;
    disc.side = 2 * r + 1;
    for (int y = -r; y <= r; ++y) {
        for (int x = -r; x <= r; ++x) {
            const float distance = sqrtf(static_cast<float>(x * x + y * y));
            const bool middle = x == 0 && y == 0;
            disc.cells.push_back(strokeByte(middle ? radius : 1 - (distance - radius)));
        }
    }
    return disc;
}

struct Plane {
    int width = 0, height = 0;
    std::vector<int> values;

    // 0 outside.
    int at(int x, int y) const {
        return x < 0 || x >= width || y < 0 || y >= height ? 0 : values[static_cast<size_t>(y) * width + x];
    }
};

// The plane grown by half a side on every side; each of its pixels lays the disc over the result.
inline Plane dilate(const Plane& source, const Disc& disc) {
    const int side = disc.side, width = source.width + side / 2 * 2;
    Plane result{width, source.height + side / 2 * 2, {}};
    result.values.resize(static_cast<size_t>(width) * result.height);
    for (int y = 0; y < source.height; ++y) {
        for (int x = 0; x < source.width; ++x) {
            const int value = source.at(x, y);
            if (value == 0) continue;  // raises nothing
            for (int i = 0; i < side * side; ++i) {
                int& raised = result.values[static_cast<size_t>(y + i / side) * width + x + i % side];
                raised = std::max(raised, value + disc.cells[static_cast<size_t>(i)] - 255);
            }
        }
    }
    return result;
}

inline Plane complement(Plane plane) {
    for (int& value : plane.values) value = 255 - value;
    return plane;
}

// The box of the mask with a border of one transparent pixel; beyond the mask there is no coverage.
inline Plane strokeSource(const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box) {
    Plane plane{box.right - box.left + 2, box.bottom - box.top + 2, {}};
    for (int y = -1; y < plane.height - 1; ++y) {
        for (int x = -1; x < plane.width - 1; ++x) {
            const bool inBox = x >= 0 && x < plane.width - 2 && y >= 0 && y < plane.height - 2;
            plane.values.push_back(inBox ? coverageIn(mask, box, x, y) : 0);
        }
    }
    return plane;
}

// position 0: centred, 1: outside, else inside. other may be null.
inline void drawStroke(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap* other, const Zvex::ZvBitmap& mask,
                       const Zvex::ZvRect& box, int layerMode, float width, uint32_t color, int position) {
    const Disc disc = makeDisc(position == 0 ? width * 0.5f : width);
    const Plane source = strokeSource(mask, box);
    Plane band = dilate(position == 0 || position == 1 ? source : complement(source), disc);
    if (position == 0) {
        const Plane inside = dilate(complement(source), disc);
        for (size_t i = 0; i < band.values.size(); ++i)
            band.values[i] = std::min(band.values[i], inside.values[i]);
    }
    const std::vector<uint8_t> coverage(band.values.begin(), band.values.end());
    const int mode = position == 0 && layerMode != 1 ? 1 : 2;
    const int reach = 1 + disc.side / 2;
    for (const Zvex::ZvBitmap* picture : {target, other}) {
        if (picture == nullptr) continue;
        drawBitmapBlend8(box.left - reach, box.top - reach, picture, coverage.data(), band.width, band.height,
                         band.width, color, mode);
    }
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_STROKEREFERENCE_H_
