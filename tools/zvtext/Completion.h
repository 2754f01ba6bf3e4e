// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_COMPLETION_H_
#define ZVEX_TOOLS_ZVTEXT_COMPLETION_H_

#include <CLI/App.hpp>
#include <string>

namespace zvtext {

// The script that completes the program's command lines in bash, made from its options. The name of a value
// tells what can stand for it: "left|center|right" are words; of the names in capitals FILE, FONT and DIR are
// paths, PRESET and GROUP the program's presets and gallery groups.
std::string bashCompletion(const CLI::App& app);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_COMPLETION_H_
