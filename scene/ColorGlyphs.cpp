// SPDX-License-Identifier: Apache-2.0
#include "scene/ColorGlyphs.h"

#include <algorithm>
#include <variant>

namespace Zvex::scene {

namespace {

bool hasColoredLayer(const Style& style) {
    const std::vector<bool> colored = coloredLayers(style);
    return std::find(colored.begin(), colored.end(), true) != colored.end();
}

}  // namespace

std::vector<EffectSettings> effectsAround(const std::vector<EffectSettings>& effects) {
    std::vector<EffectSettings> around;
    for (const EffectSettings& effect : effects) {
        const auto* stroke = std::get_if<StrokeSettings>(&effect);
        const bool shows = stroke != nullptr ? stroke->position != Zvex::ZV_STROKE_INSIDE
                                             : std::holds_alternative<OuterShadowSettings>(effect) ||
                                                   std::holds_alternative<OuterGlowSettings>(effect);
        if (shows) around.push_back(effect);
    }
    return around;
}

// Large glyphs have no coverage of the platform's, which draws them as paths.
bool hasColors(const std::vector<ColorRun>& runs, const Style& style) {
    const bool colored = hasColoredLayer(style);
    return std::any_of(runs.begin(), runs.end(), [&](const ColorRun& run) {
        return std::any_of(run.glyphs.begin(), run.glyphs.end(), [&](const ColorRun::Glyph& glyph) {
            return colored || host::drawnAsPath(glyph.style);
        });
    });
}

std::string silhouetteWarning(const std::vector<ColorRun>& runs, const Style& style) {
    const auto any = [&](bool ColorRun::*flag) {
        return std::any_of(runs.begin(), runs.end(), [&](const ColorRun& run) { return run.*flag; });
    };
    if (!hasColoredLayer(style)) return "";
    if (any(&ColorRun::hasSvg))
        return "a font has its emoji as SVG, which is not read; they are drawn as silhouettes";
    return any(&ColorRun::hasLarge) ? "emoji this large have no colours; lower --size" : "";
}

// A style that says nothing means its front layer.
std::vector<bool> coloredLayers(const Style& style) {
    const bool all = style.colorGlyphs.value_or(true);
    std::vector<bool> colored(std::max<size_t>(style.layers.size(), 1));
    bool named = false;
    for (size_t i = 0; i < style.layers.size(); ++i) {
        colored[i] = style.layers[i].colorGlyphs.value_or(false);
        named = named || colored[i];
    }
    if (!named) colored[0] = all && (style.layers.empty() || style.layers[0].colorGlyphs.value_or(true));
    return colored;
}

}  // namespace Zvex::scene
