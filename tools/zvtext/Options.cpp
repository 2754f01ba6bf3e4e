// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Options.h"

#include <CLI/CLI.hpp>
#include <functional>

#include "scene/Presets.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

using Take = std::function<void(const std::string& name, const Json& value)>;

std::string helpOf(const Field& field) {
    const auto* number = std::get_if<NumberField>(&field.value);
    const bool ranged = number != nullptr && !number->range.share;
    return field.help + (ranged ? ". Takes " + number->range.wanted() : "");
}

void addOption(CLI::App& command, const Field& field, const Take& take) {
    const std::string name = field.name;
    const std::string flags =
        name == "text" ? name
                       : (*field.flag != '\0' ? "-" + std::string(field.flag) + "," : "") + "--" + name;
    CLI::Option* option = nullptr;
    if (std::holds_alternative<FlagField>(field.value)) {
        // --NAME=false overrides a style that says true.
        option = command.add_flag(flags)->description(field.help)->each([=](const std::string& value) {
            take(name, value == "true" || value == "false" ? Json(value == "true") : Json(value));
        });
    } else {
        option = command.add_option_function<std::string>(
            flags, [=](const std::string& value) { take(name, value); }, helpOf(field));
        option->trigger_on_parse()->type_name(placeholderOf(field))->default_str(formatValue(field));
    }
    if (*field.group != '\0') option->group(field.group);
}

}  // namespace

void addOptions(CLI::App& command, const Fields& fields, GivenOptions& given) {
    for (const Field& field : fields) {
        const bool list = std::holds_alternative<FontsField>(field.value);
        addOption(command, field, [&given, list](const std::string& name, const Json& value) {
            Json* earlier = nullptr;
            for (auto& [known, list] : given) {
                if (known == name) earlier = &list;
            }
            if (list && earlier != nullptr) return earlier->push_back(value);
            given.emplace_back(name == "text" && value == "-" ? "text-file" : name,
                               list ? Json::array({value}) : value);
        });
    }
}

void addSettings(CLI::App& command, const Fields& fields) {
    for (const Field& field : fields) {
        addOption(command, field, [field](const std::string& name, const Json& value) {
            readOptions({field}, {{name, value}});
        });
    }
}

void readStyleArgument(const std::string& argument, Style& style,
                       const std::shared_ptr<const Source>& source) {
    if (findPreset(argument) != nullptr) {
        readPreset("STYLE", argument, style);
    } else {
        readStyle("STYLE", argument, style, source);
    }
}

void addJsonFlag(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Print one JSON object");
}

void addReadOptions(CLI::App& command, ReadOptions& reads, const std::string& namers) {
    command
        .add_option("--allow-read", reads.folders,
                    "Let " + namers + " use files in this folder and below; give it again for more")
        ->type_name("DIR")
        ->check(CLI::Validator(CLI::ExistingDirectory).description(""))
        ->take_all()
        ->allow_extra_args(false);
    command.add_flag("--allow-read-anywhere", reads.anywhere,
                     "Let " + namers + " use any file, also pipes and devices");
}

}  // namespace zvtext
