// SPDX-License-Identifier: Apache-2.0
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>

#include <atomic>
#include <chrono>
#include <climits>
#include <cmath>
#include <csignal>
#include <functional>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

#include "tests/tool/Program.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/batch/UsableCores.h"

namespace {

using Json = nlohmann::json;

// Waits for other processes.
template <typename Condition>
bool comesTrue(Condition condition, int seconds = 10) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::yield();
    }
    return true;
}

// A running batch: lines go in and results come out through pipes.
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
            std::signal(SIGCHLD, SIG_IGN);  // as some launchers leave it
            dup2(in[0], 0);
            dup2(out[1], 1);
            if (errors >= 0) dup2(errors, 2);
            arguments.insert(arguments.begin(), "batch");
            _exit(execute(arguments));
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

    // The next result; null if none comes within ten seconds or there are no more.
    Json next() {
        while (mRead.find('\n') == std::string::npos) {
            if (!readMore()) return nullptr;
        }
        const size_t end = mRead.find('\n');
        const Json json = Json::parse(mRead.substr(0, end), nullptr, false);
        mRead.erase(0, end + 1);
        return json;
    }

    // The picture behind the last result.
    std::string picture(const Json& result) {
        const size_t size = result.value("bytes", size_t{0});
        while (mRead.size() < size && readMore()) {
        }
        const std::string bytes = mRead.substr(0, size);
        mRead.erase(0, size);
        return bytes;
    }

    // Whether the batch has handled this signal: its handler then resets itself.
    bool hasTaken(int number) const {
        return comesTrue([&] {
            const std::string status = slurp("/proc/" + std::to_string(process) + "/status");
            const size_t at = status.find("SigCgt:");
            const auto caught =
                std::strtoull(status.c_str() + (at == std::string::npos ? 0 : at + 7), nullptr, 16);
            return (caught >> (number - 1) & 1) == 0;
        });
    }

    // The number of unread bytes of results.
    int waiting() const {
        int bytes = 0;
        ioctl(output, FIONREAD, &bytes);
        return bytes;
    }

    int wait() {
        int status = -1;
        wait4(std::exchange(process, -1), &status, 0, &usage);
        return status;
    }

    void signalAll(int number) const {
        if (process > 0) kill(-process, number);
    }

    std::vector<pid_t> workers() const {
        const std::string path = "/proc/" + std::to_string(process) + "/task/" + std::to_string(process);
        std::ifstream children(path + "/children");
        return std::vector<pid_t>(std::istream_iterator<pid_t>(children), {});
    }

    // The first worker, once there is one. Throws if there is none: killing a negative number would hit other
    // processes.
    pid_t worker() const {
        if (!comesTrue([&] { return !workers().empty(); })) throw std::runtime_error("no worker");
        return workers().at(0);
    }

    // Whether the process has ended and closed its files, waited for or not.
    static bool ends(pid_t ending) {
        return comesTrue([&] {
            const fs::path process = "/proc/" + std::to_string(ending);
            const std::string status = slurp(process / "stat");
            std::error_code gone;
            const auto threads = std::distance(fs::directory_iterator(process / "task", gone), {});
            return status.empty() || (threads <= 1 && status.find(") Z ") != std::string::npos);
        });
    }

    pid_t process = -1;
    int input = -1, output = -1;
    rusage usage = {};

private:
    bool readMore() {
        pollfd event = {output, POLLIN, 0};
        char block[65536];
        const ssize_t got = poll(&event, 1, 10'000) == 1 ? read(output, block, sizeof block) : 0;
        mRead.append(block, static_cast<size_t>(std::max<ssize_t>(got, 0)));
        return got > 0;
    }

    std::string mRead;
};

class BatchCommand : public Program {
protected:
    fs::path folder() const { return file("out"); }

    std::vector<std::string> arguments(const std::string& more = "") const {
        return words("-f $FONT -s 24 --output-dir $DIR/out --allow-read-anywhere " + more);
    }

    std::vector<Json> batch(const std::string& lines, const std::string& more, int status) const {
        const Result result =
            zvtext("batch -f $FONT -s 24 --output-dir $DIR/out --allow-read-anywhere " + more, lines);
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.err, "");
        std::vector<Json> results;
        std::stringstream out(result.out);
        for (std::string line; std::getline(out, line);) results.push_back(Json::parse(line));
        return results;
    }

    // A pipe without a writer: a line that reads its text from it is busy until somebody opens it.
    std::string slowLine() const {
        mkfifo(file("slow").c_str(), 0600);
        return "{\"text-file\":\"" + file("slow").string() + "\"}\n";
    }
    // A worker is busy with it until the returned descriptor is closed.
    int holdSlowLine() const {
        int end = -1;
        const auto isRead = [&] {
            end = open(file("slow").c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return end >= 0;
        };
        EXPECT_TRUE(comesTrue(isRead));
        return end;
    }
    void releaseSlowLine() const { std::ofstream(file("slow")) << "released"; }

    static std::string error(const Json& result) { return result.value("error", ""); }
};

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
{"text":"x"}
)" + slowLine();
    Running running(arguments("--first-line 4000000001"));
    running.put("\n" + lines.substr(0, lines.size() - 2) + ",\"id\":\"slow\"}\n");
    for (const Json& id : {Json("a\aé"), Json(-7), Json(1.5), Json()}) {
        const Json result = running.next();
        EXPECT_EQ(result.value("id", Json()), id);
        if (id.is_null()) {
            EXPECT_EQ(result.value("path", ""), folder() / "4000000005.png");
        }
    }
    kill(running.worker(), SIGKILL);
    const Json died = running.next();
    EXPECT_EQ(died.value("id", ""), "slow");
    EXPECT_EQ(died.value("line", uint64_t{0}), 4'000'000'006u);
}

TEST_F(BatchCommand, TheCoresThatMayBeUsed) {
    const std::string v1 = "3:memory:/a\n2:cpuacct,cpu:/job/task\n0::/\n", folder = "cpuacct,cpu/";
    unsetenv("SLURM_CPUS_PER_TASK");
    const int all = zvtext::usableCores(file("empty"));
    const struct {
        const char* what;
        std::string groups, quota, text, period;
        double cores;  // infinite: those of the machine
    } cases[] = {{"a container", "0::/\n", "cpu.max", "50000 100000\n", "", 0.5},
                 {"a share more", "0::/\n", "cpu.max", "100001 100000\n", "", 2},
                 {"no quota", "0::/job\n", "job/cpu.max", "max 100000\n", "", INFINITY},
                 {"of a group around it", "0::/slurm/job/step\n", "slurm/cpu.max", "20000 20000\n", "", 1},
                 {"of another group", "0::/job/2\n", "job/3/cpu.max", "10000 20000\n", "", INFINITY},
                 {"beside the first version", v1, "unified/cpu.max", "1000 2000\n", "", 1},
                 {"first version", v1, folder + "job/task/cpu.cfs_quota_us", "100000\n",
                  folder + "job/task/cpu.cfs_period_us", 1},
                 {"as a container sees it", v1, "cpu/cpu.cfs_quota_us", "1\n", "cpu/cpu.cfs_period_us", 1},
                 {"no quota there", v1, folder + "job/cpu.cfs_quota_us", "-1\n",
                  folder + "job/cpu.cfs_period_us", INFINITY}};
    for (const auto& each : cases) {
        fs::remove_all(file("root"));
        const std::string mount = "root/sys/fs/cgroup/";
        fs::create_directories(file("root/proc/self"));
        fs::create_directories(file(mount + each.quota).parent_path());
        write("root/proc/self/cgroup", each.groups);
        write(mount + each.quota, each.text);
        if (!each.period.empty()) write(mount + each.period, "100000\n");
        const double cores = std::min<double>(all, std::ceil(each.cores));
        EXPECT_EQ(zvtext::usableCores(file("root")), cores) << each.what;
    }
    for (const auto& [text, cores] : {std::pair("1", 1), {"4096", all}, {"0", all}, {"", all}}) {
        setenv("SLURM_CPUS_PER_TASK", text, 1);
        EXPECT_EQ(zvtext::usableCores(file("empty")), cores) << text;
    }
    unsetenv("SLURM_CPUS_PER_TASK");
}

// Kills it after each number of results, and so after each kind of step.
TEST_F(BatchCommand, KilledItLeavesWholePicturesAndResumesTheRest) {
    constexpr size_t kLines = 12;
    std::string lines;
    for (size_t i = 1; i <= kLines; ++i) {
        lines += Json({{"text", "Line " + std::to_string(i)}, {"outer-glow", "size=20"}}).dump() + "\n";
    }
    const auto pictures = [&] {
        size_t count = 0;
        for (const auto& entry : fs::directory_iterator(folder())) {
            if (entry.path().extension() != ".png") continue;
            EXPECT_GT(readPng(entry.path()).ink(), 0u);
            ++count;
        }
        return count;
    };
    for (size_t results = 1; results < kLines; results += 2) {
        Running running(arguments("--jobs 3 --resume"));
        running.put(lines);
        for (size_t i = 0; i < results; ++i) running.next();
        const std::vector<pid_t> workers = running.workers();
        running.signalAll(SIGKILL);
        running.wait();
        for (const pid_t worker : workers) EXPECT_TRUE(Running::ends(worker));
        EXPECT_GE(pictures(), results);
    }
    write("out/7.png.zvtext-a1b2c3", "cut short");
    write("out/7.png.backup", "mine");
    const std::vector<Json> results = batch(lines, "--jobs 2 --resume", 0);
    ASSERT_EQ(results.size(), kLines);
    EXPECT_TRUE(results[0].value("skipped", false));
    EXPECT_EQ(pictures(), kLines);
    for (size_t i = 1; i <= kLines; ++i) {
        EXPECT_EQ(slurp(folder() / (std::to_string(i) + ".png")),
                  bytes("'Line " + std::to_string(i) + "' -f $FONT -s 24 --outer-glow size=20"));
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder()), {}), ptrdiff_t{kLines} + 2)
        << "and the journal";
    EXPECT_TRUE(fs::exists(folder() / "7.png.backup"));
}

// Pictures that are no longer the line's own are made again; the others are kept.
TEST_F(BatchCommand, ResumingMakesAgainWhatChanged) {
    const auto remade = [&](const std::string& lines, const std::string& more = "") {
        std::string numbers;
        for (const Json& result : batch(lines, "--resume " + more, 0)) {
            if (!result.value("skipped", false)) numbers += std::to_string(result.value("line", 0)) + " ";
            EXPECT_GT(result.value("width", 0), 0);
            EXPECT_TRUE(result.contains("baseline"));
        }
        return numbers;
    };
    const std::string five = "{\"text\":\"1\"}\n{\"text\":\"2\"}\n{\"text\":\"3\"}\n{\"text\":\"4\"}\n",
                      edited = "{\"text\":\"Edited\"}" + five.substr(five.find('\n'));
    const std::string styled =
        R"({"text":"One","output":"1.png","style":")" + write("style.json", "{}").string() + "\"}";
    const std::string thai = R"({"text":"ก","output":"1.png","metrics":"1.json"})";
    fs::create_directory(file("fonts"));
    fs::copy_file("/usr/share/fonts/truetype/noto/NotoSansThai-Regular.ttf", file("fonts") / "thai.ttf");
    write("fonts.conf",
          expanded("<fontconfig><dir>$DIR/fonts</dir><cachedir>$DIR/cache</cachedir></fontconfig>"));
    const fs::path journal = folder() / ".zvtext-batch";
    const auto lastRecord = [&] {
        const std::string all = slurp(journal);
        return all.substr(all.rfind('\n', all.size() - 2) + 1);
    };
    const struct {
        const char* what;
        std::function<void()> change;
        std::string lines, numbers, more;
    } steps[] = {
        {"all", [] {}, five, "1 2 3 4 ", ""},
        {"nothing", [] {}, five, "", ""},
        {"a file cut short", [&] { fs::resize_file(folder() / "2.png", 99); }, five, "2 ", ""},
        {"another's picture",
         [&] { fs::copy_file(folder() / "2.png", folder() / "3.png", fs::copy_options::overwrite_existing); },
         five, "3 ", ""},
        {"a file gone", [&] { fs::remove(folder() / "4.png"); }, five, "4 ", ""},
        {"a line", [] {}, edited, "1 ", ""},
        {"its record is there, its picture is another", [] {}, five, "1 ", ""},
        {"another line", [] {}, styled, "1 ", ""},
        {"nothing", [] {}, styled, "", ""},
        {"the style", [&] { write("style.json", "{\"color\":\"#f00\"}"); }, styled, "1 ", ""},
        {"an option", [] {}, styled, "1 ", "--align right"},
        {"metrics, a font", [&] { setenv("FONTCONFIG_FILE", file("fonts.conf").c_str(), 1); }, thai, "1 ",
         ""},
        {"nothing", [] {}, thai, "", ""},
        {"the metrics gone", [&] { fs::remove(folder() / "1.json"); }, thai, "1 ", ""},
        {"the time of the font",
         [&] { fs::last_write_time(file("fonts") / "thai.ttf", fs::file_time_type::clock::now()); }, thai,
         "1 ", ""},
        {"another font serves it", [] { unsetenv("FONTCONFIG_FILE"); }, thai, "1 ", ""},
        {"a byte of the record",
         [&] {
             std::string other = lastRecord();
             other[other.find(",\"height\"") - 1] ^= 1;
             write("out/.zvtext-batch", other);
         },
         thai, "1 ", ""},
        {"foreign keys in the record",
         [&] {
             std::string foreign = lastRecord();
             foreign.resize(foreign.size() - 34);
             foreign.insert(foreign.size() - 1, ",\"path\":\"other\",\"skipped\":false");
             write("out/.zvtext-batch", foreign + " " + zvtext::Digest().add(foreign).hex() + "\n");
         },
         thai, "", ""},
        {"the record cut short", [&] { fs::resize_file(journal, 40); }, thai, "1 ", ""},
        {"nothing", [] {}, thai, "", ""}};
    for (const auto& step : steps) {
        step.change();
        EXPECT_EQ(remade(step.lines, step.more), step.numbers) << step.what;
    }
}

TEST_F(BatchCommand, ADeadWorkerCostsItsLineAlone) {
    Running running(arguments());
    running.put(slowLine() + "{\"text\":\"after\"}\n");
    kill(running.worker(), SIGKILL);
    EXPECT_EQ(error(running.next()), "the worker process died, killed: Killed");
    EXPECT_GT(running.next().value("width", 0), 0);
    // A worker that dies between two lines costs nothing.
    const pid_t idle = running.worker();
    kill(idle, SIGKILL);
    EXPECT_TRUE(Running::ends(idle));
    running.put("{\"text\":\"again\"}\n");
    EXPECT_EQ(error(running.next()), "");
    running.endInput();
    EXPECT_EQ(running.next(), nullptr);
    EXPECT_EQ(running.wait(), 1 << 8);
    // A worker that is busy with a line does not outlive its batch.
    Running killed(arguments());
    killed.put(slowLine());
    const int held = holdSlowLine();
    const pid_t worker = killed.worker();
    kill(killed.process, SIGKILL);
    killed.wait();
    EXPECT_TRUE(Running::ends(worker));
    close(held);
}

// Files that are on their way to the disk when their worker dies are made again.
TEST_F(BatchCommand, DyingWorkersLoseNoLine) {
    constexpr int kLines = 60;
    Running running(arguments("--jobs 2"));
    std::string lines;
    for (int i = 1; i <= kLines; ++i)
        lines +=
            "{\"text\":\"x\",\"output\":\"d" + std::to_string(i % 7) + "/" + std::to_string(i) + ".png\"}\n";
    running.put(lines);
    running.endInput();
    int errors = 0, kills = 0;
    for (int i = 1; i <= kLines; ++i) {
        const Json result = running.next();
        ASSERT_EQ(result.value("line", 0), i);
        if (!error(result).empty()) {
            EXPECT_EQ(error(result), "the worker process died, killed: Killed");
            ++errors;
        } else {
            EXPECT_GT(readPng(result.value("path", "")).ink(), 0u);
        }
        const std::vector<pid_t> workers = running.workers();
        if (i % 5 != 0 || i > kLines - 20) continue;
        for (const pid_t worker : workers) kills += kill(worker, SIGKILL) == 0 ? 1 : 0;
    }
    EXPECT_EQ(running.next(), nullptr);
    EXPECT_EQ(running.wait(), (errors > 0 ? 1 : 0) << 8);
    EXPECT_LE(errors, kills);
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

// 40 pictures of 4 MB and a reader that takes none for a while.
TEST_F(BatchCommand, ASlowReaderOfPicturesStopsNothingElseAndFillsNoMemory) {
    constexpr int kPictures = 40;
    constexpr size_t kBytes = size_t{1000} * 1000 * 4;
    const int errors = open(file("errors").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    Running running(arguments("--width 1000 --height 1000 --format raw"), errors);
    std::string lines;
    for (int i = 0; i < kPictures; ++i) lines += "{\"text\":\"x\",\"output\":\"-\"}\n";
    running.put(lines + "{\"text\":\"x\",\"width\":9,\"height\":9,\"output\":\"last.rgba\"}\n");
    EXPECT_TRUE(comesTrue([&] { return fs::exists(folder() / "last.rgba"); }, 60));
    for (int i = 1; i < kPictures; ++i) {
        const Json result = running.next();
        ASSERT_EQ(result.value("line", 0), i);
        ASSERT_EQ(running.picture(result).size(), kBytes);
    }
    EXPECT_EQ(running.next().value("line", 0), kPictures);
    running.closeOutput();
    EXPECT_EQ(running.wait(), 1 << 8);
    EXPECT_TRUE(kSanitized || running.usage.ru_maxrss < 110 << 10) << running.usage.ru_maxrss << " kB";
    EXPECT_NE(
        slurp(file("errors"))
            .find("zvtext: cannot write to standard output: the reader has closed it after 39 pictures\n"),
        std::string::npos)
        << slurp(file("errors"));
    close(errors);
}

TEST_F(BatchCommand, AFullDiskIsSaidOnce) {
    const Result result = zvtext("batch -f $FONT --output-dir $DIR/out --allow-outside",
                                 "{\"text\":\"x\"}\n{\"text\":\"x\",\"output\":\"/dev/full\"}\n");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "zvtext: --output-dir: the disk is full: 1 line was not written\n");
    EXPECT_NE(result.out.find("No space left"), std::string::npos);
}

TEST_F(BatchCommand, MoreJobsThanDescriptorsDoNotMatter) {
    std::string command = "ulimit -n 64; seq 100 | sed 's,.*,{\"text\":\"x\"},' | timeout 60 " ZVTEXT_BINARY
                          " batch >/dev/null";
    for (const std::string& argument : arguments("--jobs 100")) command += " '" + argument + "'";
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
    // Long results, because the reader quotes what it cannot read.
    const std::string bad = "{\"text\":\"" + std::string(1500, 'x') + "\n";
    std::atomic<size_t> sent = 1;
    Running running(arguments("--jobs 2"));
    std::thread feeder([&] {
        running.put(slowLine());
        for (; sent < kLines; ++sent) running.put(sent % 32 == 0 ? "{\"text\":\"i\",\"size\":8}\n" : bad);
        running.endInput();
    });
    // By now it waits, whatever comes next: the feeder's pipe is full.
    pollfd room = {running.input, POLLOUT, 0};
    EXPECT_TRUE(comesTrue([&] { return sent > 1000 && poll(&room, 1, 200) == 0; }));
    EXPECT_LT(sent, 2000u);
    releaseSlowLine();
    size_t count = 0;
    for (Json result; (result = running.next()) != nullptr;) EXPECT_EQ(result.value("line", 0u), ++count);
    EXPECT_EQ(count, kLines);
    if (count < kLines) running.signalAll(SIGKILL);
    feeder.join();
    EXPECT_EQ(running.wait(), 1 << 8);
    EXPECT_TRUE(kSanitized || running.usage.ru_maxrss < 24 << 10) << running.usage.ru_maxrss << " kB";
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
