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

// The two shadows as defined.
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

// Copies the mask's pixels of the box to (x, y) of a plane of `width` bytes a row; beyond the mask there is
// no coverage.
inline void putCoverage(std::vector<uint8_t>& plane, int width, int x, int y, const Zvex::ZvBitmap& mask,
                        const Zvex::ZvRect& box) {
    for (int row = 0; row < box.bottom - box.top; ++row) {
        for (int column = 0; column < box.right - box.left; ++column)
            plane[static_cast<size_t>((row + y) * width + column + x)] =
                static_cast<uint8_t>(coverageIn(mask, box, column, row));
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

// The inverse of the mask, blurred along the rows, then, moved by (dx, dy), down the columns.
inline void drawInnerShadow(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box,
                            const Shadow& shadow) {
    const int width = box.right - box.left, height = box.bottom - box.top;
    const int dx = shadow.dx(), dy = shadow.dy(), r = std::max(static_cast<int>(shadow.size + 0.5f), 0);
    std::vector<uint8_t> coverage(static_cast<size_t>(width * height)), inverse;
    putCoverage(coverage, width, 0, 0, mask, box);
    std::vector<uint8_t> result = coverage;
    if (width + r + dx >= 0 && dx - r < width && dy < height + r && height + dy >= -r) {
        const std::vector<int> w = gaussianWeights(r, 100, true);
        const int total = gaussianTotal(w), reach = width + 2 * r;
        for (int y = 0; y < height; ++y) {
            for (int x = -r; x < width + r; ++x) {
                const int64_t sum = gaussianSum(w, [&](int i) {
                    const bool inside = x + i >= 0 && x + i < width;
                    return inside ? coverage[static_cast<size_t>(y * width + x + i)] : 0;
                });
                inverse.push_back(static_cast<uint8_t>((int64_t{255} * total - sum) / total));
            }
        }
        for (int at = 0; at < width * height; ++at) {
            const int x = at % width - dx, y = at / width - dy;  // where the shadow comes from
            uint8_t& pixel = result[static_cast<size_t>(at)];
            if (x < -r || x >= width + r || y < -r || y >= height + r) {
                pixel = 255;  // too far from the text
            } else if (pixel != 0) {
                const int64_t sum = gaussianSum(w, [&](int i) {
                    const bool inside = y + i >= 0 && y + i < height;
                    return inside ? inverse[static_cast<size_t>((y + i) * reach + r + x)] : 255;
                });
                pixel = static_cast<uint8_t>(sum / total);
            }
        }
    }
    drawBitmapBlend8(box.left, box.top, target, result.data(), width, height, width, shadow.color, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_SHADOWREFERENCE_H_
