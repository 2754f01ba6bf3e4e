// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_LOG_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_LOG_H_

// The platform log. On a desktop a line goes to standard error as "E/Tag: text" (the letter names the
// priority) and to every host::LogCapture that lives at the time.

#ifdef __cplusplus
extern "C" {
#endif

// The first argument of __android_log_print; the numbers are the platform's.
typedef enum android_LogPriority {
    ANDROID_LOG_UNKNOWN = 0,
    ANDROID_LOG_DEFAULT,
    ANDROID_LOG_VERBOSE,
    ANDROID_LOG_DEBUG,
    ANDROID_LOG_INFO,
    ANDROID_LOG_WARN,
    ANDROID_LOG_ERROR,
    ANDROID_LOG_FATAL,
    ANDROID_LOG_SILENT,
} android_LogPriority;

// Formats as printf does and writes one line; safe from any thread. A null tag or format counts as empty.
// Returns the length of the text in bytes.
int __android_log_print(int priority, const char* tag, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((__format__(printf, 3, 4)))
#endif
    ;

#ifdef __cplusplus
}
#endif

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_ANDROID_LOG_H_
