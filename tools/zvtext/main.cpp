// SPDX-License-Identifier: Apache-2.0
// zvtext: renders text with effects to pictures, through the same library that runs on the phone.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <new>
#include <string>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/PngWriter.h"
#include "tools/zvtext/Scene.h"
#include "tools/zvtext/TextInput.h"
#include "tools/zvtext/Values.h"

namespace zvtext {

namespace {

constexpr int kExitFailure = 1, kExitUsage = 2;

// The values of render's options as written; they are read one by one so that each message names its option.
struct RenderArguments {
    std::string text, textFile;
    std::string font;
    std::vector<std::string> fallbacks;
    std::string size = "96", color = "#000000", background, width, height, align = "left", gravity = "top",
                maxLines;
    std::string padding = "0", letterSpacing = "0", features, opacity = "1", stroke;
    std::string output = "zvtext.png";
};

template <typename Value>
Value parseChoice(const std::string& option, const std::string& text,
                  const std::map<std::string, Value>& choices) {
    const auto found = choices.find(text);
    if (found != choices.end()) return found->second;
    std::string names;
    for (const auto& choice : choices) names += (names.empty() ? "" : ", ") + choice.first;
    throw UsageError(option + ": '" + text + "' is not one of " + names);
}

Scene readScene(const RenderArguments& arguments) {
    Scene scene;
    scene.font = arguments.font;
    scene.fallbacks = arguments.fallbacks;
    scene.size = static_cast<float>(parseNumber("--size", arguments.size, 0, 10000, true));
    scene.color = parseColor("--color", arguments.color);
    if (!arguments.background.empty()) scene.background = parseColor("--background", arguments.background);
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
    if (!arguments.maxLines.empty())
        scene.maxLines = parseInteger("--max-lines", arguments.maxLines, 1, 1'000'000);
    scene.padding = parsePadding("--padding", arguments.padding);
    scene.letterSpacing =
        static_cast<float>(parseNumber("--letter-spacing", arguments.letterSpacing, -1, 10));
    scene.features = arguments.features;
    scene.opacity = parseOpacity("--opacity", arguments.opacity);
    if (!arguments.stroke.empty()) scene.stroke = parseStroke("--stroke", arguments.stroke);
    if (arguments.output.empty()) throw UsageError("--output: the path is empty");
    if (!arguments.text.empty() && !arguments.textFile.empty()) {
        throw UsageError("--text-file: the text is given as an argument already");
    }
    scene.text = readText(arguments.text, arguments.textFile);
    return scene;
}

void render(const RenderArguments& arguments) {
    const Picture picture = renderScene(readScene(arguments));
    writePng(picture, arguments.output, "--output");
    if (arguments.output != "-") {
        std::printf("%s: %d x %d pixels\n", arguments.output.c_str(), picture.width, picture.height);
    }
}

void addRender(CLI::App& app, RenderArguments& a) {
    CLI::App* command = app.add_subcommand("render", "Render a text to a PNG with straight alpha");
    command->add_option("text", a.text, "The text, UTF-8; - reads standard input")->type_name("TEXT");
    command->add_option("--text-file", a.textFile, "Read the text from a file; - is standard input")
        ->type_name("FILE");
    command->add_option("-f,--font", a.font, "The font file")->type_name("FILE")->required();
    command
        ->add_option("--fallback", a.fallbacks,
                     "A font for what --font lacks; give it again for more, in order")
        ->type_name("FILE")
        ->take_all()
        ->allow_extra_args(false);  // the text may follow
    command->add_option("-s,--size", a.size, "Pixels per em, up to 10000")
        ->type_name("PX")
        ->capture_default_str();
    command->add_option("-c,--color", a.color, "#rgb, #rrggbb or #aarrggbb")
        ->type_name("COLOR")
        ->capture_default_str();
    command->add_option("--background", a.background, "Fill behind each line; none without it")
        ->type_name("COLOR");
    command
        ->add_option("--width", a.width,
                     "Width in which lines wrap, padding included; else lines are as long as they are")
        ->type_name("PX");
    command->add_option("--height", a.height, "Height, padding included; else as high as the lines")
        ->type_name("PX");
    command->add_option("--align", a.align, "left, center or right")
        ->type_name("SIDE")
        ->capture_default_str();
    command->add_option("--gravity", a.gravity, "top, center or bottom, where --height leaves room")
        ->type_name("SIDE")
        ->capture_default_str();
    command
        ->add_option("--max-lines", a.maxLines,
                     "Lines shown: the first ones, or the last ones with --gravity bottom")
        ->type_name("N");
    command->add_option("--padding", a.padding, "ALL, SIDES,ENDS or LEFT,TOP,RIGHT,BOTTOM")
        ->type_name("PX")
        ->capture_default_str();
    command->add_option("--letter-spacing", a.letterSpacing, "Extra space between letters, in ems, -1 to 10")
        ->type_name("EM")
        ->capture_default_str();
    command->add_option("--features", a.features, "OpenType features, such as 'smcp, -liga, ss01=1'")
        ->type_name("LIST");
    command->add_option("--opacity", a.opacity, "Opacity of the whole picture: 0.6 or 60%")
        ->type_name("SHARE")
        ->capture_default_str();
    command->add_option("--stroke", a.stroke, "WIDTH[:COLOR[:outside|inside|center]], width 0 to 100 pixels")
        ->type_name("STROKE");
    command->add_option("-o,--output", a.output, "The picture; - is standard output")
        ->type_name("FILE")
        ->capture_default_str();
    command->footer(
        "Examples:\n"
        "  zvtext render 'Grüße' --font DejaVuSans-Bold.ttf --size 120 --color '#ff8800' --stroke 8:#202020\n"
        "  fortune | zvtext render - --font NotoSerif-Regular.ttf --size 32 --width 600 --align center -o "
        "quote.png\n"
        "Every effect widens the picture by the margin it needs around the view.\n"
        "The exit status is 0, 1 where a file or the machine failed, or 2 where the command line was wrong.");
    command->callback([&a] { render(a); });
}

int run(int argc, char** argv) {
    CLI::App app("Renders text with effects, byte for byte as on the phone.", "zvtext");
    app.set_version_flag("--version", ZVEX_VERSION);
    app.require_subcommand(1);
    RenderArguments renderArguments;
    addRender(app, renderArguments);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::Success& help) {  // --help and --version
        return app.exit(help);
    } catch (const CLI::ParseError& error) {
        std::fprintf(stderr, "zvtext: %s (see zvtext --help)\n", error.what());
        return kExitUsage;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "zvtext: %s\n", error.what());
        return kExitUsage;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "zvtext: not enough memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zvtext: %s\n", error.what());
    }
    return kExitFailure;
}

}  // namespace

}  // namespace zvtext

int main(int argc, char** argv) try {
    return zvtext::run(argc, argv);
} catch (...) {  // the help itself found no memory
    return zvtext::kExitFailure;
}
