// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FAILURE_H_
#define ZVEX_SCENE_FAILURE_H_

#include <stdexcept>
#include <string>

namespace Zvex::scene {

// What the scene throws, besides std::bad_alloc. what() is one line: the place, ": " and the cause. The place
// is the setting, as the command line and a batch call it ("--size", "--bevel soften"), or TEXT.
class Error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    std::string place() const { return std::string(what()).substr(0, split()); }
    std::string cause() const {
        return std::string(what()).substr(split() == std::string::npos ? 0 : split() + 2);
    }

private:
    size_t split() const { return std::string(what()).find(": "); }
};

// The scene asks for something that cannot be.
struct UsageError : Error {
    using Error::Error;
};

// The scene is fine, but a file or the machine is not.
struct Failure : Error {
    using Error::Error;
};

// No room for a file.
struct DiskFull : Failure {
    using Failure::Failure;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FAILURE_H_
