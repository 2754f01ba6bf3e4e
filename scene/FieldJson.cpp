// SPDX-License-Identifier: Apache-2.0
#include "scene/FieldJson.h"

#include <filesystem>

#include "scene/Failure.h"
#include "scene/Scene.h"

namespace Zvex::scene {

namespace {

namespace fs = std::filesystem;

// What a field takes in JSON.
std::string wantedInJson(const Field& field) {
    const auto* number = std::get_if<NumberField>(&field.value);
    if (number != nullptr) return number->range.wanted();
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

struct ReadJson {
    const std::string& place;
    const Json& json;
    const std::string wanted;
    const FilePlaces& places;
    const Field* start;

    [[noreturn]] void refuse() const { throw UsageError(place + ": " + shown(json) + " is not " + wanted); }

    void operator()(const NumberField& field) const {
        if (!json.is_number() || !field.range.contains(json.get<double>())) refuse();
        field.set(json.get<double>());
    }
    void operator()(const FlagField& field) const {
        if (!json.is_boolean()) refuse();
        *field.value = json.get<bool>() == field.given;
    }
    void operator()(const OptionalFlagField& field) const { (*this)(FlagField{&field.value->emplace()}); }
    void operator()(const OffsetField& field) const {
        const Fields sides = fieldsOf(*field.value);
        if (!json.is_array() || json.size() != sides.size()) refuse();
        for (size_t i = 0; i < sides.size(); ++i) readJson(element(place, i), sides[i], json[i], places);
    }
    void operator()(const NumbersField& field) const {
        if (!json.is_array()) return readText(field);
        if (json.empty() || json.size() > kMaxNumbers) refuse();
        std::vector<double> numbers(json.size());
        for (size_t i = 0; i < numbers.size(); ++i)
            readJson(element(place, i), {"", NumberField{&numbers[i], field.each}}, json[i], places);
        const size_t unrisen = findUnrisen(numbers);
        if (unrisen < numbers.size()) throw UsageError(element(place, unrisen) + ": the numbers must rise");
        *field.value = std::move(numbers);
    }
    void operator()(const CanvasField& field) const {
        if (!json.is_object()) return readText(field);
        const EffectSettings* base =
            start != nullptr && *field.value ? std::get_if<EffectSettings>(&(*field.value)->fill) : nullptr;
        *field.value = Canvas{readEffect(place, json, canvasKinds(), findCanvasKind, places, {"type"}, base)};
    }
    void operator()(const TintField& field) const {
        if (start == nullptr) return readObject(place, fieldsOf(*field.value), {}, json, places);
        const Fields starts = fieldsOf(*std::get<TintField>(start->value).value);
        readObject(place, fieldsOf(*field.value), {}, json, places, &starts);
    }
    void operator()(const StopsField& field) const {
        if (!json.is_array() || json.empty() || json.size() > kMaxStops) refuse();
        std::vector<Stop> stops;
        for (const Json& stop : json) {
            const std::string at = element(place, stops.size());
            stops.push_back({0xFF000000, kNoPosition});
            readObject(at, fieldsOf(stops.back()), {}, stop, places);
        }
        spreadStops(stops);
        const size_t falling = findFallingStop(stops);
        if (falling < stops.size()) {
            throw UsageError(element(place, falling) + ".position: positions must not fall");
        }
        *field.value = std::move(stops);
    }
    void operator()(const FontsField& field) const {
        if (!json.is_array()) return readText(field);
        std::vector<Font> fonts(json.size());
        if (fonts.size() > kMaxFonts) {
            throw UsageError(place + ": " + std::to_string(fonts.size()) + " fonts are more than " +
                             std::to_string(kMaxFonts));
        }
        for (size_t i = 0; i < fonts.size(); ++i)
            readJson(place, {"", FontField{&fonts[i]}}, json[i], places);
        *field.value = std::move(fonts);
    }
    void operator()(const EffectField& field) const {
        if (!json.is_object()) return readText(field);
        EffectSettings settings = field.kind->defaults;
        readObject(place, fieldsOf(settings), {}, json, places);
        field.look->add(std::move(settings));
    }
    void operator()(const StyleField& field) const {
        if (!json.is_object()) return readText(field);
        readStyleJson(place, json, *field.style, places.source);
    }
    // Colours, choices and texts are written as on the command line.
    template <typename AsText>
    void operator()(const AsText& field) const {
        readText(field);
    }

private:
    void readText(const Field::Value& field) const {
        if (!json.is_string()) refuse();
        const auto& content = json.get_ref<const std::string&>();
        if (content.find('\0') != std::string::npos) throw UsageError(place + ": it holds a NUL character");
        if (std::holds_alternative<FileField>(field) && content.empty()) refuse();
        readValue(place, {"", field}, content, places);
    }
};

struct WriteValue {
    Json operator()(const FlagField& field) const { return *field.value == field.given; }
    Json operator()(const OptionalFlagField& field) const {
        return field.value->has_value() ? Json(**field.value) : Json("");
    }
    Json operator()(const OffsetField& field) const {
        return Json::array({numberJson(field.value->x), numberJson(field.value->y)});
    }
    Json operator()(const CanvasField& field) const {
        if (!field.value->has_value()) return "";
        const auto* settings = std::get_if<EffectSettings>(&(*field.value)->fill);
        return settings != nullptr ? writeEffect(*settings) : Json(formatCanvas(**field.value));
    }
    Json operator()(const NumberField& field) const {
        return field.isNone() ? Json("") : numberJson(field.get());
    }
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
    Json operator()(const FileField& field) const { return orDefault(*field.source).fullName(*field.value); }
    template <typename AsText>
    Json operator()(const AsText& field) const {
        return formatValue({"", field});
    }
};

}  // namespace

std::string shown(const Json& json) {
    const std::string text = dumpJson(json);
    return text.size() > 40 ? std::string("this ") + json.type_name() : text;
}

void readJson(const std::string& place, const Field& field, const Json& json, const FilePlaces& places,
              const Field* start) {
    std::visit(ReadJson{place, json, wantedInJson(field), places, start}, field.value);
}

void readObject(const std::string& place, const Fields& fields, const std::set<std::string>& otherKeys,
                const Json& json, const FilePlaces& places, const Fields* starts) {
    std::string keys;
    for (const std::string& key : otherKeys) keys += key + ", ";
    keys += namesOf(fields);
    const std::string where = place.empty() ? "" : place + ": ";
    if (!json.is_object()) throw UsageError(where + shown(json) + " is not an object with the keys " + keys);
    for (const auto& [key, value] : json.items()) {
        if (otherKeys.count(key) != 0) continue;
        const Field* field = findField(fields, key);
        if (field == nullptr) throw UsageError(member(place, key) + ": is not one of the keys here: " + keys);
        const Field* start = starts != nullptr ? findField(*starts, key) : nullptr;
        if (!value.is_null()) {
            readJson(member(place, key), *field, value, places, start);
        } else if (start != nullptr) {
            copyValue(*field, *start);
        }
    }
    for (const Field& field : fields) {
        const bool there = json.contains(field.name) ? !json[field.name].is_null() : starts != nullptr;
        if (field.required && !there) {
            throw UsageError(member(place, field.name) + ": is missing; it takes " + wantedInJson(field));
        }
    }
}

EffectSettings readEffect(const std::string& place, const Json& json, const std::string& names,
                          const EffectKind* (*find)(const std::string&), const FilePlaces& places,
                          const std::set<std::string>& otherKeys, const EffectSettings* base) {
    const auto type = json.is_object() ? json.find("type") : json.end();
    if (type == json.end()) throw UsageError(place + ": it is not an object with a type, one of " + names);
    const EffectKind* kind = type->is_string() ? find(type->get<std::string>()) : nullptr;
    if (kind == nullptr) throw UsageError(place + ".type: " + shown(*type) + " is not one of " + names);
    EffectSettings start = kind->defaults;
    const bool changes = base != nullptr && base->index() == start.index();
    EffectSettings settings = changes ? *base : start;
    const Fields starts = fieldsOf(start);
    readObject(place, fieldsOf(settings), otherKeys, json, places, changes ? &starts : nullptr);
    return settings;
}

Json writeObject(const Fields& fields, const Fields* starts) {
    Json object = Json::object();
    for (size_t i = 0; i < fields.size(); ++i) {
        Json value = std::visit(WriteValue{}, fields[i].value);
        const bool left = value == "" || value == Json::array() ||
                          (starts != nullptr && value == std::visit(WriteValue{}, (*starts)[i].value));
        if (!left) object[fields[i].name] = std::move(value);
    }
    return object;
}

Json writeEffect(EffectSettings settings) {
    Json effect = {{"type", kindOf(settings).name}};
    effect.update(writeObject(fieldsOf(settings)));
    return effect;
}

}  // namespace Zvex::scene
