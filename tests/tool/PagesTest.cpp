// SPDX-License-Identifier: Apache-2.0
// The program's own pages: help, shell completion.
#include "tests/tool/Program.h"

namespace {

class Pages : public Program {
protected:
    // What bash offers after these words, the last of them unfinished.
    std::string completed(const std::string& words) const {
        write("zvtext.bash", zvtext("completion").out);
        write("complete.bash", "source ./zvtext.bash\nCOMP_WORDS=(zvtext " + words +
                                   ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_zvtext\n"
                                   "printf '%s|' \"${COMPREPLY[@]}\"\ncomplete -p zvtext > /dev/null\n");
        const std::string line = expanded("cd $DIR && bash -u complete.bash > shown 2>&1");
        EXPECT_EQ(std::system(line.c_str()), 0) << words << slurp(file("shown"));
        return slurp(file("shown"));
    }
};

TEST_F(Pages, BashCompletes) {
    write("a font.ttf", "");
    fs::create_directory(file("folder"));
    for (const Row& row : rows("answers", "completions")) {
        EXPECT_EQ(completed(row.input), row.answer) << row.input;
    }
}

// Everything in each command's help is also in the full help, from which the manual page is made.
TEST_F(Pages, HelpHasExamplesAndTheHelpOfAllHasEverything) {
    const std::string all = zvtext("--help-all").out;
    std::stringstream commands(completed("''") + "inspect font|inspect style|inspect text");
    size_t count = 0;
    for (std::string command; std::getline(commands, command, '|'); ++count) {
        if (command.empty()) continue;
        const Result help = zvtext(command + " --help");
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_NE(help.out.find("zvtext " + command), std::string::npos) << "an example of " << command;
        std::stringstream flags(completed(command + " --"));
        for (std::string flag; std::getline(flags, flag, '|');) {
            if (flag.rfind("--help", 0) == 0) continue;
            EXPECT_NE(help.out.find(flag), std::string::npos) << command << " " << flag;
            EXPECT_NE(all.find(flag), std::string::npos) << command << " " << flag;
        }
        const std::string example = help.out.substr(help.out.rfind("zvtext " + command));
        EXPECT_NE(all.find(example.substr(0, example.find('\n'))), std::string::npos) << example;
    }
    EXPECT_GE(count, 6u);
    const std::string version = zvtext("version").out;
    for (const char* line : {"version: ", "compiler: ", "instructionSet: ", "libraries: FreeType 2."}) {
        EXPECT_NE(("\n" + version).find(std::string("\n") + line), std::string::npos) << version;
    }
}

// The page of a style's keys is the one that this program makes.
TEST_F(Pages, KeysOfAStyleHaveTheirSentencesAndPictures) {
    if (kSanitized) GTEST_SKIP() << "a hundred runs";
    const fs::path docs = fs::path(ZVTEXT_SOURCE) / "docs";
    const std::string line = expanded("$SOURCE/scripts/styles-page " ZVTEXT_BINARY " $DIR > $DIR/shown 2>&1");
    ASSERT_EQ(std::system(line.c_str()), 0) << slurp(file("shown"));
    EXPECT_TRUE(slurp(file("styles.md")) == slurp(docs / "styles.md")) << "make it anew: scripts/docs";
    std::set<std::string> made, kept;
    for (const auto& entry : fs::directory_iterator(file("images/keys")))
        made.insert(entry.path().filename());
    for (const auto& entry : fs::directory_iterator(docs / "images/keys"))
        kept.insert(entry.path().filename());
    EXPECT_EQ(made, kept);
    EXPECT_GT(made.size(), 60u);
    uintmax_t bytes = 0;
    for (const std::string& name : kept) {
        EXPECT_TRUE(readPng(file("images/keys") / name).rgba == readPng(docs / "images/keys" / name).rgba)
            << name;
        bytes += fs::file_size(docs / "images/keys" / name);
    }
    EXPECT_LT(bytes, 1'000'000u);
}

}  // namespace
