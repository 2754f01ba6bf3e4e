// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

#include "scene/Failure.h"
#include "scene/FontChoice.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

using Json = nlohmann::ordered_json;

constexpr int kMaxDepth = 17;          // a style within the line's object
constexpr size_t kMaxEvents = 20'000;  // of the parser, which walks over earlier values time and again

// Options of render that a line does not take.
constexpr const char* kNotForLines[] = {"print-style", "print-key", "allow-read", "allow-read-anywhere"};

bool namesFile(const std::string& key) {
    return key == "output" || key == "metrics";
}

// The parser would keep the last of two equal keys.
Json parseObject(const std::string& line) {
    std::vector<std::set<std::string>> keys;  // of the objects around
    size_t events = 0;
    const auto watch = [&](int depth, Json::parse_event_t event, Json& parsed) {
        using Event = Json::parse_event_t;
        if (depth > kMaxDepth) throw UsageError("the line is nested too deeply");
        if (++events > kMaxEvents) throw UsageError("the line has too many keys and values");
        if (event == Event::object_start) keys.emplace_back();
        if (event == Event::object_end) keys.pop_back();
        if (event == Event::key && !keys.back().insert(parsed.get<std::string>()).second) {
            throw UsageError(parsed.get<std::string>() + ": is given twice");
        }
        return true;
    };
    try {
        Json json = Json::parse(line, watch);
        if (!json.is_object()) throw UsageError("the line is no JSON object");
        return json;
    } catch (const Json::exception& error) {
        // "[json.exception.parse_error.101] parse error at line 1, column 5: ..."
        std::string what = error.what();
        what.erase(0, what.find("] ") + 2);
        const std::string place = "line 1, ";
        const size_t at = what.find(place);
        if (at != std::string::npos) what.erase(at, place.size());
        throw UsageError("the line is no JSON: " + what);
    }
}

const std::string& textOf(const std::string& key, const Json& value) {
    if (!value.is_string()) throw UsageError(key + ": " + value.type_name() + " is not a string");
    return value.get_ref<const std::string&>();
}

std::string optionName(const CLI::Option& option) {
    const std::vector<std::string>& names = option.get_lnames();
    const bool barred =
        !names.empty() && std::count(std::begin(kNotForLines), std::end(kNotForLines), names[0]);
    return names.empty() || barred ? "" : names[0];
}

const CLI::Option& findOption(const CLI::App& command, const std::string& key) {
    std::string known = "text";
    for (const CLI::Option* option : command.get_options()) {
        const std::string name = optionName(*option);
        if (!name.empty() && name == key) return *option;
        if (!name.empty()) known += ", " + name;
    }
    throw UsageError(key + ": is not one of the keys of a line: " + known);
}

// Words behind the option; a flag has its value in its own word.
std::string wordOf(const std::string& key, const Json& value) {
    if (value.is_object() && key == "style") return value.dump();
    if (!value.is_string() && !value.is_number()) {
        throw UsageError(key + ": " + value.type_name() + " is not what it takes, a string or a number");
    }
    std::string word = value.is_string() ? value.get<std::string>() : value.dump();
    // Engines that know only one kind of number write 100 as 100.0.
    if (value.is_number_float() && std::fabs(value.get<double>()) < 1e15 &&
        value.get<double>() == std::trunc(value.get<double>())) {
        word = std::to_string(static_cast<int64_t>(value.get<double>()));
    }
    if (word.find('\0') != std::string::npos) throw UsageError(key + ": it holds a NUL character");
    return word;
}

void addWords(const CLI::Option& option, const std::string& key, const Json& value,
              std::vector<std::string>& words) {
    if (option.get_expected_max() == 0) {
        if (!value.is_boolean()) throw UsageError(key + ": is true or false");
        words.push_back("--" + key + (value.get<bool>() ? "=true" : "=false"));
        return;
    }
    const bool several = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    if (!value.is_array() || !several) {
        words.insert(words.end(), {"--" + key, wordOf(key, value)});
        return;
    }
    for (const Json& element : value) words.insert(words.end(), {"--" + key, wordOf(key, element)});
}

}  // namespace

LineNames readLineNames(const std::string& line) {
    const Json json = parseObject(line);
    LineNames names;
    const auto read = [&](const std::string& key, std::optional<std::string>& name) {
        const auto value = json.find(key);
        if (value != json.end() && !value->is_null()) name = textOf(key, *value);
    };
    read("output", names.output);
    read("metrics", names.metrics);
    return names;
}

LineReader::LineReader(const RenderArguments& defaults, FolderScope scope)
    : mDefaults(defaults), mScope(std::move(scope)) {
    mCommand.set_help_flag();
    addRenderOptions(mCommand, mArguments);
}

// Names lead to the system's fonts anyway.
const FolderScope& LineReader::fontScope() {
    if (!mFontScope) {
        mFontScope = mScope;
        if (!mScope.isAnywhere()) mFontScope->addQuietly(systemFontFolders());
    }
    return *mFontScope;
}

RenderArguments LineReader::read(const std::string& line) {
    const Json json = parseObject(line);
    mArguments = mDefaults;
    mArguments.literalText = true;
    mArguments.scopes.style = mScope;
    std::vector<std::string> words;
    for (const auto& [key, value] : json.items()) {
        if (value.is_null() || namesFile(key)) continue;
        if (key == "text") {
            mArguments.text = textOf(key, value);
            mArguments.textFile.clear();
            continue;
        }
        addWords(findOption(mCommand, key), key, value, words);
        if (key == "font") mArguments.scopes.font = fontScope();
        if (key == "fallback") mArguments.scopes.fallbacks = fontScope();
        if (key == "text-file") mArguments.scopes.textFile = mScope;
        if (key == "text-file" && !json.contains("text")) mArguments.text.clear();
    }
    try {
        mCommand.parse(std::vector<std::string>(words.rbegin(), words.rend()));  // taken from the back
    } catch (const CLI::ParseError& error) {
        throw UsageError(error.what());
    }
    return mArguments;
}

}  // namespace zvtext
