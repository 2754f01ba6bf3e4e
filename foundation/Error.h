// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_ERROR_H_
#define ZVEX_FOUNDATION_ERROR_H_

#include <android/log.h>

#include <cstdint>

namespace Zvex {

// The codes the library reports. Java reads them as plain ints, so the numbers never change.
enum ZvErrorCode : uint32_t {
    ZV_ERROR_NONE = 0,                // nothing has been reported on this thread
    ZV_ERROR_PLATFORM = 1,            // a platform call failed (mutex creation)
    ZV_ERROR_TOO_MANY_POSITIONS = 2,  // ten traversals of a list are open already
    ZV_ERROR_OUT_OF_RANGE = 3,        // an index lies outside its range
    ZV_ERROR_ALREADY_CONSTRUCTED = 4,
    ZV_ERROR_INVALID_ARGUMENT = 7,  // null, empty, or a size out of range
    ZV_ERROR_NOT_CONSTRUCTED = 8,   // Construct has not run, or an inner part is missing
    ZV_ERROR_NOT_FOUND = 9,         // not registered, or a traversal ran past its end
    ZV_ERROR_OPEN_FILE = 11,
    ZV_ERROR_NO_TEXT_OBJECT = 19,  // the calling Java object has no native text object
};

// The calling thread's last error: 0 when a thread starts, replaced by each report, never cleared. A
// successful operation keeps the code of an earlier failure.
class Error {
public:
    // Keeps the low 32 bits of `code` as the calling thread's last error.
    static void SetError(unsigned long code);
    static unsigned long GetError();
};

}  // namespace Zvex

// Reports a failure: one error line under `tag`, naming the code and the source line, then the thread's last
// error.
#define ZV_REPORT_ERROR(tag, code)                                                                        \
    do {                                                                                                  \
        __android_log_print(ANDROID_LOG_ERROR, (tag), "@ Native Error %ld : %d", static_cast<long>(code), \
                            __LINE__);                                                                    \
        ::Zvex::Error::SetError(code);                                                                    \
    } while (false)

#endif  // ZVEX_FOUNDATION_ERROR_H_
