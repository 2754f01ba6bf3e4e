// SPDX-License-Identifier: Apache-2.0
#include "text/ZvTextInstanceManager.h"

#include <list>
#include <map>
#include <mutex>

#include "foundation/Error.h"
#include "foundation/Mutex.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvTextInstanceManager";

struct Registry {
    std::map<ZvTextObject*, int> bindCounts;
    std::map<int, ZvTextObject*> handleTable;
    std::map<ZvTextObject*, int> handleIndex;
    std::list<ZvTextObject*> deferred;  // last releases that waited, the latest in front
    void (*releaseCallback)(ZvTextObject*) = nullptr;
    bool locked = false;
    int lastHandle = 0;
    Mutex mutex;
    std::mutex makingMutex;
    bool mutexMade = false;
};

// Made by the first use, which every text object's constructor is; so it outlives text objects with static
// storage.
Registry& registry() {
    static Registry instance;
    return instance;
}

// Holds the registry's mutex for a whole operation. Should the system refuse a mutex, operations run without
// one.
class Guard {
public:
    Guard() : mRegistry(registry()) {
        {
            const std::lock_guard<std::mutex> lock(mRegistry.makingMutex);
            if (!mRegistry.mutexMade) mRegistry.mutexMade = mRegistry.mutex.Construct();
        }
        mRegistry.mutex.Lock();
    }
    ~Guard() { mRegistry.mutex.Unlock(); }
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    Registry* operator->() { return &mRegistry; }

private:
    Registry& mRegistry;
};

}  // namespace

void ZvTextInstanceManager::SetCallBack(void (*callback)(ZvTextObject*)) {
    Guard state;
    state->releaseCallback = callback;
}

int ZvTextInstanceManager::Register(ZvTextObject* object) {
    Guard state;
    const auto known = state->handleIndex.find(object);
    if (known != state->handleIndex.end()) return known->second;
    const int handle = state->lastHandle + 1;
    return unlessOutOfMemory(-1, [&] {
        const auto entry = state->handleTable.emplace(handle, object).first;
        const bool both = unlessOutOfMemory(false, [&] {
            state->handleIndex.emplace(object, handle);
            return true;
        });
        if (!both) {
            state->handleTable.erase(entry);
            return -1;
        }
        return state->lastHandle = handle;
    });
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
    // By key, because the callback may have come back in and changed the map.
    state->bindCounts.erase(object);
    return true;
}

void ZvTextInstanceManager::Lock() {
    Guard state;
    state->locked = true;
}

void ZvTextInstanceManager::Unlock() {
    Guard state;
    // One at a time, because the callback may come back in and change the list.
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
