// SPDX-License-Identifier: Apache-2.0
// zvtext inspect style: what a style draws, and what it costs.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "scene/FileSource.h"
#include "scene/Json.h"
#include "scene/LayeredScene.h"
#include "scene/SceneOptions.h"
#include "scene/Style.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/inspect/InspectCommand.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

// Peak memory in bytes for each pixel of a picture: for the library's picture, its copy and the mask; the
// table adds what each effect needs. Measured on text that fills a picture of 8 million pixels.
constexpr double kPictureBytes = 9;
// With layers: the picture that they are joined on and the text's coverage; for each layer its picture and
// its spread coverage.
constexpr double kJoinedBytes = 5, kLayerBytes = 5;

double layerBytes(const EffectSettings& settings) {
    if (std::holds_alternative<BevelSettings>(settings)) return 2.5;
    if (std::holds_alternative<EmbossSettings>(settings)) return 1.5;
    return 0.25;
}

// The library drops fractions of pixels, degrees and stop positions.
EffectSettings asDrawn(EffectSettings settings) {
    for (const Field& field : fieldsOf(settings)) {
        if (const auto* number = std::get_if<NumberField>(&field.value)) {
            const std::string unit = number->range.unit;
            if (unit == "px" || unit == "deg") number->set(std::trunc(number->get()));
        } else if (const auto* stops = std::get_if<StopsField>(&field.value)) {
            for (Stop& stop : *stops->value) stop.position = std::trunc(stop.position);
        }
    }
    return settings;
}

Json entryOf(const std::string& type, const Fields& fields) {
    Json entry = {{"type", type}};
    for (const Field& field : fields) {
        const std::string value = formatValue(field);
        if (!value.empty()) entry[field.name] = value;
    }
    return entry;
}

// Appends the effects from the topmost to the lowest, the text's own fill among them.
void addEntries(Json& layers, Look& look, uint32_t color) {
    Zvex::ZvEffect stack;
    addEffects(stack, look.effects);
    stack.addText(color);
    stack.initEffect(1, 1);
    for (Zvex::ZvECore* layer : stack.layers) {
        // Layers are made in the order of the effects, the text's last.
        const auto place = static_cast<size_t>(std::find(stack.effects.begin(), stack.effects.end(), layer) -
                                               stack.effects.begin());
        if (place >= look.effects.size()) {
            layers.push_back({{"type", "text"}, {"color", formatColor(color)}});
        } else {
            EffectSettings drawn = asDrawn(look.effects[place]);
            layers.push_back(entryOf(kindOf(drawn).name, fieldsOf(drawn)));
        }
    }
}

// Each layer of a style begins with an entry for its settings.
Json layersOf(Style& style) {
    Json layers = Json::array();
    if (style.layers.empty()) addEntries(layers, style, style.color);
    for (LayerSettings& layer : style.layers) {
        layers.push_back(entryOf("layer", fieldsOf(layer)));
        addEntries(layers, layer, layer.color.value_or(style.color));
    }
    return layers;
}

double bytesPerPixel(const Style& style) {
    double bytes = kPictureBytes;
    if (LayeredScene::isFor(style))
        bytes += kJoinedBytes + kLayerBytes * std::max<size_t>(style.layers.size(), 1);
    for (const EffectSettings& settings : style.effects) bytes += layerBytes(settings);
    // Layers are drawn one at a time.
    double largest = 0;
    for (const LayerSettings& layer : style.layers) {
        double own = 0;
        for (const EffectSettings& settings : layer.effects) own += layerBytes(settings);
        largest = std::max(largest, own);
    }
    return bytes + largest;
}

void runInspectStyle(const InspectStyleArguments& a) {
    Style style;
    readStyleArgument(a.style, style, fileSource({}, a.reads));
    warn(style.warnings);
    if (a.size > 0) style.size = a.size;
    fitEffects(style);

    const LayerStacks stacks(style);
    const auto [left, top, right, bottom] = Zvex::marginsOf(stacks.layers.data(), stacks.layers.size());
    const double bytes = bytesPerPixel(style);
    const double pixels = double(a.width + left + right) * double(a.height + top + bottom);
    Json report = {{"style", a.style}};
    const std::string& description = style.notes.description;
    if (!description.empty()) report["description"] = description;
    report["size"] = numberJson(style.size);
    report["margins"] = {{"left", left}, {"top", top}, {"right", right}, {"bottom", bottom}};
    if (style.canvas) report["canvas"] = formatCanvas(*style.canvas);
    report["layers"] = layersOf(style);
    report["picture"] = {{"width", a.width + left + right}, {"height", a.height + top + bottom}};
    report["memory"] = {{"bytes-per-pixel", bytes},
                        {"megabytes", numberJson(std::ceil(pixels * bytes / 1e5) / 10)}};
    printReport(report, a.json);
}

}  // namespace

void addInspectStyle(CLI::App& inspect, InspectStyleArguments& a) {
    CLI::App* command =
        inspect.add_subcommand("style", "Describe a style: margins, layers, estimated working memory");
    command->add_option("style", a.style, "Name of a preset, or a style file; ./NAME is always a file")
        ->type_name("FILE|PRESET")
        ->required();
    addSettings(*command, {{"size", NumberField{&a.size, kTextSize}, "Text size; by default the style's own"},
                           {"width", NumberField{&a.width, kViewSide},
                            "Width of the picture for which memory is estimated, without margins"},
                           {"height", NumberField{&a.height, kViewSide}, "Height of that picture"}});
    addReadOptions(*command, a.reads, "the style file");
    addJsonFlag(*command, a.json);
    command->footer(
        "Examples:\n"
        "  $ zvtext inspect style gold --size 200\n"
        "  $ zvtext inspect style mine.json --width 3840 --height 2160 --json");
    command->callback([&a] { runInspectStyle(a); });
}

}  // namespace zvtext
