// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCREW_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCREW_H_

#include <poll.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/zvtext/batch/BatchMessages.h"
#include "tools/zvtext/batch/WorkerProcess.h"

namespace zvtext {

// The workers of a batch. A worker takes a line after the other; the files of some lines before may still be
// on their way to the disk. If a worker dies, the line that it was drawing fails, and others make those
// files.
class BatchCrew {
public:
    struct Owner {
        std::function<void(int socket)> work;               // what a new process does
        std::function<bool(const BatchJob& job)> mayStart;  // else it waits
        std::function<void(const BatchJob& job, BatchResult result)> finished;
        std::function<void(const std::string& text)> said;  // on standard error
        std::function<void(const std::string& why)> lost;   // no worker can be started
    };

    BatchCrew(size_t size, Owner owner);
    ~BatchCrew();
    BatchCrew(const BatchCrew&) = delete;
    BatchCrew& operator=(const BatchCrew&) = delete;

    // Whether there is a worker for another line. Lines that may not start yet do not keep others back.
    bool hasRoom();
    bool isBusy() const;

    // Gives the job to a free worker, and starts one if need be. If no more workers can be started, the job
    // waits until one is free.
    void give(BatchJob job);
    // Gives jobs that wait to workers that have become free.
    void giveHeld();
    // Finishes those that no worker had, without a result.
    void dropHeld();

    // Adds what to poll for; reacts to it, given the same events.
    void addEvents(std::vector<pollfd>& events);
    void handle(const std::vector<pollfd>& events);

    // In a new process: closes what belongs to the others.
    void closeEnds() const;

private:
    struct Job : BatchJob {
        bool again = false;  // another worker died before it was on the disk
    };
    struct Worker : WorkerProcess {
        std::optional<Job> drawing;
        std::deque<Job> syncing;  // with their JSON, to make them again if the worker dies
        size_t bytes = 0;         // of that JSON
        bool leaves = false;      // takes no more jobs
        uint64_t lastLine = 0;
        size_t event = 0;  // its place among the polled

        bool isBusy() const { return drawing || !syncing.empty(); }
    };

    bool canTake(const Worker& worker, const Job& job) const;
    bool anyAlive() const;
    Worker* freeWorker(const Job& job);
    void start(Worker& worker, Job job);
    int end(Worker& worker);
    void bury(Worker& worker);
    void answered(Worker& worker);
    void passOn(Worker& worker, bool atEnd = false);

    const Owner mOwner;
    std::vector<Worker> mWorkers;
    std::deque<Job> mHeld;  // jobs that wait for a worker
    size_t mMaxSyncing;     // for each worker
    bool mNoMore = false;   // no more workers can be started, for lack of descriptors, processes or memory
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCREW_H_
