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

struct Mutex::Record {
    pthread_mutex_t mutex;
    bool usable = false;  // whether the system gave a mutex
    int32_t count = 0;
    // Read by threads that do not hold the mutex, hence atomic. A thread only asks whether it is the owner
    // itself, and only it stores its own identifier, so no ordering is needed.
    std::atomic<std::thread::id> owner{std::thread::id()};

    bool ownedByCaller() const { return owner.load(std::memory_order_relaxed) == std::this_thread::get_id(); }
};

Mutex::~Mutex() {
    if (mRecord == nullptr) return;
    if (mRecord->usable) pthread_mutex_destroy(&mRecord->mutex);
    delete mRecord;
}

bool Mutex::Construct() {
    if (mRecord != nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_ALREADY_CONSTRUCTED);
        return false;
    }
    mRecord = new (std::nothrow) Record;
    if (mRecord == nullptr || pthread_mutex_init(&mRecord->mutex, nullptr) != 0) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_PLATFORM);
        return false;
    }
    mRecord->usable = true;
    return true;
}

void Mutex::Lock() {
    if (mRecord == nullptr || !mRecord->usable) return;
    if (!mRecord->ownedByCaller()) {
        pthread_mutex_lock(&mRecord->mutex);
        mRecord->owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
    }
    ++mRecord->count;
}

void Mutex::Unlock() {
    if (mRecord == nullptr || !mRecord->usable || !mRecord->ownedByCaller()) return;
    if (--mRecord->count > 0) return;
    mRecord->owner.store(std::thread::id(), std::memory_order_relaxed);
    pthread_mutex_unlock(&mRecord->mutex);
}

}  // namespace Zvex
