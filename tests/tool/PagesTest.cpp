// SPDX-License-Identifier: Apache-2.0
// What the program says of itself: help, manual page, shell completion.
#include "tests/tool/Program.h"

namespace {

class Pages : public Program {
protected:
    // What the shell prints for the command; "" with a failure where it fails.
    std::string shell(const std::string& command) const {
        const std::string output = file("shell-output");
        EXPECT_EQ(
            std::system(("cd " + mFolder.string() + " && " + command + " > " + output + " 2>&1").c_str()), 0)
            << command << "\n"
            << slurp(output);
        return slurp(output);
    }
    static bool isInstalled(const std::string& program) {
        return std::system(("command -v " + program + " > /dev/null").c_str()) == 0;
    }

    // What bash offers behind these words, the last of them unfinished.
    std::string completed(const std::string& words) const {
        write("zvtext.bash", run({"completion", "bash"}).out);
        write("complete.bash", "source ./zvtext.bash\nCOMP_WORDS=(zvtext " + words +
                                   ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_zvtext\n"
                                   "printf '%s|' \"${COMPREPLY[@]}\"\ncomplete -p zvtext > /dev/null\n");
        return shell("bash -u complete.bash");
    }
};

TEST_F(Pages, BashCompletes) {
    write("a font.ttf", "");
    fs::create_directory(file("folder"));
    const std::pair<const char*, const char*> cases[] = {
        {"rend", "render|"},
        {"render --letter", "--letter-spacing|"},
        {"render --print-", "--print-style|--print-key|"},
        {"gallery --font-", "--font-dir|"},
        {"--vers", "--version|"},
        {"render --align ''", "left|center|right|"},
        {"render --align = c", "center|"},
        {"render --gravity =", "top|center|bottom|"},
        {"render Text --preset sl", "slime|"},
        {"gallery out --only str", "stroke|"},
        {"render --font a", "a font.ttf|"},
        {"render --fallback a", "a font.ttf|"},
        {"render -f a", "a font.ttf|"},
        {"gallery fol", "folder|"},
        {"gallery a", "|"},
        {"render --size 1", "|"},
        {"render gallery --onl", "|"},
        {"completion ''", "bash|zsh|fish|"},
        {"inspect fo", "font|"},
        {"inspect font --js", "--json|"},
        {"inspect style sli", "slime|"},
    };
    for (const auto& [words, expected] : cases) EXPECT_EQ(completed(words), expected) << words;
}

TEST_F(Pages, OtherShellsTakeTheirScripts) {
    write("_zvtext", run({"completion", "zsh"}).out);
    if (isInstalled("zsh")) {
        EXPECT_EQ(shell("zsh -n _zvtext"), "");
        EXPECT_EQ(shell("zsh -fc 'fpath=($PWD $fpath); autoload -U compinit; compinit -u -d dump; autoload "
                        "+X _zvtext; "
                        "print $_comps[zvtext]'"),
                  "_zvtext\n");
    }
    write("zvtext.fish", run({"completion", "fish"}).out);
    if (isInstalled("fish")) {
        const auto offered = [&](const std::string& line) {
            return shell("HOME=. fish -c 'source zvtext.fish; complete -C \"" + line + "\"' | cut -f 1");
        };
        EXPECT_EQ(offered("zvtext rend"), "render\n");
        EXPECT_EQ(offered("zvtext render --align=c"), "--align=center\n");
        EXPECT_EQ(offered("zvtext render --preset sl"), "slime\n");
        EXPECT_EQ(offered("zvtext gallery x --only str"), "stroke\n");
    }
    const Result unknown = run({"completion", "tcsh"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err, "zvtext: SHELL: 'tcsh' is not one of bash, zsh, fish\n");
}

// All that each command's help names stands in the manual page, which troff takes without a warning.
TEST_F(Pages, HelpHasExamplesAndTheManualPageHasAll) {
    std::string manual = run({"man"}).out;
    if (isInstalled("groff")) {
        write("zvtext.1", manual);
        EXPECT_EQ(shell("groff -man -ww -z -Tutf8 zvtext.1"), "");
    }
    for (const char c : manual) EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~'));
    for (size_t at = 0; (at = manual.find("\\-", at)) != std::string::npos;) manual.erase(at, 1);
    std::stringstream commands(completed("''") + "inspect font|inspect style|inspect text");
    size_t count = 0;
    for (std::string command; std::getline(commands, command, '|'); ++count) {
        if (command.empty()) continue;
        if (command != "inspect") {  // has no options of its own
            EXPECT_NE(manual.find(".SS zvtext " + command), std::string::npos) << command;
        }
        std::stringstream parts(command);
        std::vector<std::string> words(std::istream_iterator<std::string>(parts), {});
        words.emplace_back("--help");
        const Result help = run(words);
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_NE(help.out.find("Example"), std::string::npos) << command;
        EXPECT_NE(help.out.find("\n  zvtext " + command), std::string::npos) << command;
        std::stringstream flags(completed(command + " --"));
        for (std::string flag; std::getline(flags, flag, '|');) {
            if (flag == "--help") continue;
            EXPECT_NE(help.out.find(flag), std::string::npos) << command << " " << flag;
            EXPECT_NE(manual.find("\\fB" + flag + "\\fR"), std::string::npos) << command << " " << flag;
        }
    }
    EXPECT_GE(count, 6u);
}

}  // namespace
