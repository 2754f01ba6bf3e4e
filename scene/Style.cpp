// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>

#include "scene/Failure.h"
#include "scene/FieldJson.h"
#include "scene/Presets.h"
#include "scene/SceneCheck.h"
#include "scene/TextInput.h"

namespace Zvex::scene {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxStyleBytes = size_t{4} << 20;

// Within a style, every error is a UsageError whose message starts with the place; readStyle puts the file in
// front.

std::string effectNames() {
    std::string names;
    for (const EffectKind& kind : effectKinds())
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    return names;
}

// The object's "effects", if it has any.
void readEffects(const std::string& place, const Json& json, double designedFor, const FilePlaces& places,
                 Look& look) {
    const std::string list = member(place, "effects");
    const auto effects = json.find("effects");
    if (effects == json.end()) return;
    if (!effects->is_array()) throw UsageError(list + ": " + shown(*effects) + " is not an array of effects");
    std::map<size_t, size_t> seen;  // places of the kinds
    for (size_t i = 0; i < effects->size(); ++i) {
        EffectSettings settings =
            readEffect(element(list, i), (*effects)[i], effectNames(), findEffectKind, places);
        const auto [earlier, isNew] = seen.emplace(settings.index(), i);
        if (!isNew) {
            throw UsageError(element(list, i) + ".type: " + kindOf(settings).name + " is there already, as " +
                             element(list, earlier->second));
        }
        look.designedFor[settings.index()] = designedFor;
        addOrReplace(look.effects, std::move(settings));
    }
}

std::vector<LayerSettings> readLayers(const Json& json, double designedFor, const FilePlaces& places) {
    if (!json.is_array() || json.empty() || json.size() > kMaxLayers) {
        throw UsageError("layers: " + shown(json) + " is not an array of 1 to " + std::to_string(kMaxLayers) +
                         " layers");
    }
    std::vector<LayerSettings> layers;
    for (const Json& object : json) {
        const std::string place = element("layers", layers.size());
        LayerSettings& layer = layers.emplace_back();
        readObject(place, fieldsOf(layer), {"effects"}, object, places);
        readEffects(place, object, designedFor, places, layer);
    }
    checkClips(layers);
    return layers;
}

StyleNotes read(const Json& json, const FilePlaces& places, Style& style) {
    StyleNotes notes;
    Fields fields = fieldsOf(style);
    addFields(fields, fieldsOf(notes));
    readObject("", fields, {"layers", "effects"}, json, places);
    if (json.contains("layers")) {
        if (json.contains("effects")) {
            throw UsageError("effects: belong into the layers where there are some");
        }
        style.layers = readLayers(json["layers"], notes.designedFor, places);
        style.layersDesignedFor = notes.designedFor;
    }
    readEffects("", json, notes.designedFor, places, style);
    return notes;
}

StyleNotes readContent(const std::string& where, const std::string& text, const FilePlaces& places,
                       Style& style) {
    try {
        return read(parseJson(text), places, style);
    } catch (const UsageError& error) {
        throw Failure(where + ": " + error.what());
    }
}

Json writeEffects(const Look& look) {
    Json effects = Json::array();
    for (const EffectSettings& settings : look.effects) effects.push_back(writeEffect(settings));
    return effects;
}

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
        {"size", NumberField{&style.size, kTextSize}, "Size of the text, the height of its em", "", "s"},
        {"color", ColorField{&style.color}, "The text's colour: #rgb, #rrggbb or #aarrggbb", "", "c"},
        {"background", OptionalColorField{&style.background}, "Fill behind each line; none without it"},
        {"canvas", CanvasField{&style.canvas},
         "Ground of the whole picture: a colour, or linear-gradient:, radial-gradient: or pattern: and what "
         "that effect takes"},
        {"letter-spacing", NumberField{&style.letterSpacing, {-1, 10, "em"}}, "Extra space between letters"},
        {"features", TextField{&style.features}, "OpenType features, such as 'smcp, -liga, ss01=1'", "LIST"},
        {"opacity", NumberField{&style.opacity, kShare}, "Opacity of the whole picture: 0.6 or 60%"},
        {"color-glyphs", OptionalFlagField{&style.colorGlyphs},
         "Emoji in their own colours, in the front layer if there are several; false: silhouettes in the "
         "text's"}};
}

Fields fieldsOf(StyleNotes& notes) {
    return {
        {"$schema", TextField{&notes.schema}, "Where an editor finds this schema"},
        {"description", TextField{&notes.description}, "A line for people"},
        {"designed-for", NumberField{&notes.designedFor, kTextSize},
         "The text size that the effects' pixels are meant for; they grow and shrink with the text's own"}};
}

StyleNotes readStyle(const std::string& option, const std::string& name, Style& style,
                     const std::shared_ptr<const Source>& source) {
    const Bytes text = orDefault(source).read(option, name, kMaxStyleBytes);
    const std::string where = option + ": " + (name == "-" ? "standard input" : "'" + name + "'");
    std::shared_ptr<const Source> files = orDefault(source).ofStyle(name);
    if (files == nullptr) files = source;
    return readContent(where, *text, {fs::path(name).parent_path(), files, {}}, style);
}

StyleNotes readPreset(const std::string& option, const std::string& name, Style& style) {
    std::string names;
    for (const Preset& preset : presets()) {
        if (name == preset.name) return readContent(option + ": '" + name + "'", preset.json, {}, style);
        names += (names.empty() ? "" : ", ") + std::string(preset.name);
    }
    throw UsageError(option + ": '" + name + "' is not one of " + names);
}

std::string presetList() {
    size_t width = 0;
    for (const Preset& preset : presets()) width = std::max(width, std::strlen(preset.name));
    std::string list;
    for (const Preset& preset : presets()) {
        Style style;
        std::string name = preset.name;
        name.resize(width + 2, ' ');
        list += name + readPreset("--preset", preset.name, style).description + "\n";
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

namespace {

// The error, with the option in front of its place.
UsageError within(const std::string& option, const UsageError& error) {
    return UsageError((option.empty() ? "" : option + ": ") + error.what());
}

}  // namespace

void readStyleJson(const std::string& option, const Json& json, Style& style,
                   const std::shared_ptr<const Source>& source) {
    try {
        read(json, {"", source, {}}, style);
    } catch (const UsageError& error) {
        throw within(option, error);
    }
}

void readStyleText(const std::string& option, const std::string& text, Style& style,
                   const std::shared_ptr<const Source>& source) {
    Json json;
    try {
        json = parseJson(text);
    } catch (const UsageError& error) {
        throw within(option, error);
    }
    readStyleJson(option, json, style, source);
}

std::string writeStyle(const Style& style) {
    Style copy = style;
    Json json = writeObject(fieldsOf(copy));
    for (LayerSettings& layer : copy.layers) {
        Json object = writeObject(fieldsOf(layer));
        object["effects"] = writeEffects(layer);
        json["layers"].push_back(std::move(object));
    }
    if (copy.layers.empty()) json["effects"] = writeEffects(copy);
    try {
        (void)json.dump();  // throws
        return dumpJson(json, 2) + "\n";
    } catch (const Json::exception&) {
        throw Failure("--print-style: a path or a feature list is not UTF-8");
    }
}

}  // namespace Zvex::scene
