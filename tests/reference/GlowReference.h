// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_GLOWREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_GLOWREFERENCE_H_

#include <algorithm>
#include <cstdint>
#include <vector>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"
#include "tests/reference/GaussianReference.h"
#include "tests/reference/GradientReference.h"

// The glows as defined: the table, the widening, and the whole picture.
namespace reference {

// Straight colours. Without stops all of them start as `color`.
inline std::vector<uint32_t> glowTable(float size, uint32_t color, const Stops& stops, float fadeStart,
                                       int curve) {
    if (size == 0) return std::vector<uint32_t>(257, 0);
    std::vector<uint32_t> table =
        stops.empty() ? std::vector<uint32_t>(257, color) : colorTable(stops, 0, curve);
    const float o = fadeStart >= 1 ? 0.99f : !(fadeStart > 0) ? 0.01f : fadeStart;
    const int first = static_cast<int>(static_cast<double>(o) * 256.0);
    for (int i = first; i <= 256; ++i) {
        uint32_t& entry = table[static_cast<size_t>(i)];
        const float k = static_cast<float>(256 - i) * 256 / static_cast<float>(256 - first);
        const uint32_t alpha = static_cast<uint32_t>(k) * channelOf(entry, 24) >> 8;
        entry = alpha << 24 | (entry & 0xFFFFFF);
    }
    table[256] = 0;
    return table;
}

// One pass after the other, from picture to picture.
inline void boxFilter(std::vector<uint8_t>& plane, int passes, int width, int height) {
    for (int pass = 0; pass < passes; ++pass) {
        const std::vector<uint8_t> before(plane);
        for (int y = 1; y < height - 1; ++y) {
            for (int x = 0; x < width; ++x) {
                int sum = 0;
                const bool edge = x == 0 || x == width - 1;
                for (int i = 0; i < 9 && !edge; ++i)
                    sum += before[static_cast<size_t>((y + i / 3 - 1) * width + x + i % 3 - 1)];
                plane[static_cast<size_t>(y * width + x)] = static_cast<uint8_t>(std::min(sum / 4, 255));
            }
        }
    }
}

// size > -1.
inline void drawGlow(bool inside, const Zvex::ZvBitmap& target, const Zvex::ZvBitmap& mask,
                     const Zvex::ZvRect& box, float size, uint32_t color, const Stops& stops) {
    const int r1 = static_cast<int>(size) + 1;
    const int width = box.right - box.left + 4 * r1, height = box.bottom - box.top + 4 * r1;
    std::vector<uint8_t> plane;
    for (int y = -2 * r1; y < height - 2 * r1; ++y) {
        for (int x = -2 * r1; x < width - 2 * r1; ++x) {
            const bool inBox = x >= 0 && y >= 0 && x < width - 4 * r1 && y < height - 4 * r1;
            const int value = inBox ? coverageIn(mask, box, x, y) : 0;
            plane.push_back(static_cast<uint8_t>(inside ? 255 - value : value));
        }
    }
    boxFilter(plane, std::max(static_cast<int>(r1 * 0.475), 1), width, height);
    const int r2 = static_cast<int>(static_cast<float>(r1) * 0.9f);
    std::vector<uint8_t> blurred(plane.size());
    Blur{width, r2, width - r2, r2, height - r2, inside}.draw(plane, blurred, gaussianWeights(r2, 128, true));
    const std::vector<uint32_t> table = glowTable(size, color, stops, 0.3f, 0);
    std::vector<uint32_t> image;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool border = x < r2 || y < r2 || x >= width - r2 || y >= height - r2;
            const uint32_t entry = table[256 - size_t{blurred[static_cast<size_t>(y * width + x)]}];
            image.push_back(!border ? premultiply(entry) : inside ? 0xFFFFFFFF : 0);
        }
    }
    drawBitmapBlend32(box.left - 2 * r1, box.top - 2 * r1, &target, image.data(), width, height, width, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_GLOWREFERENCE_H_
