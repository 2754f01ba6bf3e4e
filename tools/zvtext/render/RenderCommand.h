// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_

#include <CLI/App.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "scene/Scene.h"
#include "tools/zvtext/render/Output.h"

namespace zvtext {

using namespace Zvex::scene;

constexpr char kFontHelp[] =
    "A font: a file, FILE#2 for the third font of a collection, or a name such as 'Noto Serif:bold'";
constexpr char kAxesHelp[] = "Where the axes of a variable font stand, such as wght=650,opsz=20";

// The values of render's options as written; they are read one by one so that each message names its option.
struct RenderArguments {
    std::string text, textFile;
    std::string font, axes;
    std::vector<std::string> fallbacks;
    bool noFallback = false;
    std::string width, height, align = "left", gravity = "top", maxLines, padding = "0", rendering = "phone";
    std::optional<std::string> output;
    OutputOptions outputOptions;
    double scale = 1;
    bool trim = false;
    bool printStyle = false, printKey = false;

    // --style, --preset, the settings of a style and the effects, without the dashes, in the order in which
    // they stand.
    std::vector<std::pair<std::string, std::string>> style;
    Style start;  // what they change

    bool literalText = false;  // the text "-" is a dash, not standard input

    ReadOptions reads;  // of the style files
    // Where the files may lie that these name.
    struct {
        FolderScope textFile, font, fallbacks, style;
    } scopes;
};

// Declares --allow-read and --allow-read-anywhere. `namers` are those whose files are meant: "a style file".
void addReadOptions(CLI::App& command, ReadOptions& reads, const std::string& namers);

// Declares the options of render on `command`; parsing fills `arguments`, which outlives it.
void addRenderOptions(CLI::App& command, RenderArguments& arguments);

// The part of them that says what to draw: the text, its fonts, the view and the style.
void addSceneOptions(CLI::App& command, RenderArguments& arguments);

// The style that the options ask for. Effects, those of a style file included, come in the order of their
// options, a later one replacing an earlier one of its kind where that stands; any other option wins over the
// style files, wherever it stands. A --style that begins with { is the style itself. Lengths are multiplied
// by --scale. Throws UsageError or Failure.
Style readStyleOptions(const RenderArguments& arguments);

// The same, the effects not yet fitted to the size, nothing scaled: a style to start from.
Style readStyleParts(const RenderArguments& arguments);

// The whole scene; reads the text, from standard input too. Throws UsageError or Failure.
Scene readScene(const RenderArguments& arguments);

// Prints them on standard error.
void warn(const std::vector<std::string>& warnings);

// Runs `zvtext render`: prints the style and the key where asked; renders unless only asked to print.
void runRender(const RenderArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_
