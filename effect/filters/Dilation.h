// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_DILATION_H_
#define ZVEX_EFFECT_FILTERS_DILATION_H_

#include <cstdint>

namespace Zvex {

// One dilation of a coverage plane by a structuring element of coverage: a glyph grows by the element's
// shape, its smooth edges kept smooth.
struct DilationParam {
    const uint8_t* source;  // first pixel to read
    int sourceStride;       // bytes
    int columns;            // pixels to read from each row
    uint8_t inverted;       // 0: dilates the coverage; 255: dilates 255 minus it

    uint8_t* target;  // packed plane, only raised; must not overlap source
    int targetWidth;  // pixels and bytes
    int targetHeight;
    int originX;  // place in target of the first source pixel; any int
    int originY;

    const uint8_t* kernel;  // kernelSize x kernelSize, centred on cell kernelSize / 2
    int kernelSize;

    int rowBegin, rowEnd;  // half-open, rows of source counted from its first pixel
};

// Each byte of target becomes the largest of itself and of max(0, value + cell - 255) over all source pixels
// of the rows and all cells that fall on it when the kernel is centred on the source pixel. Cells that fall
// outside target are left out. No allocation.
void dilate(const DilationParam& param);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_DILATION_H_
