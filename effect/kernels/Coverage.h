// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_COVERAGE_H_
#define ZVEX_EFFECT_KERNELS_COVERAGE_H_

#include <cstddef>
#include <cstdint>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

// How every filter starts: it checks whether there is anything to draw, sizes its working image and copies
// the coverage into it.

// True if the record exists, its target and mask have pixels, and its text box is not empty.
bool isDrawable(const ZvECore::ParamPostProcessing* param);

// The same for a layer that also draws onto otherLayer: one of the two pictures must have pixels.
bool isDrawableOnEither(const ZvECore::ParamPostProcessing* param);

// A filter's working image: the text box grown by a margin on every side.
struct WorkingArea {
    int x = 0, y = 0;           // its top-left on the target; target and mask share their pixel coordinates
    int width = 0, height = 0;  // pixels
    int margin = 0;

    // False if the area is empty, or if its position or its number of pixels does not fit an int (the blender
    // and the parameter records use ints).
    bool grow(const ZvRect& box, int64_t newMargin);

    // Positions that do not fit an int are clamped; they lie outside every picture anyway.
    void move(int dx, int dy);

    // Right and bottom are clamped to int.
    ZvRect rect() const;

    size_t pixels() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
    size_t row(int y_) const { return static_cast<size_t>(y_) * static_cast<size_t>(width); }
};

// The mask at (x, y); 0 outside the mask. Any ints.
inline uint8_t coverageAt(const ZvBitmap& mask, int64_t x, int64_t y) {
    if (x < 0 || y < 0 || x >= mask.width || y >= mask.height) return 0;
    return mask.pixels[static_cast<size_t>(y) * mask.width + static_cast<size_t>(x)];
}

// The part of the box that lies on the mask; empty if there is none.
ZvRect partWithin(const ZvBitmap& mask, const ZvRect& box);

// Copies the mask within the box to a plane whose rows are `stride` bytes; the box's top-left goes to *plane.
// Bytes for pixels outside the mask do not change.
void copyCoverage(const ZvBitmap& mask, const ZvRect& box, uint8_t* plane, ptrdiff_t stride);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_COVERAGE_H_
