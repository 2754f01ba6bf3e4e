// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_

#include <CLI/App.hpp>
#include <string>

#include "scene/FolderScope.h"
#include "tools/zvtext/render/RenderCommand.h"

namespace zvtext {

struct BatchArguments {
    GivenOptions given;  // what a line leaves out, as render's command line has it
    ReadOptions reads;
    std::string input = "-";
    std::string output = "{index}.png";  // the name where a line has none; {index} is the line's number
    std::string metrics;                 // the same of the metrics; empty: none
    std::string outputFolder = ".";
    bool allowOutside = false;  // outputs may be absolute or leave the folder
    int jobs = 1;               // 0: one for each core
    bool resume = false, quiet = false;
};

void addBatchOptions(CLI::App& command, BatchArguments& arguments);

// Runs `zvtext batch`: renders the lines of the input (BatchLine.h says what a line is) in worker processes
// and prints one JSON object for each to standard output, in the order of the lines, as soon as it and those
// before it are done. A line that is wrong, or whose worker dies, fails alone. What workers write to standard
// error is passed on, with the line's number where it is a message of this program.
//
// Memory: one line for each worker, kMaxWaiting results, and some 40 bytes for each output's name (a name
// that comes again is an error of the later line).
//
// SIGINT, SIGTERM and SIGHUP let the lines under way be finished and printed; a second one ends it at once.
// Killed at any moment it leaves whole pictures, and temporary files, which a run with --resume takes away;
// its workers end with it. An input or an output that fails ends it likewise, after the lines under way.
// Returns the exit status: 0, 1 where a line failed, 128 + the signal. Closed standard output ends the
// process as SIGPIPE does. Throws UsageError or Failure. The process must have one thread: workers are forks
// of it.
int runBatch(const BatchArguments& arguments);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHCOMMAND_H_
