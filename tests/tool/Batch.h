// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_TOOL_BATCH_H_
#define ZVEX_TESTS_TOOL_BATCH_H_

#include <poll.h>
#include <sys/ioctl.h>

#include <chrono>
#include <csignal>
#include <iterator>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <thread>

#include "tests/tool/Program.h"

// Waits for other processes.
template <typename Condition>
bool comesTrue(Condition condition, int seconds = 10) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
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
    nlohmann::json next() {
        while (mRead.find('\n') == std::string::npos) {
            if (!readMore()) return nullptr;
        }
        const size_t end = mRead.find('\n');
        const nlohmann::json json = nlohmann::json::parse(mRead.substr(0, end), nullptr, false);
        mRead.erase(0, end + 1);
        return json;
    }

    // The picture behind the last result.
    std::string picture(const nlohmann::json& result) {
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

    std::vector<nlohmann::json> batch(const std::string& lines, const std::string& more, int status) const {
        const Result result =
            zvtext("batch -f $FONT -s 24 --output-dir $DIR/out --allow-read-anywhere " + more, lines);
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.err, "");
        std::vector<nlohmann::json> results;
        std::stringstream out(result.out);
        for (std::string line; std::getline(out, line);) results.push_back(nlohmann::json::parse(line));
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

    static std::string error(const nlohmann::json& result) { return result.value("error", ""); }
};

#endif  // ZVEX_TESTS_TOOL_BATCH_H_
