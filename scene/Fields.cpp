// SPDX-License-Identifier: Apache-2.0
#include "scene/Fields.h"

#include <cctype>
#include <cmath>
#include <filesystem>
#include <set>

#include "scene/Failure.h"
#include "scene/Json.h"
#include "scene/Scene.h"

namespace Zvex::scene {

namespace {

std::string choiceNames(const ChoiceField& field, const char* between) {
    std::string names;
    for (const auto& choice : field.choices)
        names += (names.empty() ? "" : between) + std::string(choice.first);
    return names;
}

// Reads "A@B@C" into the fields in order; those that are not required may be left out: "A@@C".
void readParts(const std::string& where, const Fields& fields, const std::string& text,
               const std::string& form, const FilePlaces& places) {
    const std::vector<std::string> parts = split(text, '@');
    const bool complete = parts.size() >= fields.size() || !fields[parts.size()].required;
    if (parts.size() > fields.size() || !complete) {
        throw UsageError(where + ": '" + text + "' is not " + form);
    }
    for (size_t i = 0; i < parts.size(); ++i) {
        const bool leftOut = parts[i].empty() && !fields[i].required && i + 1 < parts.size();
        if (!leftOut) readValue(where, fields[i], parts[i], places);
    }
}

struct ReadText {
    const std::string& where;
    const std::string& text;
    const std::string& wanted;
    const FilePlaces& places;

    [[noreturn]] void refuse() const { throw UsageError(where + ": '" + text + "' is not " + wanted); }

    void operator()(const NumberField& field) const { field.set(parseNumber(where, text, field.range)); }
    void operator()(const ColorField& field) const {
        *field.value = parseColor(where, text, places.warnings);
    }
    void operator()(const OptionalColorField& field) const {
        *field.value = parseColor(where, text, places.warnings);
    }
    void operator()(const ChoiceField& field) const {
        for (const auto& [name, number] : field.choices) {
            if (text == name) return field.set(number);
        }
        refuse();
    }
    void operator()(const FlagField& field) const {
        if (text != "true" && text != "false") refuse();
        *field.value = (text == "true") == field.given;
    }
    void operator()(const OptionalFlagField& field) const { (*this)(FlagField{&field.value->emplace()}); }
    void operator()(const OffsetField& field) const {
        const std::vector<std::string> parts = split(text, ':');
        const Fields sides = fieldsOf(*field.value);
        if (parts.size() != sides.size()) refuse();
        for (size_t i = 0; i < sides.size(); ++i) readValue(where + " " + sides[i].name, sides[i], parts[i]);
    }
    void operator()(const NumbersField& field) const {
        std::vector<double> numbers;
        for (const std::string& part : split(text, ','))
            numbers.push_back(parseNumber(where, part, field.each));
        if (numbers.size() > kMaxNumbers || findUnrisen(numbers) < numbers.size()) refuse();
        *field.value = std::move(numbers);
    }
    void operator()(const PaddingField& field) const { *field.value = parsePadding(where, text); }
    void operator()(const CanvasField& field) const { *field.value = parseCanvas(where, text, places); }
    void operator()(const TintField& field) const {
        readParts(where, fieldsOf(*field.value), text, wanted, places);
    }
    void operator()(const StopsField& field) const {
        std::vector<Stop> stops;
        for (const std::string& part : split(text, ':')) {
            stops.push_back({0xFF000000, kNoPosition});
            readParts(where, fieldsOf(stops.back()), part, wanted, places);
        }
        if (stops.size() > kMaxStops) {
            throw UsageError(where + ": " + std::to_string(stops.size()) + " stops are more than " +
                             std::to_string(kMaxStops));
        }
        spreadStops(stops);
        const size_t falling = findFallingStop(stops);
        if (falling < stops.size()) {
            throw UsageError(where + ": positions must not fall, but " +
                             formatNumber(stops[falling].position) + " comes after " +
                             formatNumber(stops[falling - 1].position));
        }
        *field.value = std::move(stops);
    }
    void operator()(const TextField& field) const {
        if (text.empty() && *field.wanted != '\0' && field.takes == nullptr) refuse();
        if (text.size() > field.mostBytes) {
            throw UsageError(where + ": it is longer than " + std::to_string(field.mostBytes) + " bytes");
        }
        if (field.takes != nullptr && !field.takes(text)) refuse();
        *field.value = text;
    }
    void operator()(const FileField& field) const {
        if (text.empty()) refuse();
        const bool relative = !places.folder.empty() && std::filesystem::path(text).is_relative();
        *field.value = relative ? (places.folder / std::filesystem::path(text)).string() : text;
        *field.source = places.source;
    }
    void operator()(const FontField& field) const {
        field.value->name = text;
        field.value->bytes = nullptr;
        field.value->source = places.fonts;
    }
    void operator()(const FontsField& field) const {
        Font font(text);
        font.source = places.fonts;
        *field.value = {font};
    }
    void operator()(const EffectField& field) const {
        field.look->add(parseEffect(where, *field.kind, text, places));
    }
    void operator()(const StyleField& field) const {
        if (beginsObject(text)) {
            readStyleText(where, text, *field.style, places.source);
        } else {
            readStyle(where, text, *field.style, places.source);
        }
    }
    void operator()(const PresetField& field) const { readPreset(where, text, *field.style); }
};

struct Wanted {
    std::string operator()(const NumberField& field) const {
        return field.range.share ? "an opacity; write 0 to 1 or 0% to 100%" : field.range.wanted();
    }
    std::string operator()(const ColorField&) const { return kWantedColor; }
    std::string operator()(const OptionalColorField&) const { return kWantedColor; }
    std::string operator()(const ChoiceField& field) const { return "one of " + choiceNames(field, ", "); }
    std::string operator()(const FlagField&) const { return "true or false"; }
    std::string operator()(const OptionalFlagField&) const { return "true or false"; }
    std::string operator()(const OffsetField&) const { return "an offset; write X:Y in whole pixels"; }
    std::string operator()(const NumbersField& field) const {
        return "a list of rising numbers, each " + field.each.wanted();
    }
    std::string operator()(const PaddingField&) const { return kWantedPadding; }
    std::string operator()(const CanvasField&) const { return kWantedCanvas + canvasKinds(); }
    std::string operator()(const TintField&) const {
        return "a colour with an opacity; write COLOR[@OPACITY]";
    }
    std::string operator()(const StopsField&) const {
        return "a list of stops; write COLOR[@POSITION[@OPACITY]]:COLOR..., positions from 0 to 100; those "
               "left out are "
               "spread evenly";
    }
    std::string operator()(const TextField& field) const {
        return *field.wanted != '\0' ? field.wanted : "a text";
    }
    std::string operator()(const FileField&) const { return "the path of a file"; }
    std::string operator()(const FontField&) const { return "a font file or a name"; }
    std::string operator()(const FontsField&) const { return "a list of font files or names"; }
    std::string operator()(const EffectField& field) const {
        return std::string("its settings, as a text or as an object, for ") + field.kind->name;
    }
    std::string operator()(const StyleField&) const { return "a style or the path of its file"; }
    std::string operator()(const PresetField&) const { return "the name of a preset"; }
};

struct Placeholder {
    std::string operator()(const NumberField& field) const {
        if (field.range.share) return "SHARE";
        std::string unit = *field.range.unit != '\0' ? field.range.unit : "N";
        for (char& c : unit) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return unit;
    }
    std::string operator()(const ColorField&) const { return "COLOR"; }
    std::string operator()(const OptionalColorField&) const { return "COLOR"; }
    std::string operator()(const ChoiceField& field) const { return choiceNames(field, "|"); }
    std::string operator()(const OptionalFlagField&) const { return "true|false"; }
    std::string operator()(const NumbersField&) const { return "PX,..."; }
    std::string operator()(const PaddingField&) const { return "PX"; }
    std::string operator()(const CanvasField&) const { return "CANVAS"; }
    std::string operator()(const FileField&) const { return "FILE"; }
    std::string operator()(const FontField&) const { return "FONT"; }
    std::string operator()(const FontsField&) const { return "FONT"; }
    std::string operator()(const EffectField& field) const { return field.kind->placeholder; }
    std::string operator()(const StyleField&) const { return "FILE"; }
    std::string operator()(const PresetField&) const { return "PRESET"; }
    template <typename Other>
    std::string operator()(const Other&) const {
        return "TEXT";
    }
};

struct Copy {
    const Field& from;

    void operator()(const NumberField& to) const { to.set(std::get<NumberField>(from.value).get()); }
    void operator()(const ChoiceField& to) const { to.set(std::get<ChoiceField>(from.value).get()); }
    void operator()(const FileField& to) const {
        const auto& file = std::get<FileField>(from.value);
        *to.value = *file.value;
        *to.source = *file.source;
    }
    void operator()(const EffectField&) const {}
    void operator()(const StyleField&) const {}
    void operator()(const PresetField&) const {}
    template <typename Other>
    void operator()(const Other& to) const {
        *to.value = *std::get<Other>(from.value).value;
    }
};

struct Format {
    std::string operator()(const NumberField& field) const {
        return field.range.contains(field.get()) ? formatNumber(field.get()) + field.range.unit : "";
    }
    std::string operator()(const ColorField& field) const { return formatColor(*field.value); }
    std::string operator()(const OptionalColorField& field) const {
        return field.value->has_value() ? formatColor(**field.value) : "";
    }
    std::string operator()(const ChoiceField& field) const {
        for (const auto& [name, number] : field.choices) {
            if (number == field.get()) return name;
        }
        return "";
    }
    std::string operator()(const FlagField& field) const {
        return *field.value == field.given ? "true" : "false";
    }
    std::string operator()(const OptionalFlagField& field) const {
        return !field.value->has_value() ? "" : **field.value ? "true" : "false";
    }
    std::string operator()(const OffsetField& field) const {
        return formatNumber(field.value->x) + ":" + formatNumber(field.value->y);
    }
    std::string operator()(const NumbersField& field) const {
        std::string text;
        for (const double number : *field.value) text += (text.empty() ? "" : ",") + formatNumber(number);
        return text;
    }
    std::string operator()(const PaddingField& field) const {
        const Padding& sides = *field.value;
        std::string text = std::to_string(sides.left);
        if (sides.top == sides.left && sides.right == sides.left && sides.bottom == sides.left) return text;
        for (const int side : {sides.top, sides.right, sides.bottom}) text += "," + std::to_string(side);
        return text;
    }
    std::string operator()(const CanvasField& field) const {
        return field.value->has_value() ? formatCanvas(**field.value) : "";
    }
    std::string operator()(const TintField& field) const {
        return formatColor(field.value->color) + "@" + formatNumber(field.value->opacity);
    }
    std::string operator()(const StopsField& field) const {
        std::string text;
        for (const Stop& stop : *field.value) {
            text += (text.empty() ? "" : ":") + formatColor(stop.color) + "@" + formatNumber(stop.position);
            if (stop.opacity != 1) text += "@" + formatNumber(stop.opacity);
        }
        return text;
    }
    std::string operator()(const TextField& field) const { return *field.value; }
    std::string operator()(const FileField& field) const { return *field.value; }
    template <typename Other>
    std::string operator()(const Other&) const {
        return "";
    }
};

}  // namespace

Fields fieldsOf(Tint& tint) {
    return {required({"color", ColorField{&tint.color}}), {"opacity", NumberField{&tint.opacity, kShare}}};
}

Fields fieldsOf(Stop& stop) {
    return {required({"color", ColorField{&stop.color}}),
            {"position", NumberField{&stop.position, {0, 100, "%"}}},
            {"opacity", NumberField{&stop.opacity, kShare}}};
}

Fields fieldsOf(Offset& offset) {
    static constexpr NumberRange kOffset = {-1000, 1000, "px", false, true, true};
    return {{"x", NumberField{&offset.x, kOffset}}, {"y", NumberField{&offset.y, kOffset}}};
}

Field compressionField(Compression& value) {
    return {
        "compression",
        ChoiceField{
            &value,
            {{"fast", Compression::Fast}, {"default", Compression::Default}, {"small", Compression::Small}}},
        "For PNG and WebP: fast takes the least time, small makes the smallest file, default saves nearly as "
        "much"};
}

Field required(Field field) {
    field.required = true;
    return field;
}

void addFields(Fields& fields, Fields more, const char* group) {
    for (Field& field : more) {
        if (*group != '\0') field.group = group;
        fields.push_back(std::move(field));
    }
}

const Field* findField(const Fields& fields, const std::string& name) {
    for (const Field& field : fields) {
        if (name == field.name) return &field;
    }
    return nullptr;
}

std::vector<std::pair<std::string, NumberField>> lengthsOf(const Fields& fields) {
    std::vector<std::pair<std::string, NumberField>> lengths;
    const auto add = [&](const char* name, const NumberField& number) {
        if (number.range.length && number.range.contains(number.get())) lengths.emplace_back(name, number);
    };
    for (const Field& field : fields) {
        if (const auto* number = std::get_if<NumberField>(&field.value)) add(field.name, *number);
        if (const auto* offset = std::get_if<OffsetField>(&field.value)) {
            for (const Field& side : fieldsOf(*offset->value))
                add(side.name, std::get<NumberField>(side.value));
        }
        if (const auto* numbers = std::get_if<NumbersField>(&field.value)) {
            for (double& number : *numbers->value) add(field.name, NumberField{&number, numbers->each});
        }
        if (const auto* padding = std::get_if<PaddingField>(&field.value)) {
            Padding& sides = *padding->value;
            for (int* side : {&sides.left, &sides.top, &sides.right, &sides.bottom})
                add(field.name, NumberField{side, kPaddingSide});
        }
    }
    return lengths;
}

void readValue(const std::string& where, const Field& field, const std::string& text,
               const FilePlaces& places) {
    std::visit(ReadText{where, text, wantedBy(field), places}, field.value);
}

void readKeyValues(const std::string& where, const Fields& fields, const std::string& text,
                   const FilePlaces& places) {
    std::set<std::string> seen;
    bool first = true;
    for (const std::string& part : split(text, ',')) {
        size_t equals = part.find('=');
        std::string name = part.substr(0, equals);
        std::string value = equals == std::string::npos ? "" : part.substr(equals + 1);
        if (first && equals == std::string::npos && std::holds_alternative<FileField>(fields[0].value)) {
            value = std::exchange(name, fields[0].name);
            equals = 0;
        }
        first = false;
        const Field* field = findField(fields, name);
        if (field == nullptr) {
            throw UsageError(where + ": '" + name + "' is not one of its keys: " + namesOf(fields));
        }
        if (equals == std::string::npos) {
            throw UsageError(where + " " + name + ": has no value; write " + name + "=VALUE, " +
                             wantedBy(*field));
        }
        if (!seen.insert(name).second) throw UsageError(where + " " + name + ": is given twice");
        readValue(where + " " + name, *field, value, places);
    }
    for (const Field& field : fields) {
        if (field.required && seen.count(field.name) == 0) {
            throw UsageError(where + " " + field.name + ": is missing; it takes " + wantedBy(field));
        }
    }
}

std::string namesOf(const Fields& fields) {
    std::string names;
    for (const Field& field : fields) names += (names.empty() ? "" : ", ") + std::string(field.name);
    return names;
}

std::string wantedBy(const Field& field) {
    return std::visit(Wanted{}, field.value);
}

std::string placeholderOf(const Field& field) {
    return *field.placeholder != '\0' ? field.placeholder : std::visit(Placeholder{}, field.value);
}

void copyValue(const Field& to, const Field& from) {
    std::visit(Copy{from}, to.value);
}

std::string formatValue(const Field& field) {
    return std::visit(Format{}, field.value);
}

void spreadStops(std::vector<Stop>& stops) {
    if (stops.empty()) return;
    if (std::isnan(stops.front().position)) stops.front().position = 0;
    if (std::isnan(stops.back().position)) stops.back().position = 100;
    size_t from = 0;
    for (size_t to = 1; to < stops.size(); ++to) {
        if (std::isnan(stops[to].position)) continue;
        const double start = stops[from].position, way = stops[to].position - start;
        for (size_t i = from + 1; i < to; ++i) {
            const double exact = start + way * static_cast<double>(i - from) / static_cast<double>(to - from);
            stops[i].position = std::floor(exact * 100 + 1e-6) / 100;
        }
        from = to;
    }
}

size_t findUnrisen(const std::vector<double>& numbers) {
    for (size_t i = 1; i < numbers.size(); ++i) {
        if (!(numbers[i] > numbers[i - 1])) return i;
    }
    return std::string::npos;
}

size_t findFallingStop(const std::vector<Stop>& stops) {
    for (size_t i = 1; i < stops.size(); ++i) {
        if (stops[i].position < stops[i - 1].position) return i;
    }
    return std::string::npos;
}

}  // namespace Zvex::scene
