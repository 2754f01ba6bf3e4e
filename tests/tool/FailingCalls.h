// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_TOOL_FAILINGCALLS_H_
#define ZVEX_TESTS_TOOL_FAILINGCALLS_H_

#include <functional>
#include <string>

// What failed in a run of which one call on files failed.
struct FailedCall {
    int calls = 0;     // on files in the folder, until the end
    int status = -1;   // exit status of the process; -1 when it was killed
    std::string name;  // "write, /path"; empty where the process made fewer calls
    bool supported = true;
};

enum class Fails {
    WithError,  // no space left where it is about writing, else an input/output error
    AsEnd       // reads alone: as if the file ended here
};

// Runs `process` in a child process, which ends with its result, and lets the call number `number` (from 1)
// on files below `folder` fail: opening, reading, writing, closing, renaming and so on, of the child and of
// its children. The kernel hands the calls over before it does them, so no library is passed over. What is
// written to the folder's "stderr" does not count, nor is the opening of a file whose name begins with "std".
FailedCall runWithFailingCall(const std::string& folder, int number, Fails how,
                              const std::function<int()>& process);

#endif  // ZVEX_TESTS_TOOL_FAILINGCALLS_H_
