// SPDX-License-Identifier: Apache-2.0
#include "foundation/Mutex.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

// Each thread counts at every depth of its lock, and unlocks one that is not its own.
TEST(Mutex, OnlyTheOwnersLastUnlockLetsAnotherThreadIn) {
    Mutex mutex;
    mutex.Lock();  // not constructed: nothing happens
    mutex.Unlock();
    ASSERT_TRUE(mutex.Construct());
    EXPECT_OUTCOMES(ZV_ERROR_ALREADY_CONSTRUCTED, 0, "ZV_Mutex", of(mutex.Construct()));
    int counter = 0;  // not atomic on purpose
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                mutex.Unlock();
                for (int depth = 0; depth < 3; ++depth) mutex.Lock();
                for (int depth = 0; depth < 3; ++depth) {
                    ++counter;
                    mutex.Unlock();
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 4 * 20000 * 3);
}

}  // namespace
}  // namespace Zvex
