// SPDX-License-Identifier: Apache-2.0
// The log for fuzz targets: formats the lines, so that their arguments are read, and drops them.
#include <android/log.h>

#include <cstdarg>
#include <cstdio>

extern "C" int __android_log_print(int /*priority*/, const char* /*tag*/, const char* format, ...) {
    static thread_local char line[4096];
    va_list arguments;
    va_start(arguments, format);
    const int length = format != nullptr ? std::vsnprintf(line, sizeof(line), format, arguments) : 0;
    va_end(arguments);
    return length;
}
