// SPDX-License-Identifier: Apache-2.0
#include "text/FontManager.h"

#include <SkStream.h>
#include <SkTypeface.h>
#include <fcntl.h>
#include <hwui/MinikinSkia.h>
#include <minikin/FontStyle.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "foundation/Error.h"
#include "foundation/List.h"
#include "foundation/OutOfMemory.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "text/ZvFontManagerImpl.h"

#ifndef ZVEX_SYSTEM_FONT_DIR
#define ZVEX_SYSTEM_FONT_DIR "/system/fonts"
#endif

namespace Zvex {

namespace {

constexpr char kTag[] = "ZvFontManager";

// The family that the system's own configuration names first; its fonts never make a family of their own.
constexpr char kSystemRoboto[] = ZVEX_SYSTEM_FONT_DIR "/Roboto-";

// The log counts megabytes of 1024 x 1000 bytes.
constexpr float kBytesPerMegabyte = 1.024e6f;

struct FileCloser {
    void operator()(FILE* file) const { std::fclose(file); }
};

bool toUtf8(const ZvString* string, std::string& out) {
    const int size = string != nullptr ? string->GetUTF8Size() : -1;
    if (size < 0) return false;
    std::vector<char> bytes(static_cast<size_t>(size) + 1, '\0');
    if (size > 0 && string->GetUTF8(bytes.data(), size) == 0) return false;
    out = bytes.data();
    return true;
}

const wchar_t* charactersOf(const ZvFontEntry& entry) {
    const wchar_t* path = entry.path != nullptr ? entry.path->GetPointer() : nullptr;
    return path != nullptr ? path : L"";
}

bool contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

// The style that a font's file name indicates; `weight` keeps its value if the name has none. The whole path
// is searched, so a folder called "Light" makes every font in it light.
void styleFromPath(const std::string& path, int& weight, bool& italic) {
    static constexpr struct {
        const char* name;
        int weight;
    } kWeights[] = {{"Thin", 100}, {"Light", 300}, {"Medium", 500}, {"Black", 900}, {"Bold", 700}};

    italic = false;
    if (path.find('-', 1) == std::string::npos) return;  // a "-" at the start does not count
    italic = contains(path, "Italic");
    for (const auto& candidate : kWeights) {
        if (contains(path, candidate.name)) {
            weight = candidate.weight;
            return;
        }
    }
}

minikin::Font makeFont(const std::shared_ptr<minikin::MinikinFont>& font, int weight, bool italic) {
    const int known = std::clamp(weight, 0, int{std::numeric_limits<uint16_t>::max()});
    return minikin::Font::Builder(font)
        .setWeight(static_cast<uint16_t>(known))
        .setSlant(italic ? minikin::FontStyle::Slant::ITALIC : minikin::FontStyle::Slant::UPRIGHT)
        .build();
}

// Makes the platform's font of collection index `index`; null when the bytes hold no such font. The typeface
// reads the bytes where they lie, so they go into the deleter: freed after the font, with the last one that
// uses them.
std::shared_ptr<minikin::MinikinFont> wrapFont(std::shared_ptr<ZvFontData> bytes, int index) {
    if (index < 0) return nullptr;
    sk_sp<SkTypeface> typeface =
        SkTypeface::MakeFromStream(new SkMemoryStream(bytes->data, bytes->size, false), index);
    if (typeface == nullptr) return nullptr;
    auto* font = new android::MinikinFontSkia(std::move(typeface), bytes->data, bytes->size, index,
                                              std::vector<minikin::FontVariation>());
    return std::shared_ptr<minikin::MinikinFont>(
        font, [bytes = std::move(bytes)](minikin::MinikinFont* f) mutable {
            delete f;
            bytes.reset();  // now, not when the last weak pointer lets the deleter go
        });
}

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

char* getFontData(const char* path, unsigned int& size) {
    const char* name = path != nullptr ? path : "";
    // Non-blocking, so that a pipe is refused by the seek instead of waiting here for its writer.
    const int descriptor = open(name, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    std::unique_ptr<FILE, FileCloser> file(descriptor >= 0 ? fdopen(descriptor, "rb") : nullptr);
    if (file == nullptr) {
        if (descriptor >= 0) close(descriptor);
        ZV_DEBUG_LOG(kTag, "getFontData: fail open file path = %s", name);
        return nullptr;
    }
    const long length = std::fseek(file.get(), 0, SEEK_END) == 0 ? std::ftell(file.get()) : -1;
    if (length < 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: fseek(file, 0, SEEK_END) failure path = %s", name);
        return nullptr;
    }
    if (length == 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: font length is 0 path = %s", name);
        return nullptr;
    }
    if (std::fseek(file.get(), 0, SEEK_SET) != 0) {
        ZV_DEBUG_LOG(kTag, "getFontData: fseek(file, 0, SEEK_SET) failure path = %s", name);
        return nullptr;
    }
    // A folder opens too; it reports an enormous length or fails to read.
    const auto wanted = static_cast<unsigned long long>(length);
    const bool fits = wanted <= std::numeric_limits<uint32_t>::max();
    std::unique_ptr<char[]> data(fits ? new (std::nothrow) char[static_cast<size_t>(wanted)] : nullptr);
    if (fits && data == nullptr) markOutOfMemory();
    if (data == nullptr || std::fread(data.get(), static_cast<size_t>(wanted), 1, file.get()) != 1) {
        ZV_DEBUG_LOG(kTag, "getFontData: fread failure path = %s length = %zu", name,
                     static_cast<size_t>(wanted));
        return nullptr;
    }
    size = static_cast<unsigned int>(wanted);
    return data.release();
}

ZvFontManagerImpl::~ZvFontManagerImpl() {
    ClearFontFamilies();
    ClearFontMaps();
}

std::string ZvFontManagerImpl::fontKey(const char* path, int index) {
    std::string key(path);
    // One character for any index: indices above 9 use the characters after '9'.
    key += static_cast<char>('0' + static_cast<unsigned int>(index));
    key += '\0';
    return key;
}

std::string ZvFontManagerImpl::dataKey(const char* path) {
    std::string key(path);
    key += '\0';
    return key;
}

void ZvFontManagerImpl::IndexedFont::read(const ZvFontEntry* entry) {
    if (entry == nullptr) return;
    exists = true;
    path = charactersOf(*entry);
    if (!toUtf8(entry->path, file)) file.clear();
    index = entry->index;
    weight = entry->weight;
    italic = entry->italic;
}

bool ZvFontManagerImpl::IndexedFont::isOf(const ZvFontEntry* entry) const {
    if (entry == nullptr || !exists) return exists == (entry != nullptr);
    return entry->index == index && entry->weight == weight && entry->italic == italic &&
           path == charactersOf(*entry);
}

bool ZvFontManagerImpl::isIndexed(const ZvFontFamily& family, const IndexedFamily& indexed) {
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

bool ZvFontManagerImpl::isIndexed() const {
    if (index == nullptr) return false;
    size_t at = 0;
    const int count = families != nullptr ? families->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        const auto* family = static_cast<const ZvFontFamily*>(families->Get(i));
        if (family == nullptr || family->loaded == 0) continue;
        if (at >= index->size() || !isIndexed(*family, (*index)[at])) return false;
        ++at;
    }
    return at == index->size();
}

std::shared_ptr<const ZvFontManagerImpl::FamilyIndex> ZvFontManagerImpl::indexedFamilies() {
    const std::lock_guard<std::mutex> lock(indexing);
    if (isIndexed()) return index;
    ++changes;
    index.reset();
    auto made = std::make_shared<FamilyIndex>();
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
    index = std::move(made);
    return index;
}

bool ZvFontManagerImpl::findFont(std::shared_ptr<minikin::MinikinFont>& out, const ZvString* path,
                                 int index) const {
    std::string utf8;
    return toUtf8(path, utf8) && findFont(out, utf8.c_str(), index);
}

bool ZvFontManagerImpl::findFont(std::shared_ptr<minikin::MinikinFont>& out, const char* path,
                                 int index) const {
    const auto found = fontMap.find(fontKey(path, index));
    if (found == fontMap.end()) return false;
    out = found->second;
    return true;
}

void ZvFontManagerImpl::collectFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& out,
                                        const ZvString* path, int& weight) {
    std::string utf8;
    if (path != nullptr && toUtf8(path, utf8)) {
        bool italic = false;
        styleFromPath(utf8, weight, italic);
        std::shared_ptr<minikin::MinikinFont> font;
        if (!contains(utf8, kSystemRoboto) && findFont(font, path, 0)) {
            std::vector<minikin::Font> fonts;
            fonts.push_back(makeFont(font, weight, italic));
            out.push_back(std::make_shared<minikin::FontFamily>(std::move(fonts)));
        }
    }

    const std::shared_ptr<const FamilyIndex> loaded = indexedFamilies();
    for (const IndexedFamily& indexed : *loaded) {
        std::vector<minikin::Font> fonts;
        for (const IndexedFont& entry : indexed.fonts) {
            std::shared_ptr<minikin::MinikinFont> font;
            if (!entry.file.empty() && findFont(font, entry.file.c_str(), entry.index)) {
                fonts.push_back(makeFont(font, entry.weight, entry.italic));
            }
        }
        if (fonts.empty()) continue;
        out.push_back(std::make_shared<minikin::FontFamily>(
            indexed.localeListId, static_cast<minikin::FontFamily::Variant>(indexed.variant),
            std::move(fonts)));
    }
}

void ZvFontManagerImpl::ClearFontFamilies() {
    ++changes;
    index.reset();
    const int count = families != nullptr ? families->GetCount() : 0;
    for (int i = 0; i < count; ++i) freeFontFamily(static_cast<ZvFontFamily*>(families->Get(i)));
    delete families;
    families = nullptr;
    familiesSet = false;
}

void ZvFontManagerImpl::ClearFontMaps() {
    ++changes;
    fontMap.clear();
    dataMap.clear();
}

bool ZvFontManagerImpl::isExisting(const char* path, int index) const {
    if (path == nullptr || *path == '\0') {
        ZV_DEBUG_LOG(kTag, "IsExisting() - path is NULL");
        return false;
    }
    return fontMap.count(fontKey(path, index)) != 0;
}

bool ZvFontManagerImpl::addFont(const char* path, std::unique_ptr<char[]> handedOver, unsigned int size,
                                int index, bool checkExisting) {
    if (path == nullptr || *path == '\0') {
        ZV_DEBUG_LOG(kTag, "AddMinikinFont() - path is NULL");
        return false;
    }
    if (checkExisting && isExisting(path, index)) return true;
    std::shared_ptr<ZvFontData> bytes;
    const std::string dataName = dataKey(path), fontName = fontKey(path, index);
    auto inMap = dataMap.end();  // what was read now; kept only with its font
    if (handedOver != nullptr) {
        bytes = std::make_shared<ZvFontData>(handedOver.get(), size);
        handedOver.release();
    } else if (const auto known = dataMap.find(dataName); known != dataMap.end()) {
        bytes = known->second;
    } else {
        unsigned int length = 0;
        if (std::unique_ptr<char[]> data{getFontData(path, length)}) {
            bytes = std::make_shared<ZvFontData>(data.get(), length);
            data.release();
            inMap = dataMap.emplace(dataName, bytes).first;
            const float megabytes = static_cast<float>(length) / kBytesPerMegabyte;
            totalSize += megabytes;
            ZV_DEBUG_LOG(kTag, "BUFFER TOTAL SIZE(%.2fMB) <- %s(%.2fMB) ", totalSize, path,
                         static_cast<double>(megabytes));
        }
    }
    if (bytes == nullptr || bytes->size == 0) {
        __android_log_print(ANDROID_LOG_ERROR, kTag, "AddMinikinFont() - Fail to get font");
        return false;
    }

    // The file may later be replaced by a font. Bytes that were in the map before belong to another font.
    const auto forget = [&] {
        if (inMap != dataMap.end()) dataMap.erase(inMap);
    };
    try {
        std::shared_ptr<minikin::MinikinFont> font = wrapFont(bytes, index);
        if (font == nullptr) {
            __android_log_print(ANDROID_LOG_ERROR, kTag, "AddMinikinFont() - Fail to create typeface");
            forget();
            return false;
        }
        if (fontMap.emplace(fontName, std::move(font)).second) ++changes;
        return true;
    } catch (const std::bad_alloc&) {
        forget();
        throw;
    }
}

bool ZvFontManagerImpl::buildFamily(const ZvFontFamily* family) {
    const int count = family != nullptr && family->fonts != nullptr ? family->fonts->GetCount() : 0;
    if (count < 1) return false;
    for (int i = 0; i < count; ++i) {
        const auto* entry = static_cast<const ZvFontEntry*>(family->fonts->Get(i));
        std::string path;
        if (entry == nullptr) return false;
        const char* known = toUtf8(entry->path, path) ? path.c_str() : nullptr;
        if (!addFont(known, nullptr, 0, entry->index, false)) return false;
    }
    return true;
}

bool ZvFontManagerImpl::loadFamily(unsigned int localeListId) {
    const int count = families != nullptr ? families->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        auto* family = static_cast<ZvFontFamily*>(families->Get(i));
        if (family == nullptr || family->loaded != 0 || family->localeListId != localeListId) continue;
        family->loaded = buildFamily(family) ? 1 : 0;
        return true;
    }
    return false;
}

FontManager* FontManager::GetInstance() {
    // Never destroyed: threads may still render while the process ends.
    alignas(FontManager) static char storage[sizeof(FontManager)];
    static FontManager* const instance = new (storage) FontManager;
    static std::mutex making;
    // Where there was no memory for it, once more.
    const std::lock_guard<std::mutex> lock(making);
    if (instance->mImpl == nullptr) instance->mImpl = new (std::nothrow) ZvFontManagerImpl;
    return instance;
}

FontManager::FontManager() : mImpl(new (std::nothrow) ZvFontManagerImpl) {}

FontManager::~FontManager() {
    ZV_DEBUG_LOG(kTag, "~FontManager(%p)", static_cast<void*>(this));
    delete mImpl;
}

bool FontManager::IsExisting(const char* path, int index) const {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return unlessOutOfMemory(false, [&] { return mImpl->isExisting(path, index); });
}

bool FontManager::AddMinikinFont(const char* path, char* buffer, unsigned int size, int index,
                                 bool checkExisting) {
    std::unique_ptr<char[]> handedOver(buffer);
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
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
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return unlessOutOfMemory(false, [&] { return mImpl->buildFamily(family); });
}

bool FontManager::LoadMinikinFontFamily(unsigned int localeListId) {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return unlessOutOfMemory(false, [&] { return mImpl->loadFamily(localeListId); });
}

bool FontManager::EnsureMinikinFontFamily(unsigned int localeListId) {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return unlessOutOfMemory(false, [&] {
        mImpl->loadFamily(localeListId);
        return true;
    });
}

bool FontManager::SetSystemFontFamilies(List* families) {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    if (!mImpl->familiesSet) {
        mImpl->ClearFontFamilies();
        mImpl->families = families;
        mImpl->familiesSet = true;
    }
    return true;
}

bool FontManager::IsSystemFontFamiliesAlreadySet() const {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return mImpl->familiesSet;
}

bool FontManager::GetMinikinFont(std::shared_ptr<minikin::MinikinFont>& out, ZvString* path,
                                 int index) const {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
    return unlessOutOfMemory(false, [&] { return mImpl->findFont(out, path, index); });
}

bool FontManager::GetMinikinFontFamilies(std::vector<std::shared_ptr<minikin::FontFamily>>& out,
                                         ZvString* path, int& weight) const {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return false;
    }
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
        mImpl->indexedFamilies();
        return true;
    });
    if (!seen) ++mImpl->changes;
    return mImpl->changes;
}

void FontManager::ClearFontFamilies() {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return;
    }
    mImpl->ClearFontFamilies();
}

void FontManager::ClearFontMaps() {
    if (mImpl == nullptr) {
        ZV_REPORT_ERROR(kTag, ZV_ERROR_NOT_CONSTRUCTED);
        return;
    }
    mImpl->ClearFontMaps();
}

}  // namespace Zvex
