// SPDX-License-Identifier: Apache-2.0
//
// The desktop's platform log: writes to standard error and to every active capture.
#include <android/log.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <mutex>
#include <new>
#include <vector>

#include "platform/host/LogCapture.h"

namespace host {

// The active captures and the lock that keeps lines whole. Never destroyed, because objects that outlive main
// may log.
struct LogSink {
    std::mutex mutex;
    std::vector<LogCapture*> captures;

    static LogSink& get() {
        static LogSink* sink = new LogSink;
        return *sink;
    }

    void write(int priority, const char* tag, const char* text) {
        static const char kLetters[] = "??VDIWEFS";
        const char letter = priority >= 0 && priority <= 8 ? kLetters[priority] : '?';
        const size_t length = std::strlen(text);
        const char* end = length > 0 && text[length - 1] == '\n' ? "" : "\n";
        std::lock_guard<std::mutex> lock(mutex);
        std::fprintf(stderr, "%c/%s: %s%s", letter, tag, text, end);
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

// Does not throw: callers also report lack of memory here. If memory is short, a line longer than `usual` is
// cut.
extern "C" int __android_log_print(int priority, const char* tag, const char* format, ...) {
    char usual[512] = "";
    std::unique_ptr<char[]> longer;
    const char* text = usual;
    int length = 0;
    if (format != nullptr) {
        va_list arguments, again;
        va_start(arguments, format);
        va_copy(again, arguments);
        length = std::max(0, std::vsnprintf(usual, sizeof(usual), format, arguments));
        const size_t size = static_cast<size_t>(length) + 1;
        if (size > sizeof(usual)) longer.reset(new (std::nothrow) char[size]);
        if (longer != nullptr) {
            std::vsnprintf(longer.get(), size, format, again);
            text = longer.get();
        }
        va_end(again);
        va_end(arguments);
    }
    host::LogSink::get().write(priority, tag != nullptr ? tag : "", text);
    return length;
}
