// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/RenderCommand.h"

#include <CLI/CLI.hpp>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/TextInput.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

Fields fieldsOf(RenderOptions& options) {
    Fields fields = fieldsOf(options.scene);
    addFields(fields, fieldsOf(options.output), "Output");
    return fields;
}

void addRenderOptions(CLI::App& command, RenderArguments& a) {
    RenderOptions options;
    addOptions(command, fieldsOf(options), a.given);
    addReadOptions(command, a.reads, "a style file");
    Fields own;
    addFields(own,
              {{"output", TextField{&a.output, kMaxFieldBytes, kWantedPath},
                "The picture's file, zvtext.png by default; - is standard output", "FILE", "o"},
               {"metrics", TextField{&a.metrics, kMaxFieldBytes, kWantedPath},
                "JSON file for the picture's metrics: size, margins, baseline, boxes; - is standard output",
                "FILE"},
               {"print-style", FlagField{&a.printStyle},
                "Print the style that these options make, as a file for --style; renders only with --output"},
               {"print-key", FlagField{&a.printKey},
                "Print the layer key in hex; renders only with --output. A pattern's part of the key differs "
                "in each run"}},
              "Output");
    addSettings(command, own);
    command.footer(
        "Keys of each effect, with ranges and defaults:\n" + effectsHelp() +
        "Effects are added in the order given; giving one again replaces it. Options override --style.\n"
        "The library drops fractions of pixels, degrees and stop positions. A colour's alpha multiplies\nthe "
        "opacity beside it. Every effect widens the picture by the margin it needs.\n\n"
        "Examples:\n"
        "  $ zvtext render 'Grüße' --font 'DejaVu Sans:bold' --size 120 --color '#ff8800' --stroke "
        "8:#202020\n"
        "  $ zvtext render 'Raised' --font 'DejaVu Sans:bold' --bevel size=6 --outer-shadow size=12\n"
        "  $ zvtext render 'Sunset' --font 'DejaVu Sans:bold' --linear-gradient "
        "stops=#fd5:#e31@60:#406\n"
        "  $ zvtext render --stroke 8:#fff --outer-shadow size=20 --print-style > sticker.json\n"
        "  $ zvtext render 'Ice' --font 'DejaVu Sans:bold' --preset ice --scale 2 -o ice.webp\n"
        "  $ date | zvtext render - --font 'DejaVu Serif:bold' --size 32 --width 600 --align center -o "
        "date.png\n"
        "The exit status is 0 on success, 1 if a file or the machine failed, or 2 if the command line was "
        "wrong.");
}

RenderOptions readRenderOptions(const RenderArguments& arguments) {
    RenderOptions options;
    readOptions(fieldsOf(options), arguments.given, {"", fileSource({}, arguments.reads), {}});
    options.output.metrics = arguments.metrics;
    return options;
}

void warn(const std::vector<std::string>& warnings) {
    for (const std::string& warning : warnings)
        std::fprintf(stderr, "zvtext: warning: %s\n", warning.c_str());
}

void runRender(const RenderArguments& arguments) {
    const bool prints = arguments.printStyle || arguments.printKey;
    const std::string taken = ": - is standard output, where --print-style and --print-key print";
    if (prints && arguments.output == "-") throw UsageError("--output" + taken);
    if (prints && arguments.metrics == "-") throw UsageError("--metrics" + taken);
    if (prints && arguments.output.empty() && !arguments.metrics.empty()) {
        throw UsageError("--metrics: needs --output beside --print-style and --print-key");
    }
    RenderOptions options = readRenderOptions(arguments);
    std::string printed;
    if (prints) {
        SceneOptions fitted = options.scene;
        fitScene(fitted);
        // A scaled style has the scaled lengths, of the one size that they are for.
        const bool scaled = options.scene.scale != 1;
        if (arguments.printStyle) printed += writeStyle((scaled ? fitted : options.scene).scene.style);
        if (arguments.printKey) printed += layerKeyInHex(fitted.scene.style) + "\n";
        if (arguments.output.empty()) {
            warn(options.scene.scene.style.warnings);
            return print(printed);
        }
    }
    const std::string output = arguments.output.empty() ? "zvtext.png" : arguments.output;
    checkOutput(output, options.output, "--output");
    const Rendering rendering = render(sceneOf(std::move(options.scene)));
    warn(rendering.warnings);
    if (output != "-" && arguments.metrics != "-" && !prints) {
        printed = printable(output) + ": " + std::to_string(rendering.picture.width) + " x " +
                  std::to_string(rendering.picture.height) + " pixels\n";
    }
    writeRendering(rendering, output, options.output, "--output", printed);
}

}  // namespace zvtext
