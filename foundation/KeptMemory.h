// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_FOUNDATION_KEPTMEMORY_H_
#define ZVEX_FOUNDATION_KEPTMEMORY_H_

#include <cstddef>

namespace Zvex {

// Blocks that the buffers of one picture leave for those of the next. Fresh memory costs more than drawing
// into it.
//
// It keeps blocks between 16 kB and 64 MB, each with room to grow: a picture that becomes larger step by step
// needs a new one now and then. All of them are freed together with this object.
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
        explicit Use(KeptMemory* memory);  // null: as if there were none
        ~Use();
        Use(const Use&) = delete;
        Use& operator=(const Use&) = delete;

    private:
        KeptMemory* const mBefore;
    };

    // What takeMemory and giveMemory do.
    void* take(size_t bytes);  // a kept block, unset; null where none is large enough
    bool keep(void* block);    // false: it is the caller's to free

private:
    static constexpr size_t kMostBlocks = 128;
    struct Block {
        void* memory;
        size_t bytes;
    };
    Block mBlocks[kMostBlocks];  // those that wait
    size_t mCount = 0;
};

// malloc, calloc and free for the large buffers of a picture. Blocks come from malloc wherever they are kept:
// std::free takes them too, and giveMemory takes any block of malloc. Null, without a mark, where memory is
// short, and for 0 bytes.
void* takeMemory(size_t bytes);
void* takeZeroedMemory(size_t bytes);
void giveMemory(void* block);

}  // namespace Zvex

#endif  // ZVEX_FOUNDATION_KEPTMEMORY_H_
