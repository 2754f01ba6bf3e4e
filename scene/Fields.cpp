// SPDX-License-Identifier: Apache-2.0
#include "scene/Fields.h"

#include <set>

#include "scene/Failure.h"
#include "scene/Layers.h"

namespace Zvex::scene {

namespace {

std::string choiceNames(const ChoiceField& field) {
    std::string names;
    for (const auto& choice : field.choices) names += (names.empty() ? "" : ", ") + std::string(choice.first);
    return names;
}

// "A@B@C" into the fields in their order; fields at the end may be left out when they are not required.
void readParts(const std::string& where, const Fields& fields, const std::string& text,
               const std::string& form) {
    const std::vector<std::string> parts = split(text, '@');
    const bool complete = parts.size() >= fields.size() || !fields[parts.size()].required;
    if (parts.size() > fields.size() || !complete) {
        throw UsageError(where + ": '" + text + "' is not " + form);
    }
    for (size_t i = 0; i < parts.size(); ++i) readValue(where, fields[i], parts[i]);
}

struct ReadText {
    const std::string& where;
    const std::string& text;
    const std::string& wanted;

    [[noreturn]] void refuse() const { throw UsageError(where + ": '" + text + "' is not " + wanted); }

    void operator()(const NumberField& field) const { *field.value = parseNumber(where, text, field.range); }
    void operator()(const ShareField& field) const { *field.value = parseOpacity(where, text); }
    void operator()(const ColorField& field) const { *field.value = parseColor(where, text); }
    void operator()(const OptionalColorField& field) const { *field.value = parseColor(where, text); }
    void operator()(const ChoiceField& field) const {
        for (const auto& [name, number] : field.choices) {
            if (text != name) continue;
            *field.value = number;
            return;
        }
        refuse();
    }
    void operator()(const FlagField& field) const {
        if (text != "true" && text != "false") refuse();
        *field.value = text == "true";
    }
    void operator()(const OffsetField& field) const {
        const std::vector<std::string> parts = split(text, ':');
        const Fields sides = fieldsOf(*field.value);
        if (parts.size() != sides.size()) refuse();
        for (size_t i = 0; i < sides.size(); ++i) readValue(where + " " + sides[i].name, sides[i], parts[i]);
    }
    void operator()(const CanvasField& field) const { *field.value = parseCanvas(where, text); }
    void operator()(const TintField& field) const { readParts(where, fieldsOf(*field.value), text, wanted); }
    void operator()(const StopsField& field) const {
        std::vector<Stop> stops;
        for (const std::string& part : split(text, ':')) {
            readParts(where, fieldsOf(stops.emplace_back()), part, wanted);
        }
        if (stops.size() > kMaxStops) {
            throw UsageError(where + ": " + std::to_string(stops.size()) + " stops are more than " +
                             std::to_string(kMaxStops));
        }
        const size_t falling = findFallingStop(stops);
        if (falling < stops.size()) {
            throw UsageError(where + ": positions must not fall, but " +
                             formatNumber(stops[falling].position) + " comes after " +
                             formatNumber(stops[falling - 1].position));
        }
        *field.value = std::move(stops);
    }
    void operator()(const TextField& field) const {
        if (text.size() > kMaxFieldBytes) {
            throw UsageError(where + ": it is longer than " + std::to_string(kMaxFieldBytes) + " bytes");
        }
        *field.value = text;
    }
    void operator()(const FileField& field) const {
        if (text.empty()) refuse();
        *field.value = text;
    }
};

struct Wanted {
    std::string operator()(const NumberField& field) const { return field.range.wanted(); }
    std::string operator()(const ShareField&) const { return kWantedShare; }
    std::string operator()(const ColorField&) const { return kWantedColor; }
    std::string operator()(const OptionalColorField&) const { return kWantedColor; }
    std::string operator()(const ChoiceField& field) const { return "one of " + choiceNames(field); }
    std::string operator()(const FlagField&) const { return "true or false"; }
    std::string operator()(const OffsetField&) const { return "an offset; write X:Y in whole pixels"; }
    std::string operator()(const CanvasField&) const { return kWantedCanvas + canvasKinds(); }
    std::string operator()(const TintField&) const {
        return "a colour with an opacity; write COLOR[@OPACITY]";
    }
    std::string operator()(const StopsField&) const {
        return "a list of stops; write COLOR@POSITION[@OPACITY]:COLOR@POSITION..., positions from 0 to 100";
    }
    std::string operator()(const TextField&) const { return "a text"; }
    std::string operator()(const FileField&) const { return "the path of a file"; }
};

struct Format {
    std::string operator()(const NumberField& field) const {
        return formatNumber(*field.value) + field.range.unit;
    }
    std::string operator()(const ShareField& field) const { return formatNumber(*field.value); }
    std::string operator()(const ColorField& field) const { return formatColor(*field.value); }
    std::string operator()(const OptionalColorField& field) const {
        return field.value->has_value() ? formatColor(**field.value) : "";
    }
    std::string operator()(const ChoiceField& field) const {
        for (const auto& [name, number] : field.choices) {
            if (number == *field.value) return name;
        }
        return "";
    }
    std::string operator()(const FlagField& field) const { return *field.value ? "true" : "false"; }
    std::string operator()(const OffsetField& field) const {
        return formatNumber(field.value->x) + ":" + formatNumber(field.value->y);
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
};

}  // namespace

Fields fieldsOf(Tint& tint) {
    return {{"color", ColorField{&tint.color}, true}, {"opacity", ShareField{&tint.opacity}}};
}

Fields fieldsOf(Stop& stop) {
    return {{"color", ColorField{&stop.color}, true},
            {"position", NumberField{&stop.position, {0, 100, "%"}}, true},
            {"opacity", ShareField{&stop.opacity}}};
}

Fields fieldsOf(Offset& offset) {
    static constexpr NumberRange kOffset = {-1000, 1000, "px", false, true, true};
    return {{"x", NumberField{&offset.x, kOffset}}, {"y", NumberField{&offset.y, kOffset}}};
}

Fields lengthsOf(const Fields& fields) {
    Fields lengths;
    for (const Field& field : fields) {
        const auto* number = std::get_if<NumberField>(&field.value);
        if (number != nullptr && number->range.length) lengths.push_back(field);
        if (const auto* offset = std::get_if<OffsetField>(&field.value)) {
            for (const Field& side : fieldsOf(*offset->value)) lengths.push_back(side);
        }
    }
    return lengths;
}

void readValue(const std::string& where, const Field& field, const std::string& text) {
    std::visit(ReadText{where, text, wantedBy(field)}, field.value);
}

void readKeyValues(const std::string& where, const Fields& fields, const std::string& text) {
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
        const Field* field = nullptr;
        for (const Field& candidate : fields) {
            if (name == candidate.name) field = &candidate;
        }
        if (field == nullptr) {
            throw UsageError(where + ": '" + name + "' is not one of its keys: " + namesOf(fields));
        }
        if (equals == std::string::npos) {
            throw UsageError(where + " " + name + ": has no value; write " + name + "=VALUE, " +
                             wantedBy(*field));
        }
        if (!seen.insert(name).second) throw UsageError(where + " " + name + ": is given twice");
        readValue(where + " " + name, *field, value);
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

std::string formatValue(const Field& field) {
    return std::visit(Format{}, field.value);
}

size_t findFallingStop(const std::vector<Stop>& stops) {
    for (size_t i = 1; i < stops.size(); ++i) {
        if (stops[i].position < stops[i - 1].position) return i;
    }
    return std::string::npos;
}

}  // namespace Zvex::scene
