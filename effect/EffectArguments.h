// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_EFFECTARGUMENTS_H_
#define ZVEX_EFFECT_EFFECTARGUMENTS_H_

#include <cstdint>

#include "effect/GradientStops.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Turns the arguments of ZvEffect's adders into records. Separate from the stack, so that it can be tested
// alone.
//
// Any argument is safe. NaN counts as the lower end of a clamped range and as 0 degrees. An angle that is
// infinite or beyond the ints counts as the nearest int.

// --- Single arguments

float opacityArgument(float opacity);      // 0 to 1
float angleArgument(float degrees);        // whole, 0 to 359
float altitudeArgument(float degrees);     // whole, 0 to 89
float percentArgument(float value);        // whole, 0 to 100: distances, sizes and stroke widths
float gradientScaleArgument(float scale);  // 0 to 2
float patternScaleArgument(float scale);   // 0 to 10

// The colour, its own alpha ignored, at the given opacity, which is clamped. Premultiplied for colours that
// are painted through coverage directly; with red, green and blue kept for colours that a table or a light
// scales later.
uint32_t premultipliedColor(uint32_t color, float opacity);
uint32_t colorWithAlpha(uint32_t color, float opacity);

// --- Stops

constexpr int ZV_MAX_STOPS = 256;

// Copies the first ZV_MAX_STOPS stops. The opacity is clamped, the alpha of the colour becomes the stop's
// opacity times the layer's, and the position is cut to hundredths and clamped to 0..1. Gives no stops if
// count is below 1 or stops is null. False if memory is short.
bool stopArguments(int count, const ZvGradient* stops, float layerOpacity, GradientStops* result);

// --- Records
//
// Records with stops point into the given GradientStops, which must outlive them.

ZvTextProperty textArguments(unsigned int color, float opacity);
ZvTextProperty opaqueTextArguments(unsigned int color);
ZvStrokeProperty strokeArguments(float width, unsigned int color, float opacity, int kind, int position);
ZvPatternProperty patternArguments(ZvBitmap* bitmap, float scale, float opacity);

template <typename Shadow>  // ZvOuterShadowProperty, ZvInnerShadowProperty
Shadow shadowArguments(float angle, float distance, float size, unsigned int color, float opacity) {
    return Shadow(angleArgument(angle), percentArgument(distance), percentArgument(size),
                  premultipliedColor(color, opacity), opacityArgument(opacity));
}

template <typename Glow>  // ZvOuterGlowProperty, ZvInnerGlowProperty
Glow glowArguments(float size, unsigned int color, float opacity, const GradientStops& stops) {
    return Glow(percentArgument(size), colorWithAlpha(color, opacity), opacityArgument(opacity),
                stops.count(), stops.data());
}

template <typename Gradient>  // ZvLinearGradientProperty, ZvRadialGradientProperty
Gradient gradientArguments(float angle, float scale, float opacity, const GradientStops& stops) {
    return Gradient(angleArgument(angle), gradientScaleArgument(scale), opacityArgument(opacity),
                    stops.count(), stops.data());
}

// Both colours carry their own opacity times the layer's in their alpha; the filters read nothing else. The
// record itself clamps depth and soften.
template <typename Relief>  // ZvBevelProperty, ZvEmbossProperty
Relief reliefArguments(int style, float size, float depth, int direction, int technique, int soften,
                       float opacity, float angle, float altitude, unsigned int shadowColor,
                       float shadowOpacity, unsigned int highlightColor, float highlightOpacity) {
    const float layer = opacityArgument(opacity);
    const float shadow = opacityArgument(shadowOpacity);
    const float highlight = opacityArgument(highlightOpacity);
    return Relief(style, size, depth, direction, technique, soften, layer, angleArgument(angle),
                  altitudeArgument(altitude), colorWithAlpha(shadowColor, layer * shadow), shadow,
                  colorWithAlpha(highlightColor, layer * highlight), highlight);
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_EFFECTARGUMENTS_H_
