// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_JNI_FONTLOCK_H_
#define ZVEX_PLATFORM_HOST_JNI_FONTLOCK_H_

#include <mutex>

namespace hostjava {

// Lock it to call the font manager, which has no lock of its own. No other lock is taken under it.
inline std::mutex& fontLock() {
    static std::mutex* const lock =
        new std::mutex;  // never destroyed: text may be measured while the process ends
    return *lock;
}

}  // namespace hostjava

#endif  // ZVEX_PLATFORM_HOST_JNI_FONTLOCK_H_
