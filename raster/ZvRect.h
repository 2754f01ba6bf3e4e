// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_ZVRECT_H_
#define ZVEX_RASTER_ZVRECT_H_

#include <cstdint>

namespace Zvex {

// A rectangle in pixels, y growing downwards; right and bottom are exclusive. It may be inverted.
class ZvRect {
public:
    ZvRect() = default;
    ZvRect(int32_t left_, int32_t top_, int32_t right_, int32_t bottom_)
        : left(left_), top(top_), right(right_), bottom(bottom_) {}
    ZvRect(const ZvRect&) = default;
    ZvRect& operator=(const ZvRect&) = default;
    virtual ~ZvRect() = default;

    // The edges.
    int32_t left = 0;
    int32_t top = 0;
    int32_t right = 0;
    int32_t bottom = 0;
};

}  // namespace Zvex

#endif  // ZVEX_RASTER_ZVRECT_H_
