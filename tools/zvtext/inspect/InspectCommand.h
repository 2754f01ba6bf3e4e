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

// The values of the options of every kind of inspection; they outlive the commands made of them.
struct InspectArguments {
    InspectFontArguments font;
    InspectStyleArguments style;
    InspectTextArguments text;
    bool versionAsJson = false;
};

// Declares `inspect` with a command of its own for each kind; each runs when the command line is parsed and
// prints to standard output, for a person or, with --json, one JSON object.
void addInspectCommands(CLI::App& inspect, InspectArguments& arguments);

// Declares what `version` takes; the flag outlives the command.
void addVersionOptions(CLI::App& version, bool& json);

// One for each kind, in a file of its own. Throw UsageError or Failure.
void addInspectFont(CLI::App& inspect, InspectFontArguments& arguments);
void addInspectStyle(CLI::App& inspect, InspectStyleArguments& arguments);
void addInspectText(CLI::App& inspect, InspectTextArguments& arguments);

// What the reports have in common.

using ScriptCounts = std::map<int, size_t>;  // characters by ICU's number of their script

// [{"script": "Latn", "name": "Latin", "characters": 12}, ...], the most used first.
Json scriptList(const ScriptCounts& counts);
size_t charactersOf(const ScriptCounts& counts);
int scriptOf(uint32_t character);

// Prints the report, an object, as it stands or in lines for people: a value behind its name, the elements of
// a list below theirs. Names in files may hold anything: no control character is printed.
void printReport(const Json& report, bool json);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_INSPECT_INSPECTCOMMAND_H_
