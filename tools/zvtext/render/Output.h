// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_

#include <string>

#include "scene/Fields.h"
#include "scene/FolderScope.h"
#include "scene/Png.h"
#include "scene/Rendering.h"

namespace zvtext {

using namespace Zvex::scene;

// Straight colours, 8 bits each. RGBA has no header: four bytes a pixel, rows from the top, without padding.
enum class OutputFormat { ByEnding, Png, Webp, Rgba };

// How a rendering is written.
struct OutputOptions {
    // By the path's ending: .png, .webp or .rgba; no ending is PNG.
    OutputFormat format = OutputFormat::ByEnding;
    double dpi = kPointsPerInch;  // pixels an inch; only PNG files say it
    bool premultiplied = false;   // colours multiplied by alpha, to the nearest; the formats do not say it
    std::string metrics;  // path of a JSON file beside the picture, "-" for standard output; empty: none
    FolderScope scope;    // where the files may go
};
Fields fieldsOf(OutputOptions& options);

constexpr char kWantedPath[] = "the path of a file";

// Throws UsageError where no rendering could be written to `path` with these options, so that one need not
// be made first: an ending that is no format's, and a picture and metrics that would go to the
// same place. `option` opens the message.
void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option);

// Writes the picture to `path`, or to standard output for "-", and the metrics where they are asked for. Each
// file appears when all of them are whole, and what is `printed` on standard output beside them has arrived,
// as OutputFile.h has it; on failure neither is left or replaced. Throws UsageError as checkOutput does and
// for a picture that is too large for its format, Failure, and std::bad_alloc.
void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option, const std::string& printed = "");

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_
