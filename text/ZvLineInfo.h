// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVLINEINFO_H_
#define ZVEX_TEXT_ZVLINEINFO_H_

#include <cstdint>

#include "raster/ZvRect.h"

namespace Zvex {

// One laid-out line of a text, in view pixels with y growing downwards. Made by the code that lays out the
// text (LinePlacement.h), owned by the text object after SetLineInfo, read by text drawing.
struct ZvLineInfo {
    int32_t x = 0;          // left edge of the line, the view's left padding included
    int32_t y = 0;          // baseline
    int32_t start = 0;      // UTF-16 offset of the first character
    int32_t end = 0;        // UTF-16 offset one past the last visible character
    int32_t direction = 0;  // negative: right to left

    // Bounds of the line, which the background fills. In view pixels at first; every rendering moves top and
    // bottom down by the effects' top margin and recomputes left and right in output pixels.
    ZvRect rect;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVLINEINFO_H_
