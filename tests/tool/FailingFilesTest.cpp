// SPDX-License-Identifier: Apache-2.0
// Makes every call on a file fail in turn: there must be a clear error or the right picture, and nothing half
// done.
#include <csignal>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <regex>

#include "scene/Png.h"
#include "tests/tool/FailingCalls.h"
#include "tests/tool/Program.h"
#include "text/FontManager.h"

namespace {

constexpr int kStride = kSanitized ? 7 : 1;

class FailingFiles : public Program {
protected:
    using Files = std::map<std::string, std::string>;

    FailingFiles() {
        mFolder = fs::canonical(mFolder);
        fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSansMono-Bold.ttf", file("font.ttf"));
        write("tile.png", Zvex::scene::encodePng({2, 1, {0xFF00FF00, 0x800000FF}}));
        write("style.json", R"({"size": 9, "effects": [{"type": "pattern", "file": "tile.png"}]})");
        write("text", "Aa");
        write("lines", R"({"text": "b", "metrics": "b.json", "output": "b.png"})"
                       "\n"
                       R"({"text-file": ")" +
                           file("text").string() + R"(", "output": "d/c.webp"})" + "\n");
        write("stdin", "");
    }

    std::vector<std::string> withFont(const std::string& line) const {
        return words(line + " --font $DIR/font.ttf --no-fallback --style $DIR/style.json");
    }

    // The current content of the program's files.
    Files found(const std::vector<std::string>& names) const {
        Files files;
        for (const std::string& name : names) files[name] = slurp(file(name));
        return files;
    }

    // First no call fails, then each in turn. The `outputs` exist before, with other content.
    void failEach(const std::vector<std::string>& words, const std::vector<std::string>& outputs,
                  const std::vector<std::string>& toResume = {}, int stride = 1) const {
        const auto prepare = [&] {
            fs::remove_all(file("out"));
            fs::create_directories(file("out/d"));
            for (const std::string& name : outputs) write(name, "before");
        };
        prepare();
        ASSERT_EQ(run(words).status, 0) << slurp(file("stderr"));
        const Files expected = found(outputs);
        const std::string said = slurp(file("stdout"));
        for (const Fails how : {Fails::WithError, Fails::AsEnd}) {
            for (int number = 1;; number += kStride * stride) {
                prepare();
                const FailedCall failed =
                    runWithFailingCall(mFolder, number, how, [&] { return become(words); });
                if (!failed.supported) GTEST_SKIP() << "no such filters here";
                // A list that ends early is just a shorter list.
                if (how == Fails::AsEnd && failed.name == "read, " + file("lines").string()) continue;
                SCOPED_TRACE(words[0] + ", call " + std::to_string(number) + ": " + failed.name);
                EXPECT_TRUE(!failed.name.empty() || failed.status == 0);
                const std::string errors = errorsBut("gallery: ");
                const std::string out = slurp(file("stdout"));
                if (failed.status == 0) {
                    EXPECT_EQ(found(outputs), expected);
                    EXPECT_TRUE(!toResume.empty() || out == said) << out;
                } else {
                    EXPECT_EQ(failed.status, 1) << errors;
                    static const std::regex line("zvtext: [^\n]+: [^\n]+\n");
                    EXPECT_TRUE(
                        std::regex_match(errors, line) ||
                        std::regex_match(errors, std::regex("zvtext: cannot write to standard output.*\n")) ||
                        (!toResume.empty() && out.find("\"error\":\"") != std::string::npos))
                        << errors << out;
                    for (const auto& [name, content] : found(outputs)) {
                        EXPECT_TRUE(content == "before" || content == expected.at(name)) << name;
                    }
                }
                for (const auto& entry : fs::recursive_directory_iterator(mFolder)) {
                    static const std::regex temporary(".*\\.zvtext-......$");
                    EXPECT_FALSE(std::regex_match(entry.path().string(), temporary)) << entry.path();
                }
                if (!toResume.empty()) {
                    EXPECT_EQ(run(toResume).status, 0);
                    EXPECT_EQ(found(outputs), expected);
                }
                if (failed.name.empty()) break;
            }
        }
    }
};

TEST_F(FailingFiles, ARenderGivesAnErrorOrThePicture) {
    failEach(withFont("render --text-file $DIR/text -o $DIR/out/a.png --metrics $DIR/out/a.json"),
             {"out/a.png", "out/a.json"});
    failEach(withFont("render x -o -"), {});
}

// Hundreds of runs: every third call fails, or each with ZVEX_TEST_ALL.
TEST_F(FailingFiles, ABatchGivesAnErrorOrThePictureAndGoesOn) {
    const std::vector<std::string> resumed = withFont("batch $DIR/lines --resume --output-dir $DIR/out");
    failEach(resumed, {"out/b.png", "out/b.json", "out/d/c.webp"}, resumed,
             std::getenv("ZVEX_TEST_ALL") != nullptr ? 1 : 3);
}

TEST_F(FailingFiles, AStreamedPicturesMetricsAreNamedWhenTheirFolderIsSynced) {
    write("lines", R"({"text": "b", "metrics": "d/b.json", "output": "-"})");
    const auto command = withFont("batch $DIR/lines --output-dir $DIR/out");
    const std::string wanted = "fsync, " + file("out/d").string();
    FailedCall failed;
    for (int number = 1; number == 1 || (!failed.name.empty() && failed.name != wanted); ++number) {
        failed = runWithFailingCall(mFolder, number, Fails::WithError, [&] { return become(command); });
        if (!failed.supported) GTEST_SKIP() << "no such filters here";
    }
    EXPECT_EQ(failed.name, wanted);
    EXPECT_EQ(failed.status, 1);
}

// A gallery makes many calls, the same few for each file. A stride that divides none of their numbers hits
// each kind.
TEST_F(FailingFiles, AGalleryLeavesNothingHalfDone) {
    failEach(words("gallery $DIR/out --only stroke --font-dir /usr/share/fonts/truetype/dejavu"),
             {"out/index.html"}, {}, 17);
}

TEST_F(FailingFiles, TheLibraryReadsAWholeFontOrNone) {
    const std::string path = file("font.ttf"), whole = slurp(path);
    const auto read = [&] {
        unsigned size = 0;
        const std::unique_ptr<char[]> bytes(Zvex::getFontData(path.c_str(), size));
        return bytes != nullptr ? std::string(bytes.get(), size) : "";
    };
    for (const Fails how : {Fails::WithError, Fails::AsEnd}) {
        FailedCall failed;
        for (int number = 1; number == 1 || !failed.name.empty(); ++number) {
            failed = runWithFailingCall(mFolder, number, how, [&] {
                const std::string first = read(), second = read();
                const bool good = (first.empty() || first == whole) && (second.empty() || second == whole);
                return good && (first == whole || second == whole) ? 0 : 1;
            });
            if (!failed.supported) GTEST_SKIP() << "no such filters here";
            EXPECT_EQ(failed.status, 0) << failed.name;
        }
    }
}

// Like a disk that fills up in the middle of a file.
TEST_F(FailingFiles, AFileThatMayNotGrowIsNotLeft) {
    if (kSanitized) GTEST_SKIP() << "whose debug lines fill the file of the errors";
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {200, before.rlim_max};
    const auto line = withFont("render 'A longer text' -o $DIR/a.png");
    setrlimit(RLIMIT_FSIZE, &small);
    const Result result = run(line);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err,
              "zvtext: --output: cannot write '" + file("a.png").string() + "': File too large\n");
    for (const std::string& name : left()) EXPECT_EQ(name.find("a.png"), std::string::npos) << name;
}

}  // namespace
