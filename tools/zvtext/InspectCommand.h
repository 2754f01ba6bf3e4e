// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_

#include <CLI/App.hpp>
#include <string>

namespace zvtext {

struct InspectFontArguments {
    std::string font, axes;
    bool json = false;
};

struct InspectStyleArguments {
    std::string style, size, width = "1920", height = "1080";
    bool json = false;
};

// The values of the options of every kind of inspection; they outlive the commands made of them.
struct InspectArguments {
    InspectFontArguments font;
    InspectStyleArguments style;
};

// Declares `inspect` with a command of its own for each kind; each runs when the command line is parsed and
// prints to standard output, for a person or, with --json, one JSON object.
void addInspectCommands(CLI::App& inspect, InspectArguments& arguments);

// One for each kind, in a file of its own. Throw UsageError or Failure.
void addInspectFont(CLI::App& inspect, InspectFontArguments& arguments);
void addInspectStyle(CLI::App& inspect, InspectStyleArguments& arguments);

// Prints `text` with every control character but line ends as '?': names in files may hold anything.
void printReport(const std::string& text);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_
