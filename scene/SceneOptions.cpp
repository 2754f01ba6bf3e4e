// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneOptions.h"

#include <cmath>

#include "scene/Failure.h"
#include "scene/FieldJson.h"
#include "scene/Language.h"
#include "scene/Scale.h"
#include "scene/SceneCheck.h"
#include "scene/TextInput.h"

namespace Zvex::scene {

namespace {

constexpr NumberRange kScale = {0, 16, "", true};
constexpr NumberRange kLines = {1, 1'000'000};
constexpr NumberRange kTabStop = {0, kMaxSide, "px", true, true};

Fields textFields(Scene& scene) {
    using Direction = Scene::Direction;
    return {
        {"font", FontField{&scene.font},
         "A font: a file, FILE#2 for the third font of a collection, or a name such as 'Noto Serif:bold'", "",
         "f"},
        {"axes", TextField{&scene.font.axes, kMaxFieldBytes, "axis values; write AXIS=VALUE,..."},
         "Axis values of a variable font, such as wght=650,opsz=20", "AXIS=VALUE,..."},
        {"fallback", FontsField{&scene.fallbacks},
         "A font for characters that --font lacks; give it again for more, in order"},
        {"no-fallback", FlagField{&scene.systemFallback, false},
         "Show missing-glyph boxes instead of falling back to the system's fonts"},
        {"language", TextField{&scene.language, kMaxLanguage, kWantedLanguage},
         "Language of the text, for line breaks, upper case, letter forms and the choice of fonts", "TAG"},
        {"direction",
         ChoiceField{
             &scene.direction,
             {{"auto", Direction::Auto}, {"ltr", Direction::LeftToRight}, {"rtl", Direction::RightToLeft}}},
         "Direction of paragraphs; auto takes it from the first letter of each"}};
}

Fields viewFields(Scene& scene) {
    using Align = Scene::Align;
    using Gravity = Scene::Gravity;
    using host::Rendering;
    return {
        {"width", NumberField{&scene.width, kViewSide},
         "Wrap lines at this width, padding included; without it they do not wrap"},
        {"height", NumberField{&scene.height, kViewSide},
         "Height of the view, padding included; without it the view is as high as the lines"},
        {"align",
         ChoiceField{&scene.align,
                     {{"left", Align::Left},
                      {"center", Align::Center},
                      {"right", Align::Right},
                      {"start", Align::Start},
                      {"end", Align::End},
                      {"justify", Align::Justify}}},
         "Alignment of the lines; start and end follow --direction, justify fills --width"},
        {"gravity",
         ChoiceField{&scene.gravity,
                     {{"top", Gravity::Top}, {"center", Gravity::Center}, {"bottom", Gravity::Bottom}}},
         "Vertical position of the lines, if --height leaves room"},
        {"max-lines", NumberField{&scene.maxLines, kLines},
         "Show at most this many lines: the first ones, or the last ones with --gravity bottom"},
        {"ellipsis", FlagField{&scene.ellipsis},
         "If --max-lines or --height leave text out, show the first lines and end the last of them with …"},
        {"fit", NumberField{&scene.fit, kTextSize}.orNone(),
         "Shrink the text until it fits --width, --height and --max-lines, but not below this size"},
        {"tab-stops", NumbersField{&scene.tabStops, kTabStop},
         "Tab stops, measured from the line's start; the last distance repeats. Without them a tab is a "
         "space"},
        {"padding", PaddingField{&scene.padding},
         "Space around the lines: ALL, SIDES,ENDS or LEFT,TOP,RIGHT,BOTTOM"},
        {"text-rendering",
         ChoiceField{&scene.rendering, {{"phone", Rendering::Phone}, {"plain", Rendering::Plain}}},
         "Draw glyphs as the phone does, or at exact sizes without hinting and gamma"},
        {"trim", FlagField{&scene.trim}, "Cut off the picture's transparent border"}};
}

// What a style file holds, and what takes or adds to one.
Fields looksOf(Style& style) {
    static const std::string styleHelp = [] {
        Style any;
        return "Read a style from a JSON file, or from {...} itself; its keys: effects, layers, " +
               namesOf(fieldsOf(any));
    }();
    Fields fields = {{"style", StyleField{&style}, styleHelp.c_str()},
                     {"preset", PresetField{&style}, "Use a built-in style; zvtext presets lists them"}};
    for (const EffectKind& kind : effectKinds())
        fields.push_back({kind.name, EffectField{&style, &kind}, kind.summary});
    return fields;
}

bool isLook(const Field& field) {
    return std::holds_alternative<EffectField>(field.value) ||
           std::holds_alternative<StyleField>(field.value) ||
           std::holds_alternative<PresetField>(field.value);
}

// A number where text has one too: engines that know only one kind of number write 100 as 100.0.
bool isWrittenNumber(const Field& field, const Json& value) {
    return value.is_number() && (std::holds_alternative<NumberField>(field.value) ||
                                 std::holds_alternative<NumbersField>(field.value) ||
                                 std::holds_alternative<PaddingField>(field.value) ||
                                 std::holds_alternative<EffectField>(field.value));
}

void readOption(const Field& field, const Json& value, const FilePlaces& places) {
    const std::string where = std::string("--") + field.name;
    const bool written = isWrittenNumber(field, value);
    if (!written && !value.is_string()) return readJson(where, field, value, places);
    const std::string text = written ? dumpJson(numberJson(value.get<double>())) : value.get<std::string>();
    if (text.find('\0') != std::string::npos && !std::holds_alternative<TextField>(field.value))
        throw UsageError(where + ": it holds a NUL character");
    readValue(where, field, text, places);
}

}  // namespace

Fields fieldsOf(Scene& scene) {
    Fields fields;
    addFields(fields, textFields(scene), "Text");
    addFields(fields, viewFields(scene), "View");
    addFields(fields, fieldsOf(scene.style), "Style");
    return fields;
}

Fields fieldsOf(SceneOptions& options) {
    Fields fields;
    addFields(fields,
              {{"text", TextField{&options.scene.text, std::string::npos},
                "The text, UTF-8; - reads standard input"},
               {"text-file", FileField{&options.textFile, &options.textSource},
                "Read the text from a file; - is standard input"}},
              "Text");
    addFields(fields, fieldsOf(options.scene));
    addFields(fields, looksOf(options.scene.style), "Style");
    addFields(fields,
              {{"scale", NumberField{&options.scale, kScale}, "Multiply every length, also those of effects",
                "FACTOR"}},
              "View");
    return fields;
}

void readOptions(const Fields& fields, const GivenOptions& given, const FilePlaces& places) {
    FilePlaces with = places;
    for (const Field& field : fields) {
        const auto* style = std::get_if<StyleField>(&field.value);
        if (style != nullptr) with.warnings = &style->style->warnings;
    }
    for (const bool looks : {true, false}) {
        for (const auto& [name, value] : given) {
            const Field* field = findField(fields, name);
            if (field == nullptr) throw UsageError(name + ": is not one of the options: " + namesOf(fields));
            if (isLook(*field) == looks && !value.is_null()) readOption(*field, value, with);
        }
    }
}

void fitScene(SceneOptions& options) {
    checkLayers(options.scene.style);
    if (options.scene.fit == 0) fitEffects(options.scene.style);  // else when the size is known
    scaleScene(options.scene, options.scale);
    options.scale = 1;
}

Scene sceneOf(SceneOptions options) {
    Scene& scene = options.scene;
    if (scene.font.name.empty() && scene.font.bytes == nullptr)
        throw UsageError("--font: is required, a font file or a name");
    fitScene(options);
    if (!scene.text.empty() && !options.textFile.empty())
        throw UsageError("--text-file: the text is given as an argument already");
    scene.text =
        options.textFile.empty() ? checkedText(scene.text) : readText(options.textFile, options.textSource);
    return scene;
}

GivenOptions readGiven(const std::string& json, const std::string& name) {
    Json object = parseJson(json, name);
    if (!object.is_object()) throw UsageError(name + " is not a JSON object");
    GivenOptions given;
    for (auto& [key, value] : object.items()) given.emplace_back(key, std::move(value));
    return given;
}

Scene readScene(const std::string& json, const FilePlaces& places) {
    SceneOptions options;
    readOptions(fieldsOf(options), readGiven(json), places);
    return sceneOf(std::move(options));
}

}  // namespace Zvex::scene
