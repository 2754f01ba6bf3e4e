// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_COMMANDTREE_H_
#define ZVEX_TOOLS_ZVTEXT_COMMANDTREE_H_

#include <CLI/App.hpp>
#include <string>
#include <vector>

namespace zvtext {

// The program's own description of itself, read from its options: what shell completion and the manual page
// are made from.

// What can stand for a value: words of its own, files, or folders. All three empty or false: anything.
struct ValueHint {
    std::vector<std::string> words;
    bool files = false, folders = false;
};

struct OptionNode {
    std::vector<std::string> flags;  // "-o", "--output"; none for an argument without a flag
    std::string value;               // "FILE"; empty for a flag that takes none
    std::string help, start;         // start: the value when left out, may be empty
    ValueHint hint;
    bool required = false;
};

struct CommandNode {
    std::vector<std::string> path;  // "inspect", "style"; empty for the program itself
    std::string help, footer;
    std::vector<OptionNode> options;    // with flags
    std::vector<OptionNode> arguments;  // without
    std::vector<std::string> commands;  // below this one
    std::string name() const;           // "inspect style"
};

// All commands, each before those below it; the program itself is the first.
//
// What a value can be is told by its name: "left|center|right" are words, and of the names in capitals FILE,
// FONT and DIR are paths, PRESET and GROUP those of the program's presets and gallery groups.
std::vector<CommandNode> commandTree(const CLI::App& app);

// The script that completes the program's command lines in "bash", "zsh" or "fish". Throws UsageError, naming
// the argument, for any other shell.
std::string completionScript(const CLI::App& app, const std::string& shell);

// The manual page: troff with the man macros, section 1, all in ASCII.
std::string manualPage(const CLI::App& app, const std::string& version);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_COMMANDTREE_H_
