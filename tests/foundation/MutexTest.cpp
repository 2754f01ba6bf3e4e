// SPDX-License-Identifier: Apache-2.0
#include "foundation/Mutex.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

// Whether the kernel has the thread asleep. One that was woken is not, even before it runs.
bool sleeps(pid_t thread) {
    std::ifstream file("/proc/self/task/" + std::to_string(thread) + "/stat");
    std::string line;
    std::getline(file, line);
    return line.find(") S ") != std::string::npos;
}

TEST(Mutex, TheOwnersLastUnlockLetsAnotherThreadIn) {
    Mutex mutex;
    mutex.Lock();  // not constructed: nothing happens
    mutex.Unlock();
    ASSERT_TRUE(mutex.Construct());
    EXPECT_OUTCOMES(ZV_ERROR_ALREADY_CONSTRUCTED, 0, "ZV_Mutex", of(mutex.Construct()));
    mutex.Unlock();
    mutex.Lock();
    mutex.Lock();
    std::atomic<pid_t> id{0};
    std::atomic<bool> entered{false};
    std::thread other([&] {
        mutex.Unlock();  // not its own
        id = gettid();
        mutex.Lock();
        entered = true;
        mutex.Unlock();
    });
    const auto waits = [&] {
        while (!entered && (id == 0 || !sleeps(id))) std::this_thread::yield();
        return !entered;
    };
    EXPECT_TRUE(waits());
    mutex.Unlock();
    EXPECT_TRUE(waits());
    mutex.Unlock();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(Mutex, KeepsThreadsApart) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    int counter = 0;  // not atomic on purpose
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                for (int depth = i % 3; depth >= 0; --depth) mutex.Lock();
                ++counter;
                for (int depth = i % 3; depth >= 0; --depth) mutex.Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 80000);
}

}  // namespace
}  // namespace Zvex
