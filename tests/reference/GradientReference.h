// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/reference/BlenderReference.h"

// The colour table of the glows and the gradient fills, and the fills, as defined.
namespace reference {

using Stops = std::vector<Zvex::ZvGradient>;

inline uint32_t channelOf(uint32_t color, int shift) {
    return color >> shift & 255;
}

// 257 entries. A stop whose position does not rise takes the position of the stop before it.
inline std::vector<uint32_t> colorTable(const Stops& stops, float firstStart, int curve) {
    std::vector<uint32_t> table(257, stops[0].color);
    if (stops.size() == 1) return table;
    table[256] = stops.back().color;
    std::vector<float> positions{std::isnan(firstStart) ? 0 : firstStart};
    for (size_t i = 1; i < stops.size(); ++i)
        positions.push_back(stops[i].position > positions[i - 1] ? stops[i].position : positions[i - 1]);
    size_t last = 1;  // of the two stops
    for (int i = 1; i <= 255; ++i) {
        const float x = static_cast<float>(i) * 0.00390625f;
        const float t = curve == 2 ? x * x : curve == 1 ? sqrtf(x) : x;
        if (t > positions[last] && last + 1 < stops.size()) ++last;
        const float start = positions[last - 1], end = positions[last];
        const float place = start < end ? (t - start) / (end - start) * 256 : t > end ? 256.0f : 0.0f;
        const uint32_t f = place < 1 ? 0 : place >= 256 ? 256 : static_cast<uint32_t>(place);
        table[static_cast<size_t>(i)] = 0;
        for (int shift : {0, 8, 16, 24}) {
            const uint32_t lower = channelOf(stops[last - 1].color, shift);
            const uint32_t upper = channelOf(stops[last].color, shift);
            table[static_cast<size_t>(i)] |= (upper * f + lower * (256 - f)) >> 8 << shift;
        }
    }
    return table;
}

inline uint32_t premultiply(uint32_t color) {
    const uint32_t alpha = channelOf(color, 24);
    uint32_t result = alpha << 24;
    for (int shift : {0, 8, 16}) result |= ((channelOf(color, shift) + 1) * alpha >> 8) << shift;
    return result;
}

enum class FillKind { Linear, Radial };

inline void drawGradient(FillKind kind, const Zvex::ZvBitmap& target, const Zvex::ZvBitmap& mask,
                         const Zvex::ZvRect& box, float angle, float scale, const Stops& stops) {
    const int width = box.right - box.left, height = box.bottom - box.top;
    const float W = static_cast<float>(width), H = static_cast<float>(height);
    const std::vector<uint32_t> table = colorTable(stops, stops[0].position, 0);
    const float theta = angle * -0.01745328f;
    const float L = fabsf(tanf(theta)) < H / W ? W / fabsf(cosf(theta)) : H / fabsf(sinf(theta));
    std::vector<uint32_t> image;
    for (int py = 0; py < height; ++py) {
        for (int px = 0; px < width; ++px) {
            const float dy = static_cast<float>(py) - H * 0.5f, dx = static_cast<float>(px) - W * 0.5f;
            int t = 0;
            if (kind == FillKind::Linear) {
                const float k = 256 / scale / L;
                t = static_cast<int>(sinf(theta) * k * dy + cosf(theta) * k * dx) + 128;
            } else {
                const float k = (256 / W + 256 / W) / scale;
                t = static_cast<int>(k * sqrtf(dy * dy + dx * dx));
            }
            t = std::min(std::max(t, 0), 255);
            const bool covered = coverageIn(mask, box, px, py) != 0;
            image.push_back(covered ? premultiply(table[static_cast<size_t>(t)]) : 0);
        }
    }
    drawBitmapBlend32(box.left, box.top, &target, image.data(), width, height, width, 2);
}

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_
