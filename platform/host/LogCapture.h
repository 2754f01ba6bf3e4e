// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LOGCAPTURE_H_
#define ZVEX_PLATFORM_HOST_LOGCAPTURE_H_

#include <string>
#include <vector>

namespace host {

// One line of the platform log.
struct LogLine {
    int priority = 0;  // 3 debug, 4 info, 5 warning, 6 error
    std::string tag;   // the part of the library that wrote it
    std::string text;  // as the caller gave it; may end with a newline
};

// Keeps every log line that any thread writes while it lives; the lines still go to standard error. Captures
// may nest and may live on several threads at once: each keeps all lines of its own lifetime.
class LogCapture {
public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // A copy of the lines so far, in order.
    std::vector<LogLine> lines() const;

private:
    friend struct LogSink;
    std::vector<LogLine> mLines;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LOGCAPTURE_H_
