// SPDX-License-Identifier: Apache-2.0
#include <pty.h>

#include <atomic>
#include <csignal>
#include <thread>

#include "tests/tool/Batch.h"

namespace {

using Json = nlohmann::json;

TEST_F(BatchCommand, LinesAreThePicturesOfRenderInTheirOrder) {
    const std::string longName = std::string(251, 'l') + ".png", defaults = " -s 24 --stroke 2:#0f0";
    write("dash", "-");
    const struct {
        std::string json, path, options;  // of render; none: the line is invalid
    } lines[] = {
        {R"({"text":"One","size":40})", "1.png", "One -s 40 --stroke 2:#0f0"},
        {"not json", "", ""},
        {R"({"text":"Two","output":"a/b/two.png","stroke":"4","color":"#00f","max-lines":null})",
         "a/b/two.png", "Two -s 24 --stroke 4 -c #00f"},
        {R"({"text":"-","style":{"color":"#00f","effects":[{"type":"stroke","width":3}]}})", "4.png",
         "--text-file $DIR/dash -s 24 -c #00f --stroke 3"},
        {R"({"text":"世界"})", "5.png", "世界 --fallback $CJK" + defaults},
        {R"({"text":"世界","fallback":[")" + kFont + R"("]})", "6.png", "世界" + defaults},
        {R"({"text":"m","output":")" + longName + R"(","metrics":"j/m.json"})", longName,
         "m --metrics $DIR/m.json" + defaults},
        {R"({"text":"plain","text-rendering":"plain"})", "8.png", "plain --text-rendering plain" + defaults},
        {"{\"text\":\"end\"}\r", "9.png", "end" + defaults}};
    std::string input = "\xEF\xBB\xBF";
    for (const auto& line : lines) input += line.json + "\n";
    input += "\n  \n{\"text\":\"after empty lines, without an end\"}";
    const std::vector<Json> results = batch(input, "--jobs 4 --stroke 2:#0f0 --fallback $CJK", 1);
    ASSERT_EQ(results.size(), std::size(lines) + 1);
    EXPECT_EQ(results.back().value("line", 0u), std::size(lines) + 3);
    for (size_t i = 0; i < std::size(lines); ++i) {
        SCOPED_TRACE(lines[i].json);
        const Json& result = results[i];
        EXPECT_EQ(result.value("line", 0u), i + 1);
        EXPECT_EQ(error(result).empty(), !lines[i].path.empty());
        if (lines[i].path.empty()) continue;
        EXPECT_EQ(result.value("path", ""), folder() / lines[i].path);
        const Image image = readPng(folder() / lines[i].path);
        EXPECT_EQ(result.value("width", 0u), image.width);
        EXPECT_EQ(result.value("height", 0u), image.height);
        EXPECT_GT(result.value("milliseconds", 0.0), 0.0);
        EXPECT_GT(result.value("baseline", 0), result["margins"].value("top", -1));
        EXPECT_EQ(slurp(folder() / lines[i].path), bytes("-f $FONT " + lines[i].options));
    }
    EXPECT_EQ(slurp(folder() / "j/m.json"), slurp(file("m.json")));
    const fs::path outside = file("outside.png");
    const std::string line = Json({{"text", "x"}, {"output", outside}}).dump();
    EXPECT_EQ(batch(line, "--allow-outside", 0)[0].value("path", ""), outside);
    EXPECT_GT(readPng(outside).ink(), 0u);
}

// Beside the line's number in the whole list, which names the picture too.
TEST_F(BatchCommand, ResultsRepeatTheIdsOfTheirLines) {
    const std::string lines = R"({"id":"a\u0007é","text":"x"}
{"id":-7,"text":"x","size":-1}
{"id":1.5,"text":"x","output":5}
{"id":18446744073709551615,"text":"x","output":5}
{"text":"x"}
)" + slowLine();
    Running running(arguments("--first-line 4000000001"));
    running.put("\n" + lines.substr(0, lines.size() - 2) + ",\"id\":\"slow\"}\n");
    for (const Json& id : {Json("a\aé"), Json(-7), Json(1.5), Json(UINT64_MAX), Json()}) {
        const Json result = running.next();
        EXPECT_EQ(result.value("id", Json()), id);
        if (id.is_null()) {
            EXPECT_EQ(result.value("path", ""), folder() / "4000000006.png");
        }
    }
    kill(running.worker(), SIGKILL);
    const Json died = running.next();
    EXPECT_EQ(died.value("id", ""), "slow");
    EXPECT_EQ(died.value("line", uint64_t{0}), 4'000'000'007u);
}

TEST_F(BatchCommand, AnOutputOrAnInputThatFailsEndsItAfterTheLinesUnderWay) {
    const std::string lines = write("lines", "{\"text\":\"one\"}\n{\"text\":\"two\"}\n");
    const std::string command = std::string(ZVTEXT_BINARY) + " batch --font " + kFont + " --output-dir " +
                                folder().string() + " 2>" + file("errors").string() + " ";
    const auto fails = [&](const std::string& rest, const std::string& message) {
        fs::remove_all(folder());
        EXPECT_EQ(std::system((command + rest).c_str()), 1 << 8) << rest;
        EXPECT_NE(slurp(file("errors")).find("zvtext: " + message), std::string::npos) << rest;
    };
    // Other files must not get the numbers of closed streams.
    for (const char* streams : {" >/dev/full", " >&-", " <&- >&-"}) {
        fails(lines + streams, "cannot write to standard output: ");
        EXPECT_GT(readPng(folder() / "1.png").ink(), 0u);
        const std::string journal = slurp(folder() / ".zvtext-batch");
        EXPECT_EQ(journal.find("\"line\""), std::string::npos) << journal;
    }
    fails(" <&-", "FILE: cannot read: ");
    fails("/proc/self/mem", "FILE: cannot read: ");

#ifndef ZVTEXT_SANITIZED  // its debug lines fill the file of errors
    // If the disk is full for the journal, the pictures exist and what follows the journal is complete.
    std::string many;
    for (int i = 0; i < 20; ++i) many += "{\"text\":\"i\",\"size\":8}\n";
    const std::string all = write("lines", many);
    fs::remove_all(folder());
    EXPECT_EQ(std::system(("ulimit -f 1; " + command + all + " >/dev/null").c_str()), 1 << 8);
    EXPECT_NE(slurp(file("errors")).find("zvtext: --output-dir: the journal could"), std::string::npos);
    EXPECT_GT(readPng(folder() / "20.png").ink(), 0u);
    EXPECT_EQ(std::system((command + all + " --resume | grep skipped >/dev/null").c_str()), 0);
    EXPECT_EQ(std::system((command + all + " --resume | grep -vq skipped").c_str()), 1 << 8)
        << "all are known";
#endif
}

TEST_F(BatchCommand, ResultsComeWithTheirLinesAndSignalsLetThemFinish) {
    for (const int signal : {SIGINT, SIGTERM}) {
        Running running(arguments("--jobs 2"));
        running.put("{\"text\":\"one\"}\n");
        EXPECT_EQ(running.next().value("line", 0), 1);
        running.put(slowLine() + "{\"text\":\"three\"}\n");
        EXPECT_TRUE(comesTrue([&] { return fs::exists(folder() / "3.png"); }));
        running.signalAll(signal);
        EXPECT_TRUE(running.hasTaken(signal));
        running.put("{\"text\":\"too late\"}\n");
        releaseSlowLine();
        EXPECT_EQ(running.next().value("path", ""), folder() / "2.png");
        EXPECT_EQ(running.next().value("line", 0), 3);
        EXPECT_EQ(running.next(), nullptr);
        EXPECT_EQ(running.wait(), (128 + signal) << 8);
        fs::remove_all(folder());
    }
    Running running(arguments());
    running.put(slowLine());
    running.worker();
    running.signalAll(SIGTERM);
    EXPECT_TRUE(running.hasTaken(SIGTERM));
    running.signalAll(SIGTERM);
    EXPECT_EQ(running.wait(), SIGTERM) << "the second does not wait for the line";
}

TEST_F(BatchCommand, AnOutputFolderThatIsMovedAwayIsGone) {
    Running running(arguments());
    running.put("{\"text\":\"one\"}\n");
    EXPECT_EQ(running.next().value("line", 0), 1);
    fs::rename(folder(), file("elsewhere"));
    running.put("{\"text\":\"two\"}\n");
    EXPECT_EQ(running.next().value("error", ""), "--output: '" + (folder() / "2.png").string() +
                                                     "' cannot be reached: the folder '" + folder().string() +
                                                     "' is gone");
}

TEST_F(BatchCommand, AReaderThatStopsReadingDoesNotKeepItFromEnding) {
    Running running(arguments());
    fcntl(running.output, F_SETPIPE_SZ, 4096);  // full with the first results
    std::string lines;
    for (int i = 0; i < 2000; ++i) lines += "{}\n";
    running.put(lines);
    EXPECT_TRUE(comesTrue([&] { return running.waiting() > 0; }));
    running.signalAll(SIGINT);
    EXPECT_EQ(running.wait(), (128 + SIGINT) << 8);
}

TEST_F(BatchCommand, StreamedPicturesComeBehindTheirResults) {
    Running running(arguments("--jobs 2 --output - --resume"));
    const struct {
        std::string line, options;  // options of render; none: nothing is streamed
    } lines[] = {{R"({"text":"Png","metrics":"m.json"})", "Png --metrics $DIR/m.json"},
                 {R"({"text":"File","output":"file.png"})", ""},
                 {R"({"text":"Bad","size":0})", ""},
                 {R"({"text":"Raw","format":"raw","size":300})", "Raw -s 300 --format raw"},
                 {R"({"text":"Same","format":"webp"})", "Same --format webp"},
                 {R"({"text":"Same","format":"webp"})", "Same --format webp"}};
    for (const auto& each : lines) running.put(each.line + "\n");
    for (const auto& each : lines) {
        const Json result = running.next();
        EXPECT_EQ(running.picture(result),
                  each.options.empty() ? "" : bytes("-f $FONT -s 24 " + each.options))
            << each.line;
        EXPECT_EQ(result.value("path", "-"), each.line == lines[1].line ? folder() / "file.png" : "-");
    }
    EXPECT_EQ(slurp(folder() / "m.json"), slurp(file("m.json")));
    running.put("{\"text\":\"after\"}\n");
    EXPECT_EQ(running.next().value("format", ""), "png");
    running.closeOutput();
    EXPECT_EQ(running.wait(), 1 << 8);
}

TEST_F(BatchCommand, StreamsAloneMakeNoFile) {
    const std::string command = "batch -f $FONT --output-dir $DIR/out --output -", line = R"({"text":"x")";
    EXPECT_EQ(zvtext(command, line + "}").status, 0);
    EXPECT_TRUE(fs::is_empty(folder()));
    zvtext(command, line + R"(,"output":"x.png"})");
    const Result again = zvtext(command + " --resume", line + R"(,"output":"x.png"})");
    EXPECT_NE(again.out.find("skipped"), std::string::npos) << again.out;
}

TEST_F(BatchCommand, AFullDiskIsSaidOnce) {
    const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --allow-outside",
                                 "{\"text\":\"x\"}\n{\"text\":\"x\",\"output\":\"/dev/full\"}\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zvtext: --output-dir: the disk is full: 1 line was not written\n");
    EXPECT_NE(result.out.find("No space left"), std::string::npos);
}

TEST_F(BatchCommand, AClosedOutputEndsItQuietly) {
    const int errors = open(file("errors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    Running running(arguments(), errors);
    running.put("{\"text\":\"one\"}\n");
    EXPECT_EQ(running.next().value("line", 0), 1);
    running.closeOutput();
    EXPECT_EQ(running.wait(), SIGPIPE) << "while it waits for lines";
    EXPECT_EQ(slurp(file("errors")).find("zvtext: "), std::string::npos) << slurp(file("errors"));
    close(errors);
}

TEST_F(BatchCommand, ShowsItsProgressOnATerminalBesideWarnings) {
    for (const bool quiet : {false, true}) {
        int terminal = -1, end = -1;
        if (openpty(&terminal, &end, nullptr, nullptr, nullptr) != 0) GTEST_SKIP() << "no terminals here";
        Running running(arguments(quiet ? "--no-fallback --quiet" : "--no-fallback"), end);
        close(end);
        std::string shown;
        std::atomic<bool> seen = false;
        std::thread reader([&] {
            char block[4096];
            for (ssize_t got; (got = read(terminal, block, sizeof block)) > 0;) {
                shown.append(block, static_cast<size_t>(got));
                seen = shown.find("\r2 done, ") != std::string::npos;
            }
        });
        running.put("{\"text\":\"one\"}\n{}\n");
        for (int i = 0; i < 2; ++i) running.next();
        EXPECT_TRUE(quiet || comesTrue([&] { return seen.load(); }));
        running.put("{\"text\":\"\\uE123\"}\n");
        running.endInput();
        EXPECT_EQ(running.wait(), 1 << 8);
        reader.join();
        close(terminal);
        EXPECT_EQ(shown.find("\r2 done, ") != std::string::npos, !quiet) << shown;
        EXPECT_EQ(shown.find(" done, 1 error") != std::string::npos, !quiet) << shown;
        const size_t warning = shown.find("zvtext: line 3: warning");
        ASSERT_NE(warning, std::string::npos) << shown;
        EXPECT_NE(std::string("\nK").find(warning == 0 ? '\n' : shown[warning - 1]), std::string::npos)
            << shown;
    }
}

}  // namespace
