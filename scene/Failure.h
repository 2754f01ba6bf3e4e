// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FAILURE_H_
#define ZVEX_SCENE_FAILURE_H_

#include <stdexcept>
#include <string>

namespace Zvex::scene {

// The errors that the scene throws, besides std::bad_alloc. what() is one line: the place, ": " and the
// cause. The place is the setting, named as in style files and batches: "size", "text", "font", "bevel
// soften", "layers[0].spread".
class Error : public std::runtime_error {
public:
    // The place may also be written as on the command line, "--size" and "TEXT".
    explicit Error(const std::string& message)
        : std::runtime_error(withoutNul(isText(message) ? "text" + message.substr(4)
                                                        : message.substr(isOption(message) ? 2 : 0))),
          mOption(isOption(message)),
          mText(isText(message)) {}

    std::string place() const { return message().substr(0, message().find(": ")); }
    std::string cause() const {
        const size_t split = message().find(": ");
        return message().substr(split == std::string::npos ? 0 : split + 2);
    }
    std::string onCommandLine() const {
        return mText ? "TEXT" + message().substr(4) : (mOption ? "--" : "") + message();
    }

private:
    // what() would end at a NUL that the message quotes.
    static std::string withoutNul(std::string message) {
        for (size_t at = 0; (at = message.find('\0', at)) != std::string::npos;)
            message.replace(at, 1, "\\0");
        return message;
    }
    static bool isOption(const std::string& message) { return message.compare(0, 2, "--") == 0; }
    static bool isText(const std::string& message) { return message.compare(0, 6, "TEXT: ") == 0; }
    std::string message() const { return what(); }

    bool mOption, mText;
};

// The scene asks for something impossible.
struct UsageError : Error {
    using Error::Error;
};

// The scene is valid, but a file or the machine fails.
struct Failure : Error {
    using Error::Error;
};

// No room for a file.
struct DiskFull : Failure {
    using Failure::Failure;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FAILURE_H_
