// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LINEARLIGHT_H_
#define ZVEX_PLATFORM_HOST_LINEARLIGHT_H_

#include <cstdint>

#include "platform/host/PixelMath.h"

namespace host {

// Converts sRGB bytes to light and back, with the platform's polynomials. Light is 0 to 1.
float lightOf(uint8_t level);
// The level whose step holds the light, which may exceed 1 by a rounding error.
uint8_t levelOf(float light);

// A straight sRGB colour of one alpha as light, its channels times the alpha.
struct LightSource {
    float red, green, blue, alpha;
};
LightSource lightSource(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha);

// Blends the source over a straight pixel (red, green, blue, alpha in memory) in linear light. `share`, 0 to
// 1, scales the source, alpha included. A source without alpha does not change the pixel; a pixel without
// alpha becomes the source.
void lightOver(uint8_t* pixel, const LightSource& source, float share);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LINEARLIGHT_H_
