// SPDX-License-Identifier: Apache-2.0
#include "scene/Layers.h"

#include "effect/Spread.h"
#include "raster/LayerBlend.h"
#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

using Zvex::LayerBlend;

constexpr NumberRange kSpread = {-Zvex::kMaxSpread, Zvex::kMaxSpread, "px", false, true, true};

const std::vector<std::pair<const char*, LayerBlend>>& blendNames() {
    static const std::vector<std::pair<const char*, LayerBlend>> names = {
        {"normal", LayerBlend::Normal},
        {"multiply", LayerBlend::Multiply},
        {"screen", LayerBlend::Screen},
        {"overlay", LayerBlend::Overlay},
        {"darken", LayerBlend::Darken},
        {"lighten", LayerBlend::Lighten},
        {"color-dodge", LayerBlend::ColorDodge},
        {"color-burn", LayerBlend::ColorBurn},
        {"hard-light", LayerBlend::HardLight},
        {"soft-light", LayerBlend::SoftLight},
        {"difference", LayerBlend::Difference},
        {"exclusion", LayerBlend::Exclusion},
        {"hue", LayerBlend::Hue},
        {"saturation", LayerBlend::Saturation},
        {"color", LayerBlend::Color},
        {"luminosity", LayerBlend::Luminosity},
        {"plus-lighter", LayerBlend::PlusLighter}};
    return names;
}

}  // namespace

Look& Look::add(EffectSettings settings) {
    designedFor.erase(settings.index());
    addOrReplace(effects, std::move(settings));
    return *this;
}

Fields fieldsOf(LayerSettings& layer) {
    return {
        {"color", OptionalColorField{&layer.color},
         "The text's colour in this layer; by default the style's"},
        {"opacity", NumberField{&layer.opacity, kShare},
         "How opaque the layer is, with its effects. At 0 it does not show"},
        {"spread", NumberField{&layer.spread, kSpread},
         "How far the letters grow before effects are applied; negative values shrink them. Shrunk by more "
         "than half a stem, they disappear"},
        {"offset", OffsetField{&layer.offset}, "How far the layer is moved, to the right and down"},
        {"blend", ChoiceField{&layer.blend, blendNames()},
         "How its colours blend with those behind it. Where nothing is behind it, they stay as they are"},
        {"clip", FlagField{&layer.clip}, "Shows only within the nearest layer behind it that is not clipped"},
        {"knockout", FlagField{&layer.knockout},
         "Does not show within the letters as they are before spread and offset"},
        {"color-glyphs", OptionalFlagField{&layer.colorGlyphs},
         "Draw emoji in their own colours; if no layer says true, the front one does"}};
}

std::string canvasKinds() {
    std::string names;
    for (const EffectKind& kind : effectKinds()) {
        if (findCanvasKind(kind.name) != nullptr)
            names += (names.empty() ? "" : ", ") + std::string(kind.name);
    }
    return names;
}

const EffectKind* findCanvasKind(const std::string& name) {
    const EffectKind* kind = findEffectKind(name);
    const bool fills = kind != nullptr && (std::holds_alternative<LinearGradientSettings>(kind->defaults) ||
                                           std::holds_alternative<RadialGradientSettings>(kind->defaults) ||
                                           std::holds_alternative<PatternSettings>(kind->defaults));
    return fills ? kind : nullptr;
}

Canvas parseCanvas(const std::string& where, const std::string& text, const FilePlaces& places) {
    if (readColor(text)) return {parseColor(where, text, places.warnings)};
    const size_t colon = text.find(':');
    const EffectKind* kind = findCanvasKind(text.substr(0, colon));
    if (kind == nullptr || colon == std::string::npos) {
        throw UsageError(where + ": '" + text + "' is not " + kWantedCanvas + canvasKinds());
    }
    return {parseEffect(where + " " + kind->name, *kind, text.substr(colon + 1), places)};
}

std::string formatCanvas(const Canvas& canvas) {
    if (const auto* color = std::get_if<uint32_t>(&canvas.fill)) return formatColor(*color);
    EffectSettings settings = std::get<EffectSettings>(canvas.fill);
    std::string text;
    for (const Field& field : fieldsOf(settings))
        text += (text.empty() ? ":" : ",") + std::string(field.name) + "=" + formatValue(field);
    return kindOf(settings).name + text;
}

}  // namespace Zvex::scene
