// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKRECT_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKRECT_H_

#include "SkScalar.h"

struct SkRect {
    SkScalar fLeft, fTop, fRight, fBottom;

    static constexpr SkRect MakeLTRB(SkScalar l, SkScalar t, SkScalar r, SkScalar b) {
        return SkRect{l, t, r, b};
    }
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKRECT_H_
