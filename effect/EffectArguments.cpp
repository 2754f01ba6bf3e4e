// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectArguments.h"

#include <algorithm>

#include "effect/Numbers.h"
#include "effect/kernels/ColorTable.h"

namespace Zvex {

float opacityArgument(float opacity) {
    return clampFloat(opacity, 0.0f, 1.0f);
}

float angleArgument(float degrees) {
    return static_cast<float>(positiveRemainder(degrees, 360));
}

float altitudeArgument(float degrees) {
    return static_cast<float>(positiveRemainder(degrees, 90));
}

float percentArgument(float value) {
    return static_cast<float>(clampInt(truncateToInt(value), 0, 100));
}

float gradientScaleArgument(float scale) {
    return clampFloat(scale, 0.0f, 2.0f);
}

float patternScaleArgument(float scale) {
    return clampFloat(scale, 0.0f, 10.0f);
}

uint32_t premultipliedColor(uint32_t color, float opacity) {
    return premultiplied(colorWithAlpha(color, opacity));
}

uint32_t colorWithAlpha(uint32_t color, float opacity) {
    return uint32_t{byteOfUnit(opacityArgument(opacity))} << 24 | (color & 0x00FFFFFF);
}

bool stopArguments(int count, const ZvGradient* stops, float layerOpacity, GradientStops* result) {
    if (!result->copy(stops, std::min(count, ZV_MAX_STOPS))) return false;
    const float layer = opacityArgument(layerOpacity);
    for (int i = 0; i < result->count(); ++i) {
        ZvGradient& stop = result->data()[i];
        stop.opacity = opacityArgument(stop.opacity);
        stop.color = colorWithAlpha(stop.color, stop.opacity * layer);
        // Hundredths in single precision throughout, so 0.29f stays 0.29f.
        const float hundredths = static_cast<float>(truncateToInt(stop.position * 100.0f));
        stop.position = clampFloat(hundredths / 100.0f, 0.0f, 1.0f);
    }
    return true;
}

ZvTextProperty textArguments(unsigned int color, float opacity) {
    return ZvTextProperty(premultipliedColor(color, opacity), opacityArgument(opacity));
}

ZvTextProperty opaqueTextArguments(unsigned int color) {
    return ZvTextProperty(color | 0xFF000000, 1.0f);
}

ZvStrokeProperty strokeArguments(float width, unsigned int color, float opacity, int kind, int position) {
    return ZvStrokeProperty(percentArgument(width), premultipliedColor(color, opacity),
                            opacityArgument(opacity), kind, position);
}

ZvPatternProperty patternArguments(ZvBitmap* bitmap, float scale, float opacity) {
    return ZvPatternProperty(bitmap, patternScaleArgument(scale), opacityArgument(opacity));
}

}  // namespace Zvex
