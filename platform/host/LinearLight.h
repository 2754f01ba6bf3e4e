// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LINEARLIGHT_H_
#define ZVEX_PLATFORM_HOST_LINEARLIGHT_H_

#include <cstdint>

#include "platform/host/PixelMath.h"

namespace host {

// sRGB bytes as light and back, by the platform's polynomials. Light is 0 to 1.
float lightOf(uint8_t level);
// For light up to 1 (and what rounding adds): the level whose step it lies on.
uint8_t levelOf(float light);

// A straight sRGB colour of one alpha as light, its channels times the alpha.
struct LightSource {
    float red, green, blue, alpha;
};
LightSource lightSource(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha);

// Source-over in linear light onto a straight pixel, red, green, blue, alpha in memory; `share` of the
// source, 0 to 1, alpha and all. What has no alpha leaves the pixel, and becomes the source where there is
// none.
void lightOver(uint8_t* pixel, const LightSource& source, float share);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LINEARLIGHT_H_
