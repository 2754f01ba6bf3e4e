// SPDX-License-Identifier: Apache-2.0
// The completion scripts. In each, the words before the cursor say which command the line is in; then the
// word before the cursor may ask for a value, or else options, commands and arguments are offered.
#include "tools/zvtext/CommandTree.h"
#include "tools/zvtext/Failure.h"

namespace zvtext {

namespace {

std::string join(const std::vector<std::string>& words, const std::string& between = " ") {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : between) + word;
    return text;
}

std::string replaced(std::string text, const std::string& characters, const std::string& before) {
    for (size_t at = 0; (at = text.find_first_of(characters, at)) != std::string::npos;
         at += before.size() + 1) {
        text.insert(at, before);
    }
    return text;
}

// In single quotes, for bash and zsh.
std::string quoted(const std::string& text) {
    std::string result;
    for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return "'" + result + "'";
}

// "outer/inner) command='outer inner' ;;" for each command.
std::string commandCases(const std::vector<CommandNode>& tree, const std::string& indent,
                         const std::string& more) {
    std::string cases;
    for (const CommandNode& node : tree) {
        if (node.path.empty()) continue;
        CommandNode above = node;
        above.path.pop_back();
        cases += indent + quoted(above.name() + "/" + node.path.back()) + ") command=" + quoted(node.name()) +
                 more + " ;;\n";
    }
    return cases;
}

// All that the arguments of a command can be, in one.
ValueHint argumentHint(const CommandNode& node) {
    ValueHint all;
    for (const OptionNode& argument : node.arguments) {
        const ValueHint& hint = argument.hint;
        all.words.insert(all.words.end(), hint.words.begin(), hint.words.end());
        all.files = all.files || hint.files;
        all.folders = all.folders || hint.folders;
    }
    return all;
}

// --- bash

std::string bashHint(const ValueHint& hint) {
    return "words=" + quoted(join(hint.words)) + (hint.files ? " paths=-f" : hint.folders ? " paths=-d" : "");
}

std::string bashScript(const std::vector<CommandNode>& tree) {
    std::string values, others;
    for (const CommandNode& node : tree) {
        std::vector<std::string> flags;
        for (const OptionNode& option : node.options) {
            std::vector<std::string> patterns;
            for (const std::string& flag : option.flags) {
                flags.push_back(flag);
                patterns.push_back(quoted(node.name() + ":" + flag));
            }
            if (option.value.empty()) continue;
            values += "        " + join(patterns, " | ") + ") " + bashHint(option.hint) + " ;;\n";
        }
        ValueHint hint = argumentHint(node);
        hint.words.insert(hint.words.begin(), node.commands.begin(), node.commands.end());
        others += "            " + quoted(node.name() + ":-") + ") words=" + quoted(join(flags)) + " ;;\n";
        others += "            " + quoted(node.name() + ":") + ") " + bashHint(hint) + " ;;\n";
    }
    return R"(# bash completion for zvtext, as `zvtext completion bash` prints it.
_zvtext() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command='' words='' paths='' word dash=''
    # Where = parts words, --option=value comes as three.
    if [[ $current == = ]]; then
        current=''
    elif [[ $previous == = && $COMP_CWORD -gt 2 ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $command/$word in
)" + commandCases(tree, "            ", "") +
           R"(        esac
    done
    [[ $current == -* ]] && dash=-
    case $command:$previous in
)" + values +
           R"(        *) case $command:$dash in
)" + others +
           R"(        esac ;;
    esac
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

// --- zsh

std::string zshAction(const std::string& value, const ValueHint& hint) {
    const std::string files = hint.files ? "_files" : hint.folders ? "_files -/" : "";
    std::string action = files.empty() ? " " : files;
    if (!hint.words.empty()) {
        action = files.empty() ? "(" + join(hint.words) + ")"
                               : "{compadd " + join(hint.words) + "; " + files + "}";
    }
    return ":" + replaced(value, ":", "\\") + ":" + action;
}

std::string zshScript(const std::vector<CommandNode>& tree) {
    std::string cases;
    for (const CommandNode& node : tree) {
        cases += "        " + quoted(node.name()) + ")\n            _arguments -S :";
        const auto add = [&](const std::string& entry) { cases += " \\\n                " + quoted(entry); };
        for (const OptionNode& option : node.options) {
            for (const std::string& flag : option.flags) {
                const bool isLong = flag.rfind("--", 0) == 0, takes = !option.value.empty();
                add("*" + flag + (takes ? isLong ? "=" : "+" : "") + "[" +
                    replaced(option.help, "[]:\\", "\\") + "]" +
                    (takes ? zshAction(option.value, option.hint) : ""));
            }
        }
        if (!node.commands.empty()) add("1:command:(" + join(node.commands) + ")");
        if (!node.arguments.empty()) add("*" + zshAction(node.arguments[0].value, argumentHint(node)));
        cases += " ;;\n";
    }
    return R"(#compdef zvtext
# zsh completion for zvtext, as `zvtext completion zsh` prints it.
_zvtext() {
    local command='' i at=1
    for ((i = 2; i < CURRENT; ++i)); do
        case $command/${words[i]} in
)" + commandCases(tree, "            ", " at=$i") +
           R"(        esac
    done
    words=("${(@)words[at,-1]}")
    ((CURRENT -= at - 1))
    case $command in
)" + cases +
           R"(    esac
}
if [[ $funcstack[1] == _zvtext ]]; then _zvtext "$@"; else compdef _zvtext zvtext; fi
)";
}

// --- fish

std::string fishWord(const std::string& text) {
    return "'" + replaced(text, "'\\", "\\") + "'";
}

std::string fishHint(const ValueHint& hint) {
    std::string words = join(hint.words);
    if (hint.folders) words += (words.empty() ? "" : " ") + std::string("(__fish_complete_directories)");
    return std::string(hint.files ? " -F" : " -f") + (words.empty() ? "" : " -a " + fishWord(words));
}

std::string fishScript(const std::vector<CommandNode>& tree) {
    std::string cases, rules;
    for (const CommandNode& node : tree) {
        const std::string within = "complete -c zvtext -n " + fishWord("__zvtext_in " + node.name());
        if (!node.path.empty()) {
            CommandNode above = node;
            above.path.pop_back();
            cases += "            case " + fishWord(above.name() + "/" + node.path.back()) +
                     "\n                set command " + fishWord(node.name()) + "\n";
            rules += "complete -c zvtext -n " + fishWord("__zvtext_in " + above.name()) + " -f -a " +
                     fishWord(node.path.back()) + " -d " + fishWord(node.help) + "\n";
        }
        for (const OptionNode& option : node.options) {
            rules += within;
            for (const std::string& flag : option.flags) {
                rules += flag.rfind("--", 0) == 0 ? " -l " + flag.substr(2) : " -s " + flag.substr(1);
            }
            if (!option.value.empty()) rules += " -r" + fishHint(option.hint);
            rules += " -d " + fishWord(option.help) + "\n";
        }
        if (!node.arguments.empty()) rules += within + fishHint(argumentHint(node)) + "\n";
    }
    return R"(# fish completion for zvtext, as `zvtext completion fish` prints it.
function __zvtext_in
    set -l command ''
    for word in (commandline -opc)
        switch "$command/$word"
)" + cases +
           R"(        end
    end
    test "$command" = "$argv"
end
complete -c zvtext -f
)" + rules;
}

}  // namespace

std::string completionScript(const CLI::App& app, const std::string& shell) {
    const std::vector<CommandNode> tree = commandTree(app);
    if (shell == "bash") return bashScript(tree);
    if (shell == "zsh") return zshScript(tree);
    if (shell == "fish") return fishScript(tree);
    throw UsageError("SHELL: '" + shell + "' is not one of bash, zsh, fish");
}

}  // namespace zvtext
