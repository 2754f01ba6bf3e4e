// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_

#include <CLI/App.hpp>
#include <cstdint>
#include <map>
#include <string>

#include "tools/zvtext/Json.h"
#include "tools/zvtext/RenderCommand.h"

namespace zvtext {

struct InspectFontArguments {
    std::string font, axes;
    bool json = false;
};

struct InspectStyleArguments {
    std::string style, size, width = "1920", height = "1080";
    ReadOptions reads;
    bool json = false;
};

struct InspectTextArguments {
    RenderArguments scene;
    bool json = false;
};

// The values of the options of every kind of inspection; they outlive the commands made of them.
struct InspectArguments {
    InspectFontArguments font;
    InspectStyleArguments style;
    InspectTextArguments text;
};

// Declares `inspect` with a command of its own for each kind; each runs when the command line is parsed and
// prints to standard output, for a person or, with --json, one JSON object.
void addInspectCommands(CLI::App& inspect, InspectArguments& arguments);

// One for each kind, in a file of its own. Throw UsageError or Failure.
void addInspectFont(CLI::App& inspect, InspectFontArguments& arguments);
void addInspectStyle(CLI::App& inspect, InspectStyleArguments& arguments);
void addInspectText(CLI::App& inspect, InspectTextArguments& arguments);

// What the reports have in common.

// How many characters there are of each script.
class ScriptCounts {
public:
    void add(uint32_t character);
    size_t characters() const;
    // [{"script": "Latn", "name": "Latin", "characters": 12}, ...], the most used first.
    Json list() const;

private:
    std::map<int, size_t> mCounts;  // by ICU's number of the script
};

// "label       value\n"
std::string reportLine(const std::string& label, const std::string& value);

// Prints `text` with every control character but line ends as '?': names in files may hold anything.
void printReport(const std::string& text);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_INSPECTCOMMAND_H_
