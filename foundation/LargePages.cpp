// SPDX-License-Identifier: Apache-2.0
#include "foundation/LargePages.h"

#include <cstdint>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace Zvex {

void preferLargePages(void* memory, size_t bytes) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    constexpr uintptr_t LARGE_PAGE = uintptr_t{2} << 20;
    if (memory == nullptr || bytes < 2 * LARGE_PAGE) return;
    const uintptr_t begin = reinterpret_cast<uintptr_t>(memory);
    const uintptr_t first = (begin + LARGE_PAGE - 1) / LARGE_PAGE * LARGE_PAGE;
    const uintptr_t end = (begin + bytes) / LARGE_PAGE * LARGE_PAGE;
    // A failure only costs time.
    if (first < end) static_cast<void>(madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE));
#else
    static_cast<void>(memory);
    static_cast<void>(bytes);
#endif
}

}  // namespace Zvex
