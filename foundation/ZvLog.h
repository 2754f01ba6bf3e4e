// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_ZVLOG_H_
#define ZVEX_FOUNDATION_ZVLOG_H_

#include <android/log.h>

#include <cstdint>

// Lets the compiler check a format string against its arguments; positions count from 1.
#if defined(__GNUC__)
#define ZV_PRINTF_FORMAT(formatPosition, firstArgument) \
    __attribute__((__format__(__printf__, formatPosition, firstArgument)))
#else
#define ZV_PRINTF_FORMAT(formatPosition, firstArgument)
#endif

namespace Zvex {

class ZvString;

// Single bits, so that a mask can hold any set of them.
enum ZvLogLevel : uint32_t {
    ZV_LOG_DEBUG = 1,
    ZV_LOG_INFO = 2,
    ZV_LOG_WARNING = 4,
    ZV_LOG_ERROR = 8,
    ZV_LOG_TIME = 16,  // time measurements; they are written at the info priority
};

// The log switches of the process and the formatted helpers. Error lines are written always; every debug or
// informational line of the library asks IsAllLogEnable first (ZV_DEBUG_LOG below). The switches are set
// while the library loads and read freely afterwards: they are plain variables without a lock.
class ZvLog {
public:
    // Compile-time switch of the debug and informational lines: the build option ZVEX_DEBUG_LOG.
#if defined(ZVEX_DEBUG_LOG)
    static constexpr bool DEBUG_ENABLE = true;
#else
    static constexpr bool DEBUG_ENABLE = false;
#endif

    static uint8_t mCurrentLogLevel;  // ZvLogLevel bits that printLog and printTime write; 0xFF at start
    static bool isCheckedBuildType;   // false until the first SetBuildType
    static bool isBuildTypeEngMode;   // true until SetBuildType says otherwise

    // Replaces mCurrentLogLevel.
    static void setPrintLogLevel(unsigned char mask);

    // Writes one line with the tag "zveffect": the file name without its extension in brackets, then the
    // message. `file` is cut at its last '.'; a name without one is taken whole. Messages are cut at 1023
    // bytes. Writes nothing when `file` or `format` is null, when no bit of `level` is enabled, or when
    // `file` is longer than 255 bytes. The priority follows the level; anything but the first four levels is
    // informational. Always returns 0.
    static int printLog(ZvLogLevel level, const char* file, const char* format, ...) ZV_PRINTF_FORMAT(3, 4);

    // A time measurement, in milliseconds with three decimals, when ZV_LOG_TIME is enabled. The line itself
    // is informational, so ZV_LOG_INFO must be enabled too.
    static void printTime(const char* file, const char* label, long micros);
    static void printTime(const char* file, const char* label, long micros, const char* format, ...)
        ZV_PRINTF_FORMAT(4, 5);

    // Tells whether the application runs an engineering build. Only the first call of the process counts.
    static void SetBuildType(bool engMode);
    static bool IsCheckedBuildType();
    static bool IsBuildTypeEngMode();

    // Whether debug and informational lines are written.
    static bool IsAllLogEnable() {
        return DEBUG_ENABLE && isBuildTypeEngMode;
    }

    // UTF-8 form of `string` for a log line: "[### null ###]" for null, "[### string is too long ###]" when
    // it needs more than 512 bytes with its terminator. The result stays valid until the calling thread's
    // next call.
    static const char* ConvertLog(const ZvString* string);
};

}  // namespace Zvex

// Writes a debug line, as printf would format it, when ZvLog::IsAllLogEnable(). Use: ZV_DEBUG_LOG(tag,
// format, ...). The arguments are evaluated only then; builds without ZVEX_DEBUG_LOG check the format and
// generate no code.
#define ZV_DEBUG_LOG(tag, ...)                                          \
    do {                                                                \
        if (::Zvex::ZvLog::IsAllLogEnable()) {                          \
            __android_log_print(ANDROID_LOG_DEBUG, (tag), __VA_ARGS__); \
        }                                                               \
    } while (false)

#endif  // ZVEX_FOUNDATION_ZVLOG_H_
