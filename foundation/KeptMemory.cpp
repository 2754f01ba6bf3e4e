// SPDX-License-Identifier: Apache-2.0
#include "foundation/KeptMemory.h"

#include <malloc.h>

#include <cstdlib>
#include <cstring>

#include "foundation/LargePages.h"

namespace Zvex {

namespace {

constexpr size_t kLeastKept = size_t{16} << 10, kMostKept = size_t{64} << 20;

thread_local KeptMemory* used = nullptr;

bool isKept(size_t bytes) {
    return used != nullptr && bytes >= kLeastKept && bytes <= kMostKept / 2;
}

void* fresh(size_t bytes, void* (*allocate)(size_t)) {
    if (bytes == 0) return nullptr;
    void* memory = isKept(bytes) ? allocate(2 * bytes) : nullptr;
    if (memory == nullptr) memory = allocate(bytes);
    preferLargePages(memory, bytes);  // before the memory is touched
    return memory;
}

}  // namespace

KeptMemory::~KeptMemory() {
    for (size_t i = 0; i < mCount; ++i) std::free(mBlocks[i].memory);
}

KeptMemory::Use::Use(KeptMemory* memory) : mBefore(used) {
    used = memory;
}

KeptMemory::Use::~Use() {
    used = mBefore;
}

void* KeptMemory::take(size_t bytes) {
    Block* best = nullptr;
    for (size_t i = 0; i < mCount; ++i) {
        const bool fits = mBlocks[i].bytes >= bytes;
        if (fits && (best == nullptr || mBlocks[i].bytes < best->bytes)) best = &mBlocks[i];
    }
    if (best == nullptr) return nullptr;
    void* const memory = best->memory;
    *best = mBlocks[--mCount];
    return memory;
}

bool KeptMemory::keep(void* block) {
    const size_t bytes = malloc_usable_size(block);
    if (bytes < kLeastKept || bytes > kMostKept || mCount == kMostBlocks) return false;
    mBlocks[mCount++] = {block, bytes};
    return true;
}

void* takeMemory(size_t bytes) {
    void* const kept = isKept(bytes) ? used->take(bytes) : nullptr;
    return kept != nullptr ? kept : fresh(bytes, [](size_t count) { return std::malloc(count); });
}

void* takeZeroedMemory(size_t bytes) {
    void* const kept = isKept(bytes) ? used->take(bytes) : nullptr;
    if (kept == nullptr) return fresh(bytes, [](size_t count) { return std::calloc(count, 1); });
    std::memset(kept, 0, bytes);
    return kept;
}

void giveMemory(void* block) {
    if (block == nullptr) return;
    if (used == nullptr || !used->keep(block)) std::free(block);
}

}  // namespace Zvex
