// SPDX-License-Identifier: Apache-2.0
#include "foundation/KeptMemory.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "foundation/LargePages.h"

namespace Zvex {

namespace {

constexpr size_t kLeastKept = size_t{1} << 10, kMostKept = size_t{64} << 20;

// Plain values: threads read them while they end, after their objects are gone.
thread_local KeptMemory* used = nullptr;
thread_local bool isChosen = false;  // `used` counts, else the thread's own memory does

// The thread's own memory, until the thread ends.
struct OwnMemory {
    KeptMemory memory{kKeptByThread};

    ~OwnMemory() {
        used = nullptr;
        isChosen = true;
    }
};

KeptMemory* usedMemory() {
    if (!isChosen) {
#if defined(ZVEX_KEEP_NO_MEMORY)
        used = nullptr;
#else
        thread_local OwnMemory own;
        used = &own.memory;
#endif
        isChosen = true;
    }
    return used;
}

void* fresh(KeptMemory* keeper, size_t bytes, void* (*allocate)(size_t)) {
    if (bytes == 0) return nullptr;
    void* memory = keeper != nullptr && keeper->hasRoomToGrow(bytes) ? allocate(2 * bytes) : nullptr;
    if (memory == nullptr) memory = allocate(bytes);
    preferLargePages(memory, bytes);  // before the memory is touched
    return memory;
}

}  // namespace

KeptMemory::KeptMemory(size_t most) : mMost(most), mMostOfBlock(std::min(most / 4, kMostKept)) {}

KeptMemory::~KeptMemory() {
    for (size_t i = 0; i < mCount; ++i) std::free(mBlocks[i].memory);
}

KeptMemory::Use::Use(KeptMemory* memory) : mBefore(used), mChosenBefore(isChosen) {
    used = memory;
    isChosen = true;
}

KeptMemory::Use::~Use() {
    used = mBefore;
    isChosen = mChosenBefore;
}

void* KeptMemory::take(size_t bytes) {
    if (bytes < kLeastKept || bytes > mMostOfBlock) return nullptr;
    constexpr size_t kMostSlack = 8;  // small buffers leave large blocks to large ones
    Block* best = nullptr;
    for (size_t i = 0; i < mCount; ++i) {
        const bool fits = mBlocks[i].bytes >= bytes && mBlocks[i].bytes / kMostSlack <= bytes;
        if (fits && (best == nullptr || mBlocks[i].bytes < best->bytes)) best = &mBlocks[i];
    }
    if (best == nullptr) return nullptr;
    void* const memory = best->memory;
    mBytes -= best->bytes;
    *best = mBlocks[--mCount];
    return memory;
}

bool KeptMemory::keep(void* block) {
    const size_t bytes = malloc_usable_size(block);
    if (bytes < kLeastKept || bytes > mMostOfBlock) return false;
    while (mCount == kMostBlocks || bytes > mMost - mBytes) {
        Block* smallest = std::min_element(mBlocks, mBlocks + mCount,
                                           [](const Block& a, const Block& b) { return a.bytes < b.bytes; });
        if (smallest->bytes >= bytes) return false;
        std::free(smallest->memory);
        mBytes -= smallest->bytes;
        *smallest = mBlocks[--mCount];
    }
    mBlocks[mCount++] = {block, bytes};
    mBytes += bytes;
    return true;
}

bool KeptMemory::hasRoomToGrow(size_t bytes) const {
    return mMost == SIZE_MAX && bytes >= kLeastKept && bytes <= mMostOfBlock / 2;
}

void* takeMemory(size_t bytes) {
    KeptMemory* const keeper = usedMemory();
    void* const kept = keeper != nullptr ? keeper->take(bytes) : nullptr;
    return kept != nullptr ? kept : fresh(keeper, bytes, [](size_t count) { return std::malloc(count); });
}

void* takeZeroedMemory(size_t bytes) {
    KeptMemory* const keeper = usedMemory();
    void* const kept = keeper != nullptr ? keeper->take(bytes) : nullptr;
    if (kept == nullptr) return fresh(keeper, bytes, [](size_t count) { return std::calloc(count, 1); });
    std::memset(kept, 0, bytes);
    return kept;
}

void giveMemory(void* block) {
    if (block == nullptr) return;
    KeptMemory* const keeper = usedMemory();
    if (keeper == nullptr || !keeper->keep(block)) std::free(block);
}

}  // namespace Zvex
