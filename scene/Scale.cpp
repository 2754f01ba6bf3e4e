// SPDX-License-Identifier: Apache-2.0
#include "scene/Scale.h"

#include <algorithm>

#include "scene/Failure.h"
#include "scene/SceneOptions.h"

namespace Zvex::scene {

namespace {

// `where` opens the names of the fields.
void scaleFields(const std::string& where, const Fields& fields, double factor) {
    for (const auto& [name, number] : lengthsOf(fields)) {
        const NumberRange& range = number.range;
        double result = range.scaled(number.get(), factor);
        if (factor < 1) result = std::max(result, range.low);  // what is rounded stays at least a pixel
        if (!range.contains(result)) {
            throw UsageError(where + name + ": " + formatNumber(number.get()) + " at --scale " +
                             formatNumber(factor) + " is " + formatNumber(result) + ", not " +
                             range.wanted());
        }
        number.set(result);
    }
}

void scaleEffects(const std::string& where, Look& look, double factor) {
    for (EffectSettings& settings : look.effects)
        scaleFields(where + kindOf(settings).name + " ", fieldsOf(settings), factor);
    for (auto& [kind, size] : look.designedFor) size *= factor;  // of effects that are fitted later
}

}  // namespace

void scaleScene(Scene& scene, double factor) {
    if (factor == 1) return;
    Style& style = scene.style;
    scaleFields("--", fieldsOf(scene), factor);
    scaleEffects("--", style, factor);
    style.layersDesignedFor *= factor;
    for (size_t i = 0; i < style.layers.size(); ++i) {
        const std::string where = "layers[" + std::to_string(i) + "] ";
        scaleFields(where, fieldsOf(style.layers[i]), factor);
        scaleEffects(where, style.layers[i], factor);
    }
    EffectSettings* fill = style.canvas ? std::get_if<EffectSettings>(&style.canvas->fill) : nullptr;
    if (fill != nullptr) scaleFields("--canvas ", fieldsOf(*fill), factor);
}

}  // namespace Zvex::scene
