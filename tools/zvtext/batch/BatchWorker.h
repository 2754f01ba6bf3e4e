// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_

#include <string>

#include "scene/FolderScope.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

// The settings that all lines share.
struct BatchSettings {
    RenderOptions defaults;
    FolderScope readable;  // folders for the files that lines name
    FilePlaces reads;      // these files
    FolderScope writes;    // folders for their pictures and metrics
    std::string digest;    // of the defaults as given
    bool resumes = false;  // keeps existing pictures if they are complete and the line's own
};

// Answers jobs until the other end closes. A result that is no failure says that the files are on the disk.
// Warnings go to standard error, as render's do. Fonts stay loaded from one job to the next; after some
// dozens of them the worker asks to be replaced. Starts a thread.
void runBatchWorker(int socket, const BatchSettings& settings, const BatchJournal& journal);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHWORKER_H_
