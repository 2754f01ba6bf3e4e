// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_INSPECT_INSPECTCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_INSPECT_INSPECTCOMMAND_H_

#include <CLI/App.hpp>
#include <cstdint>
#include <map>
#include <string>

#include "scene/FolderScope.h"
#include "scene/Json.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

struct InspectFontArguments {
    Scene scene;  // of which the font and its axes count
    bool json = false;
};

struct InspectStyleArguments {
    std::string style;
    double size = 0;  // 0: the style's
    int width = 1920, height = 1080;
    ReadOptions reads;
    bool json = false;
};

struct InspectTextArguments {
    GivenOptions given;
    ReadOptions reads;
    bool json = false;
};

// The options of all kinds of inspection; they must outlive the commands made from them.
struct InspectArguments {
    InspectFontArguments font;
    InspectStyleArguments style;
    InspectTextArguments text;
    bool versionAsJson = false;
};

// Declares `inspect` with one command for each kind. Each runs when the command line is parsed and prints to
// standard output: for people or, with --json, one JSON object.
void addInspectCommands(CLI::App& inspect, InspectArguments& arguments);

// Declares the options of `version`; the flag must outlive the command.
void addVersionOptions(CLI::App& version, bool& json);

// One function for each kind, each in its own file. They throw UsageError or Failure.
void addInspectFont(CLI::App& inspect, InspectFontArguments& arguments);
void addInspectStyle(CLI::App& inspect, InspectStyleArguments& arguments);
void addInspectText(CLI::App& inspect, InspectTextArguments& arguments);

// Shared by the reports.

using ScriptCounts = std::map<int, size_t>;  // number of characters by ICU's script number

// [{"script": "Latn", "name": "Latin", "characters": 12}, ...], the most used first.
Json scriptList(const ScriptCounts& counts);
size_t charactersOf(const ScriptCounts& counts);
int scriptOf(uint32_t character);

// Prints the report, an object, as JSON or in lines for people: a value after its name, the elements of a
// list below its name. Names in files may hold anything, but no control character is printed.
void printReport(const Json& report, bool json);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_INSPECT_INSPECTCOMMAND_H_
