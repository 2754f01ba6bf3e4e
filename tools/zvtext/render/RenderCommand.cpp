// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/RenderCommand.h"

#include <CLI/CLI.hpp>
#include <map>

#include "scene/Failure.h"
#include "scene/FontChoice.h"
#include "scene/Scale.h"
#include "scene/SceneCheck.h"
#include "scene/TextInput.h"
#include "tools/zvtext/render/GivenValue.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

constexpr char kDefaultOutput[] = "zvtext.png";
constexpr size_t kMaxFallbacks = 256;  // each is held in the memory

template <typename Value>
Value parseChoice(const std::string& option, const std::string& text,
                  const std::map<std::string, Value>& choices) {
    const auto found = choices.find(text);
    if (found != choices.end()) return found->second;
    std::string names;
    for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
    throw UsageError(option + ": '" + text + "' is not one of " + names);
}

// An option that is kept in the order of the command line, under its long name.
CLI::Option* addStyleOption(CLI::App& command, RenderArguments& arguments, const std::string& name,
                            const std::string& help, const char* shortFlag = "") {
    return command
        .add_option_function<std::string>(
            shortFlag + ("--" + name),
            [&arguments, name](const std::string& value) { arguments.style.emplace_back(name, value); }, help)
        ->trigger_on_parse();
}

void addTextOptions(CLI::App& command, RenderArguments& a) {
    command.add_option("text", a.text, "The text, UTF-8; - reads standard input")->type_name("TEXT");
    command.add_option("--text-file", a.textFile, "Read the text from a file; - is standard input")
        ->type_name("FILE")
        ->check(givenValue());
    command.add_option("-f,--font", a.font, kFontHelp)->type_name("FONT");
    command.add_option("--axes", a.axes, kAxesHelp)->type_name("AXIS=VALUE,...")->check(givenValue());
    command
        .add_option("--fallback", a.fallbacks,
                    "A font for what --font lacks; give it again for more, in order")
        ->type_name("FONT")
        ->take_all()
        ->allow_extra_args(false);  // the text may follow
    command.add_flag("--no-fallback", a.noFallback,
                     "Draw what --font and --fallback lack as missing; else the system's fonts serve it");
}

void addViewOptions(CLI::App& command, RenderArguments& a) {
    command
        .add_option("--width", a.width,
                    "Width in which lines wrap, padding included; else lines are as long as they are")
        ->type_name("PX")
        ->check(givenValue());
    command.add_option("--height", a.height, "Height, padding included; else as high as the lines")
        ->type_name("PX")
        ->check(givenValue());
    command.add_option("--align", a.align, "Where lines stand between the sides")
        ->type_name("left|center|right")
        ->capture_default_str();
    command.add_option("--gravity", a.gravity, "Where the lines stand, if --height leaves room")
        ->type_name("top|center|bottom")
        ->capture_default_str();
    command
        .add_option("--max-lines", a.maxLines,
                    "Lines shown: the first ones, or the last ones with --gravity bottom")
        ->type_name("N")
        ->check(givenValue());
    command.add_option("--padding", a.padding, "ALL, SIDES,ENDS or LEFT,TOP,RIGHT,BOTTOM")
        ->type_name("PX")
        ->capture_default_str();
    command
        .add_option("--text-rendering", a.rendering,
                    "Glyphs as the phone draws them, or at exact sizes without hinting and gamma")
        ->type_name("phone|plain")
        ->capture_default_str();
    command
        .add_option_function<std::string>(
            "--scale", [&a](const std::string& value) { a.scale = parseNumber("--scale", value, kScale); },
            "Multiply every length, those of effects too; above 0, up to 16")
        ->type_name("FACTOR")
        ->default_str("1");
}

void addStyleOptions(CLI::App& command, RenderArguments& a) {
    addStyleOption(command, a, "size", "Pixels per em, up to 10000", "-s,")
        ->type_name("PX")
        ->default_str(formatNumber(Style().size));
    addStyleOption(command, a, "color", "#rgb, #rrggbb or #aarrggbb", "-c,")
        ->type_name("COLOR")
        ->default_str(formatColor(Style().color));
    addStyleOption(command, a, "background", "Fill behind each line; none without it")->type_name("COLOR");
    addStyleOption(command, a, "canvas",
                   "Ground of the whole picture: a colour, or linear-gradient:, radial-gradient: or pattern: "
                   "and what that effect takes")
        ->type_name("CANVAS");
    addStyleOption(command, a, "letter-spacing", "Extra space between letters, in ems, -1 to 10")
        ->type_name("EM")
        ->default_str("0");
    addStyleOption(command, a, "features", "OpenType features, such as 'smcp, -liga, ss01=1'")
        ->type_name("LIST");
    addStyleOption(command, a, "opacity", "Opacity of the whole picture: 0.6 or 60%")
        ->type_name("SHARE")
        ->default_str("1");
    addStyleOption(command, a, "style",
                   "Take effects and any of the seven options above from a JSON file, or from {...} itself")
        ->type_name("FILE");
    addStyleOption(command, a, "preset",
                   "The same from a style of the program's own; zvtext presets lists them")
        ->type_name("PRESET");
    for (const EffectKind& kind : effectKinds()) {
        const bool stroke = std::holds_alternative<StrokeSettings>(kind.defaults);
        const bool pattern = std::holds_alternative<PatternSettings>(kind.defaults);
        addStyleOption(command, a, kind.name, kind.summary)
            ->type_name(stroke    ? "STROKE"
                        : pattern ? "FILE,..."
                                  : "KEY=VALUE,...");
    }
}

// How pictures are written, apart from where.
void addOutputOptions(CLI::App& command, RenderArguments& a) {
    command.add_flag("--trim", a.trim, "Cut off the picture's transparent border");
    command
        .add_option_function<std::string>(
            "--format",
            [&a](const std::string& value) { a.outputOptions.format = parseFormat("--format", value); },
            "png, webp (lossless) or raw (RGBA bytes); else by the output's ending: .png, .webp, .rgba")
        ->type_name("FORMAT");
    command
        .add_option_function<std::string>(
            "--dpi",
            [&a](const std::string& value) { a.outputOptions.dpi = parseNumber("--dpi", value, kDpi); },
            "Pixels an inch that a PNG says it has; at 72 a pixel is a point")
        ->type_name("N")
        ->default_str(formatNumber(kPointsPerInch));
    command.add_flag("--premultiplied", a.outputOptions.premultiplied,
                     "Colours multiplied by their alpha; otherwise straight");
}

}  // namespace

void addReadOptions(CLI::App& command, ReadOptions& reads, const std::string& namers) {
    command
        .add_option("--allow-read", reads.folders,
                    "Let " + namers + " name files in this folder and below it; give it again for more")
        ->type_name("DIR")
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
        ->take_all()
        ->allow_extra_args(false);
    command.add_flag("--allow-read-anywhere", reads.anywhere,
                     "Let " + namers + " name any file, pipes and devices too");
}

void addSceneOptions(CLI::App& command, RenderArguments& a) {
    addTextOptions(command, a);
    addViewOptions(command, a);
    addStyleOptions(command, a);
    addReadOptions(command, a.reads, "a style file");
}

void addRenderOptions(CLI::App& command, RenderArguments& a) {
    addSceneOptions(command, a);
    command.add_option("-o,--output", a.output, "The picture; - is standard output")
        ->type_name("FILE")
        ->default_str(kDefaultOutput);
    addOutputOptions(command, a);
    command
        .add_option("--metrics", a.outputOptions.metrics,
                    "Where the parts of the picture lie, in JSON; - is standard output")
        ->type_name("FILE")
        ->check(givenValue());
    command.add_flag("--print-style", a.printStyle,
                     "Print the style these options make, for --style; renders only with --output");
    command.add_flag("--print-key", a.printKey,
                     "Print the layer key in hex; renders only with --output. A pattern's part of it is "
                     "different in every run");
    command.footer(
        "Effects, each with what it takes and the value of what is left out:\n" + effectsHelp() +
        "Effects are added in the order given; giving one again replaces it. Options win over --style.\n"
        "The library drops fractions of pixels, degrees and stop positions. The alpha of a colour "
        "multiplies\n"
        "into the opacity beside it. Every effect widens the picture by the margin it needs.\n\n"
        "Examples:\n"
        "  zvtext render 'Grüße' --font DejaVuSans-Bold.ttf --size 120 --color '#ff8800' --stroke 8:#202020\n"
        "  zvtext render 'Raised' --font DejaVuSans-Bold.ttf --color '#3060c0' --bevel size=6,angle=120 \\\n"
        "      --outer-shadow angle=120,distance=8,size=12,opacity=50%\n"
        "  zvtext render 'Sunset' --font DejaVuSans-Bold.ttf --linear-gradient "
        "stops=#fd5@0:#e31@60:#406@100\n"
        "  zvtext render --stroke 8:#fff --outer-shadow size=20 --print-style > sticker.json\n"
        "  zvtext render 'Neon' --font 'Inter' --axes wght=850 --preset neon --scale 2 -o neon.webp\n"
        "  fortune | zvtext render - --font 'Noto Serif:bold' --size 32 --width 600 --align center -o "
        "quote.png\n"
        "The exit status is 0, 1 where a file or the machine failed, or 2 where the command line was wrong.");
}

namespace {

// A pattern that an option names lies where a style may read.
void limitCanvas(Style& style, const FolderScope& scope) {
    auto* fill = std::get_if<EffectSettings>(&style.canvas->fill);
    auto* pattern = fill != nullptr ? std::get_if<PatternSettings>(fill) : nullptr;
    if (pattern != nullptr) pattern->scope = scope;
}

}  // namespace

Style readStyleParts(const RenderArguments& arguments) {
    Style style = arguments.start;
    for (const auto& [name, value] : arguments.style) {
        const EffectKind* kind = findEffectKind(name);
        if (kind != nullptr) {
            EffectSettings settings = parseEffect("--" + name, *kind, value);
            style.designedFor.erase(settings.index());
            if (auto* pattern = std::get_if<PatternSettings>(&settings))
                pattern->scope = arguments.scopes.style;
            addOrReplace(style.effects, std::move(settings));
        }
        if (name == "style" && value.rfind('{', 0) == 0) {
            readStyleText("--style", value, style, arguments.scopes.style);
        } else if (name == "style") {
            readStyle("--style", value, style, arguments.reads, arguments.scopes.style);
        }
        if (name == "preset") readPreset("--preset", value, style);
    }
    for (const auto& [name, value] : arguments.style) {
        for (const Field& field : fieldsOf(style)) {
            if (name == field.name) readValue("--" + name, field, value);
        }
        if (name == "canvas") limitCanvas(style, arguments.scopes.style);
    }
    checkLayers(style);
    return style;
}

Style readStyleOptions(const RenderArguments& arguments) {
    Style style = readStyleParts(arguments);
    fitEffects(style);
    scaleStyle(style, arguments.scale);
    return style;
}

Scene readScene(const RenderArguments& arguments) {
    if (arguments.font.empty()) throw UsageError("--font: is required, a font file or a name");
    if (arguments.fallbacks.size() > kMaxFallbacks) {
        throw UsageError("--fallback: " + std::to_string(arguments.fallbacks.size()) +
                         " fonts are more than " + std::to_string(kMaxFallbacks));
    }
    Scene scene;
    scene.font = arguments.font;
    scene.font.axes = arguments.axes;
    scene.font.scope = arguments.scopes.font;
    scene.fallbacks.assign(arguments.fallbacks.begin(), arguments.fallbacks.end());
    for (Font& font : scene.fallbacks) font.scope = arguments.scopes.fallbacks;
    scene.systemFallback = !arguments.noFallback;
    scene.style = readStyleOptions(arguments);
    if (!arguments.width.empty()) scene.width = parseInteger("--width", arguments.width, 1, kMaxSide);
    if (!arguments.height.empty()) scene.height = parseInteger("--height", arguments.height, 1, kMaxSide);
    using Align = Scene::Align;
    using Gravity = Scene::Gravity;
    scene.align =
        parseChoice<Align>("--align", arguments.align,
                           {{"left", Align::Left}, {"center", Align::Center}, {"right", Align::Right}});
    scene.gravity = parseChoice<Gravity>(
        "--gravity", arguments.gravity,
        {{"top", Gravity::Top}, {"center", Gravity::Center}, {"bottom", Gravity::Bottom}});
    scene.rendering =
        parseChoice<host::Rendering>("--text-rendering", arguments.rendering,
                                     {{"phone", host::Rendering::Phone}, {"plain", host::Rendering::Plain}});
    if (!arguments.maxLines.empty())
        scene.maxLines = parseInteger("--max-lines", arguments.maxLines, 1, 1'000'000);
    scene.padding = parsePadding("--padding", arguments.padding);
    scaleView(scene, arguments.scale);
    scene.trim = arguments.trim;
    if (!arguments.text.empty() && !arguments.textFile.empty()) {
        throw UsageError("--text-file: the text is given as an argument already");
    }
    scene.text =
        readText(arguments.text, arguments.textFile, arguments.literalText, arguments.scopes.textFile);
    return scene;
}

void warn(const std::vector<std::string>& warnings) {
    for (const std::string& warning : warnings)
        std::fprintf(stderr, "zvtext: warning: %s\n", warning.c_str());
}

void runRender(const RenderArguments& arguments) {
    const bool prints = arguments.printStyle || arguments.printKey;
    if (prints && arguments.output == "-") {
        throw UsageError("--output: - is standard output, where --print-style and --print-key print");
    }
    if (prints && arguments.outputOptions.metrics == "-") {
        throw UsageError("--metrics: - is standard output, where --print-style and --print-key print");
    }
    if (prints && !arguments.output && !arguments.outputOptions.metrics.empty()) {
        throw UsageError("--metrics: needs --output beside --print-style and --print-key");
    }
    std::string printed;
    if (prints) {
        const Style style = readStyleOptions(arguments);
        if (arguments.printStyle) printed += writeStyle(style);
        if (arguments.printKey) printed += layerKeyInHex(style) + "\n";
    }
    if (!prints || arguments.output) {
        const std::string output = arguments.output.value_or(kDefaultOutput);
        checkOutput(output, arguments.outputOptions, "--output");
        const Rendering rendering = render(readScene(arguments));
        warn(rendering.warnings);
        if (output != "-" && arguments.outputOptions.metrics != "-" && !prints) {
            printed = printable(output) + ": " + std::to_string(rendering.picture.width) + " x " +
                      std::to_string(rendering.picture.height) + " pixels\n";
        }
        writeRendering(rendering, output, arguments.outputOptions, "--output", printed);
    } else {
        print(printed);
    }
}

}  // namespace zvtext
