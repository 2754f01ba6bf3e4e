// SPDX-License-Identifier: Apache-2.0
#include "scene/StyleSchema.h"

#include <cmath>

#include "scene/Json.h"
#include "scene/Presets.h"
#include "scene/SceneOptions.h"
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
        std::string names;
        for (const EffectKind& kind : effectKinds()) {
            if (findCanvasKind(kind.name) == nullptr) continue;
            fills.push_back({{"$ref", std::string("#/$defs/") + kind.name}});
            names += (names.empty() ? "" : "|") + std::string(kind.name);
        }
        fills.push_back({{"type", "string"}, {"pattern", "^(" + names + "):"}});
        return {{"oneOf", fills}};
    }
    Json operator()(const TintField&) const { return {{"$ref", "#/$defs/tint"}}; }
    Json operator()(const StopsField&) const { return {{"$ref", "#/$defs/stops"}}; }
    Json operator()(const TextField& field) const {
        Json schema = {{"type", "string"}, {"maxLength", field.mostBytes}};
        if (*field.wanted != '\0' && field.takes == nullptr) schema["minLength"] = 1;
        return schema;
    }
    Json operator()(const NumbersField&) const {
        return {{"type", {"array", "number", "string"}}, {"items", {{"type", "number"}}}};
    }
    Json operator()(const PaddingField&) const { return {{"type", {"number", "string"}}}; }
    Json operator()(const FontsField&) const {
        return {{"type", "array"}, {"items", {{"type", "string"}}}, {"maxItems", kMaxFonts}};
    }
    Json operator()(const EffectField& field) const {
        const Json reference = {{"$ref", std::string("#/$defs/") + field.kind->name}};
        return {{"oneOf", {{{"type", "string"}}, reference}}};
    }
    Json operator()(const StyleField&) const {
        return {{"oneOf", {{{"type", "string"}}, {{"$ref", "style.schema.json"}}}}};
    }
    Json operator()(const PresetField&) const {
        Json names = Json::array();
        for (const Preset& preset : presets()) names.push_back(preset.name);
        return {{"enum", names}};
    }
    template <typename FileOrOther>
    Json operator()(const FileOrOther&) const {
        return {{"type", "string"}, {"minLength", 1}};
    }
};

// The default value, if it can be written as JSON.
Json defaultOf(const Field& field) {
    if (const auto* number = std::get_if<NumberField>(&field.value))
        return number->isNone() ? Json() : numberJson(number->get());
    if (const auto* flag = std::get_if<FlagField>(&field.value)) return *flag->value == flag->given;
    const bool plain =
        std::holds_alternative<ColorField>(field.value) || std::holds_alternative<ChoiceField>(field.value);
    return plain ? Json(formatValue(field)) : Json();
}

// Null, too, which takes away what a style extends.
Json orNull(Json schema) {
    const Json null = {{"type", "null"}};
    if (schema.contains("$ref")) {
        schema["anyOf"] = {{{"$ref", schema["$ref"]}}, null};
        schema.erase("$ref");
    } else if (schema.contains("oneOf")) {
        schema["oneOf"].push_back(null);
    } else if (schema.contains("enum")) {
        schema["enum"].push_back(nullptr);
    } else {
        if (!schema["type"].is_array()) schema["type"] = Json::array({schema["type"]});
        schema["type"].push_back("null");
    }
    return schema;
}

void addProperties(Json& properties, const Fields& fields) {
    for (const Field& field : fields) {
        Json& schema = properties[field.name] = Json::object();
        const auto* number = std::get_if<NumberField>(&field.value);
        const bool unit = number != nullptr && *number->range.unit != '\0';
        std::string help = field.help;
        if (unit) help += (help.empty() ? "in " : ". In ") + std::string(number->range.unit);
        if (!help.empty()) schema["description"] = help;
        schema.update(orNull(std::visit(OfValue{}, field.value)));
        Json start = field.required ? Json() : defaultOf(field);
        if (!start.is_null()) schema["default"] = std::move(start);
    }
}

Json ofObject(const Fields& fields) {
    Json object = {{"type", "object"}, {"properties", Json::object()}};
    addProperties(object["properties"], fields);
    object["additionalProperties"] = false;
    return object;
}

Json ofStop(const Fields& fields) {
    Json object = ofObject(fields);
    for (const Field& field : fields) {
        if (field.required) object["required"].push_back(field.name);
    }
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
    object["properties"]["designed-for"] = {
        {"description",
         "The text size that the effect is designed for, if not the style's; 0: it does not scale. In px"},
        {"type", {"number", "null"}},
        {"minimum", numberJson(kEffectDesignedFor.low)},
        {"maximum", numberJson(kEffectDesignedFor.high)}};
    object["additionalProperties"] = false;
    return object;
}

Json isKind(const EffectKind& kind) {
    return {{"type", "object"}, {"properties", {{"type", {{"const", kind.name}}}}}, {"required", {"type"}}};
}

// What an effect must have, unless a style that is extended may have it.
Json ofCompleteEffect() {
    Json rules = Json::array();
    for (const EffectKind& kind : effectKinds()) {
        EffectSettings settings = kind.defaults;
        Json rule = {{"type", "object"}};
        for (const Field& field : fieldsOf(settings)) {
            if (field.required) {
                rule["required"].push_back(field.name);
                rule["properties"][field.name] = {{"not", {{"type", "null"}}}};
            } else if (std::holds_alternative<TintField>(field.value)) {
                rule["properties"][field.name] = {
                    {"type", {"object", "null"}}, {"properties", {{"color", true}}}, {"required", {"color"}}};
            }
        }
        if (rule.size() > 1) rules.push_back({{"if", isKind(kind)}, {"then", std::move(rule)}});
    }
    return {{"allOf", std::move(rules)}};
}

Json ofArray(Json items) {
    return {{"type", {"array", "null"}}, {"items", std::move(items)}};
}

Json ofCompleteStyle() {
    const Json effect = {{"$ref", "#/$defs/complete-effect"}};
    const Json layer = {{"type", {"object", "null"}}, {"properties", {{"effects", ofArray(effect)}}}};
    return {{"properties", {{"canvas", effect}, {"effects", ofArray(effect)}, {"layers", ofArray(layer)}}}};
}

// An array of effects, with at most one of each kind.
Json ofEffects() {
    Json kinds = Json::array(), once = Json::array();
    Json away = {{"description", "takes away the effect of that name"}, {"type", "object"}};
    for (const EffectKind& kind : effectKinds()) {
        kinds.push_back({{"$ref", std::string("#/$defs/") + kind.name}});
        away["properties"][kind.name] = {{"type", "null"}};
        once.push_back({{"contains", isKind(kind)}, {"minContains", 0}, {"maxContains", 1}});
    }
    away["minProperties"] = away["maxProperties"] = 1;
    away["additionalProperties"] = false;
    kinds.push_back(std::move(away));
    return {{"description", "from the lowest to the topmost"},
            {"type", {"array", "null"}},
            {"items", {{"oneOf", std::move(kinds)}}},
            {"allOf", std::move(once)}};
}

Json ofLayers() {
    LayerSettings layer;
    Json object = ofObject(fieldsOf(layer));
    object["properties"]["effects"] = {{"$ref", "#/$defs/effects"}};
    object["type"] = {"object", "null"};
    return {{"description", "from the front to the back, instead of effects"},
            {"type", {"array", "null"}},
            {"items", std::move(object)},
            {"minItems", 1},
            {"maxItems", kMaxLayers}};
}

// What effects and styles refer to.
Json sharedParts() {
    Tint tint;
    Stop stop;
    Json parts, names = Json::array();
    for (const auto& [name, color] : colorNames()) names.push_back(name);
    const Json hex = {{"pattern", "^#([0-9A-Fa-f]{3}|[0-9A-Fa-f]{6}|[0-9A-Fa-f]{8})$"}};
    const Json function = {{"pattern", "^([Rr][Gg][Bb]|[Hh][Ss][Ll])[Aa]?\\([-+.%0-9A-Za-z, /]+\\)$"}};
    // Names may have capitals, but patterns cannot leave case aside: any word with one passes.
    const Json capitals = {{"pattern", "^[a-z]*[A-Z][A-Za-z]*$"}};
    parts["color"] = {{"description", "#rgb, #rrggbb, #aarrggbb, or a name, rgb() or hsl() as in CSS"},
                      {"type", "string"},
                      {"anyOf", {hex, function, {{"enum", std::move(names)}}, capitals}}};
    parts["tint"] = ofObject(fieldsOf(tint));
    parts["stops"] = {
        {"type", "array"}, {"items", ofStop(fieldsOf(stop))}, {"minItems", 1}, {"maxItems", kMaxStops}};
    return parts;
}

}  // namespace

std::string styleSchema() {
    Style style;
    StyleNotes notes;
    Fields fields = fieldsOf(notes);
    addFields(fields, fieldsOf(style));
    Json schema = {
        {"$schema", "https://json-schema.org/draft/2020-12/schema"},
        {"title", "A style of zvtext"},
        {"description", "How a text looks. Comments are allowed; stops are in order of position."}};
    schema.update(ofObject(fields));
    schema["properties"]["designed-for"].erase("default");
    schema["properties"]["effects"] = {{"$ref", "#/$defs/effects"}};
    schema["properties"]["layers"] = ofLayers();
    const Json array = {{"type", "array"}};
    schema["not"] = {{"properties", {{"effects", array}, {"layers", array}}},
                     {"required", {"effects", "layers"}}};
    schema["if"] = {{"properties", {{"extends", true}}}, {"required", {"extends"}}};
    schema["else"] = ofCompleteStyle();
    Json& parts = schema["$defs"] = sharedParts();
    parts["effects"] = ofEffects();
    parts["complete-effect"] = ofCompleteEffect();
    for (const EffectKind& kind : effectKinds()) parts[kind.name] = ofEffect(kind);
    return schema.dump(2) + "\n";
}

std::string optionsSchema() {
    SceneOptions options;
    Json schema = {{"$schema", "https://json-schema.org/draft/2020-12/schema"},
                   {"title", "The options of a picture"}};
    schema.update(ofObject(fieldsOf(options)));
    Json& parts = schema["$defs"] = sharedParts();
    for (const EffectKind& kind : effectKinds()) {
        EffectSettings settings = kind.defaults;
        parts[kind.name] = ofObject(fieldsOf(settings));
        parts[kind.name]["description"] = kind.summary;
    }
    return schema.dump(2) + "\n";
}

}  // namespace Zvex::scene
