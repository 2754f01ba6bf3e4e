// SPDX-License-Identifier: Apache-2.0
#include "text/FontFamilyIndex.h"

#include <algorithm>
#include <mutex>
#include <utility>

#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "text/FontManager.h"
#include "text/FontPath.h"

namespace Zvex {

namespace {

const wchar_t* charactersOf(const ZvFontEntry& entry) {
    const wchar_t* path = entry.path != nullptr ? entry.path->GetPointer() : nullptr;
    return path != nullptr ? path : L"";
}

bool isCopied(const ZvFontFamily& family, const IndexedFamily& indexed) {
    const int count = family.fonts != nullptr ? family.fonts->GetCount() : 0;
    if (family.localeListId != indexed.localeListId || family.variant != indexed.variant ||
        std::max(count, 0) != static_cast<int>(indexed.fonts.size()))
        return false;
    for (int i = 0; i < count; ++i) {
        const auto* entry = static_cast<const ZvFontEntry*>(family.fonts->Get(i));
        if (!indexed.fonts[static_cast<size_t>(i)].isOf(entry)) return false;
    }
    return true;
}

}  // namespace

void IndexedFont::read(const ZvFontEntry* entry) {
    if (entry == nullptr) return;
    exists = true;
    path = charactersOf(*entry);
    if (!toUtf8(entry->path, file)) file.clear();
    index = entry->index;
    weight = entry->weight;
    italic = entry->italic;
}

bool IndexedFont::isOf(const ZvFontEntry* entry) const {
    if (entry == nullptr || !exists) return exists == (entry != nullptr);
    return entry->index == index && entry->weight == weight && entry->italic == italic &&
           path == charactersOf(*entry);
}

bool FontFamilyIndex::isCurrent(List* families) const {
    if (mFamilies == nullptr) return false;
    size_t at = 0;
    const int count = families != nullptr ? families->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        const auto* family = static_cast<const ZvFontFamily*>(families->Get(i));
        if (family == nullptr || family->loaded == 0) continue;
        if (at >= mFamilies->size() || !isCopied(*family, (*mFamilies)[at])) return false;
        ++at;
    }
    return at == mFamilies->size();
}

std::shared_ptr<const FontFamilyIndex::Families> FontFamilyIndex::update(List* families,
                                                                         std::atomic<uint64_t>& changes) {
    if (families == nullptr) {
        const std::shared_lock<std::shared_mutex> lock(mMutex);
        if (mFamilies != nullptr && mFamilies->empty()) return mFamilies;
    }
    const std::lock_guard<std::shared_mutex> lock(mMutex);
    if (isCurrent(families)) return mFamilies;
    ++changes;
    mFamilies.reset();
    auto made = std::make_shared<Families>();
    const int familyCount = families != nullptr ? families->GetCount() : 0;
    for (int i = 0; i < familyCount; ++i) {
        const auto* family = static_cast<const ZvFontFamily*>(families->Get(i));
        if (family == nullptr || family->loaded == 0) continue;
        IndexedFamily indexed = {family->localeListId, family->variant, {}};
        const int fontCount = family->fonts != nullptr ? family->fonts->GetCount() : 0;
        for (int j = 0; j < fontCount; ++j) {
            IndexedFont font;
            font.read(static_cast<const ZvFontEntry*>(family->fonts->Get(j)));
            indexed.fonts.push_back(std::move(font));
        }
        made->push_back(std::move(indexed));
    }
    mFamilies = std::move(made);
    return mFamilies;
}

}  // namespace Zvex
