// SPDX-License-Identifier: Apache-2.0
//
// The program's own malloc and its like stand before the C library's, for the libraries that it loads, too;
// operator new comes here by malloc. The work is done by the C library under its other names.
#include "tests/memory/PeakMemory.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstddef>

namespace {

constexpr int64_t kHeader = sizeof(size_t);  // kept in front of each block

std::atomic<int64_t> held{0}, most{0};

void* taken(void* block) {
    if (block == nullptr) return block;
    const int64_t now = held += static_cast<int64_t>(malloc_usable_size(block)) + kHeader;
    int64_t before = most;
    while (now > before && !most.compare_exchange_weak(before, now)) {
    }
    return block;
}

void given(void* block) {
    if (block != nullptr) held -= static_cast<int64_t>(malloc_usable_size(block)) + kHeader;
}

}  // namespace

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);

#define ZVEX_EXPORT __attribute__((visibility("default")))

ZVEX_EXPORT void* malloc(size_t size) {
    return taken(__libc_malloc(size));
}

ZVEX_EXPORT void* calloc(size_t count, size_t size) {
    return taken(__libc_calloc(count, size));
}

// Where the block has to move, the old one and the new one are held together.
ZVEX_EXPORT void* realloc(void* block, size_t size) {
    const int64_t old = block == nullptr ? 0 : static_cast<int64_t>(malloc_usable_size(block)) + kHeader;
    void* moved = __libc_realloc(block, size);
    const bool gone = moved != nullptr || size == 0;
    if (moved == block && gone) held -= old;
    taken(moved);
    if (moved != block && gone) held -= old;
    return moved;
}

ZVEX_EXPORT void free(void* block) {
    given(block);
    __libc_free(block);
}

ZVEX_EXPORT void* memalign(size_t alignment, size_t size) {
    return taken(__libc_memalign(alignment, size));
}

ZVEX_EXPORT void* aligned_alloc(size_t alignment, size_t size) {
    return taken(__libc_memalign(alignment, size));
}

ZVEX_EXPORT int posix_memalign(void** block, size_t alignment, size_t size) {
    *block = taken(__libc_memalign(alignment, size));
    return *block == nullptr ? ENOMEM : 0;
}
}

PeakMemory::PeakMemory() : mAtStart(held) {
    most = mAtStart;
}

int64_t PeakMemory::bytes() const {
    return most - mAtStart;
}

int64_t PeakMemory::growth() const {
    return held - mAtStart;
}
