// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_KEPTMEMORY_H_
#define ZVEX_FOUNDATION_KEPTMEMORY_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

// Keeps the memory of one picture's buffers for the next picture, because fresh memory costs more than
// drawing into it.
//
// It keeps blocks of 1 kB to 64 MB. Without a bound each has room to grow, so that a picture that grows step
// by step needs a new block only now and then. With one, larger blocks take the place of smaller ones. All
// are freed together with this object.
//
// Every thread has one of kKeptByThread bytes, for small pictures, until it ends. Builds for tools that watch
// memory have none (ZVEX_KEEP_MEMORY in CMakeLists.txt).
class KeptMemory {
public:
    explicit KeptMemory(size_t most = SIZE_MAX);  // bytes in all; a block has at most a quarter of them
    ~KeptMemory();
    KeptMemory(const KeptMemory&) = delete;
    KeptMemory& operator=(const KeptMemory&) = delete;

    // While one lives, takeMemory and giveMemory of its thread keep and reuse the blocks of `memory` instead
    // of the thread's own. One thread at a time.
    class Use {
    public:
        explicit Use(KeptMemory* memory);  // null: keeps nothing
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        KeptMemory* const mBefore;
        const bool mChosenBefore;
    };

    // Used by takeMemory and giveMemory.
    void* take(size_t bytes);  // a kept block with undefined content; null if none is of about that size
    bool keep(void* block);    // false: the caller must free it
    bool hasRoomToGrow(size_t bytes) const;  // whether to take a block twice as large

private:
    static constexpr size_t kMostBlocks = 128;
    struct Block {
        void* memory;
        size_t bytes;
    };
    const size_t mMost, mMostOfBlock;
    Block mBlocks[kMostBlocks];  // blocks not in use
    size_t mCount = 0, mBytes = 0;
};

constexpr size_t kKeptByThread = size_t{1} << 20;

// malloc, calloc and free for a picture's buffers. All blocks come from malloc: std::free may free them, and
// giveMemory takes any block from malloc. Null, without setting the flag of OutOfMemory.h, if memory is
// short, and for 0 bytes.
void* takeMemory(size_t bytes);
void* takeZeroedMemory(size_t bytes);
void giveMemory(void* block);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_KEPTMEMORY_H_
