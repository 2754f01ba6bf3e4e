// SPDX-License-Identifier: Apache-2.0
// The desktop sink of the platform log: standard error, plus whoever captures lines at the time.
#include <android/log.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <string>
#include <vector>

#include "platform/host/LogCapture.h"

namespace host {

// The live captures and the lock that keeps lines whole. Never destroyed: objects that outlive main still
// log.
struct LogSink {
    std::mutex mutex;
    std::vector<LogCapture*> captures;

    static LogSink& get() {
        static LogSink* sink = new LogSink;
        return *sink;
    }

    void write(int priority, const char* tag, const std::string& text) {
        static const char kLetters[] = "??VDIWEFS";
        const char letter = priority >= 0 && priority <= 8 ? kLetters[priority] : '?';
        std::lock_guard<std::mutex> lock(mutex);
        std::fprintf(stderr, "%c/%s: %s\n", letter, tag, text.c_str());
        for (LogCapture* capture : captures) capture->mLines.push_back({priority, tag, text});
    }
};

LogCapture::LogCapture() {
    LogSink& sink = LogSink::get();
    std::lock_guard<std::mutex> lock(sink.mutex);
    sink.captures.push_back(this);
}

LogCapture::~LogCapture() {
    LogSink& sink = LogSink::get();
    std::lock_guard<std::mutex> lock(sink.mutex);
    sink.captures.erase(std::remove(sink.captures.begin(), sink.captures.end(), this), sink.captures.end());
}

std::vector<LogLine> LogCapture::lines() const {
    std::lock_guard<std::mutex> lock(LogSink::get().mutex);
    return mLines;
}

}  // namespace host

extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
    std::string text;
    if (format != nullptr) {
        va_list arguments, measured;
        va_start(arguments, format);
        va_copy(measured, arguments);
        const int length = std::vsnprintf(nullptr, 0, format, measured);
        va_end(measured);
        if (length > 0) {
            text.resize(static_cast<size_t>(length) + 1);
            std::vsnprintf(&text[0], text.size(), format, arguments);
            text.resize(static_cast<size_t>(length));
        }
        va_end(arguments);
    }
    const int written = static_cast<int>(text.size());
    host::LogSink::get().write(priority, tag != nullptr ? tag : "", text);
    return written;
}
