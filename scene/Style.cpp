// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <set>

#include "scene/Failure.h"
#include "scene/Json.h"
#include "scene/Presets.h"
#include "scene/SceneCheck.h"
#include "scene/TextInput.h"

namespace Zvex::scene {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxStyleBytes = size_t{4} << 20;
constexpr NumberRange kTextSize = {0, 10000, "px", true, true};
constexpr size_t kMaxDepth = 16;  // a style needs four
// Of the parser, which walks over earlier values time and again. Four effects full of stops make about 8000.
constexpr size_t kMaxEvents = 20'000;

// Within a style, everything that is wrong is a UsageError whose message starts with the place; readStyle
// puts the file in front.
[[noreturn]] void refuse(const std::string& place, const std::string& why) {
    throw UsageError(place.empty() ? why : place + ": " + why);
}

std::string member(const std::string& place, const std::string& key) {
    return place.empty() ? key : place + "." + key;
}

std::string element(const std::string& place, size_t index) {
    return place + "[" + std::to_string(index) + "]";
}

// --- Parsing. The parser would keep the last of two equal keys; this callback finds them instead.

class KeyWatch {
public:
    bool operator()(int, Json::parse_event_t event, Json& parsed) {
        using Event = Json::parse_event_t;
        if (++mEvents > kMaxEvents) refuse("", "it has too many keys and values");
        switch (event) {
            case Event::object_start:
            case Event::array_start:
                beginValue();
                mLevels.push_back({event == Event::array_start, "", 0, {}});
                if (mLevels.size() > kMaxDepth) refuse("", "it is nested too deeply");
                break;
            case Event::object_end:
            case Event::array_end:
                mLevels.pop_back();
                break;
            case Event::key:
                mLevels.back().key = parsed.get<std::string>();
                if (!mLevels.back().keys.insert(mLevels.back().key).second) refuse(place(), "is given twice");
                break;
            case Event::value:
                beginValue();
                break;
        }
        return true;
    }

private:
    struct Level {
        bool array;
        std::string key;
        size_t count;  // elements begun
        std::set<std::string> keys;
    };

    void beginValue() {
        if (!mLevels.empty()) ++mLevels.back().count;
    }

    std::string place() const {
        std::string text;
        for (const Level& level : mLevels) {
            text = level.array ? element(text, level.count - 1) : member(text, level.key);
        }
        return text;
    }

    std::vector<Level> mLevels;
    size_t mEvents = 0;
};

Json parseJson(const std::string& text) {
    try {
        KeyWatch watch;
        return Json::parse(
            text,
            [&](int depth, Json::parse_event_t event, Json& parsed) { return watch(depth, event, parsed); },
            true, true);
    } catch (const Json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 3, column 5: ..."
        const std::string what = error.what();
        const size_t bracket = what.find("] ");
        refuse("", "it is no JSON: " + (bracket == std::string::npos ? what : what.substr(bracket + 2)));
    }
}

// --- Reading

std::string shown(const Json& value) {
    const std::string text = dumpJson(value);
    return text.size() > 40 ? std::string("this ") + value.type_name() : text;
}

// What a field takes in JSON.
std::string wantedInJson(const Field& field) {
    if (std::holds_alternative<ShareField>(field.value)) return kShare.wanted();
    if (std::holds_alternative<OffsetField>(field.value)) return "an array [X, Y] of whole pixels";
    if (std::holds_alternative<CanvasField>(field.value)) {
        return "a colour, or an object with a type, one of " + canvasKinds();
    }
    Tint tint;
    if (std::holds_alternative<TintField>(field.value)) {
        return "an object with the keys " + namesOf(fieldsOf(tint));
    }
    Stop stop;
    if (std::holds_alternative<StopsField>(field.value)) {
        return "an array of 1 to " + std::to_string(kMaxStops) + " stops, objects with the keys " +
               namesOf(fieldsOf(stop));
    }
    return wantedBy(field);
}

class StyleReader {
public:
    StyleReader(fs::path folder, const FolderScope& scope) : mFolder(std::move(folder)), mScope(scope) {}

    StyleNotes read(const Json& json, Style& style) const {
        StyleNotes notes;
        Fields fields = fieldsOf(style);
        const Fields more = fieldsOf(notes);
        fields.insert(fields.end(), more.begin(), more.end());
        readObject("", fields, {"layers", "effects"}, json);
        if (json.contains("layers")) {
            if (json.contains("effects")) refuse("effects", "belong into the layers where there are some");
            style.layers = readLayers(json["layers"], notes.designedFor);
            style.layersDesignedFor = notes.designedFor;
        }
        readEffects("", json, notes.designedFor, style);
        return notes;
    }

private:
    // The object's "effects", if it has any.
    void readEffects(const std::string& place, const Json& json, double designedFor, Look& look) const {
        const std::string list = member(place, "effects");
        const auto effects = json.find("effects");
        if (effects == json.end()) return;
        if (!effects->is_array()) refuse(list, shown(*effects) + " is not an array of effects");
        std::vector<size_t> indices;  // of the kinds seen
        for (size_t i = 0; i < effects->size(); ++i) {
            EffectSettings settings =
                readEffect(element(list, i), (*effects)[i], kindNames(), findEffectKind);
            for (size_t earlier = 0; earlier < i; ++earlier) {
                if (indices[earlier] == settings.index()) {
                    refuse(element(list, i) + ".type", std::string(kindOf(settings).name) +
                                                           " is there already, as " + element(list, earlier));
                }
            }
            indices.push_back(settings.index());
            look.designedFor[settings.index()] = designedFor;
            addOrReplace(look.effects, std::move(settings));
        }
    }

    std::vector<LayerSettings> readLayers(const Json& json, double designedFor) const {
        if (!json.is_array() || json.empty() || json.size() > kMaxLayers) {
            refuse("layers",
                   shown(json) + " is not an array of 1 to " + std::to_string(kMaxLayers) + " layers");
        }
        std::vector<LayerSettings> layers;
        for (const Json& object : json) {
            const std::string place = element("layers", layers.size());
            LayerSettings& layer = layers.emplace_back();
            readObject(place, fieldsOf(layer), {"effects"}, object);
            readEffects(place, object, designedFor, layer);
        }
        checkClips(layers);
        return layers;
    }

    // Of one of the kinds that `find` knows.
    EffectSettings readEffect(const std::string& place, const Json& json, const std::string& names,
                              const EffectKind* (*find)(const std::string&)) const {
        const auto type = json.is_object() ? json.find("type") : json.end();
        if (type == json.end()) refuse(place, "it is not an object with a type, one of " + names);
        const EffectKind* kind = type->is_string() ? find(type->get<std::string>()) : nullptr;
        if (kind == nullptr) refuse(place + ".type", shown(*type) + " is not one of " + names);
        EffectSettings settings = kind->defaults;
        readObject(place, fieldsOf(settings), {"type"}, json);
        return settings;
    }

    static std::string kindNames() {
        std::string names;
        for (const EffectKind& kind : effectKinds())
            names += (names.empty() ? "" : ", ") + std::string(kind.name);
        return names;
    }

    // The other keys belong to the object as well and are read elsewhere.
    void readObject(const std::string& place, const Fields& fields, const std::set<std::string>& otherKeys,
                    const Json& json) const {
        std::string keys;
        for (const std::string& key : otherKeys) keys += key + ", ";
        keys += namesOf(fields);
        if (!json.is_object()) refuse(place, shown(json) + " is not an object with the keys " + keys);
        std::set<std::string> seen;
        for (const auto& [key, value] : json.items()) {
            if (otherKeys.count(key) != 0) continue;
            const Field* field = nullptr;
            for (const Field& candidate : fields) {
                if (key == candidate.name) field = &candidate;
            }
            if (field == nullptr) refuse(member(place, key), "is not one of the keys here: " + keys);
            std::visit(ReadValue{*this, member(place, key), value, wantedInJson(*field)}, field->value);
            seen.insert(key);
        }
        for (const Field& field : fields) {
            if (field.required && seen.count(field.name) == 0) {
                refuse(member(place, field.name), "is missing; it takes " + wantedInJson(field));
            }
        }
    }

    struct ReadValue {
        const StyleReader& reader;
        const std::string place;
        const Json& json;
        const std::string wanted;

        [[noreturn]] void refuseValue() const { refuse(place, shown(json) + " is not " + wanted); }
        double number(const NumberRange& range) const {
            if (!json.is_number() || !range.contains(json.get<double>())) refuseValue();
            return json.get<double>();
        }
        const std::string& text() const {
            if (!json.is_string()) refuseValue();
            const auto& content = json.get_ref<const std::string&>();
            if (content.find('\0') != std::string::npos) refuse(place, "it holds a NUL character");
            return content;
        }

        void operator()(const NumberField& field) const { *field.value = number(field.range); }
        void operator()(const ShareField& field) const { *field.value = number(kShare); }
        void operator()(const FlagField& field) const {
            if (!json.is_boolean()) refuseValue();
            *field.value = json.get<bool>();
        }
        void operator()(const OffsetField& field) const {
            const Fields sides = fieldsOf(*field.value);
            if (!json.is_array() || json.size() != sides.size()) refuseValue();
            for (size_t i = 0; i < sides.size(); ++i) {
                const Field& side = sides[i];
                std::visit(ReadValue{reader, element(place, i), json[i], wantedBy(side)}, side.value);
            }
        }
        void operator()(const CanvasField& field) const {
            if (json.is_object()) {
                *field.value = Canvas{reader.readEffect(place, json, canvasKinds(), findCanvasKind)};
            } else {
                readValue(place, {"", field}, text());
            }
        }
        void operator()(const TintField& field) const {
            reader.readObject(place, fieldsOf(*field.value), {}, json);
        }
        void operator()(const StopsField& field) const {
            if (!json.is_array() || json.empty() || json.size() > kMaxStops) refuseValue();
            std::vector<Stop> stops;
            for (const Json& stop : json) {
                const std::string at = element(place, stops.size());
                reader.readObject(at, fieldsOf(stops.emplace_back()), {}, stop);
            }
            const size_t falling = findFallingStop(stops);
            if (falling < stops.size()) {
                refuse(element(place, falling) + ".position", "positions must not fall");
            }
            *field.value = std::move(stops);
        }
        void operator()(const FileField& field) const {
            const fs::path path = text();
            if (path.empty()) refuseValue();
            *field.value = path.is_absolute() ? path.string() : (reader.mFolder / path).string();
            *field.scope = reader.mScope;
        }
        // Colours, choices and texts are written as on the command line.
        template <typename AsText>
        void operator()(const AsText& field) const {
            readValue(place, {"", field}, text());
        }
    };

    fs::path mFolder;
    const FolderScope& mScope;  // of the files it names
};

// --- Writing

Json writeObject(const Fields& fields);
Json writeEffect(EffectSettings settings);

struct WriteValue {
    Json operator()(const FlagField& field) const { return *field.value; }
    Json operator()(const OffsetField& field) const {
        return Json::array({numberJson(field.value->x), numberJson(field.value->y)});
    }
    Json operator()(const CanvasField& field) const {
        if (!field.value->has_value()) return "";
        const auto* settings = std::get_if<EffectSettings>(&(*field.value)->fill);
        return settings != nullptr ? writeEffect(*settings) : Json(formatCanvas(**field.value));
    }
    Json operator()(const NumberField& field) const { return numberJson(*field.value); }
    Json operator()(const ShareField& field) const { return numberJson(*field.value); }
    Json operator()(const TintField& field) const {
        Tint tint = *field.value;
        return writeObject(fieldsOf(tint));
    }
    Json operator()(const StopsField& field) const {
        Json stops = Json::array();
        for (Stop stop : *field.value) {
            stops.push_back(writeObject(fieldsOf(stop)));
            if (stop.opacity == 1) stops.back().erase("opacity");
        }
        return stops;
    }
    Json operator()(const FileField& field) const {
        return fs::absolute(*field.value).lexically_normal().string();
    }
    template <typename AsText>
    Json operator()(const AsText& field) const {
        return formatValue({"", field});
    }
};

StyleNotes readContent(const std::string& where, const std::string& text, const fs::path& folder,
                       const FolderScope& scope, Style& style) {
    try {
        return StyleReader(folder, scope).read(parseJson(text), style);
    } catch (const UsageError& error) {
        throw Failure(where + ": " + error.what());
    }
}

// Leaves out what is empty: no background, no features, no stops.
Json writeObject(const Fields& fields) {
    Json object = Json::object();
    for (const Field& field : fields) {
        Json value = std::visit(WriteValue{}, field.value);
        if (value != "" && value != Json::array()) object[field.name] = std::move(value);
    }
    return object;
}

Json writeEffect(EffectSettings settings) {
    Json effect = {{"type", kindOf(settings).name}};
    effect.update(writeObject(fieldsOf(settings)));
    return effect;
}

Json writeEffects(const Look& look) {
    Json effects = Json::array();
    for (const EffectSettings& settings : look.effects) effects.push_back(writeEffect(settings));
    return effects;
}

// To `factor` times the pixels: whole ones, at least one where there was one.
void fitFields(const Fields& fields, double factor) {
    for (const Field& field : lengthsOf(fields)) {
        const NumberField& number = std::get<NumberField>(field.value);
        const double size = std::abs(*number.value);
        double fitted = size * factor;
        if (std::strcmp(number.range.unit, "px") == 0) {
            fitted = std::max(std::round(fitted), size >= 1 ? 1.0 : 0.0);
        }
        *number.value = std::copysign(std::min(fitted, number.range.high), *number.value);
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
    return {{"size", NumberField{&style.size, kTextSize}},
            {"color", ColorField{&style.color}},
            {"background", OptionalColorField{&style.background}},
            {"canvas", CanvasField{&style.canvas}},
            {"letter-spacing", NumberField{&style.letterSpacing, {-1, 10, "em"}}},
            {"features", TextField{&style.features}},
            {"opacity", ShareField{&style.opacity}}};
}

Fields fieldsOf(StyleNotes& notes) {
    return {{"$schema", TextField{&notes.schema}},
            {"description", TextField{&notes.description}},
            {"designed-for", NumberField{&notes.designedFor, kTextSize}}};
}

StyleNotes readStyle(const std::string& option, const std::string& path, Style& style,
                     const ReadOptions& reads, const FolderScope& scope) {
    const std::string text = readFile(option, path, kMaxStyleBytes, scope);
    const std::string where = option + ": " + (path == "-" ? "standard input" : "'" + path + "'");
    const fs::path folder = fs::path(path).parent_path();
    // A name that leads back into the scope may begin outside, and its folder is not the style's then.
    std::vector<std::string> own;
    const std::string resolved = resolvedPath(folder.empty() ? "." : folder.string());
    if (!resolved.empty() && scope.holds(resolved)) own.push_back(resolved);
    return readContent(where, text, folder, reads.scopeWith(own, "a style"), style);
}

StyleNotes readPreset(const std::string& option, const std::string& name, Style& style) {
    std::string names;
    for (const Preset& preset : presets()) {
        if (name == preset.name) return readContent(option + ": '" + name + "'", preset.json, {}, {}, style);
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

void readStyleText(const std::string& option, const std::string& text, Style& style,
                   const FolderScope& scope) {
    try {
        StyleReader("", scope).read(parseJson(text), style);
    } catch (const UsageError& error) {
        throw UsageError((option.empty() ? "" : option + ": ") + error.what());
    }
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
