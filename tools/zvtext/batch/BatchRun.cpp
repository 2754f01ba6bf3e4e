// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchRun.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <utility>
#include <vector>

#include "scene/Failure.h"
#include "scene/FileSource.h"
#include "scene/TextInput.h"
#include "scene/Values.h"
#include "tools/zvtext/batch/BatchCrew.h"
#include "tools/zvtext/batch/BatchInput.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/batch/BatchLine.h"
#include "tools/zvtext/batch/BatchNames.h"
#include "tools/zvtext/batch/BatchWorker.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/batch/ResultStream.h"
#include "tools/zvtext/batch/StopSignals.h"
#include "tools/zvtext/batch/UsableCores.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

constexpr int kLastWait = 2000;       // milliseconds to wait for the reader of results after a signal
constexpr size_t kMaxWaiting = 1024;  // results kept while an earlier line or the reader is slow
constexpr size_t kMaxStreamedBytes = size_t{64} << 20;  // of pictures kept for the reader; then no more start

// A line on a terminal's standard error that says how far the batch is; it goes before others come.
class Progress {
public:
    explicit Progress(bool shows) : mShows(shows) {}

    bool isShown() const { return mShows; }

    // `share` of the input is below 0 where that is not known.
    void show(uint64_t done, uint64_t errors, double share) {
        const auto now = Clock::now();
        if (!mShows || now - mShown < std::chrono::milliseconds(100)) return;
        mShown = now;
        put(std::to_string(done) + " done, " + std::to_string(errors) + (errors == 1 ? " error" : " errors") +
            (share < 0 ? "" : ", " + std::to_string(static_cast<int>(share * 100)) + " %"));
    }

    void hide() {
        mShown = {};
        if (mShows) put("");
    }

private:
    using Clock = std::chrono::steady_clock;

    static void put(const std::string& line) { std::fputs(("\r" + line + "\x1b[K").c_str(), stderr); }

    const bool mShows;
    Clock::time_point mShown;
};

class Batch {
public:
    explicit Batch(const BatchArguments& arguments)
        : mArguments(arguments),
          mSettings(settingsOf(arguments)),
          mInput(arguments.input, kMaxLineBytes),
          mLine(static_cast<uint64_t>(arguments.firstLine)),
          mNames(madeFolder(arguments.outputFolder), writeScope(arguments), arguments.resume),
          mJournal(arguments.outputFolder),
          mProgress(!arguments.quiet && isatty(STDERR_FILENO) == 1),
          mCrew(static_cast<size_t>(arguments.jobs == 0 ? std::min(usableCores(), kMaxJobs) : arguments.jobs),
                {[this](int socket) { work(socket); }, [this](const BatchJob& job) { return mayStart(job); },
                 [this](const BatchJob& job, BatchResult result) { finish(job, std::move(result)); },
                 [this](const std::string& text) { say(text); },
                 [this](const std::string& why) { stop(why); }}) {
        mSettings.writes = writeScope(arguments);
        // A program that wants no files has none, and may run where it cannot write.
        if (arguments.output != "-" || arguments.resume) mJournal.open(arguments.resume);
        std::signal(SIGPIPE, SIG_IGN);
        std::signal(SIGXFSZ, SIG_IGN);  // so that it is an error like a full disk
        std::signal(SIGCHLD, SIG_DFL);  // the workers' exit statuses must not be lost
    }

    int run() {
        for (;;) {
            writeResults();
            if (mSignals.number() != 0 || !mResults.isOpen()) {
                mEnded = true;
                mCrew.dropHeld();
            }
            mCrew.giveHeld();
            bool moreThere = true;
            while (moreThere && canTake()) moreThere = takeLine();
            if (mEnded && !mCrew.isBusy() && (!mResults.isReady() || !mResults.isOpen())) break;
            if (!moreThere || !canTake()) wait(!mEnded && !moreThere);
        }
        mProgress.hide();
        if (mResults.isClosed() && mSignals.number() == 0) {
            if (mStreams) {
                throw Failure("cannot write to standard output: the reader has closed it after " +
                              std::to_string(mResults.pictures()) +
                              (mResults.pictures() == 1 ? " picture" : " pictures"));
            }
            std::signal(SIGPIPE, SIG_DFL);
            std::raise(SIGPIPE);
        }
        return status();
    }

private:
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
        // Once, not for each line.
        warn(std::exchange(settings.defaults.scene.scene.style.warnings, {}));
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

    // In a worker's process.
    void work(int socket) {
        mCrew.closeEnds();
        if (mInput.descriptor() != STDIN_FILENO) close(mInput.descriptor());
        runBatchWorker(socket, mSettings, mJournal);
    }

    bool canTake() { return !mEnded && mResults.waiting() < kMaxWaiting && mCrew.hasRoom(); }

    // Gives the next line to a worker. False if there is no whole line yet, or none left.
    bool takeLine() {
        BatchJob job;
        const BatchInput::Next next = mInput.next(job.json);
        if (next == BatchInput::Next::End) mEnded = true;
        if (next == BatchInput::Next::End || next == BatchInput::Next::ReadMore) return false;
        job.line = mLine++;
        if (next == BatchInput::Next::Line && job.json.find_first_not_of(" \t\r") == std::string::npos)
            return true;
        job.place = mResults.addPlace();
        try {
            if (next == BatchInput::Next::TooLong) {
                throw UsageError("the line is longer than " + std::to_string(kMaxLineBytes) + " bytes");
            }
            nameFiles(job);
        } catch (...) {
            finish(job, failedResult(job));
            return true;
        }
        mCrew.give(std::move(job));
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
        if (job.isStreamed()) mStreams = true;
        if (names.metrics || !metrics.empty()) job.metrics = mNames.pathOf("--metrics", metrics);
        if (job.metrics == job.path) {
            throw UsageError("--metrics: '" + job.path + "' is where the picture goes");
        }
        if (!job.isStreamed()) mNames.claim("--output", job.path);
        if (!job.metrics.empty()) mNames.claim("--metrics", job.metrics);
    }

    // Pictures that wait for a slow reader must not fill the memory. The next one for the reader is let
    // through, since it may be the one that all others wait for.
    bool mayStart(const BatchJob& job) const {
        return !job.isStreamed() || mResults.pictureBytes() < kMaxStreamedBytes ||
               job.place == mResults.first();
    }

    // A job that was not begun has no result.
    void finish(const BatchJob& job, BatchResult result) {
        if (!result.json.empty()) ++mDone;
        mErrors += result.failed;
        mUnwritten += result.diskFull;
        if (!result.record.job.empty() && !mJournal.append(result.record)) mJournalWhole = false;
        mResults.finish(job.place, std::move(result.json), std::move(result.picture));
    }

    void say(const std::string& text) {
        mProgress.hide();
        std::fputs(printable(text).c_str(), stderr);
    }

    void writeResults() {
        if (mResults.isReady() && mOutputIsTerminal) mProgress.hide();
        mResults.write();
        if (!mResults.fault().empty()) stop(mResults.fault());
        mProgress.show(mDone, mErrors, mInput.share());
    }

    void readInput() {
        try {
            mInput.read();
        } catch (const Failure& failure) {
            stop(failure.onCommandLine());
        }
    }

    // Waits until a worker answers, the input has more (if `reads`), the reader of the results takes more or
    // is gone, or a signal arrives.
    void wait(bool reads) {
        const short writes = mResults.isReady() ? POLLOUT : 0;
        std::vector<pollfd> events = {{mSignals.descriptor(), POLLIN, 0},
                                      {mResults.isOpen() ? STDOUT_FILENO : -1, writes, 0},
                                      {reads ? mInput.descriptor() : -1, POLLIN, 0}};
        mCrew.addEvents(events);
        // A reader that has stopped must not keep the batch from ending.
        const bool last = mSignals.number() != 0 && mResults.isOpen() && mResults.isReady();
        const int count = poll(events.data(), events.size(),
                               last                  ? kLastWait
                               : mProgress.isShown() ? 200
                                                     : -1);
        if (count < 0 && errno != EINTR && errno != EAGAIN) {
            throw Failure(std::string("cannot wait for the workers: ") + std::strerror(errno));
        }
        if (count == 0 && last) mResults.close();
        if (count <= 0) return;
        if (events[0].revents != 0) mSignals.drain();
        if ((events[1].revents & (POLLERR | POLLHUP)) != 0) mResults.close();
        mCrew.handle(events);
        if (events[2].revents != 0) readInput();
    }

    int status() const {
        if (!mFailure.empty()) throw Failure(mFailure);
        std::string full, journal;
        if (mUnwritten > 0)
            full = "the disk is full: " + std::to_string(mUnwritten) +
                   (mUnwritten == 1 ? " line was" : " lines were") + " not written";
        if (!mJournalWhole) journal = "the journal could not be written; --resume will render again";
        if (!full.empty() || !journal.empty()) {
            throw Failure("--output-dir: " + full + (full.empty() || journal.empty() ? "" : "; ") + journal);
        }
        if (mSignals.number() != 0) return 128 + mSignals.number();
        return mErrors == 0 ? 0 : 1;
    }

    const BatchArguments& mArguments;
    const StopSignals mSignals;
    BatchSettings mSettings;
    BatchInput mInput;
    uint64_t mLine;  // the number of the next
    BatchNames mNames;
    BatchJournal mJournal;
    ResultStream mResults;
    Progress mProgress;
    BatchCrew mCrew;  // after what its end uses
    uint64_t mDone = 0, mErrors = 0, mUnwritten = 0;
    bool mEnded = false;  // no more lines are taken
    bool mJournalWhole = true;
    bool mStreams = false;  // some pictures go to standard output
    const bool mOutputIsTerminal = isatty(STDOUT_FILENO) == 1;
    std::string mFailure;  // why the batch cannot continue
};

}  // namespace

int runBatch(const BatchArguments& arguments) {
    return Batch(arguments).run();
}

}  // namespace zvtext
