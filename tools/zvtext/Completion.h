// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_COMPLETION_H_
#define ZVEX_TOOLS_ZVTEXT_COMPLETION_H_

#include <CLI/App.hpp>
#include <string>

namespace zvtext {

// The bash completion script for the program's options. The name of an option's value decides what is
// offered: "left|center|right" gives these words; of the names in capitals, FILE, FONT and DIR give paths,
// PRESET and GROUP the program's presets and gallery groups.
std::string bashCompletion(const CLI::App& app);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_COMPLETION_H_
