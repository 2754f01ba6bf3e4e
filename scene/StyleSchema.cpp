// SPDX-License-Identifier: Apache-2.0
#include "scene/StyleSchema.h"

#include <cmath>

#include "scene/Json.h"
#include "scene/Style.h"

namespace Zvex::scene {

namespace {

Json ofNumber(const NumberRange& range) {
    Json schema = {{"type", "number"}};
    if (!std::isfinite(range.low)) return schema;
    if (range.whole) schema["type"] = "integer";
    schema[range.exclusiveLow ? "exclusiveMinimum" : "minimum"] = numberJson(range.low);
    schema["maximum"] = numberJson(range.high);
    return schema;
}

struct OfValue {
    Json operator()(const NumberField& field) const { return ofNumber(field.range); }
    Json operator()(const ColorField&) const { return {{"$ref", "#/$defs/color"}}; }
    Json operator()(const OptionalColorField&) const { return {{"$ref", "#/$defs/color"}}; }
    Json operator()(const ChoiceField& field) const {
        Json names = Json::array();
        for (const auto& choice : field.choices) names.push_back(choice.first);
        return {{"enum", names}};
    }
    Json operator()(const FlagField&) const { return {{"type", "boolean"}}; }
    Json operator()(const OptionalFlagField&) const { return {{"type", "boolean"}}; }
    Json operator()(const OffsetField& field) const {
        const Fields sides = fieldsOf(*field.value);
        return {{"type", "array"},
                {"items", std::visit(*this, sides[0].value)},
                {"minItems", sides.size()},
                {"maxItems", sides.size()}};
    }
    Json operator()(const CanvasField&) const {
        Json fills = Json::array({{{"$ref", "#/$defs/color"}}});
        for (const EffectKind& kind : effectKinds()) {
            if (findCanvasKind(kind.name) != nullptr)
                fills.push_back({{"$ref", std::string("#/$defs/") + kind.name}});
        }
        return {{"oneOf", fills}};
    }
    Json operator()(const TintField&) const { return {{"$ref", "#/$defs/tint"}}; }
    Json operator()(const StopsField&) const { return {{"$ref", "#/$defs/stops"}}; }
    Json operator()(const TextField& field) const {
        return {{"type", "string"}, {"maxLength", field.mostBytes}};
    }
    template <typename FileOrOther>
    Json operator()(const FileOrOther&) const {
        return {{"type", "string"}, {"minLength", 1}};
    }
};

// The default value, if it can be written as JSON.
Json defaultOf(const Field& field) {
    if (const auto* number = std::get_if<NumberField>(&field.value)) return numberJson(number->get());
    if (const auto* flag = std::get_if<FlagField>(&field.value)) return *flag->value;
    const bool plain =
        std::holds_alternative<ColorField>(field.value) || std::holds_alternative<ChoiceField>(field.value);
    return plain ? Json(formatValue(field)) : Json();
}

void addProperties(Json& properties, const Fields& fields) {
    for (const Field& field : fields) {
        Json& schema = properties[field.name] = Json::object();
        const auto* number = std::get_if<NumberField>(&field.value);
        const bool unit = number != nullptr && *number->range.unit != '\0';
        std::string help = field.help;
        if (unit) help += (help.empty() ? "in " : ", in ") + std::string(number->range.unit);
        if (!help.empty()) schema["description"] = help;
        schema.update(std::visit(OfValue{}, field.value));
        Json start = field.required ? Json() : defaultOf(field);
        if (!start.is_null()) schema["default"] = std::move(start);
    }
}

void finishObject(Json& object, const Fields& fields) {
    for (const Field& field : fields) {
        if (field.required) object["required"].push_back(field.name);
    }
    object["additionalProperties"] = false;
}

Json ofObject(const Fields& fields) {
    Json object = {{"type", "object"}, {"properties", Json::object()}};
    addProperties(object["properties"], fields);
    finishObject(object, fields);
    return object;
}

Json ofEffect(const EffectKind& kind) {
    EffectSettings settings = kind.defaults;
    const Fields fields = fieldsOf(settings);
    Json object = {{"description", kind.summary},
                   {"type", "object"},
                   {"properties", {{"type", {{"const", kind.name}}}}},
                   {"required", {"type"}}};
    addProperties(object["properties"], fields);
    finishObject(object, fields);
    return object;
}

// An array of effects, with at most one of each kind.
Json ofEffects() {
    Json kinds = Json::array(), once = Json::array();
    for (const EffectKind& kind : effectKinds()) {
        kinds.push_back({{"$ref", std::string("#/$defs/") + kind.name}});
        const Json ofKind = {{"properties", {{"type", {{"const", kind.name}}}}}, {"required", {"type"}}};
        once.push_back({{"contains", ofKind}, {"minContains", 0}, {"maxContains", 1}});
    }
    return {{"description", "from the lowest to the topmost"},
            {"type", "array"},
            {"items", {{"oneOf", std::move(kinds)}}},
            {"allOf", std::move(once)}};
}

Json ofLayers() {
    LayerSettings layer;
    Json object = ofObject(fieldsOf(layer));
    object["properties"]["effects"] = {{"$ref", "#/$defs/effects"}};
    return {{"description", "from the front to the back, in the place of effects"},
            {"type", "array"},
            {"items", std::move(object)},
            {"minItems", 1},
            {"maxItems", kMaxLayers}};
}

}  // namespace

std::string styleSchema() {
    Style style;
    StyleNotes notes;
    Tint tint;
    Stop stop;
    Fields fields = fieldsOf(notes);
    addFields(fields, fieldsOf(style));
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"title", "A style of zvtext"},
                   {"description", "How a text looks. Comments are allowed; stops never fall in position."}};
    schema.update(ofObject(fields));
    schema["properties"]["designed-for"].erase("default");
    schema["properties"]["effects"] = {{"$ref", "#/$defs/effects"}};
    schema["properties"]["layers"] = ofLayers();
    schema["not"] = {{"required", {"effects", "layers"}}};
    Json& parts = schema["$defs"];
    parts["color"] = {{"description", "#rgb, #rrggbb or #aarrggbb"},
                      {"type", "string"},
                      {"pattern", "^#([0-9A-Fa-f]{3}|[0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})$"}};
    parts["tint"] = ofObject(fieldsOf(tint));
    parts["stops"] = {
        {"type", "array"}, {"items", ofObject(fieldsOf(stop))}, {"minItems", 1}, {"maxItems", kMaxStops}};
    parts["effects"] = ofEffects();
    for (const EffectKind& kind : effectKinds()) parts[kind.name] = ofEffect(kind);
    return schema.dump(2) + "\n";
}

}  // namespace Zvex::scene
