// SPDX-License-Identifier: Apache-2.0
//
// A list in order of use and a table into it, under one lock. Glyphs are rasterised outside the lock, so two
// threads may make the same image; the cache keeps the first one.
#include "platform/host/GlyphCache.h"

#include <cstring>
#include <list>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>

namespace host {

bool GlyphKey::operator==(const GlyphKey& other) const {
    return faceId == other.faceId && glyph == other.glyph && size == other.size && scaleX == other.scaleX &&
           skewX == other.skewX && flags == other.flags;
}

size_t GlyphKeyHash::operator()(const GlyphKey& key) const {
    uint64_t hash = 0;
    for (const uint32_t part : {key.faceId, key.glyph, key.size, key.scaleX, key.skewX, key.flags}) {
        hash = (hash ^ part) * 0x9E3779B97F4A7C15u;
        hash ^= hash >> 29;
    }
    return static_cast<size_t>(hash);
}

GlyphKey keyOf(uint32_t faceId, uint32_t glyph, const GlyphStyle& style) {
    const auto bitsOf = [](float value) {
        value += 0.0f;  // 0 and -0 are one style
        uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    };
    const bool phone = style.rendering == Rendering::Phone;
    GlyphKey key;
    key.faceId = faceId;
    key.glyph = glyph;
    key.size = bitsOf(style.size);
    key.scaleX = bitsOf(style.scaleX);
    key.skewX = bitsOf(style.skewX);
    key.flags = (style.fakeBold ? 1u : 0u) | (style.antiAlias ? 2u : 0u) | (phone && style.linear ? 4u : 0u) |
                (phone ? 8u : 0u);
    return key;
}

namespace {

class GlyphCache {
public:
    // Never destroyed, because fonts in static objects forget their glyphs when the process ends.
    static GlyphCache& get() {
        static GlyphCache* cache = new GlyphCache;
        return *cache;
    }

    std::shared_ptr<const GlyphImage> find(const GlyphKey& key) {
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mTable.find(key);
        if (found == mTable.end()) return nullptr;
        mEntries.splice(mEntries.begin(), mEntries, found->second);
        return found->second->image;
    }

    std::shared_ptr<const GlyphImage> keep(const GlyphKey& key, std::shared_ptr<const GlyphImage> image) {
        // The image's bytes, plus roughly the size of the two records and their links.
        const size_t bytes = image->coverage.capacity() + sizeof(GlyphImage) + sizeof(Entry) + 128;
        std::lock_guard<std::mutex> lock(mMutex);
        const auto found = mTable.find(key);
        if (found != mTable.end()) return found->second->image;
        if (bytes > mLimit / 4) return image;
        try {
            Entries entry;
            entry.push_front({key, image, bytes});
            mTable.emplace(key, entry.begin());
            mEntries.splice(mEntries.begin(), entry);
        } catch (const std::bad_alloc&) {
            return image;
        }
        mBytes += bytes;
        shrink();
        return image;
    }

    void forget(uint32_t faceId) {
        std::lock_guard<std::mutex> lock(mMutex);
        for (auto entry = mEntries.begin(); entry != mEntries.end();) {
            const auto next = std::next(entry);
            if (entry->key.faceId == faceId) drop(entry);
            entry = next;
        }
    }

    void clear() {
        std::lock_guard<std::mutex> lock(mMutex);
        mTable.clear();
        mEntries.clear();
        mBytes = 0;
    }

    size_t bytes() {
        std::lock_guard<std::mutex> lock(mMutex);
        return mBytes;
    }

    void setLimit(size_t bytes) {
        std::lock_guard<std::mutex> lock(mMutex);
        mLimit = bytes;
        shrink();
    }

private:
    struct Entry {
        GlyphKey key;
        std::shared_ptr<const GlyphImage> image;
        size_t bytes;
    };
    using Entries = std::list<Entry>;

    void drop(Entries::iterator entry) {
        mBytes -= entry->bytes;
        mTable.erase(entry->key);
        mEntries.erase(entry);
    }
    void shrink() {
        while (mBytes > mLimit) drop(std::prev(mEntries.end()));
    }

    std::mutex mMutex;
    Entries mEntries;  // most recently used first
    std::unordered_map<GlyphKey, Entries::iterator, GlyphKeyHash> mTable;
    size_t mBytes = 0;
    size_t mLimit = kDefaultGlyphCacheLimit;
};

}  // namespace

void clearGlyphCache() {
    GlyphCache::get().clear();
}
size_t glyphCacheBytes() {
    return GlyphCache::get().bytes();
}
void setGlyphCacheLimit(size_t bytes) {
    GlyphCache::get().setLimit(bytes);
}

std::shared_ptr<const GlyphImage> findGlyph(const GlyphKey& key) {
    return GlyphCache::get().find(key);
}
std::shared_ptr<const GlyphImage> keepGlyph(const GlyphKey& key, std::shared_ptr<const GlyphImage> image) {
    return GlyphCache::get().keep(key, std::move(image));
}
void forgetGlyphs(uint32_t faceId) {
    GlyphCache::get().forget(faceId);
}

}  // namespace host
