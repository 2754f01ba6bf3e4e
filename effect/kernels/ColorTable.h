// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_COLORTABLE_H_
#define ZVEX_EFFECT_KERNELS_COLORTABLE_H_

#include <cstdint>

#include "effect/ZvProperty.h"

namespace Zvex {

// The colours along a row of stops: the table that the glows and the gradient fills look their pixels up in.
// Entry i stands for the place i / 256 along the row. Entries are straight 0xAARRGGBB, like the stops.
constexpr int kColorTableSize = 257;

// How a place along the table becomes a place along the stops. Other numbers are straight.
enum ZvTableCurve : int {
    ZV_CURVE_STRAIGHT = 0,
    ZV_CURVE_SQUARE_ROOT = 1,
    ZV_CURVE_SQUARE = 2,
};

// Fills the table from stops[0..count - 1], count >= 1. A single stop colours all of it; else the first and
// last entries are the first and last stop's, and those between are mixed of two neighbouring stops.
//
// The first segment starts at `firstStart` whatever the first stop's position; not-a-number counts as 0. A
// stop whose position does not rise, not-a-number too, lies at the position before it: that is a step, the
// lower colour at the position and the upper one beyond. The table moves on by at most one stop an entry, so
// stops closer than 1 / 256 are taken late. Beyond the last stop its colour goes on.
void fillColorTable(uint32_t* table, const ZvGradient* stops, int count, float firstStart, int curve);

// A straight colour as the premultiplied one that the blender takes. An opaque colour stays as it is.
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
