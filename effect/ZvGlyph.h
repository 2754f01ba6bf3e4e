// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVGLYPH_H_
#define ZVEX_EFFECT_ZVGLYPH_H_

#include <cstdint>

namespace Zvex {

// The coverage image of one line, passed from text drawing to the effect stack. A plain record: its maker
// owns and frees the pixels. The stack reads only pixels, width and height.
struct ZvGlyph {
    uint8_t* pixels = nullptr;  // 8-bit coverage, height rows of width bytes
    uint16_t width = 0;         // pixels
    uint16_t height = 0;        // pixels
    int32_t baseline = 0;       // rows from the top of the image down to the baseline
    int32_t left = 0;           // start of the image, relative to the start of the line
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVGLYPH_H_
