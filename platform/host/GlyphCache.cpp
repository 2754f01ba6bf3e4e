// SPDX-License-Identifier: Apache-2.0
//
// A table under one lock, which threads share while they only look. Glyphs are rasterised outside the lock,
// so two threads may make the same image; the cache keeps the first one.
#include "platform/host/GlyphCache.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <iterator>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <unordered_map>
#include <utility>
#include <vector>

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

    void find(const GlyphKey* keys, size_t count, std::shared_ptr<const GlyphImage>* images) {
        const std::shared_lock<std::shared_mutex> lock(mMutex);
        for (size_t i = 0; i < count; ++i) {
            const auto found = mTable.find(keys[i]);
            if (found == mTable.end()) continue;
            Entry& entry = found->second;
            if (entry.lastUse.load(std::memory_order_relaxed) != mTime)
                entry.lastUse.store(mTime, std::memory_order_relaxed);
            images[i] = entry.image;
        }
    }

    std::shared_ptr<const GlyphImage> keep(const GlyphKey& key, std::shared_ptr<const GlyphImage> image) {
        // The image's bytes, plus roughly the size of the two records and their links.
        const size_t bytes = image->coverage.capacity() + sizeof(GlyphImage) + sizeof(Entry) + 128;
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        const auto found = mTable.find(key);
        if (found != mTable.end()) return found->second.image;
        if (bytes > mLimit / 4) return image;
        try {
            mTable.try_emplace(key, image, bytes, ++mTime);
        } catch (const std::bad_alloc&) {
            return image;
        }
        mBytes += bytes;
        shrink();
        return image;
    }

    void forget(uint32_t faceId) {
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        for (auto entry = mTable.begin(); entry != mTable.end();)
            entry = entry->first.faceId == faceId ? drop(entry) : std::next(entry);
    }

    void clear() {
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        dropAll();
    }

    size_t bytes() {
        const std::shared_lock<std::shared_mutex> lock(mMutex);
        return mBytes;
    }

    void setLimit(size_t bytes) {
        const std::lock_guard<std::shared_mutex> lock(mMutex);
        mLimit = bytes;
        shrink();
    }

private:
    struct Entry {
        Entry(std::shared_ptr<const GlyphImage> itsImage, size_t itsBytes, uint64_t time)
            : image(std::move(itsImage)), bytes(itsBytes), lastUse(time) {}
        const std::shared_ptr<const GlyphImage> image;
        const size_t bytes;
        std::atomic<uint64_t> lastUse;  // as mTime was
    };
    using Table = std::unordered_map<GlyphKey, Entry, GlyphKeyHash>;

    Table::iterator drop(Table::iterator entry) {
        mBytes -= entry->second.bytes;
        return mTable.erase(entry);
    }
    void dropAll() {
        mTable.clear();
        mBytes = 0;
    }
    // Makes room for some further images at once, because looking for the oldest ones takes a while.
    void shrink() {
        if (mBytes <= mLimit) return;
        try {
            std::vector<Table::iterator> oldest;
            oldest.reserve(mTable.size());
            for (auto entry = mTable.begin(); entry != mTable.end(); ++entry) oldest.push_back(entry);
            std::sort(oldest.begin(), oldest.end(), [](const auto& a, const auto& b) {
                return a->second.lastUse.load(std::memory_order_relaxed) <
                       b->second.lastUse.load(std::memory_order_relaxed);
            });
            for (size_t i = 0; mBytes > mLimit - mLimit / 8; ++i) drop(oldest[i]);
        } catch (const std::bad_alloc&) {
            dropAll();
        }
    }

    std::shared_mutex mMutex;
    Table mTable;
    uint64_t mTime = 0;  // goes on with each image that is kept
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

void findGlyphs(const GlyphKey* keys, size_t count, std::shared_ptr<const GlyphImage>* images) {
    GlyphCache::get().find(keys, count, images);
}
std::shared_ptr<const GlyphImage> keepGlyph(const GlyphKey& key, std::shared_ptr<const GlyphImage> image) {
    return GlyphCache::get().keep(key, std::move(image));
}
void forgetGlyphs(uint32_t faceId) {
    GlyphCache::get().forget(faceId);
}

}  // namespace host
