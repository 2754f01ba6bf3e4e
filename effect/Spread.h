// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_SPREAD_H_
#define ZVEX_EFFECT_SPREAD_H_

#include <cstdint>

#include "effect/kernels/Buffer.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

// The limit in pixels for widening or narrowing a text's coverage.
constexpr int kMaxSpread = 100;

// The coverage of a text, widened or narrowed by whole pixels.
//
// Widened by n, it is the coverage of the glyphs together with an outside stroke of width n (ZvStroke): the
// coverage dilated by the stroke's disc. Narrowed by n, it is 255 minus the dilation of 255 minus the
// coverage, with no coverage outside the box. Costs as much as a stroke.
class Spread {
public:
    // Takes the mask within the box and widens it by `pixels`, or narrows it if that is negative; clamped to
    // kMaxSpread either way. Parts of the box outside the mask have no coverage. The mask is not read
    // afterwards. False, with nothing made, if memory is short or the sizes do not fit ints.
    bool make(const ZvBitmap& mask, const ZvRect& box, int pixels);

    // Where the coverage lies on the mask: the box grown by the pixels. Its sides are empty (right == left)
    // if it is narrowed to nothing.
    const ZvRect& box() const { return mBox; }
    // The packed rows, as wide as the box; null if the box is empty.
    uint8_t* coverage() const { return mCoverage.get(); }

private:
    bool dilateAround(const uint8_t* source, int width, int height, int pixels);

    ZvRect mBox;
    Buffer<uint8_t> mCoverage;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_SPREAD_H_
