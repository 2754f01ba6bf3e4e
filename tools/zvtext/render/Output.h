// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_

#include <string>

#include "scene/Fields.h"
#include "scene/FolderScope.h"
#include "scene/Png.h"
#include "scene/Rendering.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

// Straight colours, 8 bits each. RGBA has no header: four bytes a pixel, rows from the top, without padding.
enum class OutputFormat { ByEnding, Png, Webp, Rgba };

// How to write a rendering.
struct OutputOptions {
    // By the path's ending: .png, .webp or .rgba; no ending is PNG.
    OutputFormat format = OutputFormat::ByEnding;
    double dpi = kPointsPerInch;  // pixels an inch; stored only in PNG files
    Compression compression = Compression::Default;
    bool premultiplied = false;  // colours multiplied by alpha, rounded; the formats do not state it
    std::string metrics;         // path of a JSON file for the metrics, "-" for standard output; empty: none
    FolderScope scope;           // folders for the files
};
Fields fieldsOf(OutputOptions& options);

constexpr char kWantedPath[] = "the path of a file";

// Throws UsageError if no rendering could be written to `path` with these options, before one is made: an
// empty path, an ending of no format, or the same path for picture and metrics. `option` opens the message.
void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option);

// The format of the picture at `path`, as --format has it: png, webp or raw. Throws as checkOutput does.
std::string formatName(const std::string& path, const OutputOptions& options, const std::string& option);

// The bytes of the files of a rendering.
struct EncodedRendering {
    std::string picture, metrics;

    // How they are written to `path` and options.metrics; they refer to the bytes.
    std::vector<NewFile> files(const std::string& path, const OutputOptions& options,
                               const std::string& option) const;
};
// Throws UsageError as checkOutput does and for a picture that is too large for its format, and
// std::bad_alloc.
EncodedRendering encodeRendering(const Rendering& rendering, const std::string& path,
                                 const OutputOptions& options, const std::string& option);

// Writes the picture to `path`, or to standard output for "-", and the metrics where they are asked for. Each
// file appears when all of them are whole, and what is `printed` on standard output beside them has arrived,
// as OutputFile.h has it; on failure neither is left or replaced. Throws what encodeRendering does, and
// Failure.
void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option, const std::string& printed = "");

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUT_H_
