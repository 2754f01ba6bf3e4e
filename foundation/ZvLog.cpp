// SPDX-License-Identifier: Apache-2.0
#include "foundation/ZvLog.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "foundation/ZvString.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "zveffect";
constexpr size_t kFileNameSize = 256;
constexpr size_t kMessageSize = 1024;
constexpr int kConvertedSize = 512;

int priorityOf(ZvLogLevel level) {
    switch (level) {
        case ZV_LOG_DEBUG:
            return ANDROID_LOG_DEBUG;
        case ZV_LOG_WARNING:
            return ANDROID_LOG_WARN;
        case ZV_LOG_ERROR:
            return ANDROID_LOG_ERROR;
        default:
            return ANDROID_LOG_INFO;
    }
}

}  // namespace

uint8_t ZvLog::mCurrentLogLevel = 0xFF;
bool ZvLog::isCheckedBuildType = false;
bool ZvLog::isBuildTypeEngMode = true;

void ZvLog::setPrintLogLevel(unsigned char mask) {
    mCurrentLogLevel = mask;
}

int ZvLog::printLog(ZvLogLevel level, const char* file, const char* format, ...) {
    if (file == nullptr || format == nullptr || (level & mCurrentLogLevel) == 0) return 0;
    const size_t length = std::strlen(file);
    if (length >= kFileNameSize) return 0;

    char name[kFileNameSize];
    std::memcpy(name, file, length + 1);
    if (char* extension = std::strrchr(name, '.')) *extension = '\0';

    char message[kMessageSize];
    va_list arguments;
    va_start(arguments, format);
    if (std::vsnprintf(message, sizeof message, format, arguments) < 0) message[0] = '\0';
    va_end(arguments);
    __android_log_print(priorityOf(level), kTag, "[%s] %s \n", name, message);
    return 0;
}

void ZvLog::printTime(const char* file, const char* label, long micros) {
    if ((mCurrentLogLevel & ZV_LOG_TIME) == 0) return;
    printLog(ZV_LOG_INFO, file, "[Time] %s %.3fms", label, micros / 1000.0f);
}

void ZvLog::printTime(const char* file, const char* label, long micros, const char* format, ...) {
    if ((mCurrentLogLevel & ZV_LOG_TIME) == 0) return;
    char text[kMessageSize] = "";
    if (format != nullptr) {
        va_list arguments;
        va_start(arguments, format);
        if (std::vsnprintf(text, sizeof text, format, arguments) < 0) text[0] = '\0';
        va_end(arguments);
    }
    printLog(ZV_LOG_INFO, file, "[Time] %s %.3fms %s", label, micros / 1000.0f, text);
}

void ZvLog::SetBuildType(bool engMode) {
    if (isCheckedBuildType) return;
    isCheckedBuildType = true;
    isBuildTypeEngMode = engMode;
}

bool ZvLog::IsCheckedBuildType() {
    return isCheckedBuildType;
}

bool ZvLog::IsBuildTypeEngMode() {
    return isBuildTypeEngMode;
}

const char* ZvLog::ConvertLog(const ZvString* string) {
    // One buffer per thread, so that lines of two threads do not mix.
    static thread_local char converted[kConvertedSize];
    if (string == nullptr) return "[### null ###]";
    if (string->GetUTF8Size() > kConvertedSize) return "[### string is too long ###]";
    if (string->GetUTF8(converted, kConvertedSize) == 0) converted[0] = '\0';
    return converted;
}

}  // namespace Zvex
