// SPDX-License-Identifier: Apache-2.0
//
// Walks along the stops once, entry by entry. The plain form is tests/reference/GradientReference.h.

#include "effect/kernels/ColorTable.h"

#include <algorithm>
#include <cmath>

#include "foundation/SafeConvert.h"

namespace Zvex {

namespace {

constexpr float kEntryStep = 0.00390625f;  // 1 / 256

// Every second channel of a colour; the eight bits above each leave room for a product.
constexpr uint32_t kChannelPair = 0x00FF00FF;

// (upper * weight + lower * (256 - weight)) >> 8 in each channel, weight in 0..256. Two channels share a
// multiplication: their sums are at most 255 * 256 and do not reach the next channel.
uint32_t mix(uint32_t lower, uint32_t upper, int weight) {
    const uint32_t up = static_cast<uint32_t>(weight), down = 256 - up;
    const uint32_t redBlue = (upper & kChannelPair) * up + (lower & kChannelPair) * down;
    const uint32_t alphaGreen = (upper >> 8 & kChannelPair) * up + (lower >> 8 & kChannelPair) * down;
    return (redBlue >> 8 & kChannelPair) | (alphaGreen & ~kChannelPair);
}

// The range between two stops.
struct Segment {
    float start, end;
    uint32_t lower, upper;

    void moveOn(const ZvGradient& next) {
        start = end;
        lower = upper;
        if (next.position > end) end = next.position;
        upper = next.color;
    }

    uint32_t colorAt(float place) const {
        if (!(start < end)) return place > end ? upper : lower;
        const int weight = truncateToInt((place - start) / (end - start) * 256.0f);
        if (weight < 1) return lower;
        return weight >= 256 ? upper : mix(lower, upper, weight);
    }
};

float alongCurve(float x, int curve) {
    if (curve == ZV_CURVE_SQUARE) return x * x;
    return curve == ZV_CURVE_SQUARE_ROOT ? std::sqrt(x) : x;
}

}  // namespace

void fillColorTable(uint32_t* table, const ZvGradient* stops, int count, float firstStart, int curve) {
    if (count == 1) {
        std::fill_n(table, kColorTableSize, stops[0].color);
        return;
    }
    table[0] = stops[0].color;
    table[kColorTableSize - 1] = stops[count - 1].color;
    const float start = std::isnan(firstStart) ? 0.0f : firstStart;
    Segment segment{start, start, stops[0].color, stops[0].color};
    segment.moveOn(stops[1]);
    int next = 2;
    for (int i = 1; i < kColorTableSize - 1; ++i) {
        const float place = alongCurve(static_cast<float>(i) * kEntryStep, curve);
        if (place > segment.end && next < count) segment.moveOn(stops[next++]);
        table[i] = segment.colorAt(place);
    }
}

}  // namespace Zvex
