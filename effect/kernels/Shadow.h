// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SHADOW_H_
#define ZVEX_EFFECT_KERNELS_SHADOW_H_

#include "effect/ZvProperty.h"

namespace Zvex {

// What the outer and the inner shadow share.

// The middle weight of their blur.
constexpr int kShadowWeight = 100;

// The displacement of a shadow from its text, in pixels, y downwards.
struct ShadowShift {
    int x = 0, y = 0;
};

// The shadow falls `distance` pixels away from the light; each coordinate is rounded half away from zero.
// Light from 0 degrees shifts it to the left, from 90 degrees down. NaN counts as 0; a value beyond the ints
// becomes the nearest int.
ShadowShift shadowShift(const ZvShadowProperty& shadow);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SHADOW_H_
