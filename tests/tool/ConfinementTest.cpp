// SPDX-License-Identifier: Apache-2.0
// Files that styles and lines of a batch name, and the folders they may lie in.
#include <atomic>
#include <thread>

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

    // The error of each line's result; empty: a picture.
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
    const std::string here = mFolder, style = "--style $DIR/in/style.json ";
    const std::string outside =
        "' lies outside '" + here + "/in', where a style may read; --allow-read DIR adds";
    const struct {
        std::string pattern, error;  // how it goes on behind the name; empty: a picture
        bool lifted;                 // by --allow-read-anywhere
    } cases[] = {{"tile.png", "", true},
                 {"deep/../deep/tile.png", "", true},
                 {"../in/tile.png", "", true},
                 {here + "/in/deep/tile.png", "", true},
                 {"/proc/self/root" + here + "/in/tile.png", "", true},
                 {"inside.png", "", true},
                 {"../secret/tile.png", outside, true},
                 {here + "/secret/tile.png", outside, true},
                 {"link.png", outside, true},
                 {"folder/tile.png", outside, true},
                 {"../inner/tile.png", outside, true},
                 {"/proc/self/root" + here + "/secret/tile.png", outside, true},
                 {"../secret/none.png", outside, false},
                 {"folder/none.png", outside, false},
                 {"folder/none/none.png", outside, false},
                 {"folder/text/none.png", outside, false},
                 {"gone.png", outside, false},
                 {"deep/none/../none.png", "': No such file", false},
                 {"/dev/zero", outside, false},
                 {"none.png", "': No such file", false},
                 {"loop.png", "': Too many levels", false},
                 {"deep", "' is a folder", false},
                 {"pipe.png", "' is no regular file; --allow-read-anywhere", false}};
    for (const auto& [pattern, error, lifted] : cases) {
        SCOPED_TRACE(pattern);
        write("in/style.json", styleOf(pattern));
        const std::string path = pattern[0] == '/' ? pattern : here + "/in/" + pattern;
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
    // What the command line says itself is its own affair.
    EXPECT_EQ(render("--style '" + styleOf(file("secret/tile.png")) + "'"), 0);
    EXPECT_EQ(render("--pattern $DIR/secret/tile.png"), 0);
}

TEST_F(Confinement, ALineNamesFilesBesideTheLinesAndBelow) {
    const std::string here = mFolder;
    write("in/good.json", styleOf("tile.png"));
    write("in/deep/up.json", styleOf("../tile.png"));
    write("in/start.json", styleOf("../secret/tile.png"));
    fs::create_symlink(file("in/good.json"), file("secret/link.json"));  // back in, from a folder that is not
    const auto style = [](const std::string& name) { return Json::parse(styleOf(name)); };
    const std::string in = here + "/in/", secret = here + "/secret/";
    // Which may be read, and which not.
    const Json inside[] = {
        {{"font", in + "font.ttf"}},         {{"font", "DejaVu Sans:bold"}}, {{"font", kFont}},
        {{"fallback", {in + "font.ttf"}}},   {{"text-file", in + "text"}},   {{"style", in + "good.json"}},
        {{"style", style(in + "tile.png")}}, {{"pattern", in + "tile.png"}}};
    const Json outside[] = {{{"font", secret + "font.ttf"}},  // loaded already, for the command line
                            {{"font", secret + "none.ttf"}},
                            {{"font", secret + "nonesuch#x"}},
                            {{"fallback", {in + "font.ttf", secret + "font.ttf#0"}}},
                            {{"text-file", in + "folder/text"}},
                            {{"style", in + "../secret/none.json"}},
                            {{"style", secret + "link.json"}},
                            {{"style", in + "deep/up.json"}},
                            {{"style", in + "start.json"}},
                            {{"style", style(in + "link.png")}},
                            {{"pattern", "file=" + secret + "tile.png,scale=2"}}};
    std::vector<Json> lines(std::begin(inside), std::end(inside));
    lines.insert(lines.end(), std::begin(outside), std::end(outside));
    lines.push_back({{"allow-read", "/"}});
    lines.push_back({{"allow-read-anywhere", true}});
    for (Json& line : lines) {
        if (!line.contains("text-file")) line["text"] = "x";
    }
    const auto expect = [&](const std::string& options, bool allowed) {
        const std::vector<std::string> errors = batch(lines, options);
        for (size_t i = 0; i < lines.size(); ++i) {
            const bool fails = i + 2 >= lines.size() || lines[i].dump().find("none") != std::string::npos ||
                               (!allowed && i >= std::size(inside));
            EXPECT_EQ(!errors[i].empty(), fails) << lines[i] << errors[i];
            const bool told = errors[i].find("' lies outside ") != std::string::npos &&
                              errors[i].find(" may read; --allow-read DIR adds") != std::string::npos;
            EXPECT_EQ(told, !allowed && i >= std::size(inside) && i + 2 < lines.size()) << errors[i];
        }
    };
    expect("", false);
    // Pictures made with leave are not left without it.
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
    struct Line {
        const char* output;
        int kind;  // 0 is drawn, 1 leads out, 2 leads out and nowhere, 3 is a pipe
        const char* metrics;
    };
    const Line cases[] = {{"link/x.png", 1, ""},      {"link/new/x.png", 1, ""},
                          {"text.png", 1, ""},        {"pipe.png", 3, ""},
                          {"good.png", 0, ""},        {"dangling.png", 2, ""},
                          {"a/b/x.png", 0, ""},       {"link/../link/y.png", 1, ""},
                          {"link/text/x.png", 2, ""}, {"link/none.png/x.png", 1, ""},
                          {"link/gone.png", 2, ""},   {"m.png", 1, "link/m.json"}};
    std::vector<Json> lines;
    for (const Line& line : cases) {
        lines.push_back({{"text", "x"}, {"output", line.output}});
        if (*line.metrics != '\0') lines.back()["metrics"] = line.metrics;
    }
    const std::string outside = "' lies outside '" + file("out").string() +
                                "', where a line of a batch may write; --allow-outside lets it leave";
    const std::vector<std::string> errors = batch(lines, "--resume");
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(errors[i].empty(), cases[i].kind == 0) << lines[i] << errors[i];
        const std::string expected = cases[i].kind == 0   ? ""
                                     : cases[i].kind == 3 ? "is no regular file"
                                                          : outside;
        EXPECT_NE(errors[i].find(expected), std::string::npos) << lines[i] << errors[i];
    }
    EXPECT_GT(readPng(file("out/sub/old.png")).ink(), 0u) << "behind the link";
    EXPECT_TRUE(fs::is_symlink(file("out/dangling.png")));
    EXPECT_EQ(slurp(file("secret/text")), "Text");
    EXPECT_EQ(std::distance(fs::directory_iterator(file("secret")), {}), 6) << "nothing came, nothing went";
    EXPECT_FALSE(fs::exists(file("out/m.png"))) << "without its metrics";
    for (size_t i = 0; i < lines.size(); ++i) {
        if (cases[i].kind == 3) continue;  // it would wait for a reader
        EXPECT_EQ(batch({lines[i]}, "--allow-outside")[0] != "", cases[i].kind == 2) << lines[i];
    }
    EXPECT_EQ(slurp(file("secret/text")).substr(1, 3), "PNG");
    // One file by two names is of one line alone.
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
    // The journal is the folder's own file.
    for (const char* target : {"/dev/zero", "../secret/journal"}) {
        fs::remove(file("out/.zvtext-batch"));
        fs::create_symlink(target, file("out/.zvtext-batch"));
        const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --resume", "{}");
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.err.find("/out/.zvtext-batch': it is a link"), std::string::npos) << result.err;
    }
    EXPECT_FALSE(fs::exists(file("secret/journal")));
}

// A folder that changes places with a link to another, as fast as it goes, while a file in it is read.
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
