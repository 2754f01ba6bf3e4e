// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_

#include <cstddef>
#include <optional>
#include <string>

#include "scene/FolderScope.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

// One line of `zvtext batch`: a JSON object whose keys are the options of render, without the dashes, and
// "text"; "output" and "metrics" are names in the output folder, and the results repeat "id". What values
// are, scene/SceneOptions.h says.
constexpr size_t kMaxLineBytes = size_t{16} << 20;

// What the line says of itself; none if it lacks the key.
struct LineNames {
    std::string id;  // JSON of a number or a string, of at most kMaxFieldBytes bytes; empty: none
    std::optional<std::string> output, metrics;
};

// Throws UsageError if the line is invalid, if a key occurs twice, or if a name is not a string; the id is in
// `names` by then if it is a good one.
void readLineNames(const std::string& line, LineNames& names);

// The options of the line without its names; options that it does not give are the defaults. Its effects come
// behind those of the defaults or replace them. Files that lines name lie in the places, fonts in the
// system's folders as well. Throws UsageError or Failure.
RenderOptions readLine(const std::string& line, const RenderOptions& defaults, FilePlaces places,
                       const FolderScope& readable = {});

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHLINE_H_
