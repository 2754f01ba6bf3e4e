// SPDX-License-Identifier: Apache-2.0
#include "platform/host/StrikeFilter.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace host {

namespace {

struct Alphas {
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    uint32_t at(int64_t x, int64_t y) const {
        const auto column = static_cast<size_t>(std::clamp<int64_t>(x, 0, width - 1));
        const auto row = static_cast<size_t>(std::clamp<int64_t>(y, 0, height - 1));
        return pixels[row * static_cast<size_t>(width) + column];
    }
};

// Taps of one axis of a halving: 1 for a side of one pixel, 1 1 for an even side, 1 2 1 for an odd one.
struct HalvingTaps {
    int count, shift;
    explicit HalvingTaps(int length)
        : count(length == 1       ? 1
                : length % 2 != 0 ? 3
                                  : 2),
          shift(count == 3 ? 2 : count - 1) {}
    uint32_t weight(int tap) const { return count == 3 && tap == 1 ? 2 : 1; }
};

Alphas halved(const Alphas& from) {
    const HalvingTaps across(from.width), down(from.height);
    Alphas half;
    half.width = std::max(1, from.width / 2);
    half.height = std::max(1, from.height / 2);
    half.pixels.reserve(static_cast<size_t>(half.width) * static_cast<size_t>(half.height));
    for (int y = 0; y < half.height; ++y) {
        for (int x = 0; x < half.width; ++x) {
            uint32_t sum = 0;
            for (int j = 0; j < down.count; ++j) {
                for (int i = 0; i < across.count; ++i) {
                    sum += down.weight(j) * across.weight(i) * from.at(2 * x + i, 2 * y + j);
                }
            }
            half.pixels.push_back(static_cast<uint8_t>(sum >> (across.shift + down.shift)));
        }
    }
    return half;
}

}  // namespace

void filterStrike(const uint8_t* source, int width, int height, ptrdiff_t stride, int step,
                  const StrikePlace& place, uint8_t* target, int targetWidth, int targetHeight) {
    Alphas level;
    level.width = width;
    level.height = height;
    level.pixels.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) level.pixels.push_back(source[y * stride + x * step]);
    }
    // The inverse: from target pixels to the bitmap.
    float xx = 1 / place.xx, yy = 1 / place.yy, xy = -place.xy * xx * yy;
    float x0 = -(place.x0 * xx + place.y0 * xy), y0 = -place.y0 * yy;
    const float shrink = std::sqrt(std::hypot(xx, 0.0f) * std::hypot(xy, yy));
    // The number of halvings, rounded down as on the platform.
    for (int halvings = shrink >= 2 ? static_cast<int>(std::log2(shrink)) : 0; halvings > 0; --halvings) {
        if (level.width == 1 && level.height == 1) break;
        level = halved(level);
    }
    const float fitX = static_cast<float>(level.width) / static_cast<float>(width);
    const float fitY = static_cast<float>(level.height) / static_cast<float>(height);
    xx *= fitX;
    xy *= fitX;
    x0 *= fitX;
    yy *= fitY;
    y0 *= fitY;

    const auto fixed = [](float v) {
        return static_cast<int64_t>(std::floor(static_cast<double>(v) * 4294967296.0));
    };
    const int64_t stepX = fixed(xx);
    for (int j = 0; j < targetHeight; ++j, target += targetWidth) {
        const float centreY = static_cast<float>(j) + 0.5f;
        const float sourceY = yy * centreY + y0;
        if (!(sourceY > 0 && sourceY <= static_cast<float>(level.height))) continue;
        const int64_t y = (fixed(sourceY) >> 16) - 32768;
        int64_t x = fixed(xx * 0.5f + xy * centreY + x0) - (int64_t{1} << 31);
        for (int i = 0; i < targetWidth; ++i, x += stepX) {
            const float sourceX = xx * (static_cast<float>(i) + 0.5f) + xy * centreY + x0;
            if (!(sourceX > 0 && sourceX <= static_cast<float>(level.width))) continue;
            const int64_t left = x >> 32, top = y >> 16;
            const auto fx = static_cast<uint32_t>(x >> 28 & 15), fy = static_cast<uint32_t>(y >> 12 & 15);
            const uint32_t sum =
                level.at(left, top) * (16 - fx) * (16 - fy) + level.at(left + 1, top) * fx * (16 - fy) +
                level.at(left, top + 1) * (16 - fx) * fy + level.at(left + 1, top + 1) * fx * fy;
            target[i] = static_cast<uint8_t>(sum >> 8);
        }
    }
}

}  // namespace host
