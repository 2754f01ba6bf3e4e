// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_COLORTABLE_H_
#define ZVEX_EFFECT_KERNELS_COLORTABLE_H_

#include <cstdint>

#include "effect/ZvProperty.h"

namespace Zvex {

// The colours along a row of stops, in which the glows and the gradient fills look up their pixels. Entry i
// is the colour at position i / 256. Entries are straight 0xAARRGGBB, like the stops.
constexpr int kColorTableSize = 257;

// How a position in the table maps to a position along the stops. Other numbers are straight.
enum ZvTableCurve : int {
    ZV_CURVE_STRAIGHT = 0,
    ZV_CURVE_SQUARE_ROOT = 1,
    ZV_CURVE_SQUARE = 2,
};

// Fills the table from stops[0..count - 1], count >= 1. A single stop colours the whole table. Otherwise the
// first and last entries are the first and last stop's colours, and each entry between them mixes two
// neighbouring stops.
//
// The first segment starts at `firstStart` whatever the first stop's position; not-a-number counts as 0. A
// stop whose position does not rise, or is not a number, takes the position of the stop before it. That makes
// a step: the lower colour at the position, the upper one beyond. Each entry advances by at most one stop, so
// of stops closer than 1 / 256 the later ones take effect late. Beyond the last stop its colour continues.
void fillColorTable(uint32_t* table, const ZvGradient* stops, int count, float firstStart, int curve);

// A straight colour, premultiplied as the blender takes it. An opaque colour does not change.
inline uint32_t premultiplied(uint32_t color) {
    const uint32_t alpha = color >> 24;
    uint32_t result = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        const uint32_t channel = (color >> shift) & 0xFF;
        result |= (((channel + 1) * alpha) >> 8) << shift;  // at most 256 * 255 >> 8, a byte
    }
    return result;
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_COLORTABLE_H_
