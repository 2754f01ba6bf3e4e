// SPDX-License-Identifier: Apache-2.0
// HarfBuzz reads characters and advances (its objects are immutable, so without a lock); FreeType, one
// library and one face behind the face's lock, gives outlines, strikes and the rasterisers. Whatever fails on
// the way leaves the glyph blank.
#include "platform/host/FontFace.h"

#include <hb-ot.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <utility>

#include "platform/host/CodePointSet.h"
#include "platform/host/ColourGlyphs.h"
#include "platform/host/FreeTypeFace.h"
#include "platform/host/GlyphCache.h"
#include "platform/host/GlyphOutline.h"
#include "platform/host/OutlineFill.h"
#include "platform/host/WordCache.h"

namespace host {

// Every comparison is false for what is no number.
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

// The size at which the phone measures linear text and takes paths.
constexpr float kPathSize = 64;

// Coverage of black text as the phone's display shows it: an exponent of 1.4 undone, that is 255 x
// (1 - (1 - a / 255) ^ (1 / 1.4)), to within one; these are its very levels.
constexpr uint8_t kGamma[256] = {
    0,   1,   1,   2,   3,   4,   4,   5,   6,   7,   7,   8,   9,   9,   10,  11,  12,  12,  13,  14,
    15,  15,  16,  17,  17,  18,  19,  20,  20,  21,  22,  23,  23,  24,  25,  26,  26,  27,  28,  29,
    29,  30,  31,  32,  32,  33,  34,  35,  36,  36,  37,  38,  39,  39,  40,  41,  42,  42,  43,  44,
    45,  46,  46,  47,  48,  49,  49,  50,  51,  52,  53,  53,  54,  55,  56,  56,  57,  58,  59,  60,
    60,  61,  62,  63,  64,  64,  65,  66,  67,  68,  69,  69,  70,  71,  72,  73,  73,  74,  75,  76,
    77,  78,  78,  79,  80,  81,  82,  83,  83,  84,  85,  86,  87,  88,  88,  89,  90,  91,  92,  93,
    94,  94,  95,  96,  97,  98,  99,  100, 101, 101, 102, 103, 104, 105, 106, 107, 108, 108, 109, 110,
    111, 112, 113, 114, 115, 116, 117, 118, 118, 119, 120, 121, 122, 123, 124, 125, 126, 127, 128, 129,
    130, 131, 132, 132, 133, 134, 135, 136, 137, 138, 139, 140, 141, 142, 143, 144, 145, 146, 147, 148,
    149, 150, 151, 152, 153, 154, 155, 156, 157, 159, 160, 161, 162, 163, 164, 165, 166, 167, 168, 169,
    170, 171, 173, 174, 175, 176, 177, 178, 179, 181, 182, 183, 184, 185, 186, 188, 189, 190, 191, 193,
    194, 195, 196, 198, 199, 200, 202, 203, 204, 206, 207, 208, 210, 211, 213, 214, 216, 217, 219, 220,
    222, 223, 225, 227, 228, 230, 232, 234, 236, 238, 240, 242, 245, 247, 250, 255,
};

// Most of a glyph is empty or full, which the table leaves as it is.
void applyGamma(std::vector<uint8_t>& coverage) {
    size_t i = 0;
    for (; i + sizeof(uint64_t) <= coverage.size(); i += sizeof(uint64_t)) {
        uint64_t word;
        std::memcpy(&word, &coverage[i], sizeof word);
        if (word == 0 || word == ~uint64_t{0}) continue;
        for (size_t k = i; k < i + sizeof word; ++k) coverage[k] = kGamma[coverage[k]];
    }
    for (; i < coverage.size(); ++i) coverage[i] = kGamma[coverage[i]];
}

struct HbDeleter {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
template <typename T>
using HbOwner = std::unique_ptr<T, HbDeleter>;

// The file types that begin an sfnt font or a collection of them. Compressed containers are none.
bool isSfnt(const void* data, size_t size) {
    if (data == nullptr || size < 12 || size > std::numeric_limits<int32_t>::max()) return false;
    static const char kTags[][5] = {{'\0', '\1', '\0', '\0'}, "OTTO", "true", "ttcf"};
    return std::any_of(std::begin(kTags), std::end(kTags),
                       [&](const char* tag) { return std::memcmp(data, tag, 4) == 0; });
}

// The pairs of kAxesTable.
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
    float advance = 0;  // the phone's alone
    InkBox ink;
};

struct KeptMetrics {
    GlyphKey key;
    Metrics metrics;
};
constexpr size_t kKeptMetrics = 512;

}  // namespace

struct FontFace::Impl {
    std::shared_ptr<void> owner;  // declared first: everything below reads its bytes to the end
    uint32_t id = 0;
    HbOwner<hb_face_t> hbFace;
    HbOwner<hb_font_t> hbFont;  // at one unit per font unit
    unsigned unitsPerEm = 0, glyphCount = 0;
    CodePointSet codePoints;
    std::vector<hb_variation_t> axes;  // where they stand, if not at the defaults

    std::mutex mutex;  // guards the rest
    FreeTypeFace freeType;
    ColourGlyphs colours;
    std::vector<KeptMetrics> kept;  // by hash; empty until asked

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
    colours.open(freeType);
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
    if (colours.box(freeType, glyph, style, 0, &box)) {
        if (phone) metrics.advance = colours.advance(freeType, glyph, style);
    } else if (loadGlyph(freeType, glyph, style)) {
        if (phone) metrics.advance = slotAdvance(freeType, style);
        box = outlineBox(freeType);
    }
    if (!phone) box = limitedBox(box);
    metrics.ink = {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.right),
                   static_cast<float>(box.bottom)};
    return metrics;
}

// One table for all styles: a line asks for the same glyph's advance and box, and for those of its letters
// again and again.
Metrics FontFace::Impl::metrics(uint32_t glyph, const GlyphStyle& style) {
    GlyphKey key = keyOf(id, glyph, style);
    if (style.subpixel) key.flags |= kSubpixelKey;
    if (kept.empty()) kept.resize(kKeptMetrics);
    KeptMetrics& place = kept[GlyphKeyHash()(key) % kKeptMetrics];
    if (!(place.key == key)) {
        const Metrics measured = measure(glyph, style);
        freeType.throwIfExhausted();
        place = {key, measured};
    }
    return place.metrics;
}

GlyphImage FontFace::Impl::draw(uint32_t glyph, const GlyphStyle& style, int quarterX) {
    GlyphImage image;
    if (colours.draw(freeType, glyph, style, quarterX, &image)) return image;
    if (!loadOutline(freeType, glyph, style, quarterX)) return {};
    image = blankImage(outlineBox(freeType));
    if (image.coverage.empty() || !rasterise(freeType, style, image)) return {};
    if (style.rendering == Rendering::Phone && style.antiAlias) {
        applyGamma(image.coverage);
    }
    return image;
}

GlyphImage FontFace::Impl::drawPath(uint32_t glyph, const GlyphStyle& style, float x, float y,
                                    const GlyphBox& clip) {
    GlyphStyle measured = style;
    measured.size = kPathSize;
    measured.linear = true;
    GlyphBox colour;
    if (colours.box(freeType, glyph, measured, 0, &colour)) return {};
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
    if (style.rendering == Rendering::Phone) {
        std::lock_guard<std::mutex> lock(mImpl->mutex);
        return mImpl->metrics(glyph, style).advance;
    }
    const hb_position_t units = hb_font_get_glyph_h_advance(mImpl->hbFont.get(), glyph);
    const float pixels =
        static_cast<float>(units) * (style.size * style.scaleX / static_cast<float>(mImpl->unitsPerEm));
    return style.subpixel ? pixels : std::floor(pixels + 0.5f);
}

InkBox FontFace::inkBox(uint32_t glyph, const GlyphStyle& style) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return {};
    std::lock_guard<std::mutex> lock(mImpl->mutex);
    return mImpl->metrics(glyph, style).ink;
}

std::shared_ptr<const GlyphImage> FontFace::image(uint32_t glyph, const GlyphStyle& style,
                                                  int quarterX) const {
    static const std::shared_ptr<const GlyphImage>* const kBlank =
        new std::shared_ptr<const GlyphImage>(std::make_shared<GlyphImage>());
    if (glyph >= mImpl->glyphCount || !drawable(style)) return *kBlank;
    quarterX &= 3;
    GlyphKey key = keyOf(mImpl->id, glyph, style);
    key.flags |= static_cast<uint32_t>(quarterX) << kQuarterShift;
    if (std::shared_ptr<const GlyphImage> kept = findGlyph(key)) return kept;
    auto image = std::make_shared<GlyphImage>();
    {
        std::lock_guard<std::mutex> lock(mImpl->mutex);
        *image = mImpl->draw(glyph, style, quarterX);
        mImpl->freeType.throwIfExhausted();
    }
    return keepGlyph(key, std::move(image));
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
