// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_RECTS_H_
#define ZVEX_RASTER_RECTS_H_

#include <algorithm>
#include <climits>
#include <cstdint>

#include "raster/ZvRect.h"

namespace Zvex {

// Arithmetic on rectangles. They may be inverted, and their edges may be any ints.

inline bool isEmpty(const ZvRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

// widthOf and heightOf need rectangles whose size fits an int.
inline int widthOf(const ZvRect& rect) {
    return rect.right - rect.left;
}
inline int heightOf(const ZvRect& rect) {
    return rect.bottom - rect.top;
}

// The coordinate limited to the range from 0 to the picture's size.
inline int clampToSize(int value, uint32_t size) {
    const int64_t most = std::min<int64_t>(size, INT_MAX);
    return static_cast<int>(std::clamp<int64_t>(value, 0, most));
}

// The whole picture, or as much of it as ints reach.
inline ZvRect pictureRect(uint32_t width, uint32_t height) {
    return ZvRect(0, 0, clampToSize(INT_MAX, width), clampToSize(INT_MAX, height));
}

// Limits each edge on its own.
inline ZvRect clampedTo(const ZvRect& rect, uint32_t width, uint32_t height) {
    return ZvRect(clampToSize(rect.left, width), clampToSize(rect.top, height),
                  clampToSize(rect.right, width), clampToSize(rect.bottom, height));
}

// The intersection, never inverted: without common pixels its right edge equals its left one, or its bottom
// edge its top one.
inline ZvRect intersected(const ZvRect& a, const ZvRect& b) {
    const int left = std::max(a.left, b.left), top = std::max(a.top, b.top);
    return ZvRect(left, top, std::max(left, std::min(a.right, b.right)),
                  std::max(top, std::min(a.bottom, b.bottom)));
}

// The smallest rectangle around both, even if one of them is empty.
inline ZvRect joined(const ZvRect& a, const ZvRect& b) {
    return ZvRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                  std::max(a.bottom, b.bottom));
}

// The smallest rectangle that holds all pixels of both.
inline ZvRect united(const ZvRect& a, const ZvRect& b) {
    return isEmpty(b) ? a : isEmpty(a) ? b : joined(a, b);
}

}  // namespace Zvex

#endif  // ZVEX_RASTER_RECTS_H_
