// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVGLYPH_H_
#define ZVEX_EFFECT_ZVGLYPH_H_

#include <cstdint>

namespace Zvex {

// The coverage image of one line, on its way from text drawing to the effect stack. A plain record: the
// pixels belong to whoever made it, who frees them; the stack only reads pixels, width and height.
struct ZvGlyph {
    uint8_t* pixels = nullptr;  // 8-bit coverage, height rows of width bytes
    uint16_t width = 0;         // pixels
    uint16_t height = 0;        // pixels
    int32_t baseline = 0;       // rows from the top of the image down to the baseline
    int32_t left = 0;           // where the image starts, relative to the start of the line
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVGLYPH_H_
