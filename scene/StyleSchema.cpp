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

Json ofObject(const Fields& fields);

struct OfValue {
    Json operator()(const NumberField& field) const {
        Json schema = ofNumber(field.range);
        if (*field.range.unit != '\0') schema["description"] = std::string("in ") + field.range.unit;
        return schema;
    }
    Json operator()(const ShareField&) const { return ofNumber(kShare); }
    Json operator()(const ColorField&) const { return {{"$ref", "#/$defs/color"}}; }
    Json operator()(const OptionalColorField&) const { return {{"$ref", "#/$defs/color"}}; }
    Json operator()(const ChoiceField& field) const {
        Json names = Json::array();
        for (const auto& choice : field.choices) names.push_back(choice.first);
        return {{"enum", names}};
    }
    Json operator()(const FlagField&) const { return {{"type", "boolean"}}; }
    Json operator()(const OffsetField& field) const {
        const Fields sides = fieldsOf(*field.value);
        return {{"description", "pixels to the right and down"},
                {"type", "array"},
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
        return {{"description", "behind everything, over the whole picture"}, {"oneOf", fills}};
    }
    Json operator()(const TintField&) const { return {{"$ref", "#/$defs/tint"}}; }
    Json operator()(const StopsField&) const { return {{"$ref", "#/$defs/stops"}}; }
    Json operator()(const TextField&) const { return {{"type", "string"}, {"maxLength", kMaxFieldBytes}}; }
    Json operator()(const FileField&) const {
        return {{"type", "string"},
                {"minLength", 1},
                {"description", "a PNG in the style's folder or below, relative to it"}};
    }
};

// The value that is used where there is none, where it can be written as it stands.
struct DefaultOf {
    Json operator()(const NumberField& field) const { return numberJson(*field.value); }
    Json operator()(const ShareField& field) const { return numberJson(*field.value); }
    Json operator()(const ColorField& field) const { return formatColor(*field.value); }
    Json operator()(const ChoiceField& field) const { return formatValue({"", field}); }
    Json operator()(const FlagField& field) const { return *field.value; }
    template <typename Other>
    Json operator()(const Other&) const {
        return nullptr;
    }
};

void addProperties(Json& properties, const Fields& fields) {
    for (const Field& field : fields) {
        Json schema = std::visit(OfValue{}, field.value);
        Json start = field.required ? Json() : std::visit(DefaultOf{}, field.value);
        if (!start.is_null()) schema["default"] = std::move(start);
        properties[field.name] = std::move(schema);
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

// An array of the effects, with at most one of each kind.
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
    const Fields settings = fieldsOf(style);
    fields.insert(fields.end(), settings.begin(), settings.end());
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
