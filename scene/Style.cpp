// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/host/WordShaper.h"
#include "scene/Presets.h"

namespace Zvex::scene {

namespace {

// Multiplies lengths by `factor`, rounded to whole pixels; a length of at least one pixel stays at least one.
void fitFields(const Fields& fields, double factor) {
    for (const auto& [name, number] : lengthsOf(fields)) {
        const double size = std::abs(number.get());
        double fitted = size * factor;
        if (std::strcmp(number.range.unit, "px") == 0) {
            fitted = std::max(std::round(fitted), size >= 1 ? 1.0 : 0.0);
        }
        number.set(std::copysign(std::min(fitted, number.range.high), number.get()));
    }
}

void fitLook(Look& look, double size) {
    for (EffectSettings& settings : look.effects) {
        const auto designed = look.designedFor.find(settings.index());
        if (designed == look.designedFor.end() || designed->second == 0) continue;
        fitFields(fieldsOf(settings), size / designed->second);
    }
    look.designedFor.clear();
}

}  // namespace

Fields fieldsOf(Style& style) {
    return {
        {"size", NumberField{&style.size, kTextSize},
         "Size of the text, the height of its em. Effects do not grow with it, unless the style is designed "
         "for a size",
         "", "s"},
        {"color", ColorField{&style.color}, "The text's colour: #rgb, #rrggbb, #aarrggbb, or as in CSS", "",
         "c"},
        {"background", OptionalColorField{&style.background}, "Fill behind each line; none by default"},
        {"canvas", CanvasField{&style.canvas},
         "Fill behind the whole picture: a colour, or linear-gradient:, radial-gradient: or pattern: with "
         "that effect's keys"},
        {"letter-spacing", NumberField{&style.letterSpacing, {-1, 10, "em"}},
         "Extra space between letters; below 0 they move together until they overlap"},
        {"word-spacing", NumberField{&style.wordSpacing, {-1, 10, "em"}}, "Extra space between words"},
        {"line-height", NumberField{&style.lineHeight, {0, 10, "", true}}.orNone(),
         "Distance between baselines, as a multiple of the size; by default the distance that the fonts ask "
         "for"},
        {"upper-case", FlagField{&style.upperCase},
         "Draw the text in upper case, by the rules of its language"},
        {"features",
         TextField{&style.features, kMaxFieldBytes,
                   "a list of OpenType features, each written tag, -tag or tag=N, with commas between",
                   host::areFeatures},
         "OpenType features, such as 'smcp, -liga, ss01=1'", "LIST"},
        {"opacity", NumberField{&style.opacity, kShare},
         "Opacity of the picture: 0.6 or 60%. Text, background and emoji fade each by itself, layers and a "
         "canvas as a whole"},
        {"color-glyphs", OptionalFlagField{&style.colorGlyphs},
         "Draw emoji in their own colours; of several layers, only in the front one. False draws silhouettes "
         "in the text's colour"}};
}

Fields fieldsOf(StyleNotes& notes) {
    return {{"$schema", TextField{&notes.schema}, "Address of this schema, for editors"},
            {"description", TextField{&notes.description}, "A short description for people"},
            {"extends",
             TextField{&notes.extends, kMaxFieldBytes, "the name of a preset or the path of a style file"},
             "The style that this one is based on: a preset, or a file in this file's folder or below"},
            {"designed-for", NumberField{&notes.designedFor, kTextSize},
             "The text size that the effects are designed for; at other sizes they scale with the text, up "
             "to their limits"}};
}

const Preset* findPreset(const std::string& name) {
    for (const Preset& preset : presets()) {
        if (name == preset.name) return &preset;
    }
    return nullptr;
}

std::string presetNames() {
    std::string names;
    for (const Preset& preset : presets()) names += (names.empty() ? "" : ", ") + std::string(preset.name);
    return names;
}

std::string presetList() {
    size_t width = 0;
    for (const Preset& preset : presets()) width = std::max(width, std::strlen(preset.name));
    std::string list;
    for (const Preset& preset : presets()) {
        std::string name = preset.name;
        name.resize(width + 2, ' ');
        list += name + styleFromPreset(preset.name).notes.description + "\n";
    }
    return list;
}

void fitEffects(Style& style) {
    fitLook(style, style.size);
    for (LayerSettings& layer : style.layers) {
        if (style.layersDesignedFor != 0) fitFields(fieldsOf(layer), style.size / style.layersDesignedFor);
        fitLook(layer, style.size);
    }
    style.layersDesignedFor = 0;
}

std::vector<const EffectSettings*> allEffects(const Style& style) {
    std::vector<const EffectSettings*> all;
    const auto add = [&](const Look& look) {
        for (const EffectSettings& settings : look.effects) all.push_back(&settings);
    };
    add(style);
    for (const LayerSettings& layer : style.layers) add(layer);
    const auto* fill = style.canvas ? std::get_if<EffectSettings>(&style.canvas->fill) : nullptr;
    if (fill != nullptr) all.push_back(fill);
    return all;
}

Style styleFromFile(const std::string& path) {
    Style style;
    readStyle("style", path, style);
    return style;
}

Style styleFromText(const std::string& json) {
    Style style;
    readStyleText("", json, style);
    return style;
}

Style styleFromPreset(const std::string& name) {
    Style style;
    readPreset("preset", name, style);
    return style;
}

}  // namespace Zvex::scene
