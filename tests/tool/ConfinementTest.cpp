// SPDX-License-Identifier: Apache-2.0
// Files that styles and lines of a batch name, and the folders they may lie in.
#include <atomic>
#include <nlohmann/json.hpp>
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

    Result render(std::vector<std::string> options) const {
        options.insert(options.begin(), {"render", "x", "--font", kFont, "--size", "8", "-o", file("x.png")});
        return run(options);
    }

    // The error of each line's result; empty: a picture.
    std::vector<std::string> batch(const std::vector<Json>& lines, std::vector<std::string> options) const {
        std::string text;
        for (const Json& line : lines) text += line.dump() + "\n";
        options.insert(options.begin(), {"batch", write("in/lines.jsonl", text), "--size", "8", "--font",
                                         file("secret/font.ttf"), "--output-dir", file("out")});
        std::stringstream results(run(options).out);
        std::vector<std::string> errors;
        for (std::string line; std::getline(results, line);) {
            errors.push_back(Json::parse(line).value("error", ""));
        }
        errors.resize(lines.size(), "no result");
        return errors;
    }
};

TEST_F(Confinement, AStyleFileNamesFilesInItsFolderAndBelow) {
    const std::string here = mFolder, style = file("in/style.json");
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
        for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
                 {"render", "x", "--font", kFont, "-o", file("x.png"), "--style"},
                 {"render", "--print-key", "--style"},
                 {"inspect", "style"}}) {
            std::vector<std::string> words = command;
            words.push_back(style);
            const Result result = run(words);
            EXPECT_EQ(result.status, error.empty() ? 0 : 1);
            EXPECT_EQ(result.err.find("zvtext: --pattern: ") == 0 &&
                          result.err.find("'" + path + error) != std::string::npos,
                      !error.empty())
                << result.err;
        }
        if (!lifted) continue;
        EXPECT_EQ(render({"--style", style, "--allow-read-anywhere"}).status, 0);
        EXPECT_EQ(render({"--style", style, "--allow-read", "/"}).status, 0);
        EXPECT_EQ(render({"--style", style, "--allow-read", file("in/deep"), "--allow-read", here}).status,
                  0);
    }
    write("in/style.json", styleOf("../secret/tile.png"));
    EXPECT_EQ(render({"--style", style, "--allow-read", file("secret/deep")}).status, 2) << "no such folder";
    EXPECT_EQ(render({"--style", style, "--allow-read", file("inner")}).status, 1);
    // What the command line says itself is its own affair.
    EXPECT_EQ(render({"--style", styleOf(file("secret/tile.png"))}).status, 0);
    EXPECT_EQ(render({"--pattern", file("secret/tile.png")}).status, 0);
}

TEST_F(Confinement, ALineNamesFilesBesideTheLinesAndBelow) {
    const std::string here = mFolder;
    write("in/good.json", styleOf("tile.png"));
    write("in/deep/up.json", styleOf("../tile.png"));
    write("in/start.json", styleOf("../secret/tile.png"));
    fs::create_symlink(file("in/good.json"), file("secret/link.json"));  // back in, from a folder that is not
    const Json inside[] = {{{"font", here + "/in/font.ttf"}},
                           {{"font", "DejaVu Sans:bold"}},
                           {{"font", kFont}},
                           {{"fallback", {here + "/in/font.ttf"}}},
                           {{"text-file", here + "/in/text"}, {"text", nullptr}},
                           {{"style", here + "/in/good.json"}},
                           {{"style", Json::parse(styleOf(here + "/in/tile.png"))}},
                           {{"pattern", here + "/in/tile.png"}}};
    const Json outside[] = {{{"font", here + "/secret/font.ttf"}},  // loaded already, for the command line
                            {{"font", here + "/secret/none.ttf"}},
                            {{"font", here + "/secret/nonesuch#x"}},
                            {{"fallback", {here + "/in/font.ttf", here + "/secret/font.ttf#0"}}},
                            {{"text-file", here + "/in/folder/text"}, {"text", nullptr}},
                            {{"style", here + "/in/../secret/none.json"}},
                            {{"style", here + "/secret/link.json"}},
                            {{"style", here + "/in/deep/up.json"}},
                            {{"style", here + "/in/start.json"}},
                            {{"style", Json::parse(styleOf(here + "/in/link.png"))}},
                            {{"pattern", "file=" + here + "/secret/tile.png,scale=2"}}};
    std::vector<Json> lines;
    for (const Json& line : inside) lines.push_back(line);
    for (const Json& line : outside) lines.push_back(line);
    for (Json& line : lines) {
        if (!line.contains("text")) line["text"] = "x";
    }
    lines.push_back({{"text", "x"}, {"allow-read", "/"}});
    lines.push_back({{"text", "x"}, {"allow-read-anywhere", true}});
    const auto expect = [&](const std::vector<std::string>& options, bool allowed) {
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
    expect({}, false);
    // Pictures made with leave are not left without it.
    expect({"--allow-read", here, "--resume"}, true);
    expect({"--resume"}, false);
    expect({"--allow-read-anywhere", "--resume"}, true);
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
    std::vector<Json> lines;
    for (const char* name :
         {"link/x.png", "link/new/x.png", "text.png", "pipe.png", "good.png", "dangling.png", "a/b/x.png",
          "link/../link/y.png", "link/text/x.png", "link/none.png/x.png", "link/gone.png"}) {
        lines.push_back({{"text", "x"}, {"output", name}});
    }
    lines.push_back({{"text", "x"}, {"output", "m.png"}, {"metrics", "link/m.json"}});
    const std::vector<std::string> errors = batch(lines, {"--resume"});
    const std::string outside = "' lies outside '" + file("out").string() +
                                "', where a line of a batch may write; --allow-outside lets it leave";
    for (const size_t i : {0, 1, 2, 5, 7, 8, 9, 10, 11}) {
        EXPECT_NE(errors[i].find(outside), std::string::npos) << i << errors[i];
    }
    EXPECT_NE(errors[3].find("is no regular file"), std::string::npos) << errors[3];
    for (const size_t i : {4, 6}) EXPECT_EQ(errors[i], "") << i;
    EXPECT_GT(readPng(file("out/sub/old.png")).ink(), 0u) << "behind the link";
    EXPECT_TRUE(fs::is_symlink(file("out/dangling.png")));
    EXPECT_EQ(slurp(file("secret/text")), "Text");
    EXPECT_EQ(std::distance(fs::directory_iterator(file("secret")), {}), 6) << "nothing came, nothing went";
    EXPECT_FALSE(fs::exists(file("out/m.png"))) << "without its metrics";
    for (const Json& line : lines) {
        if (line["output"] == "pipe.png") continue;  // it would wait for a reader
        const bool leadsNowhere = line["output"] == "dangling.png" || line["output"] == "link/gone.png" ||
                                  line["output"] == "link/text/x.png";
        EXPECT_EQ(batch({line}, {"--allow-outside"})[0] != "", leadsNowhere) << line;
    }
    EXPECT_EQ(slurp(file("secret/text")).substr(1, 3), "PNG");
    // One file by two names is of one line alone.
    fs::create_directory_symlink("sub", file("out/again"));
    const std::vector<std::string> twice =
        batch({{{"text", "x"}, {"output", "sub/new.png"}},
               {{"text", "x"}, {"output", "again/new.png"}},
               {{"text", "x"}, {"output", "sub/m.png"}, {"metrics", "again/m.png"}}},
              {});
    EXPECT_EQ(twice[0], "");
    for (const size_t i : {1, 2}) {
        EXPECT_NE(twice[i].find("is the output of an earlier line"), std::string::npos) << twice[i];
    }
    // The journal is the folder's own file.
    for (const char* target : {"/dev/zero", "../secret/journal"}) {
        fs::remove(file("out/.zvtext-batch"));
        fs::create_symlink(target, file("out/.zvtext-batch"));
        const Result result = run({"batch", "--font", kFont, "--output-dir", file("out"), "--resume"}, "{}");
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
