// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SHADOW_H_
#define ZVEX_EFFECT_KERNELS_SHADOW_H_

#include "effect/ZvProperty.h"

namespace Zvex {

// What the outer and the inner shadow share.

// The middle weight of their blur.
constexpr int kShadowWeight = 100;

// Where a shadow falls, in pixels from the text, y downwards.
struct ShadowShift {
    int x = 0, y = 0;
};

// `distance` away from the light, each coordinate rounded half away from zero: light from 0 degrees shifts to
// the left, from 90 degrees down. What is no number counts as 0, what no int holds as the nearest one.
ShadowShift shadowShift(const ZvShadowProperty& shadow);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SHADOW_H_
