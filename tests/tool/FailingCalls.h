// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_TOOL_FAILINGCALLS_H_
#define ZVEX_TESTS_TOOL_FAILINGCALLS_H_

#include <functional>
#include <string>

// The failed call of a run with one failing call on files.
struct FailedCall {
    int calls = 0;     // on files in the folder, in all
    int status = -1;   // exit status of the process; -1 when it was killed
    std::string name;  // "write, /path"; empty if the process made fewer calls
    bool supported = true;
};

enum class Fails {
    WithError,  // "no space left" for writing, else an input/output error
    AsEnd       // only reads: as if the file ended here
};

// Runs `process` in a child process, which exits with its result, and makes call number `number` (from 1) on
// files below `folder` fail: opening, reading, writing, closing, renaming and so on, by the child and its
// children. The kernel passes on the calls before it does them, so this covers every library. Writing to the
// folder's "stderr" does not count, and neither does opening a file whose name begins with "std".
FailedCall runWithFailingCall(const std::string& folder, int number, Fails how,
                              const std::function<int()>& process);

#endif  // ZVEX_TESTS_TOOL_FAILINGCALLS_H_
