// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "scene/FolderScope.h"
#include "scene/SceneOptions.h"
#include "tools/zvtext/render/Output.h"

namespace zvtext {

using namespace Zvex::scene;

// A picture: what it shows and how it is written.
struct RenderOptions {
    SceneOptions scene;
    OutputOptions output;
};
Fields fieldsOf(RenderOptions& options);

// The command line of render.
struct RenderArguments {
    GivenOptions given;  // of the fields of RenderOptions
    ReadOptions reads;   // of the style files
    std::string output, metrics;
    bool printStyle = false, printKey = false;
};

// Declares the options of render on `command`; parsing fills `arguments`, which must outlive it.
void addRenderOptions(CLI::App& command, RenderArguments& arguments);

// What the options ask for. Effects, those of a style file included, come in the order of their options, a
// later one replacing an earlier one of its kind where that stands; any other option wins over the style
// files, wherever it stands. Throws UsageError or Failure.
RenderOptions readRenderOptions(const RenderArguments& arguments);

// Prints them on standard error.
void warn(const std::vector<std::string>& warnings);

// Runs `zvtext render`: prints the style and the key if asked, and renders unless only asked to print.
void runRender(const RenderArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_RENDERCOMMAND_H_
