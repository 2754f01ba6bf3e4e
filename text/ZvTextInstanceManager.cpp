// SPDX-License-Identifier: Apache-2.0
#include "text/ZvTextInstanceManager.h"

#include <algorithm>
#include <atomic>
#include <climits>
#include <list>
#include <map>
#include <mutex>
#include <new>
#include <utility>

#include "foundation/Error.h"
#include "foundation/Mutex.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvTextInstanceManager";

using HandleTable = std::map<int, ZvTextObject*>;
using HandleIndex = std::map<ZvTextObject*, int>;

struct Registry {
    std::map<ZvTextObject*, int> bindCounts;
    HandleTable handleTable;
    HandleIndex handleIndex;
    std::list<ZvTextObject*> deferred;  // deferred releases, the latest in front
    void (*releaseCallback)(ZvTextObject*) = nullptr;
    bool locked = false;
    int lastHandle = 0;
    std::atomic<Mutex*> mutex{nullptr};  // null until it could be made
    std::mutex makingMutex;
};

// Never destroyed: threads may still use it while the process ends.
Registry& registry() {
    alignas(Registry) static char storage[sizeof(Registry)];
    static Registry* const instance = new (storage) Registry;
    return *instance;
}

// Holds the registry's mutex for a whole operation. If the system refuses a mutex, operations run without
// one.
class Guard {
public:
    Guard() : mRegistry(registry()), mMutex(mRegistry.mutex.load(std::memory_order_acquire)) {
        if (mMutex == nullptr) mMutex = makeMutex();
        if (mMutex != nullptr) mMutex->Lock();
    }
    ~Guard() {
        if (mMutex != nullptr) mMutex->Unlock();
    }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    Registry* operator->() { return &mRegistry; }

private:
    Mutex* makeMutex() {
        const std::lock_guard<std::mutex> lock(mRegistry.makingMutex);
        Mutex* mutex = mRegistry.mutex.load(std::memory_order_relaxed);
        if (mutex != nullptr) return mutex;
        auto made = tryMake<Mutex>();
        if (made != nullptr && made->Construct()) mutex = made.release();
        mRegistry.mutex.store(mutex, std::memory_order_release);
        return mutex;
    }

    Registry& mRegistry;
    Mutex* mMutex;
};

}  // namespace

void ZvTextInstanceManager::SetCallBack(void (*callback)(ZvTextObject*)) {
    Guard state;
    state->releaseCallback = callback;
}

// Nodes are made and freed without the mutex, which other threads want.
int ZvTextInstanceManager::Register(ZvTextObject* object) {
    HandleTable entry;
    HandleIndex index;
    const bool made = unlessOutOfMemory(false, [&] {
        entry.emplace(0, object);
        index.emplace(object, 0);
        return true;
    });
    Guard state;
    const auto known = state->handleIndex.find(object);
    if (known != state->handleIndex.end()) return known->second;
    if (state->lastHandle == INT_MAX) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "Register() - all handles are used up");
        ZV_REPORT_ERROR(kTag, ZV_ERROR_OUT_OF_RANGE);
        return -1;
    }
    if (!made) return -1;
    const int handle = ++state->lastHandle;
    HandleTable::node_type node = entry.extract(entry.begin());
    node.key() = handle;
    state->handleTable.insert(std::move(node));
    index.begin()->second = handle;
    state->handleIndex.insert(index.extract(index.begin()));
    return handle;
}

int ZvTextInstanceManager::Unregister(int handle) {
    Guard state;
    const auto known = state->handleTable.find(handle);
    if (known != state->handleTable.end()) {
        state->handleIndex.erase(known->second);
        state->handleTable.erase(known);
    }
    return 0;
}

void ZvTextInstanceManager::Forget(ZvTextObject* object) {
    HandleTable::node_type entry;
    HandleIndex::node_type index;
    Guard state;
    index = state->handleIndex.extract(object);
    if (!index.empty()) entry = state->handleTable.extract(index.mapped());
    state->bindCounts.erase(object);
    state->deferred.remove(object);
}

void ZvTextInstanceManager::SkipHandles(int last) {
    Guard state;
    state->lastHandle = std::max(state->lastHandle, last);
}

bool ZvTextInstanceManager::Bind(ZvTextObject* object) {
    Guard state;
    const auto known = state->bindCounts.find(object);
    if (known == state->bindCounts.end()) {
        const bool bound =
            unlessOutOfMemory(false, [&] { return state->bindCounts.emplace(object, 1).second; });
        if (!bound) return false;
        state->deferred.remove(object);
        ZV_DEBUG_LOG(kTag, "Bind(%p) - count: 1", static_cast<void*>(object));
        return true;
    }
    ++known->second;
    ZV_DEBUG_LOG(kTag, "Bind(%p) - count: %d", static_cast<void*>(object), known->second);
    return true;
}

bool ZvTextInstanceManager::Release(int handle) {
    Guard state;
    const auto known = state->handleTable.find(handle);
    if (known == state->handleTable.end()) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_FOUND);
        return false;
    }
    return Release(known->second, true);
}

bool ZvTextInstanceManager::Release(ZvTextObject* object, bool destroy) {
    Guard state;
    const auto known = state->bindCounts.find(object);
    if (known == state->bindCounts.end()) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_FOUND);
        return false;
    }
    const bool last = known->second == 1;
    if (last && destroy && state->locked) {
        const bool waits = unlessOutOfMemory(false, [&] {
            state->deferred.push_front(object);
            return true;
        });
        if (!waits) return false;
    }
    --known->second;
    if (!last || !destroy) return true;

    if (!state->locked && state->releaseCallback != nullptr) state->releaseCallback(object);
    // Looked up again, because the callback may have called back, and another object may have been bound at
    // this address.
    const auto left = state->bindCounts.find(object);
    if (left != state->bindCounts.end() && left->second == 0) state->bindCounts.erase(left);
    return true;
}

void ZvTextInstanceManager::Lock() {
    Guard state;
    state->locked = true;
}

void ZvTextInstanceManager::Unlock() {
    Guard state;
    // One at a time, because the callback may call back and change the list.
    while (!state->deferred.empty()) {
        ZvTextObject* object = state->deferred.front();
        state->deferred.pop_front();
        if (state->releaseCallback != nullptr) state->releaseCallback(object);
    }
    state->locked = false;
}

int ZvTextInstanceManager::FindZvTextHandle(ZvTextObject* object) {
    Guard state;
    const auto known = state->handleIndex.find(object);
    return known != state->handleIndex.end() ? known->second : -1;
}

ZvTextObject* ZvTextInstanceManager::FindZvTextObject(int handle) {
    Guard state;
    const auto known = state->handleTable.find(handle);
    if (known == state->handleTable.end()) {
        ZV_DEBUG_LOG(kTag, "FindZvTextObject() - Can't find the handle[%d]", handle);
        return nullptr;
    }
    return known->second;
}

}  // namespace Zvex
