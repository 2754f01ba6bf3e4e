// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_SQUAREROOTS_H_
#define ZVEX_EFFECT_KERNELS_SQUAREROOTS_H_

#include <cstdint>

namespace Zvex {

// Distances between pixels as the reliefs measure them: the square root of dx^2 + dy^2, rounded to the
// nearest thousandth of a pixel and stored as the nearest float. The pictures depend on this rounding.

// The roots of 0 to 5489, which covers every offset within 52 pixels along either axis. Computed at compile
// time, read-only, safe to use from static initialisers.
extern const float (&ZV_INT_SQRT_TABLE)[5490];

// The same for any number: from the table, or computed beyond it. 0 for negative numbers.
float integerRoot(int64_t square);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_SQUAREROOTS_H_
