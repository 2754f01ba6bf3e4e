// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHMESSAGES_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHMESSAGES_H_

#include <cstddef>
#include <cstdint>
#include <string>

#include "scene/Json.h"
#include "tools/zvtext/batch/BatchJournal.h"

namespace zvtext {

// A job for a worker of a batch.
struct BatchJob {
    // Whether the picture goes to standard output, behind its result.
    bool isStreamed() const { return path == "-"; }

    uint64_t line = 0;    // its number
    std::string id;       // JSON, for the result; empty: none
    std::string path;     // path of the picture; "-" is standard output
    std::string metrics;  // path of its metrics; empty: none
    std::string json;     // the line
    size_t place = 0;     // of its result; workers do not get it
};

// A worker's answer. A picture that is made but not yet on the disk has two, and the worker takes another job
// after the first.
struct BatchResult {
    uint64_t line = 0;
    bool made = false;  // the first answer of two; it has no result
    bool last = false;  // the worker takes no more jobs
    bool failed = false;
    bool diskFull = false;        // whether that made it fail
    std::string json;             // the result, on one line
    std::string picture;          // the bytes behind it, if it is streamed
    BatchJournal::Record record;  // an empty job: nothing to record
};

// Use a stream socket between two processes of one program. False if the other end is closed.
bool sendJob(int socket, const BatchJob& job);
bool receiveJob(int socket, BatchJob& job);
bool sendResult(int socket, const BatchResult& result);
bool receiveResult(int socket, BatchResult& result);

// How every result begins: line, id, path, as far as the job has them.
Zvex::scene::Json resultOf(const BatchJob& job);

// The result of a failed line. A long message is cut.
BatchResult failedResult(const BatchJob& job, const std::string& message);
// The same for the exception that is being handled.
BatchResult failedResult(const BatchJob& job);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHMESSAGES_H_
