// SPDX-License-Identifier: Apache-2.0
// Style files: what they say, alone or on top of another style, and how a style is written as one.
#include <algorithm>
#include <filesystem>
#include <map>

#include "scene/Failure.h"
#include "scene/FieldJson.h"
#include "scene/Presets.h"
#include "scene/SceneCheck.h"
#include "scene/Style.h"

namespace Zvex::scene {

namespace {

namespace fs = std::filesystem;

constexpr size_t kMaxStyleBytes = size_t{4} << 20;
constexpr size_t kMaxBases = 8;

const std::string kDesignedFor = "designed-for";

std::string effectNames() {
    std::string names;
    for (const EffectKind& kind : effectKinds())
        names += (names.empty() ? "" : ", ") + std::string(kind.name);
    return names;
}

// What a style says, together with those that it extends. A Look's designedFor has only the effects that say
// it themselves.
struct Content {
    Style style;
    std::set<std::string> given;  // keys of the style and its notes
};

// The error with `where` in front of its place. What is wrong in a file is a Failure.
[[noreturn]] void rethrowWithin(const std::string& where, const Error& error, bool inFile) {
    const std::string message = (where.empty() ? "" : where + ": ") + error.what();
    if (!inFile && dynamic_cast<const UsageError*>(&error) != nullptr) throw UsageError(message);
    throw Failure(message);
}

const EffectSettings* findEffect(const Look& look, size_t kind) {
    for (const EffectSettings& settings : look.effects) {
        if (settings.index() == kind) return &settings;
    }
    return nullptr;
}

void removeEffect(Look& look, size_t kind) {
    const auto ofKind = [&](const EffectSettings& settings) { return settings.index() == kind; };
    look.effects.erase(std::remove_if(look.effects.begin(), look.effects.end(), ofKind), look.effects.end());
    look.designedFor.erase(kind);
}

// Reads one style, and those below it. The places' warnings are not null.
class StyleReader {
public:
    // `above` are the full names of the files that led here.
    StyleReader(FilePlaces places, std::vector<std::string> above)
        : mPlaces(std::move(places)), mAbove(std::move(above)) {}

    Content read(const Json& json) const {
        Content content;
        const auto extends = json.is_object() ? json.find("extends") : json.end();
        if (extends != json.end() && !extends->is_null()) content = readBase(*extends);
        mPlaces.warnings->swap(content.style.warnings);
        readSettings(json, content);
        readLayers(json, content.style);
        readEffects("", json, content.style);
        const bool says = json.contains("effects") && !json["effects"].is_null();
        if (says && !content.style.layers.empty())
            throw UsageError("effects: belong into the layers where there are some");
        return content;
    }

    // The file's content; its errors and warnings name the file, behind `option`.
    static Content readFile(const std::string& option, const std::string& name,
                            const std::shared_ptr<const Source>& source, std::vector<std::string> above) {
        const std::string text = *orDefault(source).read(option, name, kMaxStyleBytes);
        std::shared_ptr<const Source> files = orDefault(source).ofStyle(name);
        if (files == nullptr) files = source;
        if (name != "-") above.push_back(orDefault(source).fullName(name));
        const std::string shown = name == "-" ? "standard input" : "'" + name + "'";
        return readText(option + ": " + shown, text, {fs::path(name).parent_path(), files, {}},
                        std::move(above));
    }

    static Content readPreset(const std::string& option, const Preset& preset) {
        return readText(option + ": '" + preset.name + "'", preset.json, {}, {});
    }

private:
    static Content readText(const std::string& where, const std::string& text, FilePlaces places,
                            std::vector<std::string> above) {
        std::vector<std::string> warnings;
        places.warnings = &warnings;
        try {
            Content content = StyleReader(std::move(places), std::move(above)).read(parseJson(text));
            for (const std::string& warning : warnings)
                content.style.warnings.push_back(where + ": " + warning);
            return content;
        } catch (const Error& error) {
            rethrowWithin(where, error, true);
        }
    }

    Content readBase(const Json& json) const {
        const std::string place = "extends";
        StyleNotes notes;
        readJson(place, *findField(fieldsOf(notes), place), json, mPlaces);
        if (const Preset* preset = findPreset(notes.extends)) return readPreset(place, *preset);
        if (mAbove.size() >= kMaxBases) {
            throw UsageError(place + ": more than " + std::to_string(kMaxBases) +
                             " style files extend one another");
        }
        fs::path path = pathOf(notes.extends);
        if (path == "-") path = "./-";  // no standard input
        const std::string full = orDefault(mPlaces.source).fullName(path);
        if (std::find(mAbove.begin(), mAbove.end(), full) != mAbove.end())
            throw UsageError(place + ": '" + path.string() + "' extends this style itself");
        if (!orDefault(mPlaces.source).has(path) && notes.extends.find('/') == std::string::npos &&
            path.extension().empty()) {
            throw UsageError(place + ": '" + notes.extends + "' is not a file, and not one of " +
                             presetNames());
        }
        return readFile(place, path, mPlaces.source, mAbove);
    }

    void readSettings(const Json& json, Content& content) const {
        Style start;
        Fields fields = fieldsOf(content.style), starts = fieldsOf(start);
        addFields(fields, fieldsOf(content.style.notes));
        addFields(starts, fieldsOf(start.notes));
        readObject("", fields, {"layers", "effects"}, json, mPlaces, &starts);
        for (const Field& field : fields) {
            if (!json.contains(field.name)) continue;
            content.given.erase(field.name);
            if (!json[field.name].is_null()) content.given.insert(field.name);
        }
    }

    // The first layer changes the first, and so on. More go behind them; null takes one away.
    void readLayers(const Json& json, Style& style) const {
        const auto list = json.find("layers");
        if (list == json.end()) return;
        if (list->is_null()) return style.layers.clear();
        const std::string most = std::to_string(kMaxLayers);
        if (!list->is_array() || list->empty() || list->size() > kMaxLayers)
            throw UsageError("layers: " + shown(*list) + " is not an array of 1 to " + most + " layers");
        if (!style.effects.empty() && !json.contains("effects")) {
            throw UsageError(
                "layers: the style that this one extends has effects; \"effects\": null takes them away");
        }
        LayerSettings start;
        const Fields starts = fieldsOf(start);
        std::vector<LayerSettings> layers;
        for (size_t i = 0; i < std::max(list->size(), style.layers.size()); ++i) {
            if (i < list->size() && (*list)[i].is_null()) continue;
            layers.push_back(i < style.layers.size() ? style.layers[i] : start);
            if (i >= list->size()) continue;
            const std::string place = element("layers", i);
            readObject(place, fieldsOf(layers.back()), {"effects"}, (*list)[i], mPlaces, &starts);
            readEffects(place, (*list)[i], layers.back());
        }
        if (layers.size() > kMaxLayers)
            throw UsageError("layers: " + std::to_string(layers.size()) + " are more than " + most);
        checkClips(layers);
        style.layers = std::move(layers);
    }

    // The object's "effects", if it has any: they change those of their kind, and new ones go on top.
    void readEffects(const std::string& place, const Json& json, Look& look) const {
        const std::string list = member(place, "effects");
        const auto effects = json.find("effects");
        if (effects == json.end()) return;
        if (effects->is_null()) {
            look.effects.clear();
            look.designedFor.clear();
            return;
        }
        if (!effects->is_array())
            throw UsageError(list + ": " + shown(*effects) + " is not an array of effects");
        std::map<size_t, size_t> seen;  // places of the kinds
        for (size_t i = 0; i < effects->size(); ++i) {
            const size_t kind = readEffectInto(element(list, i), (*effects)[i], look);
            const auto [earlier, isNew] = seen.emplace(kind, i);
            if (isNew) continue;
            throw UsageError(element(list, i) + ".type: " + effectKinds()[kind].name +
                             " is there already, as " + element(list, earlier->second));
        }
    }

    // Returns the index of the effect's kind.
    size_t readEffectInto(const std::string& place, const Json& json, Look& look) const {
        if (const EffectKind* kind = takenAway(json)) {
            removeEffect(look, kind->defaults.index());
            return kind->defaults.index();
        }
        const auto type = json.is_object() ? json.find("type") : json.end();
        const EffectKind* kind =
            type != json.end() && type->is_string() ? findEffectKind(type->get<std::string>()) : nullptr;
        EffectSettings settings =
            readEffect(place, json, effectNames(), findEffectKind, mPlaces, {"type", kDesignedFor},
                       kind != nullptr ? findEffect(look, kind->defaults.index()) : nullptr);
        const size_t index = settings.index();
        const auto designed = json.find(kDesignedFor);
        if (designed != json.end()) {
            look.designedFor.erase(index);
            double size = 0;
            const Field field = {"", NumberField{&size, kEffectDesignedFor}};
            if (!designed->is_null()) readJson(member(place, kDesignedFor), field, *designed, mPlaces);
            if (!designed->is_null()) look.designedFor[index] = size;
        }
        addOrReplace(look.effects, std::move(settings));
        return index;
    }

    // {"stroke": null}
    static const EffectKind* takenAway(const Json& json) {
        const bool one = json.is_object() && json.size() == 1 && json.begin()->is_null();
        return one ? findEffectKind(json.begin().key()) : nullptr;
    }

    // The path of a file that is named beside this one, without "./" in the middle.
    fs::path pathOf(const std::string& name) const {
        if (fs::path(name).is_absolute()) return name;
        fs::path path = mPlaces.folder;
        for (const fs::path& part : fs::path(name)) {
            if (part != ".") path /= part;
        }
        return path;
    }

    const FilePlaces mPlaces;
    const std::vector<std::string> mAbove;
};

void designAll(Look& look, double designedFor) {
    for (const EffectSettings& settings : look.effects)
        look.designedFor.emplace(settings.index(), designedFor);
}

// Lays what a style says over what is there already.
void apply(Content content, Style& style) {
    Style& from = content.style;
    const double designedFor = from.notes.designedFor;
    designAll(from, designedFor);
    for (LayerSettings& layer : from.layers) designAll(layer, designedFor);
    Fields to = fieldsOf(style), fields = fieldsOf(from);
    addFields(to, fieldsOf(style.notes));
    addFields(fields, fieldsOf(from.notes));
    for (size_t i = 0; i < fields.size(); ++i) {
        if (content.given.count(fields[i].name) != 0) copyValue(to[i], fields[i]);
    }
    for (EffectSettings& settings : from.effects) {
        style.designedFor[settings.index()] = from.designedFor[settings.index()];
        addOrReplace(style.effects, std::move(settings));
    }
    if (!from.layers.empty()) {
        style.layers = std::move(from.layers);
        style.layersDesignedFor = designedFor;
    }
    std::move(from.warnings.begin(), from.warnings.end(), std::back_inserter(style.warnings));
}

double designedForOf(const Look& look, const EffectSettings& settings) {
    const auto designed = look.designedFor.find(settings.index());
    return designed != look.designedFor.end() ? designed->second : 0;
}

// Writes `designed-for` only for effects whose size differs from the style's.
Json writeEffects(const Look& look, double designedFor) {
    Json effects = Json::array();
    for (const EffectSettings& settings : look.effects) {
        effects.push_back(writeEffect(settings));
        const double own = designedForOf(look, settings);
        if (own != designedFor) effects.back()[kDesignedFor] = numberJson(own);
    }
    return effects;
}

// The size that is written once, for the whole style.
double commonDesignedFor(const Style& style) {
    double common = style.layers.empty() ? 0 : style.layersDesignedFor;
    for (auto effect = style.effects.begin(); common == 0 && effect != style.effects.end(); ++effect)
        common = designedForOf(style, *effect);
    return common;
}

}  // namespace

void readStyle(const std::string& option, const std::string& name, Style& style,
               const std::shared_ptr<const Source>& source) {
    apply(StyleReader::readFile(option, name, source, {}), style);
}

void readPreset(const std::string& option, const std::string& name, Style& style) {
    const Preset* preset = findPreset(name);
    if (preset == nullptr) throw UsageError(option + ": '" + name + "' is not one of " + presetNames());
    apply(StyleReader::readPreset(option, *preset), style);
}

void readStyleJson(const std::string& option, const Json& json, Style& style,
                   const std::shared_ptr<const Source>& source) {
    const std::string before = option.empty() ? "" : option + ": ";
    std::vector<std::string> warnings;
    try {
        apply(StyleReader({"", source, {}, &warnings}, {}).read(json), style);
    } catch (const Error& error) {
        rethrowWithin(option, error, false);
    }
    for (const std::string& warning : warnings) style.warnings.push_back(before + warning);
}

void readStyleText(const std::string& option, const std::string& text, Style& style,
                   const std::shared_ptr<const Source>& source) {
    Json json;
    try {
        json = parseJson(text);
    } catch (const Error& error) {
        rethrowWithin(option, error, false);
    }
    readStyleJson(option, json, style, source);
}

std::string writeStyle(const Style& style) {
    Style copy = style, start;
    LayerSettings startLayer;
    copy.notes.extends.clear();
    copy.notes.designedFor = commonDesignedFor(style);
    const Fields notes = fieldsOf(start.notes), starts = fieldsOf(start), layerStarts = fieldsOf(startLayer);
    Json json = writeObject(fieldsOf(copy.notes), &notes);
    json.update(writeObject(fieldsOf(copy), &starts));
    for (LayerSettings& layer : copy.layers) {
        Json object = writeObject(fieldsOf(layer), &layerStarts);
        if (!layer.effects.empty()) object["effects"] = writeEffects(layer, copy.notes.designedFor);
        json["layers"].push_back(std::move(object));
    }
    if (copy.layers.empty() && !copy.effects.empty())
        json["effects"] = writeEffects(copy, copy.notes.designedFor);
    try {
        (void)json.dump();  // throws
        return layOutJson(json);
    } catch (const Json::exception&) {
        throw Failure("--print-style: a path or a feature list is not UTF-8");
    }
}

}  // namespace Zvex::scene
