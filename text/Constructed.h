// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_CONSTRUCTED_H_
#define ZVEX_TEXT_CONSTRUCTED_H_

#include "foundation/Error.h"

// Every operation starts with this; `result` is its return value then, empty for operations without one.
#define ZVEX_RETURN_UNLESS_CONSTRUCTED(result)               \
    do {                                                     \
        if (mImpl == nullptr) {                              \
            ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED); \
            return result;                                   \
        }                                                    \
    } while (false)

#endif  // ZVEX_TEXT_CONSTRUCTED_H_
