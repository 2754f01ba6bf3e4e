// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_

#include <cmath>
#include <cstdint>
#include <vector>

#include "effect/ZvProperty.h"

// The colour table of the glows and the gradient fills, and the fills, as their definitions read.
namespace reference {

using Stops = std::vector<Zvex::ZvGradient>;

inline uint32_t channelOf(uint32_t color, int shift) {
    return color >> shift & 255;
}

// 257 entries. Stops that do not rise lie where the one before them lies.
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

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_GRADIENTREFERENCE_H_
