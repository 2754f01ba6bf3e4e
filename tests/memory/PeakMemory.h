// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_MEMORY_PEAKMEMORY_H_
#define ZVEX_TESTS_MEMORY_PEAKMEMORY_H_

#include <cstdint>

// The memory of the whole process, its libraries included, as the C library's allocator hands it out: each
// block with the room it really takes. A program with PeakMemory.cpp has its allocator counted.
class PeakMemory {
public:
    PeakMemory();            // starts at what is held now
    int64_t bytes() const;   // the most that was held at once since then, beyond what was held at the start
    int64_t growth() const;  // what is held now beyond that

private:
    int64_t mAtStart;
};

#endif  // ZVEX_TESTS_MEMORY_PEAKMEMORY_H_
