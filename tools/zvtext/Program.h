// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_PROGRAM_H_
#define ZVEX_TOOLS_ZVTEXT_PROGRAM_H_

namespace zvtext {

// Runs the whole program for a command line, reports errors on standard error and returns the exit status.
// Throws nothing.
int runProgram(int argc, char** argv);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_PROGRAM_H_
