// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_OPTIONS_H_
#define ZVEX_TOOLS_ZVTEXT_OPTIONS_H_

#include <CLI/App.hpp>
#include <memory>
#include <string>

#include "scene/FolderScope.h"
#include "scene/SceneOptions.h"

namespace zvtext {

using namespace Zvex::scene;

// Declare an option for each field, with its help and what its value is now as the default. "text" is an
// argument.
//
// What is given is appended in its order, a list as one; the argument "-" is the text file "-".
void addOptions(CLI::App& command, const Fields& fields, GivenOptions& given);
// What is given is put into the fields, whose settings outlive the command.
void addSettings(CLI::App& command, const Fields& fields);

// Reads an argument that is a preset's name or a style file; ./NAME is always a file. Throws Failure, its
// message opening with STYLE.
void readStyleArgument(const std::string& argument, Style& style,
                       const std::shared_ptr<const Source>& source);

// Declares --json.
void addJsonFlag(CLI::App& command, bool& json);

// Declares --allow-read and --allow-read-anywhere. `namers` are those whose files are meant: "a style file".
void addReadOptions(CLI::App& command, ReadOptions& reads, const std::string& namers);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_OPTIONS_H_
