// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_SPREAD_H_
#define ZVEX_EFFECT_SPREAD_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

// The most that a text's coverage is widened or narrowed by, in pixels.
constexpr int kMaxSpread = 100;

// The coverage of a text, widened or narrowed by whole pixels.
//
// Widened by n it is the coverage that the glyphs and an outside stroke of width n have together (ZvStroke):
// the coverage dilated by the stroke's disc. Narrowed by n it is 255 minus the same of 255 minus the
// coverage, everything outside the box being without coverage. Costs what a stroke costs.
class Spread {
public:
    // Of the mask within the box, widened by `pixels`, or narrowed where that is negative; held to kMaxSpread
    // either way. What of the box lies outside the mask has no coverage. False, and nothing made, when memory
    // is short or the sizes do not fit ints. The mask is not read afterwards.
    bool make(const ZvBitmap& mask, const ZvRect& box, int pixels);

    // Where the coverage lies on the mask: the box grown by the pixels, with empty sides (right == left)
    // where it is narrowed to nothing.
    const ZvRect& box() const { return mBox; }
    // Its rows, packed, as wide as the box; null where that is empty.
    uint8_t* coverage() const { return mCoverage.get(); }

private:
    bool dilateAround(const uint8_t* source, int width, int height, int pixels);

    ZvRect mBox;
    Buffer<uint8_t> mCoverage;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_SPREAD_H_
