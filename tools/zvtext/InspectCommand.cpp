// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/InspectCommand.h"

#include <unicode/uscript.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>
#include <vector>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/OutputFile.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {

void addInspectCommands(CLI::App& inspect, InspectArguments& arguments) {
    inspect.require_subcommand(1);
    inspect.footer(
        "Examples:\n"
        "  zvtext inspect font 'Noto Serif:bold'\n"
        "  zvtext inspect style gold\n"
        "  zvtext inspect text 'Grüße, 世界' --font DejaVuSans-Bold.ttf");
    addInspectFont(inspect, arguments.font);
    addInspectStyle(inspect, arguments.style);
    addInspectText(inspect, arguments.text);
}

void ScriptCounts::add(uint32_t character) {
    UErrorCode status = U_ZERO_ERROR;
    ++mCounts[uscript_getScript(static_cast<UChar32>(character), &status)];
}

size_t ScriptCounts::characters() const {
    size_t sum = 0;
    for (const auto& [script, count] : mCounts) sum += count;
    return sum;
}

Json ScriptCounts::list() const {
    std::vector<std::pair<int, size_t>> sorted(mCounts.begin(), mCounts.end());
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    Json list = Json::array();
    for (const auto& [script, count] : sorted) {
        list.push_back({{"script", uscript_getShortName(static_cast<UScriptCode>(script))},
                        {"name", uscript_getName(static_cast<UScriptCode>(script))},
                        {"characters", count}});
    }
    return list;
}

std::string reportLine(const std::string& label, const std::string& value) {
    return label + std::string(label.size() < 12 ? 12 - label.size() : 1, ' ') + value + "\n";
}

void printReport(const std::string& text) {
    print(printable(text));
}

}  // namespace zvtext
