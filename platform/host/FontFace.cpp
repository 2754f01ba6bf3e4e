// SPDX-License-Identifier: Apache-2.0
// HarfBuzz reads characters and advances (its objects are immutable, so without a lock); FreeType, one
// library and one face behind the face's lock, gives outlines, strikes and the rasterisers. Whatever fails on
// the way leaves the glyph blank.
#include "platform/host/FontFace.h"

#include <ft2build.h>
#include <hb-ot.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <utility>
#include FT_FREETYPE_H
#include FT_BITMAP_H
#include FT_COLOR_H
#include FT_MODULE_H
#include FT_MULTIPLE_MASTERS_H
#include FT_OUTLINE_H
#include FT_SYSTEM_H

#include "platform/host/CodePointSet.h"
#include "platform/host/GlyphCache.h"
#include "platform/host/PixelMath.h"
#include "platform/host/ResampleAlpha.h"

namespace host {

// Every comparison is false for what is no number.
bool drawable(const GlyphStyle& style) {
    const float width = std::fabs(style.size * style.scaleX);
    return style.size >= kMinGlyphSize && style.size <= kMaxGlyphSize && width >= kMinGlyphSize &&
           width <= kMaxGlyphSize && std::fabs(style.skewX) <= kMaxGlyphSkew;
}

namespace {

// A font states sizes of its own (tables, strike bitmaps): FreeType gets no single block larger than this for
// them.
constexpr size_t kMaxFreeTypeBlock = size_t{64} << 20;
// Layers after these are not drawn; real glyphs have a few dozen.
constexpr int kMaxLayers = 1024;
// Fake bold's width in all, as a share of the size, between two sizes.
constexpr float kBoldSmallSize = 9, kBoldLargeSize = 36;
constexpr float kBoldSmallShare = 1.0f / 24, kBoldLargeShare = 1.0f / 32;

struct HbDeleter {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
    void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    void operator()(hb_font_t* font) const { hb_font_destroy(font); }
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
template <typename T>
using HbOwner = std::unique_ptr<T, HbDeleter>;

// `memory->user` is a bool: whether the machine had no block to give.
void* noteExhaustion(FT_Memory memory, void* block) {
    if (block == nullptr) *static_cast<bool*>(memory->user) = true;
    return block;
}
void* allocateBlock(FT_Memory memory, long size) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    return noteExhaustion(memory, std::malloc(static_cast<size_t>(size)));
}
void freeBlock(FT_Memory, void* block) {
    std::free(block);
}
void* resizeBlock(FT_Memory memory, long /*oldSize*/, long size, void* block) {
    if (size <= 0 || static_cast<unsigned long>(size) > kMaxFreeTypeBlock) return nullptr;
    return noteExhaustion(memory, std::realloc(block, static_cast<size_t>(size)));
}

// FreeType with bounded blocks and its built-in settings: the environment, which FT_Init_FreeType would ask,
// has no say in the pixels.
struct FreeTypeFace {
    bool exhausted = false;
    FT_MemoryRec_ memory{&exhausted, allocateBlock, freeBlock, resizeBlock};
    FT_Library library = nullptr;
    FT_Face face = nullptr;

    FreeTypeFace() = default;
    FreeTypeFace(const FreeTypeFace&) = delete;
    FreeTypeFace& operator=(const FreeTypeFace&) = delete;
    ~FreeTypeFace() {
        if (face != nullptr) FT_Done_Face(face);
        if (library != nullptr) FT_Done_Library(library);
    }

    bool open(const void* data, size_t size, int index) {
        if (FT_New_Library(&memory, &library) != 0) return false;
        FT_Add_Default_Modules(library);
        return FT_New_Memory_Face(library, static_cast<const FT_Byte*>(data), static_cast<FT_Long>(size),
                                  index, &face) == 0;
    }

    // Throws std::bad_alloc where the machine's memory was short since the last call. FreeType itself says
    // "out of memory" of a damaged font's absurd sizes as well, or goes on without a part of itself.
    void throwIfExhausted() {
        if (std::exchange(exhausted, false)) throw std::bad_alloc();
    }
};

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

// Puts FreeType's face where the axes of `font` stand.
bool setFreeTypeAxes(FT_Face face, hb_font_t* font) {
    unsigned count = 0;
    const float* values = hb_font_get_var_coords_design(font, &count);
    std::vector<FT_Fixed> coordinates;
    for (unsigned i = 0; i < count; ++i) coordinates.push_back(std::lround(values[i] * 65536));
    return FT_Set_Var_Design_Coordinates(face, static_cast<FT_UInt>(count), coordinates.data()) == 0;
}

// A box found in 64 bits (right and bottom exclusive), empty when it is beyond what an image may be.
GlyphBox limitedBox(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    constexpr int64_t kMaxOffset = int64_t{1} << 24;  // from the pen; glyphs lie within a few ems of it
    if (left >= right || top >= bottom || left < -kMaxOffset || top < -kMaxOffset || right > kMaxOffset ||
        bottom > kMaxOffset) {
        return {};
    }
    const int64_t width = right - left, height = bottom - top;
    if (width > kMaxGlyphSide || height > kMaxGlyphSide ||
        static_cast<uint64_t>(width) * static_cast<uint64_t>(height) > kMaxGlyphBytes) {
        return {};
    }
    return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right), static_cast<int>(bottom)};
}

GlyphBox outlineBox(const FT_Outline& outline) {
    FT_BBox box;
    FT_Outline_Get_CBox(&outline, &box);  // 26.6, y upwards
    const auto floor64 = [](int64_t v) { return v >> 6; };
    return limitedBox(floor64(box.xMin), -floor64(int64_t{box.yMax} + 63), floor64(int64_t{box.xMax} + 63),
                      -floor64(box.yMin));
}

// Not limited: the union of many boxes may be more than an image may be.
GlyphBox unionOf(const GlyphBox& a, const GlyphBox& b) {
    if (a.empty()) return b;
    if (b.empty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

GlyphImage blankImage(const GlyphBox& box) {
    GlyphImage image;
    if (box.empty()) return image;
    image.left = box.left;
    image.top = box.top;
    image.width = box.right - box.left;
    image.height = box.bottom - box.top;
    image.coverage.resize(static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
    return image;
}

// The outline's coverage, the rasteriser's own levels; moves the outline. False when it could not be
// rasterised.
bool rasterise(FT_Library library, FT_Outline& outline, bool antiAlias, GlyphImage& image) {
    FT_Outline_Translate(&outline, FT_Pos{-64} * image.left, FT_Pos{64} * (image.top + image.height));
    FT_Bitmap bitmap;
    std::memset(&bitmap, 0, sizeof bitmap);
    bitmap.width = static_cast<unsigned>(image.width);
    bitmap.rows = static_cast<unsigned>(image.height);
    if (antiAlias) {
        bitmap.pitch = image.width;
        bitmap.num_grays = 256;
        bitmap.pixel_mode = FT_PIXEL_MODE_GRAY;
        bitmap.buffer = image.coverage.data();
        return FT_Outline_Get_Bitmap(library, &outline, &bitmap) == 0;
    }
    const size_t stride = (static_cast<size_t>(image.width) + 7) / 8;
    std::vector<uint8_t> bits(stride * static_cast<size_t>(image.height));
    bitmap.pitch = static_cast<int>(stride);
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    bitmap.buffer = bits.data();
    if (FT_Outline_Get_Bitmap(library, &outline, &bitmap) != 0) return false;
    const auto width = static_cast<size_t>(image.width);
    for (size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == 0) continue;  // large glyphs are mostly empty
        const size_t begin = i % stride * 8, count = std::min<size_t>(width - begin, 8);
        uint8_t* coverage = image.coverage.data() + i / stride * width + begin;
        for (size_t x = 0; x < count; ++x) coverage[x] = (bits[i] << x & 0x80) != 0 ? 255 : 0;
    }
    return true;
}

// Widens the outline by `size` x the share for that size, half of it on each side.
void embolden(FT_Outline& outline, float size) {
    const float place =
        std::min(std::max((size - kBoldSmallSize) / (kBoldLargeSize - kBoldSmallSize), 0.0f), 1.0f);
    const float share = kBoldSmallShare + place * (kBoldLargeShare - kBoldSmallShare);
    const FT_Pos half = std::lround(size * share * 32);  // 26.6
    // FreeType keeps the lower left where it was. It refuses outlines without an area, which stay as they
    // are.
    if (FT_Outline_Embolden(&outline, 2 * half) == 0) FT_Outline_Translate(&outline, -half, -half);
}

// A colour strike's bitmap of one glyph and how it lies in the style: source pixels per target pixel.
struct Strike {
    const FT_Bitmap* bitmap;
    int left, top;  // of the bitmap's top left corner from the pen, in its own pixels, y upwards
    double perPixelX, perPixelY;  // perPixelX is negative in mirrored styles
};

GlyphBox strikeBox(const Strike& strike, const GlyphStyle& style, int quarterX) {
    const double top = -strike.top / strike.perPixelY;
    const double bottom = (static_cast<double>(strike.bitmap->rows) - strike.top) / strike.perPixelY;
    const double edges[] = {strike.left / strike.perPixelX,
                            (static_cast<double>(strike.bitmap->width) + strike.left) / strike.perPixelX};
    const double slants[] = {static_cast<double>(style.skewX) * top,
                             static_cast<double>(style.skewX) * bottom};
    const double left = std::min(edges[0], edges[1]) + std::min(slants[0], slants[1]) + quarterX * 0.25;
    const double right = std::max(edges[0], edges[1]) + std::max(slants[0], slants[1]) + quarterX * 0.25;
    static constexpr double kFar = 1e9;  // refused by the limits, and safe to convert
    const auto whole = [](double v) { return static_cast<int64_t>(std::min(std::max(v, -kFar), kFar)); };
    return limitedBox(whole(std::floor(left)), whole(std::floor(top)), whole(std::ceil(right)),
                      whole(std::ceil(bottom)));
}

void drawStrike(const Strike& strike, const GlyphStyle& style, int quarterX, GlyphImage& image) {
    // A pixel centre (x, y) from the pen, less slant and quarter, in the strike's pixels from its top left
    // corner.
    const auto fixed = [](double v) { return static_cast<int64_t>(std::llround(v * 65536)); };
    const double y = image.top + 0.5;
    const double x = image.left + 0.5 - quarterX * 0.25 - static_cast<double>(style.skewX) * y;
    ResampleParam p;
    // Alpha is the last of a pixel's four bytes.
    p.source = strike.bitmap->buffer + 3;
    p.sourceWidth = static_cast<int>(strike.bitmap->width);
    p.sourceHeight = static_cast<int>(strike.bitmap->rows);
    p.sourceStride = strike.bitmap->pitch;
    p.sourceStep = 4;
    p.target = image.coverage.data();
    p.targetWidth = image.width;
    p.targetHeight = image.height;
    p.x = fixed(x * strike.perPixelX - strike.left);
    p.xStep = fixed(strike.perPixelX);
    p.xShear = fixed(-static_cast<double>(style.skewX) * strike.perPixelX);
    p.y = fixed(y * strike.perPixelY + strike.top);
    p.yStep = fixed(strike.perPixelY);
    resampleAlpha(p);
    if (!style.antiAlias) {
        for (uint8_t& level : image.coverage) level = level >= 128 ? 255 : 0;
    }
}

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
    bool hasColourStrikes = false;
    std::vector<uint8_t> paletteAlphas;  // of the first palette

    bool open(const void* data, size_t size, int index);
    bool loadOutline(uint32_t glyph, const GlyphStyle& style, int quarterX);
    bool loadStrike(uint32_t glyph, const GlyphStyle& style, bool metricsOnly, Strike* strike);
    template <typename Visit>
    bool forEachLayer(uint32_t glyph, Visit visit);
    GlyphBox box(uint32_t glyph, const GlyphStyle& style, int quarterX);
    GlyphImage draw(uint32_t glyph, const GlyphStyle& style, int quarterX);
    bool layersBox(uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphBox* box);
    void drawLayers(uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphImage& image);
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
    if (!opened || !FT_IS_SFNT(freeType.face)) return false;
    const FT_Face face = freeType.face;
    if (!axes.empty() && !setFreeTypeAxes(face, hbFont.get())) return false;
    hasColourStrikes = FT_HAS_COLOR(face) && face->num_fixed_sizes > 0;
    FT_Palette_Data palettes;
    FT_Color* palette = nullptr;
    if (FT_Palette_Data_Get(face, &palettes) == 0 && FT_Palette_Select(face, 0, &palette) == 0 &&
        palette != nullptr) {
        for (int i = 0; i < palettes.num_palette_entries; ++i) paletteAlphas.push_back(palette[i].alpha);
    }
    freeType.throwIfExhausted();
    return true;
}

// Leaves the glyph's outline in the face's slot: scaled, slanted, widened, for a pen at quarterX. False when
// it has none.
bool FontFace::Impl::loadOutline(uint32_t glyph, const GlyphStyle& style, int quarterX) {
    const FT_Face face = freeType.face;
    if (!FT_IS_SCALABLE(face)) return false;
    FT_Size_RequestRec request;
    std::memset(&request, 0, sizeof request);  // resolution 0: width and height are 26.6 pixels
    request.type = FT_SIZE_REQUEST_TYPE_NOMINAL;
    request.width = std::lround(std::fabs(style.size * style.scaleX) * 64);
    request.height = std::lround(style.size * 64);
    if (FT_Request_Size(face, &request) != 0) return false;
    if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP) != 0) return false;
    if (face->glyph->format != FT_GLYPH_FORMAT_OUTLINE || face->glyph->outline.n_points <= 0) return false;
    FT_Outline& outline = face->glyph->outline;
    if (style.scaleX < 0 || style.skewX != 0) {
        FT_Matrix matrix;
        matrix.xx = style.scaleX < 0 ? -0x10000 : 0x10000;
        matrix.xy = std::lround(-style.skewX * 65536);  // outlines have y upwards
        matrix.yx = 0;
        matrix.yy = 0x10000;
        FT_Outline_Transform(&outline, &matrix);
    }
    if (style.fakeBold) embolden(outline, style.size);
    if (quarterX != 0) FT_Outline_Translate(&outline, quarterX * 16, 0);
    return true;
}

// Loads the glyph's colour bitmap from the smallest strike that is not smaller than the style, else from the
// largest; with metricsOnly just its sides and place. False when the font has none for the glyph.
bool FontFace::Impl::loadStrike(uint32_t glyph, const GlyphStyle& style, bool metricsOnly, Strike* strike) {
    if (!hasColourStrikes) return false;
    const FT_Face face = freeType.face;
    const FT_Bitmap_Size* sizes = face->available_sizes;
    int best = 0;
    for (int i = 1; i < face->num_fixed_sizes; ++i) {
        const float wanted = style.size * 64;
        const bool enough = static_cast<float>(sizes[i].y_ppem) >= wanted;
        const bool bestEnough = static_cast<float>(sizes[best].y_ppem) >= wanted;
        const bool smaller = sizes[i].y_ppem < sizes[best].y_ppem;
        if (enough ? !bestEnough || smaller : !bestEnough && !smaller) best = i;
    }
    if (sizes[best].x_ppem <= 0 || sizes[best].y_ppem <= 0 || FT_Select_Size(face, best) != 0) return false;
    const int flags = FT_LOAD_COLOR | FT_LOAD_NO_HINTING | (metricsOnly ? FT_LOAD_BITMAP_METRICS_ONLY : 0);
    if (FT_Load_Glyph(face, glyph, flags) != 0 || face->glyph->format != FT_GLYPH_FORMAT_BITMAP) return false;
    const FT_Bitmap& bitmap = face->glyph->bitmap;
    if (bitmap.pixel_mode != FT_PIXEL_MODE_BGRA || bitmap.width == 0 || bitmap.rows == 0) return false;
    if (bitmap.width > kMaxGlyphSide || bitmap.rows > kMaxGlyphSide) return false;
    if (!metricsOnly && bitmap.buffer == nullptr) return false;
    strike->bitmap = &bitmap;
    strike->left = face->glyph->bitmap_left;
    strike->top = face->glyph->bitmap_top;
    const double size = style.size;
    strike->perPixelX =
        static_cast<double>(sizes[best].x_ppem) / 64 / (size * static_cast<double>(style.scaleX));
    strike->perPixelY = static_cast<double>(sizes[best].y_ppem) / 64 / size;
    return true;
}

// Calls visit(layer's glyph, layer's alpha) from the lowest layer up. False when the glyph has no layers.
template <typename Visit>
bool FontFace::Impl::forEachLayer(uint32_t glyph, Visit visit) {
    FT_LayerIterator iterator;
    std::memset(&iterator, 0, sizeof iterator);
    FT_UInt layerGlyph = 0, color = 0;
    int count = 0;
    while (count < kMaxLayers &&
           FT_Get_Color_Glyph_Layer(freeType.face, glyph, &layerGlyph, &color, &iterator) != 0) {
        ++count;
        // Numbers beyond the palette, 0xFFFF above all, stand for the text's own colour.
        visit(layerGlyph, color < paletteAlphas.size() ? paletteAlphas[color] : uint8_t{255});
    }
    return count > 0;
}

bool FontFace::Impl::layersBox(uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphBox* box) {
    GlyphBox all;
    const bool layered = forEachLayer(glyph, [&](uint32_t layerGlyph, uint8_t) {
        if (loadOutline(layerGlyph, style, quarterX)) {
            all = unionOf(all, outlineBox(freeType.face->glyph->outline));
        }
    });
    *box = limitedBox(all.left, all.top, all.right, all.bottom);
    return layered;
}

GlyphBox FontFace::Impl::box(uint32_t glyph, const GlyphStyle& style, int quarterX) {
    Strike strike;
    if (loadStrike(glyph, style, true, &strike)) return strikeBox(strike, style, quarterX);
    GlyphBox layers;
    if (layersBox(glyph, style, quarterX, &layers)) return layers;
    return loadOutline(glyph, style, quarterX) ? outlineBox(freeType.face->glyph->outline) : GlyphBox();
}

// One layer over the other: the alphas of the picture that a colour renderer would make.
void FontFace::Impl::drawLayers(uint32_t glyph, const GlyphStyle& style, int quarterX, GlyphImage& image) {
    forEachLayer(glyph, [&](uint32_t layerGlyph, uint8_t alpha) {
        if (!loadOutline(layerGlyph, style, quarterX)) return;
        FT_Outline& outline = freeType.face->glyph->outline;
        const GlyphBox box = outlineBox(outline);
        GlyphImage layer = blankImage(box);
        if (box.empty() || !rasterise(freeType.library, outline, style.antiAlias, layer)) return;
        const uint8_t* source = layer.coverage.data();
        for (int y = box.top; y < box.bottom; ++y) {
            uint8_t* target = image.coverage.data() +
                              static_cast<size_t>(y - image.top) * static_cast<size_t>(image.width) +
                              static_cast<size_t>(box.left - image.left);
            for (int x = 0; x < layer.width; ++x, ++target) {
                *target = coverageOver(static_cast<uint8_t>(multiplyBytes(*source++, alpha)), *target);
            }
        }
    });
}

GlyphImage FontFace::Impl::draw(uint32_t glyph, const GlyphStyle& style, int quarterX) {
    Strike strike;
    if (loadStrike(glyph, style, false, &strike)) {
        GlyphImage image = blankImage(strikeBox(strike, style, quarterX));
        if (!image.coverage.empty()) drawStrike(strike, style, quarterX, image);
        return image;
    }
    GlyphBox layers;
    if (layersBox(glyph, style, quarterX, &layers)) {
        GlyphImage image = blankImage(layers);
        if (!image.coverage.empty()) drawLayers(glyph, style, quarterX, image);
        return image;
    }
    if (!loadOutline(glyph, style, quarterX)) return {};
    FT_Outline& outline = freeType.face->glyph->outline;
    GlyphImage image = blankImage(outlineBox(outline));
    if (image.coverage.empty() || !rasterise(freeType.library, outline, style.antiAlias, image)) return {};
    return image;
}

FontFace::FontFace(std::unique_ptr<Impl> impl) : mImpl(std::move(impl)) {}

FontFace::~FontFace() {
    forgetGlyphs(mImpl->id);
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
    const hb_position_t units = hb_font_get_glyph_h_advance(mImpl->hbFont.get(), glyph);
    const float pixels =
        static_cast<float>(units) * (style.size * style.scaleX / static_cast<float>(mImpl->unitsPerEm));
    return style.subpixel ? pixels : std::floor(pixels + 0.5f);
}

InkBox FontFace::inkBox(uint32_t glyph, const GlyphStyle& style) const {
    if (glyph >= mImpl->glyphCount || !drawable(style)) return {};
    std::lock_guard<std::mutex> lock(mImpl->mutex);
    const GlyphBox box = mImpl->box(glyph, style, 0);
    mImpl->freeType.throwIfExhausted();
    return {static_cast<float>(box.left), static_cast<float>(box.top), static_cast<float>(box.right),
            static_cast<float>(box.bottom)};
}

std::shared_ptr<const GlyphImage> FontFace::image(uint32_t glyph, const GlyphStyle& style,
                                                  int quarterX) const {
    static const std::shared_ptr<const GlyphImage>* const kBlank =
        new std::shared_ptr<const GlyphImage>(std::make_shared<GlyphImage>());
    if (glyph >= mImpl->glyphCount || !drawable(style)) return *kBlank;
    quarterX &= 3;
    const auto bitsOf = [](float value) {
        value += 0.0f;  // both zeros are one style
        uint32_t bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    };
    GlyphKey key;
    key.faceId = mImpl->id;
    key.glyph = glyph;
    key.size = bitsOf(style.size);
    key.scaleX = bitsOf(style.scaleX);
    key.skewX = bitsOf(style.skewX);
    key.flags =
        (style.fakeBold ? 1u : 0u) | (style.antiAlias ? 2u : 0u) | static_cast<uint32_t>(quarterX) << 2;
    if (std::shared_ptr<const GlyphImage> kept = findGlyph(key)) return kept;
    auto image = std::make_shared<GlyphImage>();
    {
        std::lock_guard<std::mutex> lock(mImpl->mutex);
        *image = mImpl->draw(glyph, style, quarterX);
        mImpl->freeType.throwIfExhausted();
    }
    return keepGlyph(key, std::move(image));
}

}  // namespace host
