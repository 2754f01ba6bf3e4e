// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchLine.h"

#include <algorithm>
#include <cmath>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/SystemFonts.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

constexpr char kName[] = "the line";  // in messages

bool isName(const std::pair<std::string, Json>& option) {
    return option.first == "id" || option.first == "output" || option.first == "metrics";
}

std::string idOf(const Json& value) {
    if (value.is_null()) return "";
    if (!value.is_string() && !value.is_number()) {
        throw UsageError(std::string("id: ") + value.type_name() + " is neither a string nor a number");
    }
    // A whole number beyond 64 bits is read as the nearest double.
    if (value.is_number_float() && std::abs(value.get<double>()) >= 0x1p53) {
        throw UsageError("id: the number is too large to come back unchanged; write it as a string");
    }
    std::string id = dumpJson(value);
    if (id.size() > kMaxFieldBytes) {
        throw UsageError("id: it is longer than " + std::to_string(kMaxFieldBytes) + " bytes");
    }
    return id;
}

}  // namespace

void readLineNames(const std::string& line, LineNames& names) {
    const GivenOptions given = readGiven(line, kName);
    for (const auto& [key, value] : given) {
        if (key == "id") names.id = idOf(value);
    }
    for (const auto& option : given) {
        const auto& [key, value] = option;
        if (!isName(option) || key == "id" || value.is_null()) continue;
        if (!value.is_string()) throw UsageError("--" + key + ": " + value.type_name() + " is not a string");
        (key == "output" ? names.output : names.metrics) = value.get<std::string>();
    }
}

RenderOptions readLine(const std::string& line, const RenderOptions& defaults, FilePlaces places,
                       const FolderScope& readable) {
    GivenOptions given = readGiven(line, kName);
    given.erase(std::remove_if(given.begin(), given.end(), isName), given.end());
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
