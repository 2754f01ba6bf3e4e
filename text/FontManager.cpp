// SPDX-License-Identifier: Apache-2.0
#include "text/FontManager.h"

#include <atomic>
#include <mutex>
#include <new>
#include <string>
#include <utility>

#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "text/Constructed.h"
#include "text/FontPath.h"
#include "text/ZvFontManagerImpl.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvFontManager";

}  // namespace

void freeFontEntry(ZvFontEntry* entry) {
    if (entry == nullptr) return;
    delete entry->path;
    delete entry->spare;
    delete entry;
}

void freeFontFamily(ZvFontFamily* family) {
    if (family == nullptr) return;
    if (family->fonts != nullptr) {
        const int count = family->fonts->GetCount();
        for (int i = 0; i < count; ++i) freeFontEntry(static_cast<ZvFontEntry*>(family->fonts->Get(i)));
        delete family->fonts;
    }
    delete family;
}

FontManager* FontManager::GetInstance() {
    // Never destroyed: threads may still render while the process ends.
    alignas(FontManager) static char storage[sizeof(FontManager)];
    static FontManager* const instance = new (storage) FontManager;
    static std::atomic<bool> complete{false};
    if (complete.load(std::memory_order_acquire)) return instance;
    static std::mutex making;
    // Try again if memory was short the last time.
    const std::lock_guard<std::mutex> lock(making);
    if (instance->mImpl == nullptr) instance->mImpl = new (std::nothrow) ZvFontManagerImpl;
    complete.store(instance->mImpl != nullptr, std::memory_order_release);
    return instance;
}

FontManager::FontManager() : mImpl(new (std::nothrow) ZvFontManagerImpl) {}

FontManager::~FontManager() {
    ZV_DEBUG_LOG(kTag, "~FontManager(%p)", static_cast<void*>(this));
    delete mImpl;
}

bool FontManager::IsExisting(const char* path, int index) const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(false, [&] { return mImpl->isExisting(path, index); });
}

bool FontManager::AddMinikinFont(const char* path, char* buffer, unsigned int size, int index,
                                 bool checkExisting) {
    std::unique_ptr<char[]> handedOver(buffer);
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(
        false, [&] { return mImpl->addFont(path, std::move(handedOver), size, index, checkExisting); });
}

bool FontManager::AddMinikinFont(ZvString* path, char* buffer, unsigned int size, int index,
                                 bool checkExisting) {
    std::unique_ptr<char[]> handedOver(buffer);
    return unlessOutOfMemory(false, [&] {
        std::string utf8;
        const char* known = toUtf8(path, utf8) ? utf8.c_str() : nullptr;
        return AddMinikinFont(known, handedOver.release(), size, index, checkExisting);
    });
}

bool FontManager::BuildMinikinFamily(ZvFontFamily* family) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(false, [&] { return mImpl->buildFamily(family); });
}

bool FontManager::LoadMinikinFontFamily(unsigned int localeListId) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(false, [&] { return mImpl->loadFamily(localeListId); });
}

bool FontManager::EnsureMinikinFontFamily(unsigned int localeListId) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(false, [&] {
        mImpl->loadFamily(localeListId);
        return true;
    });
}

bool FontManager::SetSystemFontFamilies(List* families) {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    if (!mImpl->familiesSet) {
        mImpl->ClearFontFamilies();
        mImpl->families = families;
        mImpl->familiesSet = true;
    }
    return true;
}

bool FontManager::IsSystemFontFamiliesAlreadySet() const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return mImpl->familiesSet;
}

bool FontManager::GetMinikinFont(std::shared_ptr<minikin::MinikinFont>& out, ZvString* path,
                                 int index) const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    return unlessOutOfMemory(false, [&] { return mImpl->findFont(out, path, index); });
}

bool FontManager::GetMinikinFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& out,
                                         ZvString* path, int& weight) const {
    ZVEX_RETURN_UNLESS_CONSTRUCTED(false);
    ZV_DEBUG_LOG(kTag, "GetMinikinFontFamilies >>> GetMinikinFontFamilies");
    const bool all = unlessOutOfMemory(false, [&] {
        mImpl->collectFamilies(out, path, weight);
        return true;
    });
    ZV_DEBUG_LOG(kTag, "GetMinikinFontFamilies <<< GetMinikinFontFamilies");
    return all;
}

uint64_t FontManager::GetGeneration() const {
    if (mImpl == nullptr) return 0;
    // Callers may change families and flags. If memory is too short to compare, it counts as a change.
    const bool seen = unlessOutOfMemory(false, [this] {
        mImpl->index.update(mImpl->families, mImpl->changes);
        return true;
    });
    if (!seen) ++mImpl->changes;
    return mImpl->changes;
}

void FontManager::ClearFontFamilies() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    mImpl->ClearFontFamilies();
}

void FontManager::ClearFontMaps() {
    ZVEX_RETURN_UNLESS_CONSTRUCTED();
    mImpl->ClearFontMaps();
}

}  // namespace Zvex
