// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_PATTERNREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_PATTERNREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"

// The pattern fill as defined, one pixel at a time.
namespace reference {

// The position of a pixel of the text box in a pattern of `size` pixels that repeats every (int)(scale *
// size).
struct PatternPlace {
    int first, second;  // neighbours, wrapping at the end
    int weight;         // of the second, of 255

    PatternPlace(int pixel, float scale, int size) {
        const int period = static_cast<int>(scale * static_cast<float>(size));
        const float s = static_cast<float>(pixel % period) / scale;
        first = static_cast<int>(std::floor(s));
        weight = static_cast<int>((s - std::floor(s)) * 255.0);
        second = first + 1 >= size ? 0 : first + 1;
    }
};

// For scales and opacities whose conversion to int does not overflow; `pattern` is not empty.
inline void drawPattern(const Zvex::ZvBitmap* target, const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box,
                        const Zvex::ZvBitmap& pattern, float scale, float opacity) {
    const int patternWidth = static_cast<int>(pattern.width),
              patternHeight = static_cast<int>(pattern.height);
    const int width = std::min(box.right - box.left, static_cast<int>(mask.width));
    const int height = std::min(box.bottom - box.top, static_cast<int>(mask.height));
    std::vector<uint32_t> words(static_cast<size_t>(width * height), 0);
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            if (coverageIn(mask, box, column, row) == 0) continue;
            const PatternPlace x(column, scale, patternWidth), y(row, scale, patternHeight);
            const auto byte = [&](int px, int py, int k) {
                return int{pattern.pixels[(py * patternWidth + px) * 4 + k]};
            };
            uint32_t v[4];
            for (int k = 0; k < 4; ++k) {
                const int upper =
                    (255 - x.weight) * byte(x.first, y.first, k) + x.weight * byte(x.second, y.first, k);
                const int lower =
                    (255 - x.weight) * byte(x.first, y.second, k) + x.weight * byte(x.second, y.second, k);
                v[k] = static_cast<uint32_t>((upper * (255 - y.weight) + lower * y.weight) >> 16) & 0xFF;
            }
            const uint32_t a = static_cast<uint32_t>(opacity * static_cast<float>(v[0]));
            const auto scaled = [a](uint32_t c) { return std::min<uint32_t>(255, ((c + 1) * a) >> 8); };
            words[static_cast<size_t>(row * width + column)] =
                a << 24 | scaled(v[1]) << 16 | scaled(v[2]) << 8 | scaled(v[3]);
        }
    }
    drawBitmapBlend32(box.left, box.top, target, words.data(), width, height, width, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_PATTERNREFERENCE_H_
