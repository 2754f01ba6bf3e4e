// SPDX-License-Identifier: Apache-2.0
//
// HarfBuzz reads characters and advances; its objects are immutable and need no lock. FreeType, one library
// and one face behind the face's lock, gives outlines, strikes and rasters. If anything fails, the glyph is
// blank.
#include "platform/host/FontFace.h"

#include <hb-ot.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <shared_mutex>
#include <utility>

#include "platform/host/CodePointSet.h"
#include "platform/host/ColorGlyphs.h"
#include "platform/host/FreeTypeFace.h"
#include "platform/host/GlyphCache.h"
#include "platform/host/GlyphOutline.h"
#include "platform/host/OutlineFill.h"
#include "platform/host/WordCache.h"

namespace host {

// All comparisons are false for NaN.
bool drawable(const GlyphStyle& style) {
    const bool phone = style.rendering == Rendering::Phone;
    const float least = phone ? kMinPhoneSize : kMinGlyphSize, most = phone ? kMaxPhoneSize : kMaxGlyphSize;
    const float width = std::fabs(style.size * style.scaleX);
    return style.size >= least && style.size <= most && width >= least && width <= most &&
           std::fabs(style.skewX) <= kMaxGlyphSkew;
}

bool drawnAsPath(const GlyphStyle& style) {
    if (style.rendering == Rendering::Plain) return false;
    const float width = style.size * style.scaleX, slant = style.size * style.skewX;
    return width * width > kMaxHintedSize * kMaxHintedSize ||
           slant * slant + style.size * style.size > kMaxHintedSize * kMaxHintedSize;
}

namespace {

// The size at which the phone measures linear text and loads paths.
constexpr float kPathSize = 64;

struct HbDeleter {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
template <typename T>
using HbOwner = std::unique_ptr<T, HbDeleter>;

// Whether the file starts like an sfnt font or a collection of them. Compressed containers do not.
bool isSfnt(const void* data, size_t size) {
    if (data == nullptr || size < 12 || size > std::numeric_limits<int32_t>::max()) return false;
    static const char kTags[][5] = {{'\0', '\1', '\0', '\0'}, "OTTO", "true", "ttcf"};
    return std::any_of(std::begin(kTags), std::end(kTags),
                       [&](const char* tag) { return std::memcmp(data, tag, 4) == 0; });
}

// Reads the pairs of kAxesTable.
std::vector<hb_variation_t> readAxes(hb_face_t* face) {
    constexpr size_t kMaxAxes = 64, kPairBytes = 8;
    const HbOwner<hb_blob_t> table(hb_face_reference_table(face, kAxesTable));
    unsigned length = 0;
    const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(table.get(), &length));
    const auto number = [&](size_t at) {
        return uint32_t{bytes[at]} << 24 | uint32_t{bytes[at + 1]} << 16 | uint32_t{bytes[at + 2]} << 8 |
               bytes[at + 3];
    };
    std::vector<hb_variation_t> axes;
    for (size_t at = 0; at + kPairBytes <= length && axes.size() < kMaxAxes; at += kPairBytes) {
        const auto fixed = static_cast<int32_t>(number(at + 4));
        axes.push_back({number(at), static_cast<float>(fixed) / 65536});
    }
    return axes;
}

struct Metrics {
    float advance = 0;  // only for the phone
    InkBox ink;
};

struct KeptMetrics {
    GlyphKey key;
    Metrics metrics;
};
constexpr size_t kKeptMetrics = 512;

}  // namespace

struct FontFace::Impl {
    std::shared_ptr<void> owner;  // declared first: the members below read its bytes until destroyed
    uint32_t id = 0;
    HbOwner<hb_face_t> hbFace;
    HbOwner<hb_font_t> hbFont;  // scaled to font units
    unsigned unitsPerEm = 0, glyphCount = 0;
    CodePointSet codePoints;
    std::vector<hb_variation_t> axes;  // their positions, if not the defaults

    std::mutex mutex;  // guards FreeType
    FreeTypeFace freeType;
    ColorGlyphs colors;
    std::shared_mutex keptMutex;
    std::vector<KeptMetrics> kept;  // by hash; empty until first used

    bool open(const void* data, size_t size, int index);
    Metrics measure(uint32_t glyph, const GlyphStyle& style);
    Metrics metrics(uint32_t glyph, const GlyphStyle& style);
    GlyphImage draw(uint32_t glyph, const GlyphStyle& style, int quarterX);
    GlyphImage drawPath(uint32_t glyph, const GlyphStyle& style, float x, float y, const GlyphBox& clip);
};

bool FontFace::Impl::open(const void* data, size_t size, int index) {
    if (!isSfnt(data, size) || index < 0 || index > 0xFFFF) return false;

    const HbOwner<hb_blob_t> blob(hb_blob_create(static_cast<const char*>(data), static_cast<unsigned>(size),
                                                 HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    if (static_cast<unsigned>(index) >= hb_face_count(blob.get())) return false;
    hbFace.reset(hb_face_create(blob.get(), static_cast<unsigned>(index)));
    if (hbFace.get() == hb_face_get_empty()) throw std::bad_alloc();
    hb_face_make_immutable(hbFace.get());
    glyphCount = hb_face_get_glyph_count(hbFace.get());
    unitsPerEm = hb_face_get_upem(hbFace.get());
    const HbOwner<hb_set_t> unicodes(hb_set_create());
    hb_face_collect_unicodes(hbFace.get(), unicodes.get());
    if (!hb_set_allocation_successful(unicodes.get())) throw std::bad_alloc();
    codePoints.assign(unicodes.get());
    if (glyphCount == 0 || unitsPerEm == 0 || codePoints.empty()) return false;

    hbFont.reset(hb_font_create(hbFace.get()));
    if (hbFont.get() == hb_font_get_empty()) throw std::bad_alloc();
    hb_font_set_scale(hbFont.get(), static_cast<int>(unitsPerEm), static_cast<int>(unitsPerEm));
    hb_ot_font_set_funcs(hbFont.get());
    if (hb_ot_var_has_data(hbFace.get()) != 0) axes = readAxes(hbFace.get());
    if (!axes.empty()) hb_font_set_variations(hbFont.get(), axes.data(), static_cast<unsigned>(axes.size()));
    hb_font_make_immutable(hbFont.get());

    const bool opened = freeType.open(data, size, index);
    freeType.throwIfExhausted();
    if (!opened || (!axes.empty() && !freeType.setAxes(hbFont.get()))) return false;
    colors.open(freeType, hbFace.get());
    freeType.throwIfExhausted();
    return true;
}

Metrics FontFace::Impl::measure(uint32_t glyph, const GlyphStyle& style) {
    const bool phone = style.rendering == Rendering::Phone;
    if (phone && (style.linear || drawnAsPath(style)) && !(style.size == kPathSize && style.linear)) {
        GlyphStyle measured = style;
        measured.size = kPathSize;
        measured.linear = true;
        const float scale = style.size / kPathSize;
        Metrics metrics = measure(glyph, measured);
        for (float* v : {&metrics.advance, &metrics.ink.left, &metrics.ink.top, &metrics.ink.right,
                         &metrics.ink.bottom}) {
            *v *= scale;
        }
        return metrics;
    }
    Metrics metrics;
    GlyphBox box;
    if (colors.box(freeType, glyph, style, 0, &box)) {
        if (phone) metrics.advance = colors.advance(freeType, glyph, style);
    } else if (loadGlyph(freeType, glyph, style)) {
        if (phone) metrics.advance = slotAdvance(freeType, style);
        box = outlineBox(freeType);
    }
    if (!phone) box = limitedBox(box);
    metrics.ink = {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.right),
                   static_cast<float>(box.bottom)};
    return metrics;
}

// One table for all styles: a line asks for the same glyph's advance and box, and repeats its letters often.
Metrics FontFace::Impl::metrics(uint32_t glyph, const GlyphStyle& style) {
    GlyphKey key = keyOf(id, glyph, style);
    if (style.subpixel) key.flags |= kSubpixelKey;
    const size_t place = GlyphKeyHash()(key) % kKeptMetrics;
    {
        const std::shared_lock<std::shared_mutex> lock(keptMutex);
        if (!kept.empty() && kept[place].key == key) return kept[place].metrics;
    }
    KeptMetrics measured = {key, {}};
    {
        const std::lock_guard<std::mutex> lock(mutex);
        measured.metrics = measure(glyph, style);
        freeType.throwIfExhausted();
    }
    const std::lock_guard<std::shared_mutex> lock(keptMutex);
    if (kept.empty()) kept.resize(kKeptMetrics);
    kept[place] = measured;
    return measured.metrics;
}

GlyphImage FontFace::Impl::draw(uint32_t glyph, const GlyphStyle& style, int quarterX) {
    GlyphImage image;
    if (colors.draw(freeType, glyph, style, quarterX, &image)) return image;
    if (!loadOutline(freeType, glyph, style, quarterX)) return {};
    image = blankImage(outlineBox(freeType));
    if (image.coverage.empty() || !rasterise(freeType, style, levelsOf(style), image)) return {};
    return image;
}

GlyphImage FontFace::Impl::drawPath(uint32_t glyph, const GlyphStyle& style, float x, float y,
                                    const GlyphBox& clip) {
    GlyphStyle measured = style;
    measured.size = kPathSize;
    measured.linear = true;
    GlyphBox color;
    if (colors.box(freeType, glyph, measured, 0, &color)) return {};
    if (!loadOutline(freeType, glyph, measured, 0)) return {};
    const float scale = style.size / kPathSize;
    const GlyphBox box = outlineBox(freeType);
    const auto whole = [](float v) { return static_cast<int>(std::clamp(std::floor(v), -1e9f, 1e9f)); };
    const GlyphBox reached = {std::max(clip.left, whole(x + static_cast<float>(box.left) * scale)),
                              std::max(clip.top, whole(y + static_cast<float>(box.top) * scale)),
                              std::min(clip.right, whole(x + static_cast<float>(box.right) * scale) + 1),
                              std::min(clip.bottom, whole(y + static_cast<float>(box.bottom) * scale) + 1)};
    GlyphImage image = blankImage(reached);
    if (!image.coverage.empty()) {
        fillPath(freeType.face()->glyph->outline, scale, x, y, style.antiAlias, image);
    }
    return image;
}

FontFace::FontFace(std::unique_ptr<Impl> impl) : mImpl(std::move(impl)) {}

FontFace::~FontFace() {
    forgetGlyphs(mImpl->id);
    forgetWords(mImpl->id);
}

std::shared_ptr<FontFace> FontFace::open(const void* data, size_t size, int index,
                                         std::shared_ptr<void> owner) {
    auto impl = std::make_unique<Impl>();
    impl->owner = std::move(owner);
    if (!impl->open(data, size, index)) return nullptr;
    static std::atomic<uint32_t> lastId{0};
    impl->id = ++lastId;
    return std::shared_ptr<FontFace>(new FontFace(std::move(impl)));
}

uint32_t FontFace::uniqueId() const {
    return mImpl->id;
}
hb_face_t* FontFace::hbFace() const {
    return mImpl->hbFace.get();
}
void FontFace::setAxes(hb_font_t* font) const {
    const std::vector<hb_variation_t>& axes = mImpl->axes;
    if (!axes.empty()) hb_font_set_variations(font, axes.data(), static_cast<unsigned>(axes.size()));
}
unsigned FontFace::unitsPerEm() const {
    return mImpl->unitsPerEm;
}
unsigned FontFace::glyphCount() const {
    return mImpl->glyphCount;
}

bool FontFace::covers(uint32_t codePoint) const {
    return mImpl->codePoints.contains(codePoint);
}

bool FontFace::coversVariation(uint32_t codePoint, uint32_t selector) const {
    hb_codepoint_t glyph = 0;
    return hb_font_get_variation_glyph(mImpl->hbFont.get(), codePoint, selector, &glyph) != 0 && glyph != 0;
}

float FontFace::advance(uint32_t glyph, const GlyphStyle& style) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return 0;
    if (style.rendering == Rendering::Phone) return mImpl->metrics(glyph, style).advance;
    const hb_position_t units = hb_font_get_glyph_h_advance(mImpl->hbFont.get(), glyph);
    const float pixels =
        static_cast<float>(units) * (style.size * style.scaleX / static_cast<float>(mImpl->unitsPerEm));
    return style.subpixel ? pixels : std::floor(pixels + 0.5f);
}

InkBox FontFace::inkBox(uint32_t glyph, const GlyphStyle& style) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return {};
    return mImpl->metrics(glyph, style).ink;
}

std::shared_ptr<const GlyphImage> FontFace::image(uint32_t glyph, const GlyphStyle& style,
                                                  int quarterX) const {
    const PlacedGlyph placed = {glyph, quarterX};
    std::shared_ptr<const GlyphImage> image;
    images(&placed, 1, style, &image);
    return image;
}

void FontFace::images(const PlacedGlyph* glyphs, size_t count, const GlyphStyle& style,
                      std::shared_ptr<const GlyphImage>* images) const {
    static const std::shared_ptr<const GlyphImage>* const kBlank =
        new std::shared_ptr<const GlyphImage>(std::make_shared<GlyphImage>());
    const bool visible = drawable(style);
    constexpr size_t kAtOnce = 32;
    GlyphKey keys[kAtOnce];
    for (size_t begin = 0; begin < count; begin += kAtOnce) {
        const size_t some = std::min(count - begin, kAtOnce);
        const GlyphKey common = keyOf(mImpl->id, 0, style);
        for (size_t i = 0; i < some; ++i) {
            keys[i] = common;
            keys[i].glyph = glyphs[begin + i].glyph;
            keys[i].flags |= static_cast<uint32_t>(glyphs[begin + i].quarterX & 3) << kQuarterShift;
            images[begin + i] = nullptr;
        }
        if (visible) findGlyphs(keys, some, images + begin);
        for (size_t i = 0; i < some; ++i) {
            std::shared_ptr<const GlyphImage>& image = images[begin + i];
            if (image != nullptr) continue;
            const bool exists = visible && keys[i].glyph < mImpl->glyphCount;
            image = exists ? keepGlyph(keys[i], drawn(glyphs[begin + i], style)) : *kBlank;
        }
    }
}

std::shared_ptr<const GlyphImage> FontFace::drawn(const PlacedGlyph& placed, const GlyphStyle& style) const {
    auto image = std::make_shared<GlyphImage>();
    const std::lock_guard<std::mutex> lock(mImpl->mutex);
    *image = mImpl->draw(placed.glyph, style, placed.quarterX & 3);
    mImpl->freeType.throwIfExhausted();
    return image;
}

bool FontFace::hasColors() const {
    return mImpl->colors.hasAny();
}

ColorImage FontFace::colorImage(uint32_t glyph, const GlyphStyle& style, int quarterX,
                                uint32_t textColor) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return {};
    std::lock_guard<std::mutex> lock(mImpl->mutex);
    ColorImage image = mImpl->colors.paint(mImpl->freeType, glyph, style, quarterX & 3, textColor);
    mImpl->freeType.throwIfExhausted();
    return image;
}

GlyphImage FontFace::pathImage(uint32_t glyph, const GlyphStyle& style, float x, float y,
                               const GlyphBox& clip) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return {};
    std::lock_guard<std::mutex> lock(mImpl->mutex);
    GlyphImage image = mImpl->drawPath(glyph, style, x, y, clip);
    mImpl->freeType.throwIfExhausted();
    return image;
}

}  // namespace host
