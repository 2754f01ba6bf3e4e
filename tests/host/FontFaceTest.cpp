// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FontFace.h"

#include <gtest/gtest.h>
#include <hb-ot.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <string>

#include "Fonts.h"
#include "FreeTypeOracle.h"
#include "platform/host/PixelMath.h"

namespace {

using fonts::Role;
using host::FontFace;
using host::GlyphBox;
using host::GlyphImage;
using host::GlyphStyle;

GlyphStyle sized(float size) {
    GlyphStyle style;
    style.size = size;
    return style;
}

long inkOf(const GlyphImage& image) {
    return std::accumulate(image.coverage.begin(), image.coverage.end(), 0L);
}

// Coverage at a pixel of the pen's grid, 0 outside the image.
int coverageAt(const GlyphImage& image, int x, int y) {
    x -= image.left;
    y -= image.top;
    if (x < 0 || x >= image.width || y < 0 || y >= image.height) return 0;
    return image.coverage[static_cast<size_t>(y * image.width + x)];
}

// Equal where either has a pixel; the images' edges may differ by blank rows and columns.
testing::AssertionResult samePixels(const GlyphImage& a, const GlyphImage& b) {
    for (int y = std::min(a.top, b.top); y < std::max(a.top + a.height, b.top + b.height); ++y) {
        for (int x = std::min(a.left, b.left); x < std::max(a.left + a.width, b.left + b.width); ++x) {
            if (coverageAt(a, x, y) != coverageAt(b, x, y)) {
                return testing::AssertionFailure() << "at " << x << ", " << y << ": " << coverageAt(a, x, y)
                                                   << " and " << coverageAt(b, x, y);
            }
        }
    }
    return testing::AssertionSuccess();
}

testing::AssertionResult inside(const GlyphImage& image, const GlyphBox& box) {
    for (int y = image.top; y < image.top + image.height; ++y) {
        for (int x = image.left; x < image.left + image.width; ++x) {
            if (coverageAt(image, x, y) == 0) continue;
            if (x < box.left || x >= box.right || y < box.top || y >= box.bottom) {
                return testing::AssertionFailure() << "ink at " << x << ", " << y;
            }
        }
    }
    return testing::AssertionSuccess();
}

uint32_t glyphOf(const FontFace& face, uint32_t codePoint) {
    hb_font_t* font = hb_font_create(face.hbFace());
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(font, codePoint, &glyph);
    hb_font_destroy(font);
    return glyph;
}

TEST(FontFace, OpensOnlyFonts) {
    const std::vector<uint8_t>& file = fonts::bytes(Role::kLatinSmall);
    EXPECT_NE(FontFace::open(file.data(), file.size(), 0), nullptr);
    EXPECT_EQ(FontFace::open(nullptr, file.size(), 0), nullptr);
    EXPECT_EQ(FontFace::open(file.data(), 0, 0), nullptr);
    EXPECT_EQ(FontFace::open(file.data(), 11, 0), nullptr);
    for (const int index : {1, -1, 0x10000, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(FontFace::open(file.data(), file.size(), index), nullptr) << index;
    }
    std::vector<uint8_t> other = file;
    std::memcpy(other.data(), "wOFF", 4);
    EXPECT_EQ(FontFace::open(other.data(), other.size(), 0), nullptr);
    const std::string text(5000, 'x');
    EXPECT_EQ(FontFace::open(text.data(), text.size(), 0), nullptr);
}

TEST(FontFace, OpensEachFontOfACollection) {
    const std::vector<uint8_t>& file = fonts::bytes(Role::kCollection);
    const auto japanese = fonts::open(Role::kCollection, 0), korean = fonts::open(Role::kCollection, 1);
    ASSERT_TRUE(japanese && korean);
    EXPECT_NE(japanese->uniqueId(), korean->uniqueId());
    EXPECT_EQ(japanese->unitsPerEm(), 1000u);
    // One code point, a glyph of its own in each.
    EXPECT_NE(glyphOf(*japanese, 0x8FD4), glyphOf(*korean, 0x8FD4));
    EXPECT_EQ(FontFace::open(file.data(), file.size(), 1000), nullptr);
}

TEST(FontFace, KeepsItsOwner) {
    auto owner = std::make_shared<std::vector<uint8_t>>(fonts::bytes(Role::kLatinSmall));
    const std::weak_ptr<void> watch = owner;
    auto face = FontFace::open(owner->data(), owner->size(), 0, owner);
    EXPECT_EQ(FontFace::open(owner->data(), 20, 0, owner), nullptr);
    owner.reset();
    EXPECT_FALSE(watch.expired());
    face.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(FontFace, CoversWhatTheCharacterMapNames) {
    for (const Role role : {Role::kLatin, Role::kArabic, Role::kCollection, Role::kEmoji, Role::kVariable}) {
        const auto face = fonts::open(role);
        ASSERT_NE(face, nullptr);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        int covered = 0;
        for (uint32_t codePoint = 0; codePoint < 0x30000; ++codePoint) {
            ASSERT_EQ(face->covers(codePoint), oracle.glyph(codePoint) != 0)
                << fonts::path(role) << " U+" << std::hex << codePoint;
            covered += face->covers(codePoint);
        }
        EXPECT_GT(covered, 100);
        for (const uint32_t codePoint : {0xD800u, 0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            EXPECT_FALSE(face->covers(codePoint));
        }
    }
    const auto face = fonts::open(Role::kCollection);
    EXPECT_TRUE(face->coversVariation(0x845B, 0xE0100));
    EXPECT_FALSE(face->coversVariation(0x845B, 0xE01EF));
    EXPECT_FALSE(face->coversVariation('A', 0xFE0F));
}

TEST(FontFace, AdvancesAreTheFontsOwnScaled) {
    for (const Role role : {Role::kLatin, Role::kCollection, Role::kEmoji, Role::kVariable}) {
        const auto face = fonts::open(role);
        ASSERT_NE(face, nullptr);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        for (uint32_t glyph = 0; glyph < std::min(face->glyphCount(), 500u); ++glyph) {
            FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_NO_SCALE);
            // Fonts of strikes only have no unscaled glyphs in FreeType; all their advances are alike.
            const float units = role == Role::kEmoji
                                    ? 2550.0f
                                    : static_cast<float>(oracle.face()->glyph->metrics.horiAdvance);
            GlyphStyle style = sized(37.5f);
            style.scaleX = 1.25f;
            style.subpixel = true;
            const float expected = units * (37.5f * 1.25f) / static_cast<float>(face->unitsPerEm());
            if (role != Role::kEmoji || face->advance(glyph, style) != 0) {
                ASSERT_NEAR(face->advance(glyph, style), expected, 1e-4f * expected)
                    << fonts::path(role) << glyph;
            }
            const float fractional = face->advance(glyph, style);
            style.fakeBold = true;
            style.skewX = -0.25f;
            EXPECT_EQ(face->advance(glyph, style), fractional);
            style.subpixel = false;
            EXPECT_EQ(face->advance(glyph, style), std::floor(fractional + 0.5f));
        }
        EXPECT_EQ(face->advance(face->glyphCount(), sized(20)), 0);
        EXPECT_EQ(face->advance(0xFFFFFFFF, sized(20)), 0);
    }
}

TEST(FontFace, OutlinesAreFreeTypesSmoothOnesUnhinted) {
    for (const Role role :
         {Role::kLatin, Role::kLatinSmall, Role::kDevanagari, Role::kCollection, Role::kVariable}) {
        const auto face = fonts::open(role);
        ASSERT_NE(face, nullptr);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        int inked = 0;
        for (const float size : {0.5f, 9.0f, 13.25f, 37.5f, 120.0f}) {
            for (uint32_t glyph = 0; glyph < 130; ++glyph) {
                const int quarterX = static_cast<int>(glyph % 4);
                const auto image = face->image(glyph, sized(size), quarterX);
                // FreeType's own entry for sizes knows none below a pixel.
                if (size >= 1) {
                    ASSERT_TRUE(samePixels(*image, oracle.outline(glyph, size, quarterX)))
                        << fonts::path(role) << " glyph " << glyph << " size " << size;
                }
                ASSERT_TRUE(inside(*face->image(glyph, sized(size), 0), face->inkBox(glyph, sized(size))))
                    << fonts::path(role) << " glyph " << glyph << " size " << size;
                inked += inkOf(*image) > 0;
            }
        }
        EXPECT_GT(inked, 300);
    }
}

TEST(FontFace, InkBoxesHugTheInkAndBlankGlyphsHaveNone) {
    const auto face = fonts::open(Role::kLatin);
    ASSERT_NE(face, nullptr);
    // H is all straight lines between on-curve points, from (201, 0) to (1339, 1493) of 2048.
    const GlyphBox box = face->inkBox(glyphOf(*face, 'H'), sized(40));
    EXPECT_EQ(box.left, 3);
    EXPECT_EQ(box.right, 27);
    EXPECT_EQ(box.top, -30);
    EXPECT_EQ(box.bottom, 0);
    EXPECT_TRUE(face->inkBox(glyphOf(*face, ' '), sized(40)).empty());
    EXPECT_TRUE(face->image(glyphOf(*face, ' '), sized(40), 0)->coverage.empty());
    EXPECT_TRUE(face->inkBox(face->glyphCount(), sized(40)).empty());
}

TEST(FontFace, ScaleSkewAndMirrorTransformTheOutline) {
    const auto face = fonts::open(Role::kLatin);
    ASSERT_NE(face, nullptr);
    const uint32_t glyph = glyphOf(*face, 'F');
    const auto plain = face->image(glyph, sized(64), 0);

    GlyphStyle style = sized(64);
    style.scaleX = 2;
    const auto wide = face->image(glyph, style, 0);
    EXPECT_NEAR(static_cast<double>(inkOf(*wide)) / static_cast<double>(inkOf(*plain)), 2, 0.01);
    EXPECT_EQ(wide->top, plain->top);
    EXPECT_NEAR(wide->width, 2 * plain->width, 2);

    style.scaleX = -1;
    const auto mirrored = face->image(glyph, style, 0);
    for (int y = plain->top; y < plain->top + plain->height; ++y) {
        for (int x = plain->left; x < plain->left + plain->width; ++x) {
            ASSERT_NEAR(coverageAt(*plain, x, y), coverageAt(*mirrored, -1 - x, y), 1);
        }
    }

    // A row's ink moves by -0.25 times its distance below the baseline.
    style = sized(64);
    style.skewX = -0.25f;
    const auto slanted = face->image(glyph, style, 0);
    const auto centre = [](const GlyphImage& image, int y) {
        double ink = 0, moment = 0;
        for (int x = -50; x < 100; ++x) {
            ink += coverageAt(image, x, y);
            moment += coverageAt(image, x, y) * (x + 0.5);
        }
        return moment / ink;
    };
    for (int y = plain->top + 1; y < -1; ++y) {
        ASSERT_NEAR(centre(*slanted, y) - centre(*plain, y), -0.25 * (y + 0.5), 0.3) << y;
    }
    EXPECT_TRUE(inside(*slanted, face->inkBox(glyph, style)));
}

TEST(FontFace, FakeBoldWidensBothSidesBySizeOver24To32) {
    const auto face = fonts::open(Role::kLatin);
    ASSERT_NE(face, nullptr);
    const uint32_t glyph = glyphOf(*face, 'l');  // one upright stem
    struct Case {
        float size, share;
    };
    for (const Case& c : {Case{6, 1 / 24.0f}, Case{9, 1 / 24.0f}, Case{22.5f, 7 / 192.0f},
                          Case{36, 1 / 32.0f}, Case{200, 1 / 32.0f}}) {
        GlyphStyle style = sized(c.size);
        style.scaleX = 8;  // a stem of several pixels at any size; the widening is not scaled
        const auto plain = face->image(glyph, style, 0);
        style.fakeBold = true;
        const auto bold = face->image(glyph, style, 0);
        const int y = static_cast<int>(-c.size / 3), middle = plain->left + plain->width / 2;
        ASSERT_EQ(coverageAt(*plain, middle, y), 255);
        double left = 0, right = 0;
        for (int x = bold->left - 1; x <= bold->left + bold->width; ++x) {
            (x < middle ? left : right) += (coverageAt(*bold, x, y) - coverageAt(*plain, x, y)) / 255.0;
        }
        // Points lie on 64ths of a pixel.
        EXPECT_NEAR(left, c.size * c.share / 2, 0.02) << c.size;
        EXPECT_NEAR(right, c.size * c.share / 2, 0.02) << c.size;
        EXPECT_TRUE(inside(*bold, face->inkBox(glyph, style)));
        EXPECT_NEAR(static_cast<double>(bold->top), plain->top - c.size * c.share / 2, 1) << c.size;
    }
}

TEST(FontFace, WithoutAntiAliasCoverageIsAllOrNothing) {
    const auto face = fonts::open(Role::kLatin);
    const auto emoji = fonts::open(Role::kEmoji);
    ASSERT_TRUE(face && emoji);
    GlyphStyle style = sized(48);
    const std::pair<const FontFace*, uint32_t> glyphs[] = {{face.get(), glyphOf(*face, 'S')},
                                                           {emoji.get(), glyphOf(*emoji, 0x1F600)}};
    for (const auto& [font, glyph] : glyphs) {
        style.antiAlias = true;
        const auto smooth = font->image(glyph, style, 1);
        style.antiAlias = false;
        const auto hard = font->image(glyph, style, 1);
        int wrong = 0;
        for (int y = smooth->top; y < smooth->top + smooth->height; ++y) {
            for (int x = smooth->left; x < smooth->left + smooth->width; ++x) {
                const int level = coverageAt(*hard, x, y);
                ASSERT_TRUE(level == 0 || level == 255);
                // A pixel is set for its centre, which the share of it that is covered only mostly tells.
                wrong += std::abs(level - coverageAt(*smooth, x, y)) > 191;
            }
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_GT(inkOf(*hard), 0);
    }
}

TEST(FontFace, ColourStrikesGiveTheirAlphaAtTheSize) {
    const auto face = fonts::open(Role::kEmoji);
    ASSERT_NE(face, nullptr);
    const uint32_t glyph = glyphOf(*face, 0x1F600);
    const FreeTypeOracle oracle(fonts::bytes(Role::kEmoji), 0);
    ASSERT_EQ(FT_Select_Size(oracle.face(), 0), 0);
    ASSERT_EQ(FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_COLOR), 0);
    const GlyphImage strike = oracle.coverage(4, 3);
    const float ppem = static_cast<float>(oracle.face()->size->metrics.y_ppem);
    EXPECT_TRUE(samePixels(*face->image(glyph, sized(ppem), 0), strike));

    // Fake bold leaves strikes alone.
    GlyphStyle style = sized(ppem);
    style.fakeBold = true;
    EXPECT_TRUE(samePixels(*face->image(glyph, style, 0), strike));

    const double ink = static_cast<double>(inkOf(strike));
    for (const float scale : {0.1f, 0.37f, 0.5f, 2.0f, 3.3f}) {
        for (const float skew : {0.0f, -0.25f}) {
            for (int quarterX = 0; quarterX < 4; ++quarterX) {
                style = sized(ppem * scale);
                style.skewX = skew;
                style.scaleX = quarterX == 3 ? -1.5f : 1;
                const auto image = face->image(glyph, style, quarterX);
                const double factor = static_cast<double>(scale) * static_cast<double>(scale) *
                                      static_cast<double>(std::fabs(style.scaleX));
                EXPECT_NEAR(static_cast<double>(inkOf(*image)) / (ink * factor), 1, 0.02)
                    << scale << " skew " << skew << " quarter " << quarterX;
                if (quarterX == 0) {
                    EXPECT_TRUE(inside(*image, face->inkBox(glyph, style)));
                }
            }
        }
    }
    // The box is the scaled strike, rounded outwards.
    const GlyphBox box = face->inkBox(glyph, sized(ppem / 4));
    EXPECT_EQ(box.left, static_cast<int>(std::floor(strike.left / 4.0)));
    EXPECT_EQ(box.top, static_cast<int>(std::floor(strike.top / 4.0)));
    EXPECT_EQ(box.right, static_cast<int>(std::ceil((strike.left + strike.width) / 4.0)));
    EXPECT_EQ(box.bottom, static_cast<int>(std::ceil((strike.top + strike.height) / 4.0)));
}

void put(std::string& table, uint32_t value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) table.push_back(static_cast<char>(value >> (8 * i)));
}

using TableBytes = std::pair<hb_tag_t, std::string>;

// The first font of the file with some tables more.
std::string withTables(Role role, const std::vector<TableBytes>& added) {
    const std::vector<uint8_t>& file = fonts::bytes(role);
    hb_blob_t* whole =
        hb_blob_create(reinterpret_cast<const char*>(file.data()), static_cast<unsigned>(file.size()),
                       HB_MEMORY_MODE_READONLY, nullptr, nullptr);
    hb_face_t* source = hb_face_create(whole, 0);
    hb_face_t* builder = hb_face_builder_create();
    hb_tag_t tags[64];
    unsigned count = 64;
    hb_face_get_table_tags(source, 0, &count, tags);
    for (unsigned i = 0; i < count; ++i) {
        hb_blob_t* table = hb_face_reference_table(source, tags[i]);
        hb_face_builder_add_table(builder, tags[i], table);
        hb_blob_destroy(table);
    }
    for (const auto& [tag, bytes] : added) {
        hb_blob_t* table = hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()),
                                          HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr);
        hb_face_builder_add_table(builder, tag, table);
        hb_blob_destroy(table);
    }
    hb_blob_t* built = hb_face_reference_blob(builder);
    unsigned length = 0;
    const char* data = hb_blob_get_data(built, &length);
    std::string result(data, length);
    hb_blob_destroy(built);
    hb_face_destroy(builder);
    hb_face_destroy(source);
    hb_blob_destroy(whole);
    return result;
}

// The file with glyph `base` made of `layers` (glyph, palette entry); the palette has the given alphas.
std::string layeredFont(Role role, uint32_t base, const std::vector<std::pair<uint32_t, uint32_t>>& layers,
                        const std::vector<uint8_t>& alphas) {
    std::string color, palette;
    put(color, 0, 2);  // version
    put(color, 1, 2);  // base glyphs
    put(color, 14, 4);
    put(color, 20, 4);
    put(color, static_cast<uint32_t>(layers.size()), 2);
    put(color, base, 2);
    put(color, 0, 2);
    put(color, static_cast<uint32_t>(layers.size()), 2);
    for (const auto& [glyph, entry] : layers) {
        put(color, glyph, 2);
        put(color, entry, 2);
    }
    put(palette, 0, 2);
    put(palette, static_cast<uint32_t>(alphas.size()), 2);
    put(palette, 1, 2);
    put(palette, static_cast<uint32_t>(alphas.size()), 2);
    put(palette, 14, 4);
    put(palette, 0, 2);
    for (const uint8_t alpha : alphas) put(palette, 0x10203000u | alpha, 4);  // blue, green, red, alpha
    return withTables(role, {{HB_TAG('C', 'O', 'L', 'R'), color}, {HB_TAG('C', 'P', 'A', 'L'), palette}});
}

// The file with a strike of each size in which `base` alone has a bitmap.
std::string strikeFont(Role role, uint32_t glyphCount, uint32_t base, const std::string& png,
                       const std::vector<uint32_t>& ppems) {
    std::string table;
    const uint32_t header = 4 + 4 * (glyphCount + 1), record = 8 + static_cast<uint32_t>(png.size());
    put(table, 1, 2);  // version
    put(table, 1, 2);
    put(table, static_cast<uint32_t>(ppems.size()), 4);
    for (uint32_t i = 0; i < ppems.size(); ++i) {
        put(table, 8 + 4 * static_cast<uint32_t>(ppems.size()) + i * (header + record), 4);
    }
    for (const uint32_t ppem : ppems) {
        put(table, ppem, 2);
        put(table, 72, 2);
        for (uint32_t glyph = 0; glyph <= glyphCount; ++glyph)
            put(table, header + (glyph > base ? record : 0), 4);
        put(table, 0, 4);  // the bitmap's lower left corner is at the origin
        table += "png " + png;
    }
    return withTables(role, {{HB_TAG('s', 'b', 'i', 'x'), table}});
}

TEST(FontFace, TheNearestStrikeNotSmallerThanTheSizeIsScaled) {
    const auto plain = fonts::open(Role::kLatinSmall), emoji = fonts::open(Role::kEmoji);
    ASSERT_TRUE(plain && emoji);
    hb_font_t* font = hb_font_create(emoji->hbFace());
    hb_blob_t* blob = hb_ot_color_glyph_reference_png(font, glyphOf(*emoji, 0x1F600));
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    const std::string png(data, length);
    hb_blob_destroy(blob);
    hb_font_destroy(font);
    const int width = 136, height = 128;  // of every bitmap of that font

    const uint32_t base = glyphOf(*plain, ' ');  // an outline would move the bitmap
    const std::string file = strikeFont(Role::kLatinSmall, plain->glyphCount(), base, png, {40, 160, 20, 80});
    const auto face = FontFace::open(file.data(), file.size(), 0);
    ASSERT_NE(face, nullptr);
    struct Case {
        float size;
        int ppem;
    };
    for (const Case& c : {Case{8, 20}, Case{20, 20}, Case{20.5f, 40}, Case{40, 40}, Case{79, 80},
                          Case{81, 160}, Case{200, 160}}) {
        const GlyphBox box = face->inkBox(base, sized(c.size));
        const auto scaled = [&](int side) {
            return static_cast<double>(side) * static_cast<double>(c.size) / c.ppem;
        };
        EXPECT_EQ(box.left, 0) << c.size;
        EXPECT_EQ(box.right, static_cast<int>(std::ceil(scaled(width)))) << c.size;
        EXPECT_EQ(box.top, -static_cast<int>(std::ceil(scaled(height)))) << c.size;
        EXPECT_EQ(box.bottom, 0) << c.size;
        EXPECT_TRUE(inside(*face->image(base, sized(c.size), 0), box));
        EXPECT_GT(inkOf(*face->image(base, sized(c.size), 0)), 255 * scaled(width) * scaled(height) / 2);
    }
    EXPECT_TRUE(face->inkBox(glyphOf(*plain, 'B'), sized(30)).empty());  // such fonts have strikes only
}

TEST(FontFace, LayersLieOverEachOtherWithTheirPaletteAlphas) {
    const auto plain = fonts::open(Role::kLatinSmall);
    ASSERT_NE(plain, nullptr);
    const uint32_t base = glyphOf(*plain, 'A'), round = glyphOf(*plain, 'O'), bar = glyphOf(*plain, '|'),
                   dot = glyphOf(*plain, '.');
    const std::string file =
        layeredFont(Role::kLatinSmall, base, {{round, 1}, {bar, 0xFFFF}, {dot, 0}}, {0, 128});
    const auto face = FontFace::open(file.data(), file.size(), 0);
    ASSERT_NE(face, nullptr);
    for (const bool bold : {false, true}) {
        GlyphStyle style = sized(40);
        style.fakeBold = bold;
        style.skewX = bold ? -0.25f : 0;
        const auto image = face->image(base, style, 1);
        const auto under = plain->image(round, style, 1), over = plain->image(bar, style, 1);
        for (int y = -60; y < 30; ++y) {
            for (int x = -20; x < 60; ++x) {
                const uint8_t faint = static_cast<uint8_t>(
                    host::multiplyBytes(static_cast<uint32_t>(coverageAt(*under, x, y)), 128));
                ASSERT_EQ(coverageAt(*image, x, y),
                          host::coverageOver(static_cast<uint8_t>(coverageAt(*over, x, y)), faint))
                    << x << ", " << y;
            }
        }
        // The box is the layers', invisible ones included, not the base glyph's.
        const GlyphBox a = plain->inkBox(round, style), b = plain->inkBox(bar, style),
                       box = face->inkBox(base, style);
        EXPECT_EQ(box.top, std::min(a.top, b.top));
        EXPECT_EQ(box.bottom, std::max(a.bottom, b.bottom));
        EXPECT_EQ(box.right, std::max(a.right, b.right));
    }
    EXPECT_TRUE(samePixels(*face->image(round, sized(40), 0), *plain->image(round, sized(40), 0)));
}

TEST(FontFace, StylesBeyondTheLimitsAreBlank) {
    const auto face = fonts::open(Role::kLatin);
    const auto emoji = fonts::open(Role::kEmoji);
    ASSERT_TRUE(face && emoji);
    const float nan = std::numeric_limits<float>::quiet_NaN(),
                infinity = std::numeric_limits<float>::infinity();
    std::vector<GlyphStyle> styles;
    for (const float size : {0.0f, -5.0f, nan, infinity, 16385.0f, 1e30f, 1e-30f, 16000.0f}) {
        styles.push_back(sized(size));
    }
    for (const float value : {nan, infinity, 0.0f, 1e30f}) {
        styles.push_back(sized(20));
        styles.back().scaleX = value;
    }
    for (const float value : {nan, -infinity, 65.0f}) {
        styles.push_back(sized(20));
        styles.back().skewX = value;
    }
    for (const auto& font : {face, emoji}) {
        const uint32_t glyph = glyphOf(*font, font == face ? 'W' : 0x1F600);
        for (GlyphStyle style : styles) {
            for (const bool bold : {false, true}) {
                style.fakeBold = bold;
                // A size that is only tiny leaves at most a pixel of an emoji.
                const size_t most = style.size == 1e-30f && font == emoji ? 1 : 0;
                EXPECT_LE(font->image(glyph, style, 3)->coverage.size(), most)
                    << style.size << " " << style.scaleX;
                const GlyphBox box = font->inkBox(glyph, style);
                EXPECT_TRUE(box.empty() || most > 0) << style.size << " " << style.scaleX;
            }
            if (std::isnan(style.size + style.scaleX) || std::isinf(style.size)) {
                EXPECT_EQ(font->advance(glyph, style), 0);
            }
        }
    }
    // The smallest size leaves a pixel or two; a small glyph of a large size is no large image.
    EXPECT_LE(emoji->image(glyphOf(*emoji, 0x1F600), sized(host::kMinGlyphSize), 3)->coverage.size(), 2u);
    EXPECT_FALSE(face->image(glyphOf(*face, '.'), sized(16000), 0)->coverage.empty());
}

}  // namespace
