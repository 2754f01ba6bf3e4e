// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKRECT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKRECT_H_

#include "SkScalar.h"

// A plain record of four edges in pixels; right and bottom are exclusive.
struct SkRect {
    SkScalar fLeft;
    SkScalar fTop;
    SkScalar fRight;
    SkScalar fBottom;

    static constexpr SkRect MakeLTRB(SkScalar l, SkScalar t, SkScalar r, SkScalar b) {
        return SkRect{l, t, r, b};
    }
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKRECT_H_
