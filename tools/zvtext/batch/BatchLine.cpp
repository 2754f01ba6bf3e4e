// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchLine.h"

#include <algorithm>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/SystemFonts.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

constexpr char kName[] = "the line";  // in messages

bool namesFile(const std::pair<std::string, Json>& option) {
    return option.first == "output" || option.first == "metrics";
}

}  // namespace

LineNames readLineNames(const std::string& line) {
    LineNames names;
    for (const auto& option : readGiven(line, kName)) {
        const auto& [key, value] = option;
        if (!namesFile(option) || value.is_null()) continue;
        if (!value.is_string()) throw UsageError("--" + key + ": " + value.type_name() + " is not a string");
        (key == "output" ? names.output : names.metrics) = value.get<std::string>();
    }
    return names;
}

RenderOptions readLine(const std::string& line, const RenderOptions& defaults, FilePlaces places,
                       const FolderScope& readable) {
    GivenOptions given = readGiven(line, kName);
    given.erase(std::remove_if(given.begin(), given.end(), namesFile), given.end());
    const auto gives = [&](const char* name) {
        return std::any_of(given.begin(), given.end(),
                           [&](const auto& option) { return option.first == name; });
    };
    RenderOptions options = defaults;
    if (gives("text")) options.scene.textFile.clear();
    // Names of fonts lead to the system's folders anyway.
    if (!readable.isAnywhere() && (gives("font") || gives("fallback"))) {
        static const auto fonts = [&] {  // the same for all lines of a process
            FolderScope scope = readable;
            scope.addQuietly(systemFontFolders());
            return fileSource(std::move(scope));
        }();
        places.fonts = fonts;
    }
    readOptions(fieldsOf(options), given, places);
    return options;
}

}  // namespace zvtext
