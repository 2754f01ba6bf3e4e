// SPDX-License-Identifier: Apache-2.0
#include "text/ZvFontManagerImpl.h"

#include <minikin/FontStyle.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

#include "foundation/List.h"
#include "foundation/ZvLog.h"
#include "foundation/ZvString.h"
#include "text/FontData.h"
#include "text/FontPath.h"

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

minikin::Font makeFont(const std::shared_ptr<minikin::MinikinFont>& font, int weight, bool italic) {
    const int known = std::clamp(weight, 0, int{std::numeric_limits<uint16_t>::max()});
    return minikin::Font::Builder(font)
        .setWeight(static_cast<uint16_t>(known))
        .setSlant(italic ? minikin::FontStyle::Slant::ITALIC : minikin::FontStyle::Slant::UPRIGHT)
        .build();
}

}  // namespace

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
        if (utf8.find(kSystemRoboto) == std::string::npos && findFont(font, path, 0)) {
            std::vector<minikin::Font> fonts;
            fonts.push_back(makeFont(font, weight, italic));
            out.push_back(std::make_shared<minikin::FontFamily>(std::move(fonts)));
        }
    }

    const auto loaded = index.update(families, changes);
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
    index.clear();
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

}  // namespace Zvex
