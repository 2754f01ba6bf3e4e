// SPDX-License-Identifier: Apache-2.0
#include "foundation/Mutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

// Whether another thread has to wait for the mutex. The wait ends with the release that the caller owes.
class Contender {
public:
    explicit Contender(Mutex* mutex)
        : mThread([this, mutex] {
              mutex->Lock();
              mEntered = true;
              mutex->Unlock();
          }) {}
    ~Contender() { mThread.join(); }
    bool staysOut() const {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        return !mEntered;
    }
    bool entersSoon() const {
        for (int i = 0; i < 5000 && !mEntered; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        return mEntered;
    }

private:
    std::atomic<bool> mEntered{false};
    std::thread mThread;
};

TEST(Mutex, OwnerLocksAgainAndUnlocksAsOften) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    mutex.Lock();
    mutex.Lock();
    Contender contender(&mutex);
    EXPECT_TRUE(contender.staysOut());
    mutex.Unlock();
    EXPECT_TRUE(contender.staysOut());
    mutex.Unlock();
    EXPECT_TRUE(contender.entersSoon());
}

TEST(Mutex, StrangersCannotUnlock) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    mutex.Unlock();  // free: nothing to give back
    mutex.Lock();
    std::thread([&mutex] { mutex.Unlock(); }).join();
    Contender contender(&mutex);
    EXPECT_TRUE(contender.staysOut());
    mutex.Unlock();
    EXPECT_TRUE(contender.entersSoon());
}

TEST(Mutex, KeepsThreadsApart) {
    Mutex mutex;
    ASSERT_TRUE(mutex.Construct());
    int counter = 0;  // not atomic on purpose
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                mutex.Lock();
                if (i % 3 == 0) {
                    mutex.Lock();
                    ++counter;
                    mutex.Unlock();
                } else {
                    ++counter;
                }
                mutex.Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(counter, 80000);
}

TEST(Mutex, SecondConstructIsReportedAndUnconstructedDoesNothing) {
    Mutex mutex;
    mutex.Lock();
    mutex.Unlock();
    ASSERT_TRUE(mutex.Construct());
    EXPECT_OUTCOMES(ZV_ERROR_ALREADY_CONSTRUCTED, 0, "ZV_Mutex", of(mutex.Construct()));
}

}  // namespace
}  // namespace Zvex
