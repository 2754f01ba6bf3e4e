// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHRUN_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHRUN_H_

#include <string>

#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

constexpr int kMaxJobs = 256;

struct BatchArguments {
    GivenOptions given;  // used for what a line leaves out
    ReadOptions reads;
    std::string input = "-";
    std::string output = "{index}.png";  // the name if a line has none; {index} is the line's number
    std::string metrics;                 // the same for the metrics; empty: none
    std::string outputFolder = ".";
    bool allowOutside = false;  // allows outputs to be absolute or to leave the folder
    double firstLine = 1;       // the number of the first line
    int jobs = 1;               // 0: as many as usableCores()
    bool resume = false, quiet = false;
};

// Runs `zvtext batch`: renders the lines of the input (see BatchLine.h) in worker processes. Prints one JSON
// object for each line to standard output, in the order of the lines, as soon as it and those before it are
// done. If a line is invalid or its worker dies, only that line fails. What workers write to standard error
// is passed on; this program's messages get the line's number.
//
// A result that is no failure says that the files are on the disk, with their names, should the machine fail.
// Workers do not wait for that: see GroupSync.h.
//
// Memory: for each worker a line and some lines of 1 MiB in all, 1024 results, and some 40 bytes for each
// output's name (if a name is used again, the later line fails). If the reader of the results stops, the
// batch goes on until 1024 of them wait. While 64 MiB of streamed pictures wait for the reader, no more of
// them are started, but other lines are; so at most 64 MiB and a picture for each worker are kept.
//
// On SIGINT, SIGTERM or SIGHUP the running lines are finished and printed; a second signal ends it at once.
// If killed, it never leaves partial pictures. It may leave temporary files, which a run with --resume
// removes; its workers end with it. If the input or the output fails, it ends after the running lines.
// Returns the exit status: 0, 1 if a line failed, 128 + the signal. Closed standard output ends the process
// as SIGPIPE does, or is a Failure if pictures go there. Throws UsageError or Failure. The process must have
// one thread: workers are forks of it.
int runBatch(const BatchArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHRUN_H_
