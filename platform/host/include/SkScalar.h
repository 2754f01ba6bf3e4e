// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKSCALAR_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKSCALAR_H_

// Coordinates: pixels, x to the right, y downwards.
typedef float SkScalar;

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKSCALAR_H_
