// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchCrew.h"

#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <utility>

namespace zvtext {

namespace {

constexpr size_t kMaxSyncing = 32;                        // lines of a worker on their way to the disk
constexpr size_t kMaxSyncingBytes = size_t{1} << 20;      // of these lines
constexpr size_t kMaxHeldBytes = size_t{1} << 20;         // of lines that may not start yet
constexpr rlim_t kOtherFiles = 40, kFilesOfLine = 2 * 2;  // picture and metrics, each with its folder

size_t mostSyncing() {
    rlimit files = {};
    if (getrlimit(RLIMIT_NOFILE, &files) != 0 || files.rlim_cur <= kOtherFiles) return 1;
    return std::clamp<rlim_t>((files.rlim_cur - kOtherFiles) / kFilesOfLine, 1, kMaxSyncing);
}

std::string howItDied(int status) {
    return "the worker process died, " + (WIFSIGNALED(status)
                                              ? std::string("killed: ") + strsignal(WTERMSIG(status))
                                              : "exit status " + std::to_string(WEXITSTATUS(status)));
}

}  // namespace

BatchCrew::BatchCrew(size_t size, Owner owner)
    : mOwner(std::move(owner)), mWorkers(size), mMaxSyncing(mostSyncing()) {}

BatchCrew::~BatchCrew() {
    for (Worker& worker : mWorkers) end(worker);
}

bool BatchCrew::isBusy() const {
    return !mHeld.empty() || std::any_of(mWorkers.begin(), mWorkers.end(),
                                         [](const Worker& worker) { return worker.isBusy(); });
}

bool BatchCrew::canTake(const Worker& worker, const Job& job) const {
    if (worker.drawing || worker.leaves) return false;
    // A job that is made again has a worker for itself: if that one dies too, the job is to blame.
    if (worker.syncing.empty()) return true;
    return !job.again && !worker.syncing.front().again && worker.syncing.size() < mMaxSyncing &&
           worker.bytes < kMaxSyncingBytes;
}

bool BatchCrew::anyAlive() const {
    return std::any_of(mWorkers.begin(), mWorkers.end(),
                       [](const Worker& worker) { return worker.isAlive(); });
}

// If no more workers can be started, one of the living ones.
BatchCrew::Worker* BatchCrew::freeWorker(const Job& job) {
    const bool starts = !mNoMore || !anyAlive();
    for (Worker& worker : mWorkers) {
        if ((starts || worker.isAlive()) && canTake(worker, job)) return &worker;
    }
    return nullptr;
}

bool BatchCrew::hasRoom() {
    size_t bytes = 0;
    for (const Job& job : mHeld) {
        if (mOwner.mayStart(job)) return false;
        bytes += job.json.size();
    }
    return bytes < kMaxHeldBytes && freeWorker({}) != nullptr;
}

void BatchCrew::dropHeld() {
    std::deque<Job> kept;
    for (Job& job : mHeld) {
        if (job.again) {
            kept.push_back(std::move(job));
        } else {
            mOwner.finished(job, {});
        }
    }
    mHeld = std::move(kept);
}

void BatchCrew::give(BatchJob job) {
    mHeld.push_back({std::move(job)});
    giveHeld();
}

void BatchCrew::giveHeld() {
    for (auto job = mHeld.begin(); job != mHeld.end();) {
        Worker* worker = mOwner.mayStart(*job) ? freeWorker(*job) : nullptr;
        if (worker == nullptr) {
            ++job;
            continue;
        }
        Job next = std::move(*job);
        mHeld.erase(job);
        start(*worker, std::move(next));
        job = mHeld.begin();
    }
}

// If the worker died since its last line, starts a new one.
void BatchCrew::start(Worker& worker, Job job) {
    bool sent = worker.isAlive() && sendJob(worker.socket(), job);
    if (!sent) {
        if (worker.isAlive()) bury(worker);
        const std::string fault = worker.start(mOwner.work);
        if (!fault.empty() && anyAlive()) {
            mNoMore = true;
            mHeld.push_front(std::move(job));
            return;
        }
        if (!fault.empty()) {
            const std::string why = "--jobs: cannot start a worker: " + fault;
            mOwner.lost(why);
            return mOwner.finished(job, failedResult(job, why));
        }
        sent = sendJob(worker.socket(), job);
    }
    worker.lastLine = job.line;
    worker.drawing = std::move(job);
    if (!sent) bury(worker);
}

// Ends the worker, if there is one, and returns its wait status.
int BatchCrew::end(Worker& worker) {
    if (worker.isAlive()) mNoMore = false;  // there is room for another one
    worker.leaves = false;
    return worker.end([&](bool atEnd) { passOn(worker, atEnd); });
}

// The worker died.
void BatchCrew::bury(Worker& worker) {
    worker.kill();  // if it should still be there, without its socket
    const std::string how = howItDied(end(worker));
    const std::optional<Job> drawing = std::exchange(worker.drawing, std::nullopt);
    std::deque<Job> syncing = std::exchange(worker.syncing, {});
    worker.bytes = 0;
    if (drawing) mOwner.finished(*drawing, failedResult(*drawing, how));
    for (; !syncing.empty(); syncing.pop_back()) {
        Job& job = syncing.back();
        if (job.again) {
            mOwner.finished(job, failedResult(job, how));
        } else {
            job.again = true;
            mHeld.push_front(std::move(job));
        }
    }
}

void BatchCrew::answered(Worker& worker) {
    BatchResult result;
    if (!receiveResult(worker.socket(), result)) return bury(worker);
    passOn(worker);
    if (result.last) worker.leaves = true;
    if (worker.drawing && worker.drawing->line == result.line) {
        Job job = *std::exchange(worker.drawing, std::nullopt);
        if (!result.made) mOwner.finished(job, std::move(result));
        if (result.made) worker.bytes += job.json.size();
        if (result.made) worker.syncing.push_back(std::move(job));
    } else if (!worker.syncing.empty()) {  // in their order
        const Job job = std::move(worker.syncing.front());
        worker.syncing.pop_front();
        worker.bytes -= job.json.size();
        mOwner.finished(job, std::move(result));
    }
    if (worker.leaves && !worker.isBusy()) end(worker);
}

// Passes on what the worker wrote to standard error. Messages of this program get the number of the line.
void BatchCrew::passOn(Worker& worker, bool atEnd) {
    static const std::string kName = "zvtext: ";
    std::string text;
    for (const std::string& message : worker.takeErrors(atEnd)) {
        const bool own = message.compare(0, kName.size(), kName) == 0;
        text += own ? kName + "line " + std::to_string(worker.lastLine) + ": " + message.substr(kName.size())
                    : message;
    }
    if (!text.empty()) mOwner.said(text);
}

// Only living workers, because poll takes no more entries than descriptors.
void BatchCrew::addEvents(std::vector<pollfd>& events) {
    for (Worker& worker : mWorkers) {
        worker.event = events.size();
        if (worker.socket() < 0 && worker.errors() < 0) continue;
        events.push_back({worker.socket(), POLLIN, 0});
        events.push_back({worker.errors(), POLLIN, 0});
    }
}

void BatchCrew::handle(const std::vector<pollfd>& events) {
    for (Worker& worker : mWorkers) {
        // A worker that has been started since then has other descriptors.
        const size_t at = worker.event;
        if (at >= events.size() || worker.socket() < 0 || events[at].fd != worker.socket()) continue;
        if (events[at + 1].revents != 0) passOn(worker);
        if (events[at].revents != 0) answered(worker);
    }
}

void BatchCrew::closeEnds() const {
    for (const Worker& worker : mWorkers) worker.closeEnds();
}

}  // namespace zvtext
