// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_RECTS_H_
#define ZVEX_RASTER_RECTS_H_

#include <algorithm>
#include <climits>
#include <cstdint>

#include "raster/ZvRect.h"

namespace Zvex {

// Arithmetic on rectangles, which may be inverted and anywhere within the ints.

inline bool isEmpty(const ZvRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

// A coordinate held within 0 and a picture's size.
inline int clampToSize(int value, uint32_t size) {
    const int64_t most = std::min<int64_t>(size, INT_MAX);
    return static_cast<int>(std::clamp<int64_t>(value, 0, most));
}

// Each edge by itself.
inline ZvRect clampedTo(const ZvRect& rect, uint32_t width, uint32_t height) {
    return ZvRect(clampToSize(rect.left, width), clampToSize(rect.top, height),
                  clampToSize(rect.right, width), clampToSize(rect.bottom, height));
}

// The smallest that holds both, empty or not.
inline ZvRect joined(const ZvRect& a, const ZvRect& b) {
    return ZvRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                  std::max(a.bottom, b.bottom));
}

// The smallest that holds all pixels of both.
inline ZvRect united(const ZvRect& a, const ZvRect& b) {
    return isEmpty(b) ? a : isEmpty(a) ? b : joined(a, b);
}

}  // namespace Zvex

#endif  // ZVEX_RASTER_RECTS_H_
