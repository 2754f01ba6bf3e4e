// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_FAILINGALLOCATIONS_H_
#define ZVEX_TESTS_FAILINGALLOCATIONS_H_

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "foundation/KeptMemory.h"

// Makes one allocation fail. While an object of this class lives, the calling thread's allocations with
// malloc, calloc, realloc and the non-throwing operator new are counted from 0, and number `failing` gives
// null; nothing fails when it is negative. Throwing operator new (containers) is counted, and throws when its
// number comes, with Throwing::Fails only. One object at a time.
//
// Works in programs made with zvex_add_failing_allocations (tests/CMakeLists.txt), which route those calls
// here.
class FailingAllocations {
public:
    enum class Throwing { Works, Fails };
    explicit FailingAllocations(int failing = -1, Throwing throwing = Throwing::Works);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // While one lives, allocations are not counted and do not fail: for what the test itself allocates.
    struct Pause {
        Pause();
        ~Pause();
    };

    size_t largest() const;   // bytes, of all blocks allocated in any way
    int made() const;         // allocations counted so far, the failed one included
    int outstanding() const;  // blocks allocated in any way less blocks freed, since the start

private:
    const Zvex::KeptMemory::Use mKeepsNothing{nullptr};  // all blocks are allocated, and freed
};

// Runs `work` with no failure, twice, to count its allocations, then once for each of them with that one
// failing. `work(failed)` gets whether its allocation number will fail; it must free all that it takes.
// Whether anything leaked is checked after each run; what else should hold is checked by work itself.
template <typename Work>
void forEachFailingAllocation(Work work,
                              FailingAllocations::Throwing throwing = FailingAllocations::Throwing::Works) {
    work(false);  // allocates what the process makes only once, such as its log, which is no leak
    int allocations = 0;
    {
        FailingAllocations none(-1, throwing);
        work(false);
        allocations = none.made();
        EXPECT_EQ(none.outstanding(), 0) << "leaked without a failure";
    }
    EXPECT_GT(allocations, 0) << "nothing to fail";
    for (int failing = 0; failing < allocations; ++failing) {
        SCOPED_TRACE("allocation " + std::to_string(failing) + " of " + std::to_string(allocations));
        int outstanding = 0;
        {
            FailingAllocations one(failing, throwing);
            work(true);
            EXPECT_GT(one.made(), failing) << "was not reached";
            outstanding = one.outstanding();
        }
        EXPECT_EQ(outstanding, 0) << "leaked";
    }
}

#endif  // ZVEX_TESTS_FAILINGALLOCATIONS_H_
