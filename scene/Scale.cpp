// SPDX-License-Identifier: Apache-2.0
#include "scene/Scale.h"

#include <algorithm>
#include <cmath>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

double scaled(const std::string& name, double value, double factor, const NumberRange& range) {
    const double result = range.scaled(value, factor);
    if (range.contains(result)) return result;
    throw UsageError(name + ": " + formatNumber(value) + " at --scale " + formatNumber(factor) + " is " +
                     formatNumber(result) + ", not " + range.wanted());
}

// `where` opens the names of the fields.
void scaleFields(const std::string& where, const Fields& fields, double factor) {
    for (const Field& field : lengthsOf(fields)) {
        const NumberField& number = std::get<NumberField>(field.value);
        *number.value = scaled(where + field.name, *number.value, factor, number.range);
    }
}

void scaleEffects(const std::string& where, std::vector<EffectSettings>& effects, double factor) {
    for (EffectSettings& settings : effects)
        scaleFields(where + kindOf(settings).name + " ", fieldsOf(settings), factor);
}

// A length that was given stays at least a pixel.
int scaledPixels(const std::string& name, int value, double factor, int low) {
    const NumberRange range = {0, kMaxSide, "px"};
    return std::max(low, static_cast<int>(std::lround(scaled(name, value, factor, range))));
}

}  // namespace

void scaleStyle(Style& style, double factor) {
    if (factor == 1) return;
    scaleFields("--", fieldsOf(style), factor);
    scaleEffects("--", style.effects, factor);
    for (size_t i = 0; i < style.layers.size(); ++i) {
        const std::string where = "layers[" + std::to_string(i) + "] ";
        scaleFields(where, fieldsOf(style.layers[i]), factor);
        scaleEffects(where, style.layers[i].effects, factor);
    }
    EffectSettings* fill = style.canvas ? std::get_if<EffectSettings>(&style.canvas->fill) : nullptr;
    if (fill != nullptr) scaleFields("--canvas ", fieldsOf(*fill), factor);
}

void scaleView(Scene& scene, double factor) {
    if (factor == 1) return;
    if (scene.width > 0) scene.width = scaledPixels("--width", scene.width, factor, 1);
    if (scene.height > 0) scene.height = scaledPixels("--height", scene.height, factor, 1);
    Padding& padding = scene.padding;
    for (int* side : {&padding.left, &padding.top, &padding.right, &padding.bottom}) {
        *side = scaledPixels("--padding", *side, factor, 0);
    }
}

}  // namespace Zvex::scene
