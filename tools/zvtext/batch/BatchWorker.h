// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_

#include <cstdint>
#include <string>

#include "scene/FolderScope.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

// What a worker of a batch is asked for, and its answer.
struct BatchJob {
    uint64_t line = 0;    // its number, from 1
    std::string path;     // where the picture goes
    std::string metrics;  // where its metrics go; empty: nowhere
    std::string json;     // the line
};
struct BatchResult {
    bool failed = false;
    bool last = false;            // the worker wants no more jobs
    bool diskFull = false;        // why it failed
    std::string json;             // the result, of one line
    BatchJournal::Record record;  // an empty job: nothing to record
};

// Over a stream socket between two processes of one program. False where the other end is gone.
bool sendJob(int socket, const BatchJob& job);
bool receiveJob(int socket, BatchJob& job);
bool sendResult(int socket, const BatchResult& result);
bool receiveResult(int socket, BatchResult& result);

// The result of a line that failed; no path where it is empty. A long message is cut.
BatchResult failedResult(uint64_t line, const std::string& path, const std::string& message);

// What all lines have in common.
struct BatchSettings {
    RenderOptions defaults;
    FolderScope readable;  // where the files may lie that lines name
    FilePlaces reads;      // these files
    FolderScope writes;    // and their pictures and metrics
    std::string digest;    // of the defaults as given
    bool resumes = false;  // leaves the pictures that are there, whole and the line's own
};

// Answers jobs until the other end closes. Warnings go to standard error, as render's do. Fonts stay loaded
// from one job to the next; after some dozens of them the worker asks to be replaced.
void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
