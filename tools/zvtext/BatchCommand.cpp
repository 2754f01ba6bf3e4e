// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/BatchCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <optional>
#include <vector>

#include "tools/zvtext/BatchInput.h"
#include "tools/zvtext/BatchJournal.h"
#include "tools/zvtext/BatchLine.h"
#include "tools/zvtext/BatchWorker.h"
#include "tools/zvtext/Digest.h"
#include "tools/zvtext/Failure.h"
#include "tools/zvtext/OutputFile.h"
#include "tools/zvtext/Progress.h"
#include "tools/zvtext/Values.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;

constexpr int kMaxJobs = 256;
constexpr size_t kMaxWaiting = 1024;  // results kept behind a line that takes long

// --- Output names

std::string expandTemplate(const std::string& text, uint64_t line) {
    static const std::string kIndex = "{index}";
    std::string name = text;
    const std::string number = std::to_string(line);
    for (size_t at = 0; (at = name.find(kIndex, at)) != std::string::npos; at += number.size()) {
        name.replace(at, kIndex.size(), number);
    }
    return name;
}

std::string outputPath(const BatchArguments& arguments, const std::string& name) {
    const fs::path path = fs::path(name).lexically_normal();
    const bool outside = path.is_absolute() || *path.begin() == "..";
    if (name.empty() || !path.has_filename() || path == "." || path.filename() == "..") {
        throw UsageError("--output: '" + name + "' is no name of a file");
    }
    if (name.find('\0') != std::string::npos) throw UsageError("--output: the name holds a NUL character");
    if (outside && !arguments.allowOutside) {
        throw UsageError("--output: '" + name + "' leaves the output folder; --allow-outside lets it");
    }
    if (path.filename() == kJournalName) throw UsageError("--output: '" + name + "' is the batch's own file");
    return (fs::path(arguments.outputFolder) / path).lexically_normal().string();
}

// Hashes of strings, 8 bytes each in a table at most half full.
class HashSet {
public:
    // False where it is in already.
    bool insert(uint64_t hash) {
        hash += hash == 0;  // 0: a free slot
        if (mCount * 2 >= mSlots.size()) grow();
        if (!place(hash)) return false;
        ++mCount;
        return true;
    }

private:
    bool place(uint64_t hash) {
        size_t slot = hash & (mSlots.size() - 1);
        while (mSlots[slot] != 0 && mSlots[slot] != hash) slot = (slot + 1) & (mSlots.size() - 1);
        if (mSlots[slot] == hash) return false;
        mSlots[slot] = hash;
        return true;
    }
    void grow() {
        std::vector<uint64_t> old(mSlots.size() * 2);
        old.swap(mSlots);
        for (const uint64_t hash : old) {
            if (hash != 0) place(hash);
        }
    }

    std::vector<uint64_t> mSlots = std::vector<uint64_t>(1024);
    size_t mCount = 0;
};

// --- Signals: the handler leaves the number and wakes the loop through a pipe

volatile std::sig_atomic_t gSignal = 0;
int gWakeEnd = -1;

void onSignal(int number) {
    const int error = errno;
    gSignal = number;
    const char byte = 0;
    if (write(gWakeEnd, &byte, 1) < 0) errno = error;  // full: awake already
    errno = error;
}

void catchSignal(int number) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        return;  // as nohup and & want
    action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESETHAND;  // the second one ends the process
    sigaction(number, &action, nullptr);
}

// --- The loop

int usableCores() {
    cpu_set_t cores;
    return sched_getaffinity(0, sizeof cores, &cores) == 0 ? std::max(CPU_COUNT(&cores), 1) : 1;
}

class Batch {
public:
    explicit Batch(const BatchArguments& arguments)
        : mArguments(arguments),
          mWorkers(static_cast<size_t>(workerCount(arguments))),
          mSettings(settingsOf(arguments)),
          mInput(arguments.input, kMaxLineBytes),
          mJournal(madeFolder(arguments.outputFolder), arguments.resume),
          mProgress(arguments.quiet) {}

    ~Batch() {
        for (Worker& worker : mWorkers) end(worker);
        for (const int descriptor : mWake) {
            if (descriptor >= 0) close(descriptor);
        }
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    int run() {
        if (pipe2(mWake, O_CLOEXEC | O_NONBLOCK) != 0) throw Failure("cannot make a pipe");
        gWakeEnd = mWake[1];
        std::signal(SIGPIPE, SIG_IGN);
        catchSignal(SIGINT);
        catchSignal(SIGTERM);
        for (;;) {
            if (gSignal != 0 || mOutputClosed) mEnded = true;
            bool moreThere = true;
            while (moreThere && canTake()) moreThere = takeLine();
            printResults();
            if (mEnded && !anyBusy()) break;
            if (!moreThere || !canTake()) wait(!mEnded && !moreThere);
        }
        mProgress.clear();
        if (mOutputClosed) {
            std::signal(SIGPIPE, SIG_DFL);
            std::raise(SIGPIPE);
        }
        if (!mJournalWhole)
            throw Failure("--output-dir: the journal could not be written; --resume will render again");
        if (gSignal != 0) return 128 + gSignal;
        return mErrors == 0 ? 0 : 1;
    }

private:
    struct Worker {
        pid_t process = 0;  // 0: none
        int socket = -1;
        bool busy = false;
        BatchJob job;
        size_t place = 0;  // of its result
    };

    static int workerCount(const BatchArguments& arguments) {
        const int jobs = parseInteger("--jobs", arguments.jobs, 0, kMaxJobs);
        return jobs == 0 ? std::min(usableCores(), kMaxJobs) : jobs;
    }

    // Reads the defaults' values, so that what is wrong with them is said once and not for each line.
    static BatchSettings settingsOf(const BatchArguments& arguments) {
        BatchSettings settings;
        settings.resumes = arguments.resume;
        settings.digest = arguments.defaultsDigest;
        settings.defaults = arguments.defaults;
        settings.defaults.start = readStyleParts(arguments.defaults);
        settings.defaults.style.clear();
        RenderArguments trial = settings.defaults;
        trial.text = "text";
        trial.textFile.clear();
        if (trial.font.empty()) trial.font = "font";
        readScene(trial);
        outputPath(arguments, expandTemplate(arguments.output, 1));
        return settings;
    }

    static const std::string& madeFolder(const std::string& folder) {
        std::error_code error;
        fs::create_directories(folder, error);
        if (error) throw Failure("--output-dir: cannot make '" + folder + "': " + error.message());
        return folder;
    }

    Worker* idleWorker() {
        for (Worker& worker : mWorkers) {
            if (!worker.busy) return &worker;
        }
        return nullptr;
    }

    bool canTake() { return !mEnded && idleWorker() != nullptr && mWaiting.size() < kMaxWaiting; }

    bool anyBusy() const {
        return std::any_of(mWorkers.begin(), mWorkers.end(),
                           [](const Worker& worker) { return worker.busy; });
    }

    // Gives the next line to an idle worker. False where there is no whole line yet, or none any more.
    bool takeLine() {
        BatchJob job;
        const BatchInput::Next next = mInput.next(job.json);
        if (next == BatchInput::Next::End) mEnded = true;
        if (next == BatchInput::Next::End || next == BatchInput::Next::ReadMore) return false;
        job.line = ++mLine;
        if (next == BatchInput::Next::Line && job.json.find_first_not_of(" \t\r") == std::string::npos)
            return true;
        const size_t place = mPrinted + mWaiting.size();
        mWaiting.emplace_back();
        try {
            if (next == BatchInput::Next::TooLong) {
                throw UsageError("the line is longer than " + std::to_string(kMaxLineBytes) + " bytes");
            }
            const std::optional<std::string> name = readOutputName(job.json);
            job.path = outputPath(mArguments, name.value_or(expandTemplate(mArguments.output, job.line)));
            claim(job.path);
        } catch (const std::bad_alloc&) {
            finish(place, failedResult(job.line, job.path, "not enough memory"));
            return true;
        } catch (const UsageError& error) {
            finish(place, failedResult(job.line, job.path, error.what()));
            return true;
        }
        give(*idleWorker(), std::move(job), place);
        return true;
    }

    // Nobody else may write there from now on.
    void claim(const std::string& path) {
        const fs::path absolute = fs::absolute(path).lexically_normal();
        if (!mNames.insert(Digest().add(absolute.string()).word())) {
            throw UsageError("--output: '" + path + "' is the output of an earlier line");
        }
        const std::string folder = absolute.parent_path().string() + "/";
        // Before the first line of this folder runs: no temporary file there is one of this batch.
        if (mArguments.resume && mNames.insert(Digest().add(folder).word())) removeTemporaries(folder);
    }

    void give(Worker& worker, BatchJob job, size_t place) {
        if (worker.process == 0) start(worker);
        worker.busy = true;
        worker.place = place;
        worker.job = std::move(job);
        if (!sendJob(worker.socket, worker.job)) buryWorker(worker);
        worker.job.json = std::string();
    }

    void start(Worker& worker) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
            throw Failure(std::string("--jobs: cannot start a worker: ") + std::strerror(errno));
        }
        const pid_t process = fork();
        if (process == 0) {
            close(ends[0]);
            beWorker(ends[1]);
        }
        const int error = errno;
        close(ends[1]);
        if (process < 0) {
            close(ends[0]);
            throw Failure(std::string("--jobs: cannot start a worker: ") + std::strerror(error));
        }
        worker.process = process;
        worker.socket = ends[0];
    }

    // In the new process. It holds no end of another's socket, so that each sees when the batch is gone, and
    // none of the input and the output. The signals of the terminal are the batch's to answer.
    [[noreturn]] void beWorker(int socket) {
        try {
            std::signal(SIGINT, SIG_IGN);
            std::signal(SIGTERM, SIG_IGN);
            for (const Worker& other : mWorkers) {
                if (other.socket >= 0) close(other.socket);
            }
            if (mInput.descriptor() != STDIN_FILENO) close(mInput.descriptor());
            const int nothing = open("/dev/null", O_RDWR);
            dup2(nothing, STDIN_FILENO);
            dup2(nothing, STDOUT_FILENO);
            runBatchWorker(socket, mSettings, mJournal);
        } catch (...) {  // no memory for a message; the batch sees the socket close
        }
        std::fflush(stderr);
        _exit(0);
    }

    // Ends the worker and returns its wait status.
    static int end(Worker& worker) {
        int status = 0;
        if (worker.process == 0) return status;
        close(worker.socket);
        while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
        }
        worker.process = 0;
        worker.socket = -1;
        return status;
    }

    // The worker is gone, with the line it had.
    void buryWorker(Worker& worker) {
        kill(worker.process, SIGKILL);  // if it should still be there, without its socket
        const int status = end(worker);
        if (!worker.busy) return;
        worker.busy = false;
        const std::string how = WIFSIGNALED(status) ? std::string("killed: ") + strsignal(WTERMSIG(status))
                                                    : "exit status " + std::to_string(WEXITSTATUS(status));
        finish(worker.place,
               failedResult(worker.job.line, worker.job.path, "the worker process died, " + how));
    }

    void answered(Worker& worker) {
        BatchResult result;
        if (!worker.busy || !receiveResult(worker.socket, result)) return buryWorker(worker);
        worker.busy = false;
        if (result.last) end(worker);
        if (!result.record.job.empty() && !mJournal.append(result.record)) mJournalWhole = false;
        finish(worker.place, std::move(result));
    }

    void finish(size_t place, BatchResult result) {
        ++mDone;
        mErrors += result.failed;
        mWaiting[place - mPrinted] = std::move(result.json);
    }

    // Those at the front that are done.
    void printResults() {
        std::string text;
        while (!mWaiting.empty() && mWaiting.front()) {
            text += *mWaiting.front() + "\n";
            mWaiting.pop_front();
            ++mPrinted;
        }
        size_t written = 0;
        while (written < text.size() && !mOutputClosed) {
            const ssize_t now = write(STDOUT_FILENO, text.data() + written, text.size() - written);
            if (now >= 0) written += static_cast<size_t>(now);
            if (now < 0 && errno == EPIPE)
                mOutputClosed = true;
            else if (now < 0 && errno != EINTR) {
                throw Failure(std::string("cannot write to standard output: ") + std::strerror(errno));
            }
        }
        mProgress.update(mDone, mErrors, mInput.share());
    }

    // Until a worker answers, the input has more (asked for by `reads`), the reader of the results is gone,
    // or a signal comes.
    void wait(bool reads) {
        std::vector<pollfd> events = {{mWake[0], POLLIN, 0},
                                      {mOutputClosed ? -1 : STDOUT_FILENO, 0, 0},
                                      {reads ? mInput.descriptor() : -1, POLLIN, 0}};
        const size_t fixed = events.size();
        for (const Worker& worker : mWorkers) events.push_back({worker.socket, POLLIN, 0});
        if (poll(events.data(), events.size(), mProgress.shown() ? 200 : -1) <= 0) return;
        char byte;
        while (events[0].revents != 0 && ::read(mWake[0], &byte, 1) == 1) {
        }
        if ((events[1].revents & POLLERR) != 0) mOutputClosed = true;
        for (size_t i = 0; i < mWorkers.size(); ++i) {
            if (events[fixed + i].revents != 0) answered(mWorkers[i]);
        }
        if (events[2].revents != 0) mInput.read();
    }

    const BatchArguments& mArguments;
    std::vector<Worker> mWorkers;
    const BatchSettings mSettings;
    BatchInput mInput;
    BatchJournal mJournal;
    Progress mProgress;
    HashSet mNames;
    int mWake[2] = {-1, -1};
    uint64_t mLine = 0, mDone = 0, mErrors = 0;
    std::deque<std::optional<std::string>> mWaiting;  // results in the order of the lines
    size_t mPrinted = 0;                              // the place of the first of them
    bool mEnded = false;                              // no more lines are taken
    bool mOutputClosed = false, mJournalWhole = true;
};

}  // namespace

void addBatchOptions(CLI::App& command, BatchArguments& a) {
    addRenderOptions(command, a.defaults);
    // A line's own.
    for (const char* name : {"text", "--output", "--print-style", "--print-key", "--metrics"}) {
        command.remove_option(command.get_option(name));
    }
    const std::vector<CLI::Option*> ofRender = command.get_options([](const CLI::Option*) { return true; });
    command.add_option("file", a.input, "The lines, one JSON object each; - is standard input")
        ->type_name("FILE")
        ->capture_default_str();
    command
        .add_option("-o,--output", a.output,
                    "Name of a picture whose line has no output; {index} is the line's number")
        ->type_name("NAME")
        ->capture_default_str();
    command.add_option("--output-dir", a.outputFolder, "Where the pictures go; made when missing")
        ->type_name("DIR")
        ->capture_default_str();
    command.add_flag("--allow-outside", a.allowOutside, "Let outputs be absolute or leave the output folder");
    command.add_option("-j,--jobs", a.jobs, "Worker processes; 0 is one for each core")
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--resume", a.resume,
                     "Leave pictures that are there, whole and made from the same line, options and files");
    command.add_flag("--quiet", a.quiet, "No progress on the terminal");
    command.parse_complete_callback([&a, ofRender] {
        Digest digest;
        for (const CLI::Option* option : ofRender) {
            digest.add(option->get_name());
            for (const std::string& value : option->results()) digest.add(value);
        }
        a.defaultsDigest = digest.hex();
    });
    command.footer(
        "A line is a JSON object: \"text\", \"output\", and any option of render without its dashes. What it "
        "leaves\n"
        "out is as the options here say. \"style\" may be the style itself:\n"
        "  {\"text\": \"Grüße\", \"size\": 120, \"stroke\": \"8:#202020\", \"output\": \"hello.png\"}\n"
        "  {\"text\": \"世界\", \"fallback\": [\"NotoSansCJK-Regular.ttc\"], \"style\": {\"color\": "
        "\"#ff8800\"}}\n"
        "Each line gives one JSON object on standard output, in their order: line, path, width, height, "
        "margins,\n"
        "baseline and milliseconds, or error. Empty lines are passed over; a line has at most 16 MiB.\n\n"
        "Examples:\n"
        "  zvtext batch titles.jsonl --font DejaVuSans-Bold.ttf --output-dir out --jobs 0 > results.jsonl\n"
        "  zvtext batch titles.jsonl --font DejaVuSans-Bold.ttf --output-dir out --resume > results.jsonl\n"
        "The exit status is 0, 1 where a line failed, 2 where the command line was wrong, or 128 and the "
        "signal.");
}

int runBatch(const BatchArguments& arguments) {
    return Batch(arguments).run();
}

}  // namespace zvtext
