// SPDX-License-Identifier: Apache-2.0
#include "platform/host/GlyphOutline.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>
#include FT_OUTLINE_H

#include "platform/host/OutlineFill.h"

namespace host {

namespace {

// Fake bold in Plain: the total width as a share of the size, between two sizes.
constexpr float kBoldSmallSize = 9, kBoldLargeSize = 36;
constexpr float kBoldSmallShare = 1.0f / 24, kBoldLargeShare = 1.0f / 32;
// Fake bold on the phone, as a part of an em.
constexpr FT_Pos kPhoneBoldPart = 34;

// Coverage of black text on the phone's display, with an exponent of 1.4 undone: 255 x (1 - (1 - a / 255) ^
// (1 / 1.4)), to within one. These are the platform's exact levels.
constexpr Levels kGamma = {
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

// Widens the outline by `size` x the share for that size, half of it on each side.
void emboldenEvenly(FT_Outline& outline, float size) {
    const float place =
        std::min(std::max((size - kBoldSmallSize) / (kBoldLargeSize - kBoldSmallSize), 0.0f), 1.0f);
    const float share = kBoldSmallShare + place * (kBoldLargeShare - kBoldSmallShare);
    const FT_Pos half = std::lround(size * share * 32);  // 26.6
    // FreeType keeps the lower left corner in place. It refuses outlines without an area; these do not
    // change.
    if (FT_Outline_Embolden(&outline, 2 * half) == 0) FT_Outline_Translate(&outline, -half, -half);
}

bool loadSlot(FreeTypeFace& font, uint32_t glyph, FT_Int32 flags) {
    if (FT_Load_Glyph(font.face(), glyph, flags) != 0) return false;
    return font.face()->glyph->format == FT_GLYPH_FORMAT_OUTLINE;
}

bool loadPlain(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) {
    const FT_F26Dot6 width = std::lround(std::fabs(style.size * style.scaleX) * 64);
    if (!font.setSize(width, std::lround(style.size * 64))) return false;
    if (!loadSlot(font, glyph, FT_LOAD_NO_HINTING | FT_LOAD_NO_BITMAP | FT_LOAD_IGNORE_TRANSFORM))
        return false;
    FT_Outline& outline = font.face()->glyph->outline;
    if (style.scaleX < 0 || style.skewX != 0) {
        FT_Matrix matrix;
        matrix.xx = style.scaleX < 0 ? -0x10000 : 0x10000;
        matrix.xy = std::lround(-style.skewX * 65536);  // outlines have y upwards
        matrix.yx = 0;
        matrix.yy = 0x10000;
        FT_Outline_Transform(&outline, &matrix);
    }
    if (style.fakeBold) emboldenEvenly(outline, style.size);
    return true;
}

// The part of the scale that the matrix must do after FreeType's size: below a pixel, more than the slant.
PhoneScale restOf(const FreeTypeFace& font, const GlyphStyle& style) {
    PhoneScale rest = phoneScale(style);
    if (rest.width >= 1 && rest.height >= 1) return rest;
    const FT_Face face = font.face();
    const auto reached = [face](FT_Fixed unit) {
        return static_cast<float>(face->units_per_EM) * (static_cast<float>(unit) / 65536) / 64;
    };
    const float x = rest.width / reached(face->size->metrics.x_scale);
    const float y = rest.height / reached(face->size->metrics.y_scale);
    rest.xx *= x;
    rest.xy *= y;
    rest.yy *= y;
    return rest;
}

bool loadPhone(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) {
    const PhoneScale scale = phoneScale(style);
    const FT_Face face = font.face();
    // FreeType's sizes start at one pixel; the matrix does the rest.
    const auto size = [](float pixels) {
        return std::max<FT_F26Dot6>(static_cast<FT_F26Dot6>(pixels * 64), 64);
    };
    if (!font.setSize(size(scale.width), size(scale.height))) return false;
    if (!setPhoneMatrix(font, restOf(font, style))) return false;
    FT_Int32 flags = FT_LOAD_NO_BITMAP | FT_LOAD_IGNORE_GLOBAL_ADVANCE_WIDTH;
    if (!isHinted(style)) {
        flags |= FT_LOAD_NO_HINTING;
    } else if (style.antiAlias) {
        flags |= FT_LOAD_NO_AUTOHINT | FT_LOAD_TARGET_NORMAL;
    } else {
        flags |= FT_LOAD_TARGET_MONO;
        font.freeDigits();
    }
    if (!loadSlot(font, glyph, flags)) return false;
    if (style.fakeBold) {
        const FT_Pos em = FT_MulFix(face->units_per_EM, face->size->metrics.y_scale);
        FT_Outline_Embolden(&face->glyph->outline, em / kPhoneBoldPart);
    }
    return true;
}

}  // namespace

GlyphBox nearBox(int64_t left, int64_t top, int64_t right, int64_t bottom) {
    constexpr int64_t kMaxOffset = int64_t{1} << 24;  // glyphs lie within a few ems of the pen
    if (left >= right || top >= bottom || left < -kMaxOffset || top < -kMaxOffset || right > kMaxOffset ||
        bottom > kMaxOffset) {
        return {};
    }
    return {static_cast<int>(left), static_cast<int>(top), static_cast<int>(right), static_cast<int>(bottom)};
}

GlyphBox limitedBox(const GlyphBox& box) {
    const int width = box.right - box.left, height = box.bottom - box.top;
    if (width > kMaxGlyphSide || height > kMaxGlyphSide ||
        static_cast<uint64_t>(width) * static_cast<uint64_t>(height) > kMaxGlyphBytes) {
        return {};
    }
    return box;
}

GlyphBox unionOf(const GlyphBox& a, const GlyphBox& b) {
    if (a.empty()) return b;
    if (b.empty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

GlyphImage blankImage(const GlyphBox& wanted) {
    const GlyphBox box = limitedBox(wanted);
    GlyphImage image;
    if (box.empty()) return image;
    image.left = box.left;
    image.top = box.top;
    image.width = box.right - box.left;
    image.height = box.bottom - box.top;
    image.coverage.resize(static_cast<size_t>(image.width) * static_cast<size_t>(image.height));
    return image;
}

ColorImage blankPicture(const GlyphBox& wanted) {
    const GlyphBox box = limitedBox(wanted);
    ColorImage image;
    const auto width = static_cast<size_t>(box.right - box.left);
    const auto height = static_cast<size_t>(box.bottom - box.top);
    if (box.empty() || width * height > kMaxGlyphBytes / 4) return image;
    image.left = box.left;
    image.top = box.top;
    image.width = box.right - box.left;
    image.height = box.bottom - box.top;
    image.pixels.resize(width * height);
    return image;
}

bool isHinted(const GlyphStyle& style) {
    return style.rendering == Rendering::Phone && !style.linear && style.skewX == 0;
}

// In single precision, fraction cut off, as on the platform: a slant of a quarter becomes the same 65535
// parts.
PhoneScale phoneScale(const GlyphStyle& style) {
    PhoneScale scale;
    const float width = style.size * style.scaleX;
    scale.width = std::fabs(width);
    scale.height = style.size;
    if (style.skewX != 0 || width < 0) {
        scale.xx = width * (1 / scale.width);
        scale.xy = style.skewX * style.size * (1 / style.size);
        scale.yy = style.size * (1 / style.size);
    }
    return scale;
}

bool setPhoneMatrix(FreeTypeFace& font, const PhoneScale& scale) {
    // Far more than any style needs. A tiny size divided by FreeType's smallest one is small too.
    const float limit = 32767;
    if (!(std::fabs(scale.xx) < limit && std::fabs(scale.xy) < limit && std::fabs(scale.yy) < limit))
        return false;
    const auto fixed = [](float v) { return static_cast<FT_Fixed>(v * 65536); };
    FT_Matrix matrix = {fixed(scale.xx), fixed(-scale.xy), 0, fixed(scale.yy)};  // y upwards
    FT_Set_Transform(font.face(), &matrix, nullptr);
    return true;
}

bool loadGlyph(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style) {
    if (!FT_IS_SCALABLE(font.face())) return false;
    return style.rendering == Rendering::Phone ? loadPhone(font, glyph, style)
                                               : loadPlain(font, glyph, style);
}

float slotAdvance(const FreeTypeFace& font, const GlyphStyle& style) {
    const FT_GlyphSlot slot = font.face()->glyph;
    if (isHinted(style) && !style.subpixel) return static_cast<float>(slot->advance.x) / 64;
    return restOf(font, style).xx * (static_cast<float>(slot->linearHoriAdvance) / 65536);
}

bool loadOutline(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX) {
    if (!loadGlyph(font, glyph, style)) return false;
    FT_Outline& outline = font.face()->glyph->outline;
    if (quarterX != 0) FT_Outline_Translate(&outline, quarterX * 16, 0);
    return outline.n_points > 0;
}

GlyphBox outlineBox(const FreeTypeFace& font) {
    FT_BBox box;
    FT_Outline_Get_CBox(&font.face()->glyph->outline, &box);  // 26.6, y upwards
    const auto floor64 = [](int64_t v) { return v >> 6; };
    return nearBox(floor64(box.xMin), -floor64(int64_t{box.yMax} + 63), floor64(int64_t{box.xMax} + 63),
                   -floor64(box.yMin));
}

const Levels& exactLevels() {
    static const struct Exact {
        Levels levels;
        Exact() {
            for (int i = 0; i < 256; ++i) levels[i] = static_cast<uint8_t>(i);
        }
    } exact;
    return exact.levels;
}

const Levels& levelsOf(const GlyphStyle& style) {
    return style.rendering == Rendering::Phone ? kGamma : exactLevels();
}

namespace {

// FreeType reports runs of one level, so mapping through the table costs almost nothing.
struct SpanTarget {
    const Levels* levels;
    GlyphImage* image;
};
void writeSpans(int y, int count, const FT_Span* spans, void* user) {
    const auto& target = *static_cast<const SpanTarget*>(user);
    GlyphImage& image = *target.image;
    uint8_t* row =
        image.coverage.data() + static_cast<size_t>(image.height - 1 - y) * static_cast<size_t>(image.width);
    for (int i = 0; i < count; ++i) {
        const uint8_t level = (*target.levels)[spans[i].coverage];
        if (spans[i].len == 1) {  // most are, along the edges
            row[spans[i].x] = level;
        } else {
            std::memset(row + spans[i].x, level, spans[i].len);
        }
    }
}

}  // namespace

bool rasterise(FreeTypeFace& font, const GlyphStyle& style, const Levels& levels, GlyphImage& image) {
    FT_Outline& outline = font.face()->glyph->outline;
    if (style.rendering == Rendering::Phone && style.antiAlias && hasCubics(outline)) {
        fillGlyph(outline, levels, image);
        return true;
    }
    FT_Outline_Translate(&outline, FT_Pos{-64} * image.left, FT_Pos{64} * (image.top + image.height));
    if (style.antiAlias) {
        SpanTarget target = {&levels, &image};
        FT_Raster_Params params;
        std::memset(&params, 0, sizeof params);
        params.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
        params.gray_spans = writeSpans;
        params.user = &target;
        params.clip_box = {0, 0, image.width, image.height};
        return FT_Outline_Render(font.library(), &outline, &params) == 0;
    }
    FT_Bitmap bitmap;
    std::memset(&bitmap, 0, sizeof bitmap);
    bitmap.width = static_cast<unsigned>(image.width);
    bitmap.rows = static_cast<unsigned>(image.height);
    const size_t stride = (static_cast<size_t>(image.width) + 7) / 8;
    std::vector<uint8_t> bits(stride * static_cast<size_t>(image.height));
    bitmap.pitch = static_cast<int>(stride);
    bitmap.pixel_mode = FT_PIXEL_MODE_MONO;
    bitmap.buffer = bits.data();
    if (FT_Outline_Get_Bitmap(font.library(), &outline, &bitmap) != 0) return false;
    const auto width = static_cast<size_t>(image.width);
    for (size_t i = 0; i < bits.size(); ++i) {
        if (bits[i] == 0) continue;  // large glyphs are mostly empty
        const size_t begin = i % stride * 8, count = std::min<size_t>(width - begin, 8);
        uint8_t* coverage = image.coverage.data() + i / stride * width + begin;
        for (size_t x = 0; x < count; ++x) coverage[x] = (bits[i] << x & 0x80) != 0 ? 255 : 0;
    }
    return true;
}

}  // namespace host
