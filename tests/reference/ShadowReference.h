// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/GaussianReference.h"

// The two shadows as their definitions read.
namespace reference {

struct Shadow {
    float angle, distance, size;
    uint32_t color;

    int dx() const {
        const float along = cosf(angle * 3.14159f / 180.0f) * distance;
        return static_cast<int>((along < 0 ? 0.5 : -0.5) - along);
    }
    int dy() const {
        const float along = sinf(angle * 3.14159f / 180.0f) * distance;
        return static_cast<int>(along + (along > 0 ? 0.5 : -0.5));
    }
};

// A plane of `width` bytes a row with the mask's pixels of the box at (x, y); beyond the mask there is no
// coverage.
inline void putCoverage(std::vector<uint8_t>& plane, int width, int x, int y, const Zvex::ZvBitmap& mask,
                        const Zvex::ZvRect& box) {
    for (int row = std::max(box.top, 0); row < std::min(box.bottom, static_cast<int>(mask.height)); ++row) {
        for (int column = std::max(box.left, 0); column < std::min(box.right, static_cast<int>(mask.width));
             ++column) {
            plane[static_cast<size_t>((row - box.top + y) * width + column - box.left + x)] =
                mask.pixels[row * static_cast<int>(mask.width) + column];
        }
    }
}

// The mask in the middle of a plane that reaches two radii further on every side, blurred where the windows
// stay within the plane.
inline void drawOuterShadow(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box,
                            const Shadow& shadow) {
    const int r = std::max(static_cast<int>(shadow.size + 0.5), 0);
    const int width = box.right - box.left + 4 * r, height = box.bottom - box.top + 4 * r;
    std::vector<uint8_t> padded(static_cast<size_t>(width * height), 0), result(padded);
    putCoverage(padded, width, 2 * r, 2 * r, mask, box);
    Blur{width, r, width - r, r, height - r}.draw(padded, result, gaussianWeights(r, 100, true));
    drawBitmapBlend8(box.left - 2 * r + shadow.dx(), box.top - 2 * r + shadow.dy(), target, result.data(),
                     width, height, width, shadow.color, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_
