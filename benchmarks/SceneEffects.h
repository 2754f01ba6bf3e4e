// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_SCENEEFFECTS_H_
#define ZVEX_BENCHMARKS_SCENEEFFECTS_H_

#include <cmath>
#include <string>

#include "effect/ZvEffect.h"
#include "effect/ZvProperty.h"

namespace bench {

constexpr unsigned int kOrange = 0xFFFF8800;  // the text's own colour
constexpr unsigned int kDark = 0xFF202020, kBlack = 0xFF000000;

// A soft inner bevel, lit from the upper left.
inline bool addBevel(Zvex::ZvEffect& effects, float size) {
    constexpr int kInner = 1, kUp = 1, kSoft = 0, kSoften = 0;
    return effects.addBevelText(kInner, size, 2, kUp, kSoft, kSoften, 1, 135, 30, kBlack, 0.75f, 0xFFFFFFFF,
                                0.75f) >= 0;
}

// The effects of a scene of Scenes.h, their lengths multiplied by `scale`. False for an unknown scene.
inline bool addEffects(Zvex::ZvEffect& effects, const std::string& scene, int scale) {
    constexpr unsigned int kGlow = 0xFF0060FF;
    const auto length = [&](int small) { return static_cast<float>(small * scale); };
    const auto stroke = [&] {
        return effects.addStrokeText(length(8), kDark, 1, 0, Zvex::ZV_STROKE_OUTSIDE) >= 0;
    };
    const auto shadow = [&] {
        // Not through addOuterShadowText, which takes whole distances and sizes up to 100.
        Zvex::ZvOuterShadowProperty shadow(135, length(8) * std::sqrt(2.0f), length(30), kBlack, 1);
        return effects.addEffect(Zvex::ZV_EFFECT_OUTER_SHADOW, &shadow) >= 0;
    };
    const auto gradient = [&] {
        Zvex::ZvGradient stops[] = {{0xFFFF0000, 1, 0}, {0xFF0000FF, 1, 1}};
        return effects.addLinearGradientText(0, 1, 1, 2, stops) >= 0;
    };
    if (scene == "S1") return true;
    if (scene == "S2") return stroke();
    if (scene == "S3") return shadow();
    if (scene == "S4") return gradient();
    if (scene == "S5") return stroke() && shadow() && gradient();
    if (scene == "S6") return effects.addOuterGlowText(length(20), kGlow, 1, 0, nullptr) >= 0;
    return scene == "S7" && addBevel(effects, length(10));
}

}  // namespace bench

#endif  // ZVEX_BENCHMARKS_SCENEEFFECTS_H_
