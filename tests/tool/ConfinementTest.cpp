// SPDX-License-Identifier: Apache-2.0
// The files that styles and batch lines name, and the folders that they may be in.
#include <atomic>
#include <thread>

#include "scene/FileSource.h"
#include "scene/FolderScope.h"
#include "scene/Png.h"
#include "scene/TextInput.h"
#include "tests/scene/Refusal.h"
#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

// in/       what may be read: a style's folder, or that of a batch's lines
// in/deep/
// inner/    begins like it, and is not below it
// secret/   what may not be read
class Confinement : public Program {
protected:
    Confinement() {
        for (const char* name : {"in/deep", "inner", "secret", "out"}) fs::create_directories(file(name));
        const std::string tile = Zvex::scene::encodePng({1, 1, {0xFF00FF00}});
        for (const char* name : {"in/tile.png", "in/deep/tile.png", "inner/tile.png", "secret/tile.png"}) {
            write(name, tile);
        }
        for (const char* name : {"in/font.ttf", "secret/font.ttf"}) fs::copy_file(kFont, file(name));
        for (const char* name : {"in/text", "secret/text"}) write(name, "Text");
        fs::create_symlink(file("secret/tile.png"), file("in/link.png"));
        fs::create_symlink("deep/tile.png", file("in/inside.png"));
        fs::create_symlink("loop.png", file("in/loop.png"));
        fs::create_symlink("../secret", file("in/folder"));
        fs::create_symlink("folder/none.png", file("in/gone.png"));
        fs::create_symlink("none", file("secret/gone.png"));
        write("secret/nonesuch", "");
        mkfifo(file("in/pipe.png").c_str(), 0600);
    }

    static std::string styleOf(const std::string& pattern) {
        return Json({{"effects", {{{"type", "pattern"}, {"file", pattern}}}}}).dump();
    }

    // Its exit status.
    int render(const std::string& options) const {
        return zvtext("render x -f $FONT -s 8 -o $DIR/x.png " + options).status;
    }

    // The error of each line's result; empty for a picture.
    std::vector<std::string> batch(const std::vector<Json>& lines, const std::string& options) const {
        std::string text;
        for (const Json& line : lines) text += line.dump() + "\n";
        write("in/lines.jsonl", text);
        const Result run =
            zvtext("batch $DIR/in/lines.jsonl -s 8 -f $DIR/secret/font.ttf --output-dir $DIR/out " + options);
        std::stringstream results(run.out);
        std::vector<std::string> errors;
        for (std::string line; std::getline(results, line);) {
            errors.push_back(Json::parse(line).value("error", ""));
        }
        errors.resize(lines.size(), "no result");
        return errors;
    }
};

TEST_F(Confinement, AStyleFileNamesFilesInItsFolderAndBelow) {
    const std::string style = "--style $DIR/in/style.json ";
    for (const Row& row : rows("answers", "patterns")) {
        SCOPED_TRACE(row.input);
        const bool lifted = row.input[0] == '+';
        const std::string pattern = expanded(row.input.substr(lifted ? 1 : 0)), error = expanded(row.answer);
        write("in/style.json", styleOf(pattern));
        const std::string path = pattern[0] == '/' ? pattern : file("in").string() + "/" + pattern;
        for (const char* command :
             {"render x -f $FONT -o $DIR/x.png --style", "render --print-key --style", "inspect style"}) {
            const Result result = zvtext(command + std::string(" $DIR/in/style.json"));
            EXPECT_EQ(result.status, error.empty() ? 0 : 1);
            EXPECT_EQ(result.err.find("zvtext: --pattern: ") == 0 &&
                          result.err.find("'" + path + error) != std::string::npos,
                      !error.empty())
                << result.err;
        }
        if (!lifted) continue;
        for (const char* allowed :
             {"--allow-read-anywhere", "--allow-read /", "--allow-read $DIR/in/deep --allow-read $DIR"}) {
            EXPECT_EQ(render(style + allowed), 0) << allowed;
        }
    }
    write("in/style.json", styleOf("../secret/tile.png"));
    EXPECT_EQ(render(style + "--allow-read $DIR/secret/deep"), 2) << "no such folder";
    EXPECT_EQ(render(style + "--allow-read $DIR/inner"), 1);
    write("in/style.json", R"({"canvas": "pattern:../secret/tile.png"})");
    EXPECT_EQ(render(style), 1) << "in short as well";
    // So is a style that it extends, whose own folder counts for its own files.
    write("secret/style.json", "{}");
    write("in/deep/base.json", styleOf("tile.png"));
    write("in/deep/up.json", styleOf("../tile.png"));
    for (const auto& [base, status] : {std::pair{"../secret/style.json", 1},
                                       {"folder/style.json", 1},
                                       {"deep/base.json", 0},
                                       {"deep/up.json", 1},
                                       {"pipe.png", 1}}) {
        write("in/style.json", Json({{"extends", base}}).dump());
        EXPECT_EQ(render(style), status) << base;
    }
    write("in/style.json", R"({"extends": "../secret/style.json"})");
    EXPECT_EQ(render(style + "--allow-read $DIR/secret"), 0);
    // Names on the command line itself are not confined.
    EXPECT_EQ(render("--style '" + styleOf(file("secret/tile.png")) + "'"), 0);
    EXPECT_EQ(render("--pattern $DIR/secret/tile.png"), 0);
}

TEST_F(Confinement, ALineNamesFilesBesideTheLinesAndBelow) {
    write("in/good.json", styleOf("tile.png"));
    write("in/deep/up.json", styleOf("../tile.png"));
    write("in/start.json", styleOf("../secret/tile.png"));
    fs::create_symlink(file("in/good.json"), file("secret/link.json"));  // back in, from a folder that is not
    const std::vector<Row> cases = rows("answers", "lines");
    std::vector<Json> lines;
    for (const Row& row : cases) {
        lines.push_back(Json::parse(expanded(row.input)));
        if (!lines.back().contains("text-file")) lines.back()["text"] = "x";
    }
    const auto expect = [&](const std::string& options, bool allowed) {
        const std::vector<std::string> errors = batch(lines, options);
        for (size_t i = 0; i < lines.size(); ++i) {
            const bool outside = cases[i].answer.rfind("lifted", 0) == 0 && !allowed;
            const bool drawn = cases[i].answer == "read" || (cases[i].answer == "lifted" && allowed);
            EXPECT_EQ(errors[i].empty(), drawn) << lines[i] << errors[i];
            const bool told = errors[i].find("' lies outside ") != std::string::npos &&
                              errors[i].find(" may read; --allow-read DIR adds") != std::string::npos;
            EXPECT_EQ(told, outside) << lines[i] << errors[i];
        }
    };
    expect("", false);
    // Pictures made with permission are not kept without it.
    expect("--allow-read $DIR --resume", true);
    expect("--resume", false);
    expect("--allow-read-anywhere --resume", true);
}

TEST_F(Confinement, LinksDoNotLeadALinesFilesOutOfTheOutputFolder) {
    fs::create_directory_symlink(file("secret"), file("out/link"));
    fs::create_symlink(file("secret/text"), file("out/text.png"));
    fs::create_directory(file("out/sub"));
    write("out/sub/old.png", "old");
    fs::create_symlink("sub/old.png", file("out/good.png"));
    fs::create_symlink("/nowhere/at/all", file("out/dangling.png"));
    mkfifo(file("out/pipe.png").c_str(), 0600);
    write("secret/y.zvtext-AAAAAA", "cut short");
    const std::vector<Row> cases = rows("answers", "outputs");
    std::vector<Json> lines;
    for (const Row& row : cases) {
        const std::vector<std::string> names = words(row.input);
        lines.push_back({{"text", "x"}, {"output", names[0]}});
        if (names.size() > 1) lines.back()["metrics"] = names[1];
    }
    const std::string outside = "' lies outside '" + file("out").string() +
                                "', where a line of a batch may write; --allow-outside lets it leave";
    const std::vector<std::string> errors = batch(lines, "--resume");
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(errors[i].empty(), cases[i].answer == "drawn") << lines[i] << errors[i];
        const std::string expected = cases[i].answer == "drawn"  ? ""
                                     : cases[i].answer == "pipe" ? "is not a regular file"
                                                                 : outside;
        EXPECT_NE(errors[i].find(expected), std::string::npos) << lines[i] << errors[i];
    }
    EXPECT_GT(readPng(file("out/sub/old.png")).ink(), 0u) << "behind the link";
    EXPECT_TRUE(fs::is_symlink(file("out/dangling.png")));
    EXPECT_EQ(slurp(file("secret/text")), "Text");
    EXPECT_EQ(std::distance(fs::directory_iterator(file("secret")), {}), 6) << "nothing came, nothing went";
    EXPECT_FALSE(fs::exists(file("out/m.png"))) << "without its metrics";
    for (size_t i = 0; i < lines.size(); ++i) {
        if (cases[i].answer == "pipe") continue;  // it would wait for a reader
        const bool nowhere = cases[i].answer == "out, nowhere";
        EXPECT_EQ(batch({lines[i]}, "--allow-outside")[0] != "", nowhere) << lines[i];
    }
    EXPECT_EQ(slurp(file("secret/text")).substr(1, 3), "PNG");
    // A file with two names belongs to one line only.
    fs::create_directory_symlink("sub", file("out/again"));
    const std::vector<std::string> twice =
        batch({{{"text", "x"}, {"output", "sub/new.png"}},
               {{"text", "x"}, {"output", "again/new.png"}},
               {{"text", "x"}, {"output", "sub/m.png"}, {"metrics", "again/m.png"}}},
              "");
    EXPECT_EQ(twice[0], "");
    for (const size_t i : {1, 2}) {
        EXPECT_NE(twice[i].find("is the output of an earlier line"), std::string::npos) << twice[i];
    }
    // The journal must be a file in the folder.
    for (const char* target : {"/dev/zero", "../secret/journal"}) {
        fs::remove(file("out/.zvtext-batch"));
        fs::create_symlink(target, file("out/.zvtext-batch"));
        const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --resume", "{}");
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.err.find("/out/.zvtext-batch': it is a link"), std::string::npos) << result.err;
    }
    EXPECT_FALSE(fs::exists(file("secret/journal")));
}

// While a file is read, its folder and a link to another folder swap places again and again.
TEST_F(Confinement, WhatIsReadIsWhatWasChecked) {
    write("in/deep/text", "open");
    write("secret/text", "secret");
    fs::create_directory_symlink(file("secret"), file("in/other"));
    const Zvex::scene::FolderScope scope({file("in")}, "a test may read");
    std::atomic<bool> done = false;
    std::thread swapper([&] {
        while (!done) {
            renameat2(AT_FDCWD, file("in/deep").c_str(), AT_FDCWD, file("in/other").c_str(), RENAME_EXCHANGE);
        }
    });
    size_t opened = 0, refused = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string content = "open";
        const std::string why = Zvex::scene::refusal(
            [&] { content = Zvex::scene::readFile("--x", file("in/deep/text"), 100, scope); });
        EXPECT_EQ(content, "open");
        ++(why.empty() ? opened : refused);
    }
    done = true;
    swapper.join();
    EXPECT_GT(opened, 0u);
    EXPECT_GT(refused, 0u);
}

}  // namespace
