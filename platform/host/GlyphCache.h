// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_GLYPHCACHE_H_
#define ZVEX_PLATFORM_HOST_GLYPHCACHE_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/host/FontFace.h"

namespace host {

// The process keeps rasterised glyphs up to a bound in bytes (16 MiB at the start). Beyond it, the least
// recently used go first, an eighth of the bound at once. An image of more than a quarter of the bound is not
// kept. Any thread may call these functions. Images that are in use stay valid in any case.
constexpr size_t kDefaultGlyphCacheLimit = size_t{16} << 20;

void clearGlyphCache();
// The bytes of the kept glyphs and their bookkeeping; never more than the bound.
size_t glyphCacheBytes();
// 0 keeps nothing.
void setGlyphCacheLimit(size_t bytes);

// Everything that an image depends on: equal keys give equal bytes.
struct GlyphKey {
    uint32_t faceId = 0;
    uint32_t glyph = 0;
    uint32_t size = 0, scaleX = 0, skewX = 0;  // the bits of the floats
    uint32_t flags = 0;  // fake bold 1, anti-alias 2, linear 4, phone 8, and further bits

    bool operator==(const GlyphKey& other) const;
};
constexpr uint32_t kSubpixelKey = 16;
constexpr int kQuarterShift = 5;
struct GlyphKeyHash {
    size_t operator()(const GlyphKey& key) const;
};

// The key for a pen at a whole pixel.
GlyphKey keyOf(uint32_t faceId, uint32_t glyph, const GlyphStyle& style);

// For FontFace.

// Sets the images that are kept; the others stay as they are.
void findGlyphs(const GlyphKey* keys, size_t count, std::shared_ptr<const GlyphImage>* images);
// Keeps the image unless the key has one already. Returns the kept image, or `image` if none is kept.
std::shared_ptr<const GlyphImage> keepGlyph(const GlyphKey& key, std::shared_ptr<const GlyphImage> image);
void forgetGlyphs(uint32_t faceId);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_GLYPHCACHE_H_
