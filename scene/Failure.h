// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FAILURE_H_
#define ZVEX_SCENE_FAILURE_H_

#include <stdexcept>

namespace Zvex::scene {

// The command line asks for something that cannot be (exit status 2). The message is one line and names the
// argument.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line is fine, but a file or the machine is not (exit status 1). One line that names the
// argument.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// No room for a file.
struct DiskFull : Failure {
    using Failure::Failure;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FAILURE_H_
