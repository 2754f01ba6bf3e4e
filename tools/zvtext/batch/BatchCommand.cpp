// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchCommand.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <deque>
#include <filesystem>
#include <optional>
#include <utility>
#include <vector>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/TextInput.h"
#include "scene/Values.h"
#include "tools/zvtext/Options.h"
#include "tools/zvtext/batch/BatchInput.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/batch/BatchLine.h"
#include "tools/zvtext/batch/BatchNames.h"
#include "tools/zvtext/batch/BatchWorker.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/batch/UsableCores.h"
#include "tools/zvtext/batch/WorkerProcess.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

constexpr int kMaxJobs = 256;
constexpr NumberRange kLineNumbers = {1, 1e15, "", false, false, true};
constexpr int kLastWait = 2000;       // milliseconds to wait for the reader of results after a signal
constexpr size_t kMaxWaiting = 1024;  // results kept while an earlier line is slow

// --- Signals: the handler leaves the number and wakes the loop through a pipe

volatile std::sig_atomic_t gSignal = 0;
int gWakeEnd = -1;

void onSignal(int number) {
    const int error = errno;
    gSignal = number;
    const char byte = 0;
    if (write(gWakeEnd, &byte, 1) < 0) errno = error;  // full: the loop is awake anyway
    errno = error;
}

void catchSignal(int number) {
    struct sigaction action = {};
    if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
        return;  // as for nohup and &
    action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESETHAND;  // the second signal ends the process
    sigaction(number, &action, nullptr);
}

// --- The loop

class Batch {
public:
    explicit Batch(const BatchArguments& arguments)
        : mArguments(arguments),
          mWorkers(static_cast<size_t>(workerCount(arguments))),
          mSettings(settingsOf(arguments)),
          mInput(arguments.input, kMaxLineBytes),
          mLine(static_cast<uint64_t>(arguments.firstLine)),
          mNames(madeFolder(arguments.outputFolder), writeScope(arguments), arguments.resume),
          mJournal(arguments.outputFolder, arguments.resume),
          mShowsProgress(!arguments.quiet && isatty(STDERR_FILENO) == 1) {
        mSettings.writes = writeScope(arguments);
    }

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
        std::signal(SIGXFSZ, SIG_IGN);  // so that it is an error like a full disk
        std::signal(SIGCHLD, SIG_DFL);  // the workers' exit statuses must not be lost
        catchSignal(SIGINT);
        catchSignal(SIGTERM);
        catchSignal(SIGHUP);
        for (;;) {
            if (gSignal != 0 || mOutputClosed) mEnded = true;
            bool moreThere = true;
            while (moreThere && canTake()) moreThere = takeLine();
            printResults();
            if (mEnded && !anyBusy() && !mHeld) break;
            if (!moreThere || !canTake()) wait(!mEnded && !moreThere);
        }
        showProgress(false);
        if (mOutputClosed && gSignal == 0) {
            std::signal(SIGPIPE, SIG_DFL);
            std::raise(SIGPIPE);
        }
        if (!mFailure.empty()) throw Failure(mFailure);
        std::string full, journal;
        if (mUnwritten > 0)
            full = "the disk is full: " + std::to_string(mUnwritten) +
                   (mUnwritten == 1 ? " line was" : " lines were") + " not written";
        if (!mJournalWhole) journal = "the journal could not be written; --resume will render again";
        if (!full.empty() || !journal.empty()) {
            throw Failure("--output-dir: " + full + (full.empty() || journal.empty() ? "" : "; ") + journal);
        }
        if (gSignal != 0) return 128 + gSignal;
        return mErrors == 0 ? 0 : 1;
    }

private:
    struct Worker : WorkerProcess {
        bool busy = false;
        BatchJob job;      // without the JSON; if it is not busy, the last one
        size_t place = 0;  // of its result
    };

    static int workerCount(const BatchArguments& arguments) {
        return arguments.jobs == 0 ? std::min(usableCores(), kMaxJobs) : arguments.jobs;
    }

    // Reads the defaults' values, so that their errors are reported once and not for each line.
    static BatchSettings settingsOf(const BatchArguments& arguments) {
        BatchSettings settings;
        settings.resumes = arguments.resume;
        std::vector<std::string> own = {"."};
        if (arguments.input != "-") own.push_back(fs::path(arguments.input).parent_path());
        settings.readable = arguments.reads.scopeWith(own, "a line of a batch");
        const auto files = fileSource(settings.readable, arguments.reads);
        settings.reads = {"", files, files};
        Digest digest;
        for (const auto& [name, value] : arguments.given) digest.add(name).add(plainText(value));
        settings.digest = digest.hex();
        readOptions(fieldsOf(settings.defaults), arguments.given, {"", fileSource({}, arguments.reads), {}});
        SceneOptions trial = settings.defaults.scene;
        trial.scene.text = "text";
        trial.textFile.clear();
        if (trial.scene.font.name.empty()) trial.scene.font.name = "font";
        sceneOf(trial);
        const BatchNames names(arguments.outputFolder,
                               arguments.allowOutside ? FolderScope() : FolderScope({}, ""), false);
        names.pathOf("--output", expandTemplate(arguments.output, 1));
        if (!arguments.metrics.empty()) names.pathOf("--metrics", expandTemplate(arguments.metrics, 1));
        return settings;
    }

    static const std::string& madeFolder(const std::string& folder) {
        std::error_code error;
        fs::create_directories(folder, error);
        if (error) throw Failure("--output-dir: cannot make '" + folder + "': " + error.message());
        return folder;
    }

    static FolderScope writeScope(const BatchArguments& arguments) {
        if (arguments.allowOutside) return FolderScope();
        return FolderScope({arguments.outputFolder},
                           "a line of a batch may write; --allow-outside lets it leave");
    }

    // Takes no more lines.
    void stop(const std::string& why) {
        mEnded = true;
        mFailure = why;
    }

    bool anyAlive() const {
        return std::any_of(mWorkers.begin(), mWorkers.end(),
                           [](const Worker& worker) { return worker.isAlive(); });
    }

    // If no more workers can be started, one of the living ones.
    Worker* idleWorker() {
        const bool starts = !mNoMore || !anyAlive();
        for (Worker& worker : mWorkers) {
            if (!worker.busy && (starts || worker.isAlive())) return &worker;
        }
        return nullptr;
    }

    bool canTake() {
        return idleWorker() != nullptr && (mHeld || (!mEnded && mWaiting.size() < kMaxWaiting));
    }

    bool anyBusy() const {
        return std::any_of(mWorkers.begin(), mWorkers.end(),
                           [](const Worker& worker) { return worker.busy; });
    }

    // Gives the next line to an idle worker. False if there is no whole line yet, or none left.
    bool takeLine() {
        if (mHeld) {
            const size_t place = mHeldPlace;
            give(*idleWorker(), *std::exchange(mHeld, std::nullopt), place);
            return true;
        }
        BatchJob job;
        const BatchInput::Next next = mInput.next(job.json);
        if (next == BatchInput::Next::End) mEnded = true;
        if (next == BatchInput::Next::End || next == BatchInput::Next::ReadMore) return false;
        job.line = mLine++;
        if (next == BatchInput::Next::Line && job.json.find_first_not_of(" \t\r") == std::string::npos)
            return true;
        const size_t place = mPrinted + mWaiting.size();
        mWaiting.emplace_back();
        try {
            if (next == BatchInput::Next::TooLong) {
                throw UsageError("the line is longer than " + std::to_string(kMaxLineBytes) + " bytes");
            }
            nameFiles(job);
        } catch (const std::bad_alloc&) {
            finish(place, failedResult(job, "not enough memory"));
            return true;
        } catch (const Error& error) {
            finish(place, failedResult(job, error.onCommandLine()));
            return true;
        } catch (const std::exception& error) {
            finish(place, failedResult(job, error.what()));
            return true;
        }
        give(*idleWorker(), std::move(job), place);
        return true;
    }

    void nameFiles(BatchJob& job) {
        LineNames names;
        try {
            readLineNames(job.json, names);
        } catch (...) {
            job.id = names.id;
            throw;
        }
        job.id = names.id;
        const std::string output = names.output.value_or(expandTemplate(mArguments.output, job.line));
        const std::string metrics = names.metrics.value_or(expandTemplate(mArguments.metrics, job.line));
        job.path = mNames.pathOf("--output", output);
        if (names.metrics || !metrics.empty()) job.metrics = mNames.pathOf("--metrics", metrics);
        if (job.metrics == job.path) {
            throw UsageError("--metrics: '" + job.path + "' is where the picture goes");
        }
        mNames.claim("--output", job.path);
        if (!job.metrics.empty()) mNames.claim("--metrics", job.metrics);
    }

    // If the worker died since its last line, starts a new one.
    void give(Worker& worker, BatchJob job, size_t place) {
        bool sent = worker.isAlive() && sendJob(worker.socket(), job);
        if (!sent) {
            end(worker);
            const std::string fault = start(worker);
            if (!fault.empty() && anyAlive()) {
                mNoMore = true;
                mHeld = std::move(job);
                mHeldPlace = place;
                return;
            }
            if (!fault.empty()) {
                stop("--jobs: cannot start a worker: " + fault);
                return finish(place, failedResult(job, mFailure));
            }
            sent = sendJob(worker.socket(), job);
        }
        worker.busy = true;
        worker.place = place;
        worker.job = std::move(job);
        worker.job.json = std::string();
        if (!sent) buryWorker(worker);
    }

    // Returns why it failed, or nothing.
    std::string start(Worker& worker) {
        return worker.start([this](int socket) {
            for (const Worker& other : mWorkers) other.closeEnds();
            if (mInput.descriptor() != STDIN_FILENO) close(mInput.descriptor());
            runBatchWorker(socket, mSettings, mJournal);
        });
    }

    // Ends the worker, if there is one, and returns its wait status.
    int end(Worker& worker) {
        if (worker.isAlive()) mNoMore = false;  // there is room for another one
        return worker.end([&](bool atEnd) { passOn(worker, atEnd); });
    }

    // Prints what the worker wrote to standard error. Messages of this program get the number of the line.
    void passOn(Worker& worker, bool atEnd = false) {
        static const std::string kName = "zvtext: ";
        std::string text;
        for (const std::string& message : worker.takeErrors(atEnd)) {
            const bool own = message.compare(0, kName.size(), kName) == 0;
            text +=
                own ? kName + "line " + std::to_string(worker.job.line) + ": " + message.substr(kName.size())
                    : message;
        }
        if (text.empty()) return;
        showProgress(false);
        std::fputs(printable(text).c_str(), stderr);
    }

    // The worker died with its line.
    void buryWorker(Worker& worker) {
        worker.kill();  // if it should still be there, without its socket
        const int status = end(worker);
        if (!worker.busy) return;
        worker.busy = false;
        const std::string how = WIFSIGNALED(status) ? std::string("killed: ") + strsignal(WTERMSIG(status))
                                                    : "exit status " + std::to_string(WEXITSTATUS(status));
        finish(worker.place, failedResult(worker.job, "the worker process died, " + how));
    }

    void answered(Worker& worker) {
        BatchResult result;
        if (!worker.busy || !receiveResult(worker.socket(), result)) return buryWorker(worker);
        worker.busy = false;
        passOn(worker);
        if (result.last) end(worker);
        if (!result.record.job.empty() && !mJournal.append(result.record)) mJournalWhole = false;
        finish(worker.place, std::move(result));
    }

    void finish(size_t place, BatchResult result) {
        ++mDone;
        mErrors += result.failed;
        mUnwritten += result.diskFull;
        mWaiting[place - mPrinted] = std::move(result.json);
    }

    // Prints the finished results at the front.
    void printResults() {
        std::string text;
        while (!mWaiting.empty() && mWaiting.front()) {
            text += *mWaiting.front() + "\n";
            mWaiting.pop_front();
            ++mPrinted;
        }
        if (!text.empty() && mOutputIsTerminal) showProgress(false);
        writeOut(text);
        showProgress(true);
    }

    // A line on a terminal's standard error that says how far the batch is; it goes before others come.
    void showProgress(bool shows) {
        const auto now = std::chrono::steady_clock::now();
        if (!mShowsProgress || (shows && now - mProgressShown < std::chrono::milliseconds(100))) return;
        mProgressShown = shows ? now : std::chrono::steady_clock::time_point();
        const std::string percent = std::to_string(static_cast<int>(mInput.share() * 100));
        std::string line = std::to_string(mDone) + " done, " + std::to_string(mErrors) +
                           (mErrors == 1 ? " error" : " errors") +
                           (mInput.share() < 0 ? "" : ", " + percent + " %");
        std::fputs(("\r" + (shows ? line : "") + "\x1b[K").c_str(), stderr);
    }

    void writeOut(const std::string& text) {
        size_t written = 0;
        while (written < text.size() && !mOutputClosed && !mOutputFailed) {
            // A reader that has stopped must not keep the batch from ending.
            const bool ending = gSignal != 0;
            pollfd ready[] = {{STDOUT_FILENO, POLLOUT, 0}, {ending ? -1 : mWake[0], POLLIN, 0}};
            const int count = poll(ready, 2, ending ? kLastWait : -1);
            if (count == 0) mOutputClosed = true;
            if (count == 0 || (count > 0 && ready[0].revents == 0)) continue;
            // Writes at most as much as a pipe with room accepts at once.
            const size_t length = std::min<size_t>(text.size() - written, PIPE_BUF);
            const ssize_t now = count < 0 ? -1 : write(STDOUT_FILENO, text.data() + written, length);
            if (now >= 0) {
                written += static_cast<size_t>(now);
            } else if (errno == EPIPE) {
                mOutputClosed = true;
            } else if (errno != EINTR && errno != EAGAIN) {
                mOutputFailed = true;
                stop(std::string("cannot write to standard output: ") + std::strerror(errno));
            }
        }
    }

    void readInput() {
        try {
            mInput.read();
        } catch (const Failure& failure) {
            stop(failure.onCommandLine());
        }
    }

    // Waits until a worker answers, the input has more (if `reads`), the reader of the results is gone, or a
    // signal arrives.
    void wait(bool reads) {
        std::vector<pollfd> events = {{mWake[0], POLLIN, 0},
                                      {mOutputClosed ? -1 : STDOUT_FILENO, 0, 0},
                                      {reads ? mInput.descriptor() : -1, POLLIN, 0}};
        const size_t fixed = events.size();
        std::vector<Worker*> polled;  // only living ones, because poll takes no more entries than descriptors
        for (Worker& worker : mWorkers) {
            if (worker.socket() < 0 && worker.errors() < 0) continue;
            polled.push_back(&worker);
            events.push_back({worker.socket(), POLLIN, 0});
            events.push_back({worker.errors(), POLLIN, 0});
        }
        const int count = poll(events.data(), events.size(), mShowsProgress ? 200 : -1);
        if (count < 0 && errno != EINTR && errno != EAGAIN) {
            throw Failure(std::string("cannot wait for the workers: ") + std::strerror(errno));
        }
        if (count <= 0) return;
        char byte;
        while (events[0].revents != 0 && ::read(mWake[0], &byte, 1) == 1) {
        }
        if ((events[1].revents & (POLLERR | POLLHUP)) != 0) mOutputClosed = true;
        for (size_t i = 0; i < polled.size(); ++i) {
            if (events[fixed + 2 * i + 1].revents != 0) passOn(*polled[i]);
            if (events[fixed + 2 * i].revents != 0) answered(*polled[i]);
        }
        if (events[2].revents != 0) readInput();
    }

    const BatchArguments& mArguments;
    std::vector<Worker> mWorkers;
    BatchSettings mSettings;
    BatchInput mInput;
    uint64_t mLine;  // the number of the next
    BatchNames mNames;
    BatchJournal mJournal;
    const bool mShowsProgress;
    std::chrono::steady_clock::time_point mProgressShown;
    int mWake[2] = {-1, -1};
    uint64_t mDone = 0, mErrors = 0, mUnwritten = 0;
    bool mNoMore = false;  // no more workers can be started, for lack of descriptors, processes or memory
    std::optional<BatchJob> mHeld;  // a line that waits for an idle worker because none could be started
    size_t mHeldPlace = 0;
    std::deque<std::optional<std::string>> mWaiting;  // results in the order of the lines
    size_t mPrinted = 0;                              // the position of the first of them
    bool mEnded = false;                              // no more lines are taken
    bool mOutputClosed = false, mOutputFailed = false, mJournalWhole = true;
    const bool mOutputIsTerminal = isatty(STDOUT_FILENO) == 1;
    std::string mFailure;  // why the batch cannot continue
};

}  // namespace

void addBatchOptions(CLI::App& command, BatchArguments& a) {
    RenderOptions defaults;
    Fields fields = fieldsOf(defaults);
    fields.erase(fields.begin());  // the text
    addOptions(command, fields, a.given);
    addReadOptions(command, a.reads, "lines and style files");
    command.add_option("file", a.input, "The lines, one JSON object each; - is standard input")
        ->type_name("FILE")
        ->capture_default_str();
    Fields own;
    addFields(
        own,
        {{"output", TextField{&a.output},
          "Name of a picture whose line has no output; {index} is the line's number", "NAME", "o"},
         {"metrics", TextField{&a.metrics, kMaxFieldBytes, kWantedPath},
          "Name of the metrics in JSON of a picture whose line has none, with {index}; else none", "NAME"},
         {"output-dir", TextField{&a.outputFolder}, "Where the pictures go; made when missing", "DIR"},
         {"allow-outside", FlagField{&a.allowOutside}, "Let outputs be absolute or leave the output folder"},
         {"first-line", NumberField{&a.firstLine, kLineNumbers},
          "The number of the first line, where they are part of a longer list", "N"},
         {"jobs", NumberField{&a.jobs, {0, kMaxJobs}},
          "Worker processes; 0 is one for each core that the process may use", "N", "j"},
         {"resume", FlagField{&a.resume},
          "Leave pictures that are there, whole and made from the same line, options and files"},
         {"quiet", FlagField{&a.quiet}, "No progress on the terminal"}},
        "Batch");
    addSettings(command, own);
    command.footer(
        R"(A line is a JSON object: "text", "output", and any option of render without its dashes. What it leaves
out is as the options here say. "style" may be the style itself:
  {"text": "Grüße", "size": 120, "stroke": "8:#202020", "output": "hello.png"}
  {"text": "世界", "fallback": ["NotoSansCJK-Regular.ttc"], "style": {"color": "#ff8800"}, "id": "w-7"}
"output" and "metrics" are names in the output folder, each of one line alone. Files to be read lie below
the working folder or that of the lines, fonts also among the system's; --allow-read adds folders.
Each line gives one JSON object on standard output, in their order: line, path, width, height, margins,
baseline and milliseconds, or line and error; the line's own id, a string or a number, where it has one;
metrics where there are some, skipped where --resume left them. Empty lines are passed over; a line has at
most 16 MiB. Warnings on standard error name the line.
--resume renders anew where the line, an option, the program's version, the style, the text's file, a font
(given or the system's; by place, size and time), a pattern or a file of the line's is not what it was.

Examples:
  zvtext batch titles.jsonl --font DejaVuSans-Bold.ttf --output-dir out --jobs 0 > results.jsonl
  zvtext batch titles.jsonl --font DejaVuSans-Bold.ttf --output-dir out --resume > results.jsonl
The exit status is 0, 1 where a line failed, 2 where the command line was wrong, or 128 and the signal.)");
}

int runBatch(const BatchArguments& arguments) {
    return Batch(arguments).run();
}

}  // namespace zvtext
