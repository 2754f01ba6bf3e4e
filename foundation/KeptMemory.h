// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_KEPTMEMORY_H_
#define ZVEX_FOUNDATION_KEPTMEMORY_H_

#include <cstddef>

namespace Zvex {

// Keeps the memory of one picture's buffers for the next picture, because fresh memory costs more than
// drawing into it.
//
// It keeps blocks between 16 kB and 64 MB, each with room to grow, so that a picture that grows step by step
// needs a new block only now and then. All are freed together with this object.
class KeptMemory {
public:
    KeptMemory() = default;
    ~KeptMemory();
    KeptMemory(const KeptMemory&) = delete;
    KeptMemory& operator=(const KeptMemory&) = delete;

    // While one lives, takeMemory and giveMemory of its thread keep and reuse the blocks of `memory`. One
    // thread at a time.
    class Use {
    public:
        explicit Use(KeptMemory* memory);  // null: keeps nothing
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        KeptMemory* const mBefore;
    };

    // Used by takeMemory and giveMemory.
    void* take(size_t bytes);  // a kept block with undefined content; null if none is large enough
    bool keep(void* block);    // false: the caller must free it

private:
    static constexpr size_t kMostBlocks = 128;
    struct Block {
        void* memory;
        size_t bytes;
    };
    Block mBlocks[kMostBlocks];  // blocks not in use
    size_t mCount = 0;
};

// malloc, calloc and free for a picture's large buffers. All blocks come from malloc: std::free may free
// them, and giveMemory takes any block from malloc. Null, without setting the flag of OutOfMemory.h, if
// memory is short, and for 0 bytes.
void* takeMemory(size_t bytes);
void* takeZeroedMemory(size_t bytes);
void giveMemory(void* block);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_KEPTMEMORY_H_
