// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SkScalar.h"

struct SkRect {
    SkScalar fLeft, fTop, fRight, fBottom;

    static constexpr SkRect MakeLTRB(SkScalar l, SkScalar t, SkScalar r, SkScalar b) {
        return SkRect{l, t, r, b};
    }
};
