// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_REFERENCE_BLENDERREFERENCE_H_
#define ZVEX_TESTS_REFERENCE_BLENDERREFERENCE_H_

#include <cstdint>

#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

// The blender as defined, one pixel and one channel at a time, without the library's kernels.
namespace reference {

// The mask at a pixel of the box; beyond the mask there is no coverage.
inline int coverageIn(const Zvex::ZvBitmap& mask, const Zvex::ZvRect& box, int px, int py) {
    const int x = box.left + px, y = box.top + py;
    if (x < 0 || y < 0 || x >= static_cast<int>(mask.width) || y >= static_cast<int>(mask.height)) return 0;
    return mask.pixels[static_cast<size_t>(y) * mask.width + static_cast<size_t>(x)];
}

void drawBitmapBlend8(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h,
                      int srcStride, uint32_t color, int mode);
void drawBitmapBlend32(int x, int y, const Zvex::ZvBitmap* dst, const uint32_t* src, int w, int h,
                       int srcStride, int mode);
// The byte-addressed form.
void drawBitmapBlend32(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h,
                       int srcStride, int ignored, int order);
void drawBitmap(int x, int y, const Zvex::ZvBitmap* dst, const uint8_t* src, int w, int h, uint32_t color);

}  // namespace reference

#endif  // ZVEX_TESTS_REFERENCE_BLENDERREFERENCE_H_
