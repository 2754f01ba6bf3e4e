// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_OUTPUT_H_
#define ZVEX_TOOLS_ZVTEXT_OUTPUT_H_

#include <string>

#include "tools/zvtext/Rendering.h"

namespace zvtext {

// How a rendering is written.
struct OutputOptions {
    std::string metrics;  // path of a JSON file beside the picture, "-" for standard output; empty: none
};

// Throws UsageError where no rendering could be written to `path` with these options, so that one need not
// be made first: an empty path, and a picture and metrics that would go to the same place. `option` opens the
// message.
void checkOutput(const std::string& path, const OutputOptions& options, const std::string& option);

// Writes the picture to `path`, or to standard output for "-", and the metrics where they are asked for. Each
// file appears when all of them are whole, as OutputFile.h has it; on failure neither is left or replaced.
// Throws UsageError as checkOutput does, Failure, and std::bad_alloc.
void writeRendering(const Rendering& rendering, const std::string& path, const OutputOptions& options,
                    const std::string& option);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_OUTPUT_H_
