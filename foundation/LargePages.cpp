// SPDX-License-Identifier: Apache-2.0
#include "foundation/LargePages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Zvex {

void preferLargePages(void* memory, size_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr uintptr_t kLargePage = uintptr_t{2} << 20;
    if (memory == nullptr || bytes < 2 * kLargePage) return;
    const uintptr_t begin = reinterpret_cast<uintptr_t>(memory);
    const uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
    const uintptr_t end = (begin + bytes) / kLargePage * kLargePage;
    // A failure only costs time.
    if (first < end) static_cast<void>(madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE));
#else
    static_cast<void>(memory);
    static_cast<void>(bytes);
#endif
}

}  // namespace Zvex
