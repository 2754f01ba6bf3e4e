// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PREVIEW_PREVIEWCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_PREVIEW_PREVIEWCOMMAND_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "scene/FolderScope.h"
#include "scene/SceneOptions.h"

namespace zvtext {

using namespace Zvex::scene;

struct PreviewArguments {
    std::vector<std::string> styles, texts = {"Sample"};
    std::string sizes = "24,64,160", grounds;  // lists as they were given; no grounds: all
    GivenOptions given;                        // of text and view, as for render
    ReadOptions reads;
    std::string output = "preview.html";
    bool watches = false;
};

void addPreviewOptions(CLI::App& command, PreviewArguments& arguments);

// Runs `zvtext preview` and returns the exit status: writes one HTML page or PNG that shows each style with
// each text at each size on each ground; to watch, again after each change, until a signal ends it. Throws
// UsageError or Failure.
int runPreview(const PreviewArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PREVIEW_PREVIEWCOMMAND_H_
