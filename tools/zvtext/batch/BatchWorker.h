// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_

#include <cstdint>
#include <string>

#include "scene/FolderScope.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

// A job for a worker of a batch, and its answer.
struct BatchJob {
    uint64_t line = 0;    // its number
    std::string id;       // JSON, for the result; empty: none
    std::string path;     // path of the picture
    std::string metrics;  // path of its metrics; empty: none
    std::string json;     // the line
};
struct BatchResult {
    bool failed = false;
    bool last = false;            // the worker takes no more jobs
    bool diskFull = false;        // whether that made it fail
    std::string json;             // the result, on one line
    BatchJournal::Record record;  // an empty job: nothing to record
};

// Use a stream socket between two processes of one program. False if the other end is closed.
bool sendJob(int socket, const BatchJob& job);
bool receiveJob(int socket, BatchJob& job);
bool sendResult(int socket, const BatchResult& result);
bool receiveResult(int socket, BatchResult& result);

// The result of a failed line, without the path if there is none yet. A long message is cut.
BatchResult failedResult(const BatchJob& job, const std::string& message);

// The settings that all lines share.
struct BatchSettings {
    RenderOptions defaults;
    FolderScope readable;  // folders for the files that lines name
    FilePlaces reads;      // these files
    FolderScope writes;    // folders for their pictures and metrics
    std::string digest;    // of the defaults as given
    bool resumes = false;  // keeps existing pictures if they are complete and the line's own
};

// Answers jobs until the other end closes. Warnings go to standard error, as render's do. Fonts stay loaded
// from one job to the next; after some dozens of them the worker asks to be replaced.
void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
