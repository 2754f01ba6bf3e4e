// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Shadow.h"

#include "foundation/SafeConvert.h"
#include "foundation/Trigonometry.h"

namespace Zvex {

// Single precision up to the rounding, whose half is a double.
ShadowShift shadowShift(const ZvShadowProperty& shadow) {
    const float radians = shadow.angle * 3.14159f / 180.0f;
    const float right = cosine(radians) * shadow.distance;
    const float down = sine(radians) * shadow.distance;
    ShadowShift shift;
    shift.x = truncateToInt((right < 0 ? 0.5 : -0.5) - right);
    shift.y = truncateToInt(down + (down > 0 ? 0.5 : -0.5));
    return shift;
}

}  // namespace Zvex
