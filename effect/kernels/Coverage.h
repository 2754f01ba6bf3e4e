// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_COVERAGE_H_
#define ZVEX_EFFECT_KERNELS_COVERAGE_H_

#include <cstddef>
#include <cstdint>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

// The start of every filter: whether there is anything to draw, the working image, and the coverage there.

// True when the record is there with a target and a mask that have pixels and a text box that is not empty.
bool isDrawable(const ZvECore::ParamPostProcessing* param);

// The same for a layer that draws onto otherLayer as well: one of the two pictures has to have pixels.
bool isDrawableOnEither(const ZvECore::ParamPostProcessing* param);

// A filter's working image: the text box grown by a margin on every side.
struct WorkingArea {
    int x = 0, y = 0;           // its top-left on the target; the target's and the mask's pixels are the same
    int width = 0, height = 0;  // pixels
    int margin = 0;

    // False if the area is empty, or if its position or its number of pixels overflows int (the blender and
    // the parameter records count in ints).
    bool grow(const ZvRect& box, int64_t newMargin);

    // Positions that overflow int are clamped; they are outside every picture anyway.
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

// The part of the box that lies within the mask; empty when there is none.
ZvRect partWithin(const ZvBitmap& mask, const ZvRect& box);

// Copies the mask within the box to a plane whose rows are `stride` bytes, the box's top-left landing on
// *plane. Box pixels outside the mask are left as they are.
void copyCoverage(const ZvBitmap& mask, const ZvRect& box, uint8_t* plane, ptrdiff_t stride);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_COVERAGE_H_
