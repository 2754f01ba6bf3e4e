// SPDX-License-Identifier: Apache-2.0
#include "foundation/Mutex.h"

#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <new>
#include <thread>

#include "foundation/Error.h"

namespace Zvex {

namespace {
constexpr char kTag[] = "ZV_Mutex";
}

struct Mutex::Impl {
    pthread_mutex_t mutex;
    bool usable = false;  // whether the system gave a mutex
    int32_t count = 0;
    // Read by threads that do not hold the mutex, hence atomic. A thread only asks whether it is the owner
    // itself, and only it stores its own identifier, so no ordering is needed.
    std::atomic<std::thread::id> owner{std::thread::id()};

    // Tries for about a microsecond first: owners are quick, and sleeping costs more.
    void wait() {
        constexpr int kTries = 100;
        for (int i = 0; i < kTries; ++i) {
            if (pthread_mutex_trylock(&mutex) == 0) return;
        }
        pthread_mutex_lock(&mutex);
    }

    bool ownedByCaller() const { return owner.load(std::memory_order_relaxed) == std::this_thread::get_id(); }
};

Mutex::~Mutex() {
    if (mImpl == nullptr) return;
    if (mImpl->usable) pthread_mutex_destroy(&mImpl->mutex);
    delete mImpl;
}

bool Mutex::Construct() {
    if (mImpl != nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_ALREADY_CONSTRUCTED);
        return false;
    }
    mImpl = new (std::nothrow) Impl;
    if (mImpl == nullptr || pthread_mutex_init(&mImpl->mutex, nullptr) != 0) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_PLATFORM);
        return false;
    }
    mImpl->usable = true;
    return true;
}

void Mutex::Lock() {
    if (mImpl == nullptr || !mImpl->usable) return;
    if (!mImpl->ownedByCaller()) {
        mImpl->wait();
        mImpl->owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    }
    ++mImpl->count;
}

void Mutex::Unlock() {
    if (mImpl == nullptr || !mImpl->usable || !mImpl->ownedByCaller()) return;
    if (--mImpl->count > 0) return;
    mImpl->owner.store(std::thread::id(), std::memory_order_relaxed);
    pthread_mutex_unlock(&mImpl->mutex);
}

}  // namespace Zvex
