// SPDX-License-Identifier: Apache-2.0
// zvtext inspect style: what a style draws, and what that costs.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "scene/Json.h"
#include "scene/Presets.h"
#include "scene/Scene.h"
#include "scene/Style.h"
#include "tools/zvtext/inspect/InspectCommand.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

// Bytes that the program takes for each pixel of a picture, at its peak: the library's picture, its copy and
// the mask; then what each effect holds beyond that. Measured on text that fills a picture of 8 million
// pixels.
constexpr double kPictureBytes = 9;

double layerBytes(const EffectSettings& settings) {
    if (std::holds_alternative<BevelSettings>(settings)) return 2.5;
    if (std::holds_alternative<EmbossSettings>(settings)) return 1.5;
    return 0.25;
}

// The effects from the topmost to the lowest, the text's own fill among them.
Json layersOf(Zvex::ZvEffect& stack, Style& style) {
    stack.addText(style.color);
    stack.initEffect(1, 1);
    Json layers = Json::array();
    for (Zvex::ZvECore* layer : stack.layers) {
        // Layers are made in the order of the effects, the text's last.
        const auto place = static_cast<size_t>(std::find(stack.effects.begin(), stack.effects.end(), layer) -
                                               stack.effects.begin());
        if (place >= style.effects.size()) {
            layers.push_back({{"type", "text"}, {"color", formatColor(style.color)}});
            continue;
        }
        Json entry = {{"type", kindOf(style.effects[place]).name}};
        for (const Field& field : fieldsOf(style.effects[place])) {
            const std::string value = formatValue(field);
            if (!value.empty()) entry[field.name] = value;
        }
        layers.push_back(std::move(entry));
    }
    return layers;
}

void runInspectStyle(const InspectStyleArguments& a) {
    Style style;
    const bool preset = std::any_of(presets().begin(), presets().end(),
                                    [&](const Preset& candidate) { return a.style == candidate.name; });
    const StyleNotes notes =
        preset ? readPreset("STYLE", a.style, style) : readStyle("STYLE", a.style, style, a.reads);
    if (!a.size.empty()) readValue("--size", fieldsOf(style)[0], a.size);
    fitEffects(style);
    const int width = parseInteger("--width", a.width, 1, kMaxSide);
    const int height = parseInteger("--height", a.height, 1, kMaxSide);

    Zvex::ZvEffect stack;
    addEffects(stack, style.effects);
    Json layers = layersOf(stack, style);
    const int left = stack.getLeftOffset(), top = stack.getTopOffset();
    const int right = stack.getRightOffset(), bottom = stack.getBottomOffset();
    double bytes = kPictureBytes;
    for (const EffectSettings& settings : style.effects) bytes += layerBytes(settings);
    const double pixels = double(width + left + right) * double(height + top + bottom);
    Json report = {{"style", a.style}};
    if (!notes.description.empty()) report["description"] = notes.description;
    report["size"] = numberJson(style.size);
    report["margins"] = {{"left", left}, {"top", top}, {"right", right}, {"bottom", bottom}};
    report["layers"] = std::move(layers);
    report["picture"] = {{"width", width + left + right}, {"height", height + top + bottom}};
    report["memory"] = {{"bytes-per-pixel", bytes},
                        {"megabytes", numberJson(std::ceil(pixels * bytes / 1e5) / 10)}};
    printReport(report, a.json);
}

}  // namespace

void addInspectStyle(CLI::App& inspect, InspectStyleArguments& a) {
    CLI::App* command =
        inspect.add_subcommand("style", "What a style draws: margins, layers, estimated working memory");
    command->add_option("style", a.style, "A preset's name, or a style file; ./NAME is always a file")
        ->type_name("FILE|PRESET")
        ->required();
    command->add_option("--size", a.size, "The text size it is used at; else the style's own")
        ->type_name("PX");
    command->add_option("--width", a.width, "Width of the picture that the memory is for, without margins")
        ->type_name("PX")
        ->capture_default_str();
    command->add_option("--height", a.height, "Its height")->type_name("PX")->capture_default_str();
    addReadOptions(*command, a.reads, "the style file");
    command->add_flag("--json", a.json, "Print one JSON object");
    command->footer(
        "Examples:\n"
        "  zvtext inspect style gold --size 200\n"
        "  zvtext inspect style mine.json --width 3840 --height 2160 --json");
    command->callback([&a] { runInspectStyle(a); });
}

}  // namespace zvtext
