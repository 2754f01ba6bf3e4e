// SPDX-License-Identifier: Apache-2.0
// The words before the cursor give the command. If the word just before it expects a value, values are
// offered, else options, commands and arguments.
#include "tools/zvtext/Completion.h"

#include <CLI/CLI.hpp>
#include <cctype>
#include <vector>

#include "scene/Effects.h"
#include "scene/Presets.h"
#include "scene/Values.h"
#include "tools/zvtext/gallery/Gallery.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

std::string inQuotes(const std::string& text) {
    return "'" + text + "'";  // none of the program's names has a quote
}

// The words and paths offered for a value: "words='left center right' paths=-f".
std::string hint(const std::string& value, std::string words = "") {
    std::string paths;
    for (const std::string& part : split(value, '|')) {
        if (part == "FILE" || part == "FONT" || part.rfind("FILE,", 0) == 0) paths = " paths=-f";
        if (part == "DIR") paths = " paths=-d";
        if (part == "PRESET") {
            for (const Preset& preset : presets()) words += std::string(" ") + preset.name;
        }
        if (part == "GROUP") {
            for (const std::string& group : galleryGroupNames()) words += " " + group;
        }
        if (!part.empty() && std::islower(static_cast<unsigned char>(part[0])) != 0) words += " " + part;
    }
    return "words=" + inQuotes(words) + paths;
}

// " keys='width= color= '" for the option of an effect.
std::string keysOf(const std::string& option) {
    const EffectKind* kind = findEffectKind(option);
    if (kind == nullptr) return "";
    EffectSettings settings = kind->defaults;
    std::string keys;
    for (const Field& field : fieldsOf(settings)) keys += std::string(field.name) + "= ";
    return " keys=" + inQuotes(keys);
}

struct Cases {
    std::string commands, values, others;  // for the script's case statements
};

void addCases(const CLI::App& app, const std::string& name, Cases& cases) {
    std::string flags, below, arguments;
    for (const CLI::Option* option : app.get_options()) {
        const std::string value = option->get_items_expected_max() > 0 ? option->get_type_name() : "";
        if (!option->nonpositional()) {
            arguments = value;
            continue;
        }
        std::string patterns;
        const auto add = [&](const std::string& flag) {
            flags += " " + flag;
            patterns += (patterns.empty() ? "" : " | ") + inQuotes(name + ":" + flag);
        };
        for (const std::string& flag : option->get_snames()) add("-" + flag);
        for (const std::string& flag : option->get_lnames()) add("--" + flag);
        std::string keys;
        for (const std::string& name : option->get_lnames()) keys = keysOf(name);
        if (!value.empty()) cases.values += "        " + patterns + ") " + hint(value) + keys + " ;;\n";
    }
    const std::vector<const CLI::App*> commands = app.get_subcommands([](const CLI::App*) { return true; });
    for (const CLI::App* command : commands) below += " " + command->get_name();
    cases.others += "            " + inQuotes(name + ":-") + ") words=" + inQuotes(flags) + " ;;\n";
    cases.others += "            " + inQuotes(name + ":") + ") " + hint(arguments, below) + " ;;\n";
    for (const CLI::App* command : commands) {
        const std::string longer = name + (name.empty() ? "" : " ") + command->get_name();
        cases.commands += "            " + inQuotes(name + "/" + command->get_name()) +
                          ") command=" + inQuotes(longer) + " ;;\n";
        addCases(*command, longer, cases);
    }
}

}  // namespace

std::string bashCompletion(const CLI::App& app) {
    Cases cases;
    addCases(app, "", cases);
    return R"(# bash completion for zvtext, as `zvtext completion` prints it.
_zvtext() {
    local current=${COMP_WORDS[COMP_CWORD]} previous at=$COMP_CWORD first list item
    local command='' words='' keys='' paths='' word dash=''
    # Where = parts words, --option=value comes as three, and key=value,key=value in many.
    while ((at > 1)); do
        if [[ ${COMP_WORDS[at]} == = ]]; then
            ((at -= 1))
        elif [[ ${COMP_WORDS[at - 1]} == = && at -gt 2 ]]; then
            ((at -= 2))
        else
            break
        fi
    done
    if [[ ${COMP_WORDS[at]} == -* && at -lt COMP_CWORD ]]; then
        previous=${COMP_WORDS[at]} first=$((at + 2))
    else
        previous=${COMP_WORDS[at - 1]} first=$at
    fi
    printf -v list %s "${COMP_WORDS[@]:first:COMP_CWORD - first + 1}"
    [[ $current == = ]] && current=''
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $command/$word in
)" + cases.commands +
           R"(        esac
    done
    [[ $current == -* ]] && dash=-
    case $command:$previous in
)" + cases.values +
           R"(        *) case $command:$dash in
)" + cases.others +
           R"(        esac ;;
    esac
    item=${list##*,}
    if [[ $keys && $item != *=* ]]; then
        for word in $keys; do words+=" ${current%"$item"}$word"; done
        compopt -o nospace 2> /dev/null
    fi
    mapfile -t COMPREPLY < <(
        [[ $words ]] && compgen -W "$words" -- "$current"
        [[ $paths ]] && compgen $paths -- "$current"
    )
    [[ $paths ]] && compopt -o filenames 2> /dev/null
    return 0
}
complete -F _zvtext zvtext
)";
}

}  // namespace zvtext
