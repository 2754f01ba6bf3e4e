// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_LAYERSETTINGS_H_
#define ZVEX_TESTS_EFFECT_LAYERSETTINGS_H_

#include <memory>
#include <vector>

#include "effect/ZvEffect.h"
#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"

// The digests depend on this order.
constexpr int kLayerTypes[] = {Zvex::ZV_EFFECT_OUTER_SHADOW,
                               Zvex::ZV_EFFECT_INNER_SHADOW,
                               Zvex::ZV_EFFECT_OUTER_GLOW,
                               Zvex::ZV_EFFECT_INNER_GLOW,
                               Zvex::ZV_EFFECT_LINEAR_GRADIENT,
                               Zvex::ZV_EFFECT_RADIAL_GRADIENT,
                               Zvex::ZV_EFFECT_STROKE,
                               Zvex::ZV_EFFECT_PATTERN,
                               Zvex::ZV_EFFECT_BEVEL,
                               Zvex::ZV_EFFECT_EMBOSS,
                               Zvex::ZV_EFFECT_TEXT};
constexpr int kLayerKinds = 11;

// Settings for a layer of any type, which uses those that it has.
struct LayerSettings {
    float angle = 135, distance = 0, size = 5, opacity = 1, scale = 1, depth = 2, altitude = 30;
    float shadowOpacity = 0.75f, highlightOpacity = 0.75f;
    uint32_t color = 0xFF202020, highlight = 0xFFFFF0C0;
    int style = 1, direction = 1, technique = 0, soften = 0, strokeKind = 0,
        position = Zvex::ZV_STROKE_OUTSIDE;
    static constexpr Zvex::ZvGradient kStops[] = {{0xFFFF0000, 1, 0}, {0xFF0000FF, 0.5f, 1}};
    std::vector<Zvex::ZvGradient> stops{kStops, kStops + 2};
    Zvex::ZvBitmap pattern;

    LayerSettings() = default;
    explicit LayerSettings(float mSize) : size(mSize), pattern(3, 2, 4) {
        for (size_t i = 0; i < pattern.byteCount(); ++i)
            pattern.pixels[i] = static_cast<uint8_t>(100 + 9 * i);
    }

    // A record of these numbers, not limited by an adder, for a layer of any type except the text.
    std::unique_ptr<Zvex::ZvProperty> record(int type) {
        using namespace Zvex;
        const int count = static_cast<int>(stops.size());
        switch (type) {
            case ZV_EFFECT_OUTER_SHADOW:
                return std::make_unique<ZvOuterShadowProperty>(angle, distance, size, color, opacity);
            case ZV_EFFECT_INNER_SHADOW:
                return std::make_unique<ZvInnerShadowProperty>(angle, distance, size, color, opacity);
            case ZV_EFFECT_OUTER_GLOW:
                return std::make_unique<ZvOuterGlowProperty>(size, color, opacity, count, stops.data());
            case ZV_EFFECT_INNER_GLOW:
                return std::make_unique<ZvInnerGlowProperty>(size, color, opacity, count, stops.data());
            case ZV_EFFECT_LINEAR_GRADIENT:
                return std::make_unique<ZvLinearGradientProperty>(angle, scale, opacity, count, stops.data());
            case ZV_EFFECT_RADIAL_GRADIENT:
                return std::make_unique<ZvRadialGradientProperty>(angle, scale, opacity, count, stops.data());
            case ZV_EFFECT_STROKE:
                return std::make_unique<ZvStrokeProperty>(size, color, opacity, strokeKind, position);
            case ZV_EFFECT_PATTERN:
                return std::make_unique<ZvPatternProperty>(&pattern, scale, opacity);
            case ZV_EFFECT_BEVEL:
                return std::make_unique<ZvBevelProperty>(style, size, depth, direction, technique, soften,
                                                         opacity, angle, altitude, color, shadowOpacity,
                                                         highlight, highlightOpacity);
            default:
                return std::make_unique<ZvEmbossProperty>(style, size, depth, direction, technique, soften,
                                                          opacity, angle, altitude, color, shadowOpacity,
                                                          highlight, highlightOpacity);
        }
    }

    // Returns the layer's id, or -1 if memory is short.
    int addTo(Zvex::ZvEffect& stack, int type) {
        const int count = static_cast<int>(stops.size());
        switch (type) {
            case Zvex::ZV_EFFECT_OUTER_SHADOW:
                return stack.addOuterShadowText(angle, distance, size, color, opacity);
            case Zvex::ZV_EFFECT_INNER_SHADOW:
                return stack.addInnerShadowText(angle, distance, size, color, opacity);
            case Zvex::ZV_EFFECT_OUTER_GLOW:
                return stack.addOuterGlowText(size, color, opacity, count, stops.data());
            case Zvex::ZV_EFFECT_INNER_GLOW:
                return stack.addInnerGlowText(size, color, opacity, count, stops.data());
            case Zvex::ZV_EFFECT_LINEAR_GRADIENT:
                return stack.addLinearGradientText(angle, scale, opacity, count, stops.data());
            case Zvex::ZV_EFFECT_RADIAL_GRADIENT:
                return stack.addRadialGradientText(scale, opacity, count, stops.data());
            case Zvex::ZV_EFFECT_STROKE:
                return stack.addStrokeText(size, color, opacity, strokeKind, position);
            case Zvex::ZV_EFFECT_PATTERN:
                return stack.addPatternText(&pattern, scale, opacity);
            case Zvex::ZV_EFFECT_BEVEL:
                return stack.addBevelText(style, size, depth, direction, technique, soften, opacity, angle,
                                          altitude, color, shadowOpacity, highlight, highlightOpacity);
            case Zvex::ZV_EFFECT_EMBOSS:
                return stack.addEmbossText(style, size, depth, direction, technique, soften, opacity, angle,
                                           altitude, color, shadowOpacity, highlight, highlightOpacity);
            default:
                return strokeKind == 0 ? stack.addText(color, opacity) : stack.addText(color);
        }
    }
};

#endif  // ZVEX_TESTS_EFFECT_LAYERSETTINGS_H_
