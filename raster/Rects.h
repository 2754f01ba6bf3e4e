// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_RECTS_H_
#define ZVEX_RASTER_RECTS_H_

#include <algorithm>
#include <climits>
#include <cstdint>

#include "raster/ZvRect.h"

namespace Zvex {

// Arithmetic on rectangles. They may be inverted and have any ints as edges.

inline bool isEmpty(const ZvRect& rect) {
    return rect.left >= rect.right || rect.top >= rect.bottom;
}

// Of rectangles whose size fits an int.
inline int widthOf(const ZvRect& rect) {
    return rect.right - rect.left;
}
inline int heightOf(const ZvRect& rect) {
    return rect.bottom - rect.top;
}

// A coordinate limited to 0 to a picture's size.
inline int clampToSize(int value, uint32_t size) {
    const int64_t most = std::min<int64_t>(size, INT_MAX);
    return static_cast<int>(std::clamp<int64_t>(value, 0, most));
}

// All of a picture, as far as ints reach.
inline ZvRect pictureRect(uint32_t width, uint32_t height) {
    return ZvRect(0, 0, clampToSize(INT_MAX, width), clampToSize(INT_MAX, height));
}

// Each edge by itself.
inline ZvRect clampedTo(const ZvRect& rect, uint32_t width, uint32_t height) {
    return ZvRect(clampToSize(rect.left, width), clampToSize(rect.top, height),
                  clampToSize(rect.right, width), clampToSize(rect.bottom, height));
}

// The intersection, never inverted: without common pixels its right or bottom edge is at the left or top one.
inline ZvRect intersected(const ZvRect& a, const ZvRect& b) {
    const int left = std::max(a.left, b.left), top = std::max(a.top, b.top);
    return ZvRect(left, top, std::max(left, std::min(a.right, b.right)),
                  std::max(top, std::min(a.bottom, b.bottom)));
}

// The smallest rectangle around both, empty or not.
inline ZvRect joined(const ZvRect& a, const ZvRect& b) {
    return ZvRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                  std::max(a.bottom, b.bottom));
}

// The smallest rectangle with all pixels of both.
inline ZvRect united(const ZvRect& a, const ZvRect& b) {
    return isEmpty(b) ? a : isEmpty(a) ? b : joined(a, b);
}

}  // namespace Zvex

#endif  // ZVEX_RASTER_RECTS_H_
