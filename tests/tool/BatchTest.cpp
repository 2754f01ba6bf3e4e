// SPDX-License-Identifier: Apache-2.0
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>

#include <chrono>
#include <csignal>
#include <nlohmann/json.hpp>
#include <random>
#include <stdexcept>
#include <thread>

#include "tests/tool/Program.h"
#include "tools/zvtext/batch/Digest.h"

namespace {

using Json = nlohmann::json;

// Of the sanitizer's own memory nothing can be said.
#ifdef ZVTEXT_SANITIZED
constexpr bool kCountsMemory = false;
#else
constexpr bool kCountsMemory = true;
#endif

// A batch under way: lines go in and results come out through pipes.
class Running {
public:
    explicit Running(std::vector<std::string> arguments, int errors = -1) {
        int in[2], out[2];
        std::signal(SIGPIPE, SIG_IGN);
        EXPECT_EQ(pipe2(in, O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(out, O_CLOEXEC), 0);
        process = fork();
        if (process < 0) throw std::runtime_error("cannot fork");
        if (process == 0) {
            setpgid(0, 0);
            std::signal(SIGPIPE, SIG_DFL);
            std::signal(SIGINT, SIG_DFL);   // ignored where a script runs the tests in the background
            std::signal(SIGCHLD, SIG_IGN);  // as some that start programs leave it
            dup2(in[0], 0);
            dup2(out[1], 1);
            if (errors >= 0) dup2(errors, 2);
            std::vector<char*> argv = {const_cast<char*>(ZVTEXT_BINARY), const_cast<char*>("batch")};
            for (std::string& argument : arguments) argv.push_back(argument.data());
            argv.push_back(nullptr);
            execv(ZVTEXT_BINARY, argv.data());
            _exit(127);
        }
        setpgid(process, process);
        close(in[0]);
        close(out[1]);
        input = in[1];
        output = out[0];
    }
    ~Running() {
        signalAll(SIGKILL);
        endInput();
        closeOutput();
        if (process > 0) wait();
    }

    void put(const std::string& lines) const {
        EXPECT_EQ(write(input, lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
    }
    void endInput() { close(std::exchange(input, -1)); }
    void closeOutput() { close(std::exchange(output, -1)); }

    // The next result; null where none comes within ten seconds, or none any more.
    Json next() {
        while (mRead.find('\n') == std::string::npos) {
            pollfd event = {output, POLLIN, 0};
            char block[4096];
            const ssize_t got = poll(&event, 1, 10'000) == 1 ? read(output, block, sizeof block) : 0;
            if (got <= 0) return nullptr;
            mRead.append(block, static_cast<size_t>(got));
        }
        const size_t end = mRead.find('\n');
        const Json json = Json::parse(mRead.substr(0, end), nullptr, false);
        mRead.erase(0, end + 1);
        return json;
    }

    int wait() {
        int status = -1;
        wait4(std::exchange(process, -1), &status, 0, &usage);
        return status;
    }

    void signalAll(int number) const {
        if (process > 0) kill(-process, number);
    }

    // The first worker, as soon as there is one. Throws where none comes: whoever gave a number below 0 to
    // kill would hit strangers.
    pid_t worker() const {
        const std::string path = "/proc/" + std::to_string(process) + "/task/" + std::to_string(process);
        for (int attempt = 0; attempt < 5000; ++attempt) {
            std::ifstream children(path + "/children");
            if (pid_t child = 0; children >> child && child > 1) return child;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        throw std::runtime_error("no worker");
    }

    pid_t process = -1;
    int input = -1, output = -1;
    rusage usage = {};

private:
    std::string mRead;
};

class BatchCommand : public Program {
protected:
    fs::path folder() const { return file("out"); }

    std::vector<std::string> arguments(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> all = {
            "--font", kFont, "--size", "24", "--output-dir", folder(), "--allow-read-anywhere"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::vector<Json> batch(const std::string& lines, std::vector<std::string> more, int status) const {
        more = arguments(more);
        more.insert(more.begin(), "batch");
        const Result result = run(more, lines);
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.err, "");
        std::vector<Json> results;
        std::stringstream out(result.out);
        for (std::string line; std::getline(out, line);) results.push_back(Json::parse(line));
        return results;
    }

    std::string single(std::vector<std::string> options) const {
        options.insert(options.begin(), {"render", "--font", kFont, "-o", file("single.png")});
        EXPECT_EQ(run(options).status, 0);
        return slurp(file("single.png"));
    }

    // A pipe without a writer: a line that reads its text from it goes on until somebody opens it.
    std::string slowLine() const {
        mkfifo(file("slow").c_str(), 0600);
        return "{\"text-file\":\"" + file("slow").string() + "\"}\n";
    }
    void releaseSlowLine() const { std::ofstream(file("slow")) << "released"; }

    static std::string error(const Json& result) { return result.value("error", ""); }
};

TEST_F(BatchCommand, LinesAreThePicturesOfRenderInTheirOrderAndBadOnesFailAlone) {
    const std::string style = R"({"color":"#00f","effects":[{"type":"stroke","width":3}]})";
    const std::string cjk = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
    const std::string longName = std::string(251, 'l') + ".png";
    std::string many;
    for (int i = 0; i < 100'000; ++i) many += "{},";
    struct Line {
        std::string json, error;           // how the error begins; none: a picture
        std::string path;                  // in the folder
        std::vector<std::string> options;  // of the same picture made by render
    };
    const std::vector<std::string> defaults = {"--size", "24", "--stroke", "2:#0f0", "--fallback", cjk};
    const std::vector<Line> lines = {
        {R"({"text":"One","size":40})", "", "1.png", {"One", "--size", "40", "--stroke", "2:#0f0"}},
        {"not json", "the line is no JSON: parse error at column 2", "", {}},
        {R"({"text":"Two","output":"a/b/two.png","stroke":"4","color":"#00f","max-lines":null})",
         "",
         "a/b/two.png",
         {"Two", "--size", "24", "--stroke", "4", "--color", "#00f"}},
        {"[1]", "the line is no JSON object", "", {}},
        {R"({"text":"x","sizes":3})", "sizes: is not one of the keys of a line: text, ", "", {}},
        {R"({"text":"x","print-key":true})", "print-key: is not one of the keys", "", {}},
        {R"({"text":"x","size":-4})", "--size: '-4' is not a number above 0", "", {}},
        {R"({"text":"x","size":[4]})", "size: array is not what it takes", "", {}},
        {R"({"text":5})", "text: number is not a string", "", {}},
        {R"({"text":"x","text":"y"})", "text: is given twice", "", {}},
        {R"({"text":"a\u0000b"})", "TEXT: the text holds a NUL", "", {}},
        {R"({"text":"x","color":"#0\u0000"})", "color: it holds a NUL", "", {}},
        {R"({"size":20})", "TEXT: the text is empty", "", {}},
        {R"({"text":"x","font":"none.ttf"})", "--font: cannot read 'none.ttf'", "", {}},
        {R"({"text":"-","style":)" + style + "}",
         "",
         "15.png",
         {"--text-file", write("dash", "-"), "--size", "24", "--color", "#00f", "--stroke", "3"}},
        {R"({"text":"x","style":{"effects":[{"type":"strok"}]}})",
         "--style: effects[0].type: \"strok\"",
         "",
         {}},
        {R"({"text":"x","output":"a/../a/b/two.png"})", "--output: '", "", {}},
        {R"({"text":"x","output":"../x.png"})", "--output: '../x.png' leaves the output folder", "", {}},
        {R"({"text":"x","output":"/tmp/x.png"})", "--output: '/tmp/x.png' leaves the output folder", "", {}},
        {R"({"text":"x","output":"a/"})", "--output: 'a/' is no name of a file", "", {}},
        {R"({"text":"x","output":""})", "--output: '' is no name of a file", "", {}},
        {R"({"text":"x","output":"b/../-"})", "--output: - is standard output", "", {}},
        {R"({"text":"x","output":")" + std::string(5000, 'x') + "\"}",
         "--output: the name is too long",
         "",
         {}},
        {R"({"text":"x","output":"m.png","metrics":"./m.png"})", "--metrics: '", "", {}},
        {R"({"text":"x","metrics":"1.png"})", "--metrics: '", "", {}},
        {R"({"text":"x","metrics":5})", "metrics: number is not a string", "", {}},
        {R"({"text":"x","output":".zvtext-batch"})", "--output: '.zvtext-batch' is the batch's own", "", {}},
        {R"({"text":"世界"})",
         "",
         "28.png",
         {"世界", "--size", "24", "--stroke", "2:#0f0", "--fallback", cjk}},
        {R"({"text":"世界","fallback":[")" + kFont + R"("]})",
         "",
         "29.png",
         {"世界", "--size", "24", "--stroke", "2:#0f0"}},
        {R"({"text":"x","width":40000})", "--width: '40000' is not", "", {}},
        {"{\"text\":\"" + std::string(17 << 20, 'x') + "\"}",
         "the line is longer than 16777216 bytes",
         "",
         {}},
        {std::string(100'000, '['), "the line is nested too deeply", "", {}},
        {R"({"style":{"effects":[)" + many + "{}]}}", "the line has too many keys and values", "", {}},
        {"{\"text\":\"\xff\"}", "the line is no JSON: parse error at column 10", "", {}},
        {std::string("{\"text\":\"a\0b\"}", 14), "the line is no JSON: parse error at column 11", "", {}},
        {R"({"text":"m","output":")" + longName + R"(","metrics":"j/m.json"})",
         "",
         longName,
         {"m", "--size", "24", "--stroke", "2:#0f0", "--metrics", file("m.json")}},
        {"{\"text\":\"end\"}\r", "", "37.png", {"end", "--size", "24", "--stroke", "2:#0f0"}}};
    std::string input = "\xEF\xBB\xBF";
    for (const Line& line : lines) input += line.json + "\n";
    input += "\n  \n{\"text\":\"after empty lines, without an end\"}";
    const std::vector<Json> results =
        batch(input, {"--jobs", "4", "--stroke", "2:#0f0", "--fallback", cjk}, 1);
    ASSERT_EQ(results.size(), lines.size() + 1);
    EXPECT_EQ(results.back().value("line", 0u), lines.size() + 3);
    for (size_t i = 0; i < lines.size(); ++i) {
        SCOPED_TRACE(lines[i].json.substr(0, 100));
        const Json& result = results[i];
        EXPECT_EQ(result.value("line", 0u), i + 1);
        EXPECT_EQ(error(result).substr(0, std::max<size_t>(lines[i].error.size(), 1)), lines[i].error);
        if (!lines[i].error.empty()) continue;
        EXPECT_EQ(result.value("path", ""), folder() / lines[i].path);
        const Image image = readPng(folder() / lines[i].path);
        EXPECT_EQ(result.value("width", 0u), image.width);
        EXPECT_EQ(result.value("height", 0u), image.height);
        EXPECT_GT(result.value("milliseconds", 0.0), 0.0);
        EXPECT_GT(result.value("baseline", 0), result["margins"].value("top", -1));
        EXPECT_EQ(slurp(folder() / lines[i].path), single(lines[i].options));
    }
    EXPECT_FALSE(fs::exists(folder() / "7.png"));
    EXPECT_EQ(slurp(folder() / "j/m.json"), slurp(file("m.json")));
}

TEST_F(BatchCommand, WrongCommandLinesSayItOnce) {
    const auto refuse = [&](const std::vector<std::string>& more, int status, const std::string& message) {
        std::vector<std::string> all = {"batch"};
        all.insert(all.end(), more.begin(), more.end());
        const Result result = run(all, "{}\n");
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.err.substr(0, 8 + message.size()), "zvtext: " + message);
        EXPECT_EQ(result.out, "");
    };
    refuse({"--jobs", "257"}, 2, "--jobs: '257' is not");
    refuse({"--width", "0"}, 2, "--width: '0' is not");
    refuse({"--stroke", "x"}, 2, "--stroke width: 'x'");
    refuse({"--output", "../{index}.png"}, 2, "--output: '../1.png' leaves");
    refuse({"--print-key"}, 2, "The following argument was not expected");
    refuse({file("none")}, 1, "FILE: cannot read '");
    refuse({mFolder}, 1, "FILE: '");
    refuse({"--output-dir", write("file", "") / "x"}, 1, "--output-dir: cannot make '");
    const fs::path outside = file("outside.png");
    const std::string line = "{\"text\":\"x\",\"output\":\"" + outside.string() + "\"}\n";
    EXPECT_EQ(batch(line, {"--allow-outside"}, 0)[0].value("path", ""), outside);
    EXPECT_GT(readPng(outside).ink(), 0u);
}

TEST_F(BatchCommand, KilledAtAnyMomentItLeavesWholePicturesAndResumesTheRest) {
    constexpr size_t kLines = 60;
    std::vector<std::string> lines;
    for (size_t i = 1; i <= kLines; ++i) {
        lines.push_back("{\"text\":\"Line " + std::to_string(i) +
                        "\",\"size\":80,\"outer-glow\":\"size=20\"}\n");
    }
    const auto all = [&] {
        std::string text;
        for (const std::string& line : lines) text += line;
        return text;
    };
    const auto pictures = [&] {
        size_t count = 0;
        for (const auto& entry : fs::directory_iterator(folder())) {
            if (entry.path().extension() != ".png") continue;
            EXPECT_GT(readPng(entry.path()).ink(), 0u);
            ++count;
        }
        return count;
    };
    const unsigned seed = std::random_device()();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    for (int round = 0; round < 12; ++round) {
        Running running(arguments({"--jobs", "3", "--resume"}));
        running.put(all());
        // Behind a few results, so that rounds get somewhere on any machine.
        for (int i = 0; i < round * 2; ++i) running.next();
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20'000));
        running.signalAll(SIGKILL);
        running.wait();
        if (fs::exists(folder())) pictures();
    }
    const size_t before = pictures();
    write("out/7.png.zvtext-a1b2c3", "cut short");
    write("out/7.png.backup", "mine");
    const std::vector<Json> results = batch(all(), {"--jobs", "2", "--resume"}, 0);
    ASSERT_EQ(results.size(), kLines);
    EXPECT_EQ(pictures(), kLines);
    size_t skipped = 0;
    for (const Json& result : results) skipped += result.value("skipped", false);
    EXPECT_GT(skipped, 0u);
    EXPECT_LE(skipped, before);
    for (const auto& entry : fs::directory_iterator(folder())) {
        EXPECT_EQ(entry.path().string().find(".zvtext-a"), std::string::npos) << entry.path();
        const std::string extension = entry.path().extension();
        EXPECT_TRUE(extension == ".png" || extension == ".backup" ||
                    entry.path().filename() == ".zvtext-batch");
    }
    for (size_t i = 1; i <= kLines; ++i) {
        EXPECT_EQ(slurp(folder() / (std::to_string(i) + ".png")),
                  single({"Line " + std::to_string(i), "--size", "80", "--outer-glow", "size=20"}));
    }

    // What is not the line's own picture any more is made again, the rest is left.
    const auto remade = [&](const std::vector<std::string>& more = {}) {
        std::vector<std::string> options = {"--resume"};
        options.insert(options.end(), more.begin(), more.end());
        std::vector<int> numbers;
        for (const Json& result : batch(all(), options, 0)) {
            if (!result.value("skipped", false)) numbers.push_back(result.value("line", 0));
            EXPECT_GT(result.value("width", 0), 0);
            EXPECT_TRUE(result.contains("baseline"));
        }
        return numbers;
    };
    EXPECT_EQ(remade(), std::vector<int>());
    const std::string old = std::exchange(lines[4], "{\"text\":\"Edited\",\"size\":80}\n");
    fs::resize_file(folder() / "9.png", fs::file_size(folder() / "9.png") - 1);
    fs::copy_file(folder() / "12.png", folder() / "11.png", fs::copy_options::overwrite_existing);
    fs::remove(folder() / "20.png");
    EXPECT_EQ(remade(), (std::vector<int>{5, 9, 11, 20}));
    lines[4] = old;
    EXPECT_EQ(remade(), std::vector<int>{5}) << "its record is there, its picture is another";
    lines = {"{\"text\":\"One\",\"output\":\"1.png\",\"style\":\"" + write("style.json", "{}").string() +
             "\"}\n"};
    EXPECT_EQ(remade(), std::vector<int>{1});
    EXPECT_EQ(remade(), std::vector<int>());
    write("style.json", "{\"color\":\"#f00\"}");
    EXPECT_EQ(remade(), std::vector<int>{1});
    EXPECT_EQ(remade({"--align", "right"}), std::vector<int>{1});
    // So are metrics that are gone and what a font of the system drew that is another now.
    fs::create_directory(file("fonts"));
    fs::copy_file("/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf", file("fonts") / "thai.ttf");
    setenv("FONTCONFIG_FILE",
           write("fonts.conf", "<fontconfig><dir>" + file("fonts").string() + "</dir><cachedir>" +
                                   file("cache").string() + "</cachedir></fontconfig>")
               .c_str(),
           1);
    lines = {"{\"text\":\"ก\",\"output\":\"1.png\",\"metrics\":\"1.json\"}\n"};
    EXPECT_EQ(remade(), std::vector<int>{1});
    EXPECT_EQ(remade(), std::vector<int>());
    fs::remove(folder() / "1.json");
    EXPECT_EQ(remade(), std::vector<int>{1});
    fs::last_write_time(file("fonts") / "thai.ttf", fs::file_time_type::clock::now());
    EXPECT_EQ(remade(), std::vector<int>{1});
    unsetenv("FONTCONFIG_FILE");
    EXPECT_EQ(remade(), std::vector<int>{1}) << "another font serves it";
    // A record with another byte is none, and one with foreign keys gives the known ones.
    const std::string journal = slurp(folder() / ".zvtext-batch");
    const std::string last = journal.substr(journal.rfind('\n', journal.size() - 2) + 1);
    std::string other = last;
    other[last.find(",\"height\"") - 1] ^= 1;
    write("out/.zvtext-batch", other);
    EXPECT_EQ(remade(), std::vector<int>{1});
    std::string foreign = last.substr(0, last.size() - 34);
    foreign.insert(foreign.size() - 1, ",\"path\":\"other\",\"skipped\":false");
    write("out/.zvtext-batch", foreign + " " + zvtext::Digest().add(foreign).hex() + "\n");
    EXPECT_EQ(batch(all(), {"--resume"}, 0)[0].value("path", ""), folder() / "1.png");
    EXPECT_EQ(remade(), std::vector<int>());
    // A record cut short is none, and does not spoil the next.
    write("out/.zvtext-batch", slurp(folder() / ".zvtext-batch").substr(0, 40));
    EXPECT_EQ(remade(), std::vector<int>{1});
    EXPECT_EQ(remade(), std::vector<int>());
}

TEST_F(BatchCommand, ADeadWorkerCostsItsLineAlone) {
    Running running(arguments());
    running.put(slowLine() + "{\"text\":\"after\"}\n");
    kill(running.worker(), SIGKILL);
    EXPECT_EQ(error(running.next()), "the worker process died, killed: Killed");
    EXPECT_GT(running.next().value("width", 0), 0);
    // One that dies between two lines costs nothing.
    kill(running.worker(), SIGKILL);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    running.put("{\"text\":\"again\"}\n");
    EXPECT_EQ(error(running.next()), "");
    running.endInput();
    EXPECT_EQ(running.next(), nullptr);
    EXPECT_EQ(running.wait(), 1 << 8);
    // A worker in the midst of a line does not outlive its batch.
    Running killed(arguments());
    killed.put(slowLine());
    const std::string worker = "/proc/" + std::to_string(killed.worker()) + "/cmdline";
    kill(killed.process, SIGKILL);
    killed.wait();
    for (int i = 0; i < 1000 && !slurp(worker).empty(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    EXPECT_EQ(slurp(worker), "");
}

TEST_F(BatchCommand, WarningsNameTheirLine) {
    const Result result = run({"batch", "--font", kFont, "--no-fallback", "--output-dir", folder()},
                              "{\"text\":\"one\"}\n{\"text\":\"\\uE123\"}\n");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err,
              "zvtext: line 2: warning: no font has U+E123; add one with --fallback, or leave "
              "--no-fallback out\n");
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
    // The streams' numbers are not given to other files.
    for (const char* streams : {" >/dev/full", " >&-", " <&- >&-"}) {
        fails(lines + streams, "cannot write to standard output: ");
        EXPECT_GT(readPng(folder() / "1.png").ink(), 0u);
        const std::string journal = slurp(folder() / ".zvtext-batch");
        EXPECT_EQ(journal.find("\"line\""), std::string::npos) << journal;
    }
    fails(" <&-", "FILE: cannot read: ");
    fails("/proc/self/mem", "FILE: cannot read: ");

#ifndef ZVTEXT_SANITIZED  // whose debug lines fill the file of the errors
    // Where the journal finds no room in its file, the pictures are there, and what follows on it is whole.
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
        Running running(arguments({"--jobs", "2"}));
        running.put("{\"text\":\"one\"}\n");
        EXPECT_EQ(running.next().value("line", 0), 1);
        running.put(slowLine() + "{\"text\":\"three\"}\n");
        while (!fs::exists(folder() / "3.png")) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        running.signalAll(signal);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
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
    for (int i = 0; i < 2; ++i) {
        running.signalAll(SIGTERM);
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    EXPECT_EQ(running.wait(), SIGTERM) << "the second does not wait for the line";
}

TEST_F(BatchCommand, AReaderThatStopsReadingDoesNotKeepItFromEnding) {
    Running running(arguments());
    std::string lines;
    for (int i = 0; i < 2000; ++i) lines += "{}\n";
    running.put(lines);
    // More errors than a pipe holds.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    running.signalAll(SIGINT);
    EXPECT_EQ(running.wait(), (128 + SIGINT) << 8);
}

TEST_F(BatchCommand, AFullDiskIsSaidOnce) {
    std::vector<std::string> words = arguments({"--allow-outside"});
    words.insert(words.begin(), "batch");
    const Result result = run(words, "{\"text\":\"x\"}\n{\"text\":\"x\",\"output\":\"/dev/full\"}\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zvtext: --output-dir: the disk is full: 1 line was not written\n");
    EXPECT_NE(result.out.find("No space left"), std::string::npos);
}

TEST_F(BatchCommand, MoreJobsThanDescriptorsDoNotMatter) {
    std::string command = "ulimit -n 64; seq 100 | sed 's,.*,{\"text\":\"x\"},' | timeout 60 " ZVTEXT_BINARY
                          " batch >/dev/null";
    for (const std::string& argument : arguments({"--jobs", "100"})) command += " '" + argument + "'";
    EXPECT_EQ(std::system(command.c_str()), 0);
    EXPECT_TRUE(fs::exists(folder() / "100.png"));
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

TEST_F(BatchCommand, TenThousandLinesBehindASlowOneTakeBoundedMemory) {
    constexpr size_t kLines = 10'000;
    // Long results: the reader quotes what it cannot read.
    const std::string bad = "{\"text\":\"" + std::string(1500, 'x') + "\n";
    Running running(arguments({"--jobs", "2"}));
    std::thread feeder([&] {
        running.put(slowLine());
        for (size_t i = 1; i < kLines; ++i) running.put(i % 32 == 0 ? "{\"text\":\"i\",\"size\":8}\n" : bad);
        running.endInput();
    });
    // By now it waits, whatever still comes.
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    releaseSlowLine();
    size_t count = 0;
    for (Json result; (result = running.next()) != nullptr;) EXPECT_EQ(result.value("line", 0u), ++count);
    EXPECT_EQ(count, kLines);
    if (count < kLines) running.signalAll(SIGKILL);
    feeder.join();
    EXPECT_EQ(running.wait(), 1 << 8);
    EXPECT_TRUE(!kCountsMemory || running.usage.ru_maxrss < 24 << 10) << running.usage.ru_maxrss << " kB";
}

TEST_F(BatchCommand, FontsOfTheirOwnDoNotFillTheMemory) {
    std::string lines;
    for (int i = 0; i < 150; ++i) {
        fs::create_symlink(kFont, file("font" + std::to_string(i)));
        lines += "{\"text\":\"x\",\"font\":\"" + file("font" + std::to_string(i)).string() + "\"}\n";
    }
    Running running(arguments());
    running.put(lines);
    running.endInput();
    const pid_t first = running.worker();
    for (int i = 0; i < 150; ++i) EXPECT_EQ(error(running.next()), "");
    EXPECT_NE(kill(first, 0), 0) << "another worker has taken over";
    EXPECT_EQ(running.wait(), 0);
}

TEST_F(BatchCommand, ShowsItsProgressOnATerminalBesideWarnings) {
    for (const bool quiet : {false, true}) {
        int terminal = -1, end = -1;
        if (openpty(&terminal, &end, nullptr, nullptr, nullptr) != 0) GTEST_SKIP() << "no terminals here";
        std::vector<std::string> options = {"--no-fallback"};
        if (quiet) options.emplace_back("--quiet");
        Running running(arguments(options), end);
        close(end);
        std::string shown;
        std::thread reader([&] {
            char block[4096];
            for (ssize_t got; (got = read(terminal, block, sizeof block)) > 0;) {
                shown.append(block, static_cast<size_t>(got));
            }
        });
        running.put("{\"text\":\"one\"}\n{}\n");
        std::this_thread::sleep_for(std::chrono::milliseconds(600));
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
