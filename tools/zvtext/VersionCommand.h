// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_VERSIONCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_VERSIONCOMMAND_H_

#include <CLI/App.hpp>

namespace zvtext {

struct VersionArguments {
    bool json = false;
};

void addVersionOptions(CLI::App& command, VersionArguments& arguments);

// Runs `zvtext version`: prints what a report of a fault needs, as lines or as one JSON object. The
// libraries' versions are those loaded, not those compiled against, where the library can tell. Throws
// Failure.
void runVersion(const VersionArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_VERSIONCOMMAND_H_
