// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/inspect/InspectCommand.h"

#include <unicode/uscript.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <utility>
#include <vector>

#include "raster/CpuTarget.h"
#include "scene/Failure.h"
#include "scene/TextInput.h"
#include "scene/Versions.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

void addInspectCommands(CLI::App& inspect, InspectArguments& arguments) {
    inspect.require_subcommand(1);
    inspect.footer(
        "Examples:\n"
        "  $ zvtext inspect font 'Noto Serif:bold'\n"
        "  $ zvtext inspect style gold\n"
        "  $ zvtext inspect text 'Grüße, 世界' --font 'DejaVu Sans:bold'");
    addInspectFont(inspect, arguments.font);
    addInspectStyle(inspect, arguments.style);
    addInspectText(inspect, arguments.text);
}

int scriptOf(uint32_t character) {
    UErrorCode status = U_ZERO_ERROR;
    return uscript_getScript(static_cast<UChar32>(character), &status);
}

size_t charactersOf(const ScriptCounts& counts) {
    size_t sum = 0;
    for (const auto& [script, count] : counts) sum += count;
    return sum;
}

Json scriptList(const ScriptCounts& counts) {
    std::vector<std::pair<int, size_t>> sorted(counts.begin(), counts.end());
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

namespace {

bool isFlat(const Json& value) {
    return std::none_of(value.begin(), value.end(), [](const Json& part) { return part.is_structured(); });
}

std::string onOneLine(const Json& value) {
    if (!value.is_structured()) return plainText(value);
    std::string text;
    for (const auto& [key, part] : value.items()) {
        text += (text.empty() ? "" : ", ") + (value.is_object() ? key + " " : "") + onOneLine(part);
    }
    return text;
}

void addLines(const Json& object, const std::string& indent, std::string& lines) {
    for (const auto& [key, value] : object.items()) {
        if (!value.is_structured() || isFlat(value)) {
            if (!value.empty() && value != "") lines += indent + key + ": " + onOneLine(value) + "\n";
            continue;
        }
        lines += indent + key + ":\n";
        for (const Json& element : value) {
            Json head = Json::object(), rest = Json::object();
            for (const auto& [name, part] : element.items()) {
                (part.is_array() && !isFlat(part) ? rest : head)[name] = part;
            }
            lines += indent + "  " + onOneLine(head) + "\n";
            addLines(rest, indent + "    ", lines);
        }
    }
}

}  // namespace

void printReport(const Json& report, bool json) {
    std::string text;
    if (!json) addLines(report, "", text);
    print(json ? dumpJson(report, 2) + "\n" : printable(text));
}

namespace {

std::string compiler() {
#if defined(__clang__)
    return "clang++ " __clang_version__;
#elif defined(__GNUC__)
    return "g++ " __VERSION__;
#else
    return "unknown";
#endif
}

// The kernels' instruction set; the pictures do not depend on it.
const char* instructionSet() {
#if defined(__aarch64__)
    return "arm64";
#else
    const Zvex::CpuTarget target = Zvex::cpuTarget();
    return target == Zvex::CpuTarget::Avx512 ? "avx512"
           : target == Zvex::CpuTarget::Avx2 ? "avx2"
                                             : "baseline";
#endif
}

}  // namespace

void addVersionOptions(CLI::App& version, bool& json) {
    addJsonFlag(version, json);
    version.footer("Example:\n  $ zvtext version --json");
    version.callback([&json] {
        Json libraries = Json::object();
        for (const auto& [name, number] : libraryVersions()) libraries[name] = number;
        libraries["CLI11"] = CLI11_VERSION;
        printReport({{"version", ZVEX_VERSION},
                     {"compiler", compiler()},
                     {"instructionSet", instructionSet()},
                     {"libraries", libraries}},
                    json);
    });
}

}  // namespace zvtext
