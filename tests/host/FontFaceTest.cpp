// SPDX-License-Identifier: Apache-2.0
#include "platform/host/FontFace.h"

#include <gtest/gtest.h>
#include <hb-ot.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <string>

#include "Fonts.h"
#include "FreeTypeOracle.h"
#include "platform/host/PixelMath.h"
#include FT_MULTIPLE_MASTERS_H

namespace {

using fonts::glyphOf;
using fonts::put;
using fonts::Role;
using host::FontFace;
using host::GlyphBox;
using host::GlyphImage;
using host::GlyphStyle;

GlyphStyle styled(float size, float scaleX = 1, float skewX = 0, bool bold = false) {
    GlyphStyle style;
    style.size = size;
    style.scaleX = scaleX;
    style.skewX = skewX;
    style.fakeBold = bold;
    style.rendering = host::Rendering::Plain;
    return style;
}

double inkOf(const GlyphImage& image) {
    return std::accumulate(image.coverage.begin(), image.coverage.end(), 0.0);
}

// Coverage at a pixel of the pen's grid, 0 outside the image.
int coverageAt(const GlyphImage& image, int x, int y) {
    x -= image.left;
    y -= image.top;
    if (x < 0 || x >= image.width || y < 0 || y >= image.height) return 0;
    return image.coverage[static_cast<size_t>(y * image.width + x)];
}

bool operator==(const GlyphBox& a, const GlyphBox& b) {
    return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
}

// The box of a style whose metrics are whole pixels.
GlyphBox boxOf(const FontFace& face, uint32_t glyph, const GlyphStyle& style) {
    const host::InkBox box = face.inkBox(glyph, style);
    return {static_cast<int>(box.left), static_cast<int>(box.top), static_cast<int>(box.right),
            static_cast<int>(box.bottom)};
}

// Whether `holds(x, y)` is true for every pixel of the images.
template <typename F>
testing::AssertionResult everywhere(const std::vector<const GlyphImage*>& images, F holds) {
    for (const GlyphImage* image : images) {
        for (int y = image->top; y < image->top + image->height; ++y) {
            for (int x = image->left; x < image->left + image->width; ++x) {
                if (!holds(x, y)) return testing::AssertionFailure() << "at " << x << ", " << y;
            }
        }
    }
    return testing::AssertionSuccess();
}

// Equal wherever either image has a pixel; blank rows and columns at the edges may differ.
testing::AssertionResult samePixels(const GlyphImage& a, const GlyphImage& b) {
    return everywhere({&a, &b}, [&](int x, int y) { return coverageAt(a, x, y) == coverageAt(b, x, y); });
}

testing::AssertionResult inside(const GlyphImage& image, const GlyphBox& box) {
    return everywhere({&image}, [&](int x, int y) {
        return coverageAt(image, x, y) == 0 ||
               (x >= box.left && x < box.right && y >= box.top && y < box.bottom);
    });
}

std::shared_ptr<FontFace> opened(const std::string& file) {
    return FontFace::open(file.data(), file.size(), 0);
}

TEST(FontFace, OpensOnlyFontsAndKeepsTheirOwner) {
    auto owner = std::make_shared<std::vector<uint8_t>>(fonts::bytes(Role::kLatinSmall));
    const std::string file(owner->begin(), owner->end());
    EXPECT_EQ(FontFace::open(nullptr, file.size(), 0), nullptr);
    for (const size_t size : {0, 11, 20}) EXPECT_EQ(FontFace::open(file.data(), size, 0, owner), nullptr);
    for (const int index : {1, -1, 0x10000, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(fonts::open(Role::kLatinSmall, index), nullptr) << index;
    }
    EXPECT_EQ(opened("wOFF" + file.substr(4)), nullptr);
    EXPECT_EQ(opened(std::string(5000, 'x')), nullptr);

    const std::weak_ptr<void> watch = owner;
    auto face = FontFace::open(owner->data(), owner->size(), 0, owner);
    owner.reset();
    EXPECT_TRUE(face != nullptr && !watch.expired());
    face.reset();
    EXPECT_TRUE(watch.expired());
}

TEST(FontFace, OpensEachFontOfACollection) {
    const auto japanese = fonts::open(Role::kCollection, 0), korean = fonts::open(Role::kCollection, 1);
    ASSERT_TRUE(japanese && korean);
    EXPECT_NE(japanese->uniqueId(), korean->uniqueId());
    EXPECT_EQ(japanese->unitsPerEm(), 1000u);
    EXPECT_NE(glyphOf(*japanese, 0x8FD4), glyphOf(*korean, 0x8FD4));
    EXPECT_EQ(fonts::open(Role::kCollection, 1000), nullptr);
    EXPECT_TRUE(japanese->coversVariation(0x845B, 0xE0100));
    EXPECT_FALSE(japanese->coversVariation(0x845B, 0xE01EF));
    EXPECT_FALSE(japanese->coversVariation('A', 0xFE0F));
}

TEST(FontFace, CoversWhatTheCharacterMapNames) {
    for (const Role role : {Role::kLatin, Role::kArabic, Role::kCollection, Role::kEmoji, Role::kVariable}) {
        const auto face = fonts::open(role);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        for (uint32_t codePoint = 0; codePoint < 0x30000; ++codePoint) {
            ASSERT_EQ(face->covers(codePoint), oracle.glyph(codePoint) != 0)
                << fonts::path(role) << " U+" << std::hex << codePoint;
        }
        for (const uint32_t codePoint : {0xD800u, 0x10FFFFu, 0x110000u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
            EXPECT_FALSE(face->covers(codePoint));
        }
    }
}

TEST(FontFace, AdvancesAreTheFontsOwnScaled) {
    for (const Role role : {Role::kLatin, Role::kCollection, Role::kEmoji, Role::kVariable}) {
        const auto face = fonts::open(role);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        GlyphStyle style = styled(37.5f, 1.25f, -0.25f, true), fine = style;
        fine.subpixel = true;
        for (uint32_t glyph = 0; glyph < std::min(face->glyphCount(), 500u); ++glyph) {
            FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_NO_SCALE);
            // Fonts with only strikes have no unscaled glyphs in FreeType; all their advances are equal.
            const auto units = role == Role::kEmoji ? 2550 : oracle.face()->glyph->metrics.horiAdvance;
            const float fractional = face->advance(glyph, fine);
            const float expected =
                static_cast<float>(units) * (37.5f * 1.25f) / static_cast<float>(face->unitsPerEm());
            EXPECT_EQ(face->advance(glyph, style), std::floor(fractional + 0.5f));
            if (role != Role::kEmoji || fractional != 0) {
                ASSERT_NEAR(fractional, expected, 1e-4f * expected) << fonts::path(role) << glyph;
            }
        }
        EXPECT_EQ(face->advance(face->glyphCount(), styled(20)), 0);
        EXPECT_EQ(face->advance(0xFFFFFFFF, styled(20)), 0);
    }
}

TEST(FontFace, OutlinesAreFreeTypesSmoothOnesUnhinted) {
    for (const Role role :
         {Role::kLatin, Role::kLatinSmall, Role::kDevanagari, Role::kCollection, Role::kVariable}) {
        const auto face = fonts::open(role);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        double ink = 0;
        for (const float size : {0.5f, 9.0f, 13.25f, 37.5f, 120.0f}) {
            for (uint32_t glyph = 0; glyph < 130; ++glyph) {
                SCOPED_TRACE(testing::Message() << fonts::path(role) << glyph << " size " << size);
                const int quarterX = static_cast<int>(glyph % 4);
                const auto image = face->image(glyph, styled(size), quarterX);
                // FreeType's own call for sizes accepts none below a pixel.
                ASSERT_TRUE(size < 1 || samePixels(*image, oracle.outline(glyph, size, quarterX)));
                const GlyphBox box = boxOf(*face, glyph, styled(size));
                ASSERT_TRUE(inside(*face->image(glyph, styled(size), 0), box));
                ink += inkOf(*image);
            }
        }
        EXPECT_GT(ink, 1e6);
    }
    // H is all straight lines between on-curve points, from (201, 0) to (1339, 1493) of 2048.
    const auto face = fonts::open(Role::kLatin);
    EXPECT_TRUE(boxOf(*face, glyphOf(*face, 'H'), styled(40)) == (GlyphBox{3, -30, 27, 0}));
    EXPECT_TRUE(boxOf(*face, glyphOf(*face, ' '), styled(40)).empty());
    EXPECT_TRUE(boxOf(*face, face->glyphCount(), styled(40)).empty());
}

TEST(FontFace, ColorStrikesGiveTheirAlphaAtTheSize) {
    const auto face = fonts::open(Role::kEmoji);
    const uint32_t glyph = glyphOf(*face, 0x1F600);
    const FreeTypeOracle oracle(fonts::bytes(Role::kEmoji), 0);
    ASSERT_EQ(FT_Select_Size(oracle.face(), 0), 0);
    ASSERT_EQ(FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_COLOR), 0);
    const GlyphImage strike = oracle.coverage(4, 3);
    const float ppem = static_cast<float>(oracle.face()->size->metrics.y_ppem);
    // Fake bold does not change strikes.
    EXPECT_TRUE(samePixels(*face->image(glyph, styled(ppem, 1, 0, true), 0), strike));
    // The box is the scaled strike, rounded outwards.
    const auto down = [](int v) { return static_cast<int>(std::floor(v / 4.0)); };
    EXPECT_TRUE(boxOf(*face, glyph, styled(ppem / 4)) ==
                (GlyphBox{down(strike.left), down(strike.top), -down(-strike.left - strike.width),
                          -down(-strike.top - strike.height)}));
}

// A font whose space has a picture in a strike of each size.
TEST(FontFace, TheNearestStrikeNotSmallerThanTheSizeIsScaled) {
    const auto plain = fonts::open(Role::kLatinSmall), emoji = fonts::open(Role::kEmoji);
    hb_font_t* font = hb_font_create(emoji->hbFace());
    hb_blob_t* blob = hb_ot_color_glyph_reference_png(font, glyphOf(*emoji, 0x1F600));
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    const uint32_t base = glyphOf(*plain, ' ');  // an outline would move the bitmap
    const uint32_t header = 4 + 4 * (plain->glyphCount() + 1), record = 8 + length;
    std::string table;
    put(table, 2, {1, 1});  // version, flags
    put(table, 4, {4});
    for (uint32_t i = 0; i < 4; ++i) put(table, 4, {8 + 4 * 4 + i * (header + record)});
    for (const uint32_t ppem : {40u, 160u, 20u, 80u}) {
        put(table, 2, {ppem, 72});
        for (uint32_t i = 0; i <= plain->glyphCount(); ++i) put(table, 4, {header + (i > base ? record : 0)});
        put(table, 4, {0});  // the bitmap's lower left corner is at the origin
        table += "png " + std::string(data, length);
    }
    hb_blob_destroy(blob);
    hb_font_destroy(font);

    const std::string file = fonts::withTables(Role::kLatinSmall, {{HB_TAG('s', 'b', 'i', 'x'), table}});
    const auto face = opened(file);
    ASSERT_NE(face, nullptr);
    const std::pair<double, int> cases[] = {{8, 20},  {20, 20},  {20.5, 40}, {40, 40},
                                            {79, 80}, {81, 160}, {200, 160}};
    for (const auto& [size, ppem] : cases) {
        const double width = 136 * size / ppem, height = 128 * size / ppem;  // of every bitmap of that font
        const GlyphStyle style = styled(static_cast<float>(size));
        const GlyphBox box = boxOf(*face, base, style);
        EXPECT_TRUE(
            box == (GlyphBox{0, -static_cast<int>(std::ceil(height)), static_cast<int>(std::ceil(width)), 0}))
            << size;
        EXPECT_TRUE(inside(*face->image(base, style, 0), box));
        EXPECT_GT(inkOf(*face->image(base, style, 0)), 255 * width * height / 2);
    }
    EXPECT_TRUE(boxOf(*face, glyphOf(*plain, 'B'), styled(30)).empty());  // such fonts have strikes only
}

TEST(FontFace, LayersLieOverEachOtherWithTheirPaletteAlphas) {
    const auto plain = fonts::open(Role::kLatinSmall);
    const uint32_t base = glyphOf(*plain, 'A'), round = glyphOf(*plain, 'O'), bar = glyphOf(*plain, '|'),
                   dot = glyphOf(*plain, '.');
    // One glyph of three layers (glyph, palette entry) and a palette of two colours: blue, green, red, alpha.
    std::string color, palette;
    put(color, 2, {0, 1, 0, 14, 0, 20, 3, base, 0, 3, round, 1, bar, 0xFFFF, dot, 0});
    put(palette, 2, {0, 2, 1, 2, 0, 14, 0});
    put(palette, 4, {0x10203000, 0x10203080});
    const std::string file = fonts::withTables(
        Role::kLatinSmall, {{HB_TAG('C', 'O', 'L', 'R'), color}, {HB_TAG('C', 'P', 'A', 'L'), palette}});
    const auto face = opened(file);
    ASSERT_NE(face, nullptr);
    for (const bool bold : {false, true}) {
        const GlyphStyle style = styled(40, 1, bold ? -0.25f : 0, bold);
        const auto image = face->image(base, style, 1), under = plain->image(round, style, 1),
                   over = plain->image(bar, style, 1);
        EXPECT_TRUE(everywhere({image.get(), under.get(), over.get()}, [&](int x, int y) {
            const uint32_t faint = host::multiplyBytes(static_cast<uint32_t>(coverageAt(*under, x, y)), 128);
            const auto top = static_cast<uint8_t>(coverageAt(*over, x, y));
            return coverageAt(*image, x, y) == host::coverageOver(top, static_cast<uint8_t>(faint));
        }));
        // The box is the layers', not the base glyph's.
        const GlyphBox box = boxOf(*face, base, style), low = boxOf(*plain, round, style),
                       high = boxOf(*plain, bar, style);
        EXPECT_EQ(box.top, std::min(low.top, high.top));
        EXPECT_EQ(box.bottom, std::max(low.bottom, high.bottom));
        EXPECT_EQ(box.right, std::max(low.right, high.right));
    }
}

TEST(FontFace, AxesStandWhereTheFontsTableSaysHoweverOddItIs) {
    constexpr uint32_t kWeight = HB_TAG('w', 'g', 'h', 't'), kOther = HB_TAG('o', 'p', 's', 'z');
    const auto pairs = [](const std::vector<uint32_t>& values) {
        std::string table;
        put(table, 4, values);
        return table;
    };
    std::vector<uint32_t> many;
    for (uint32_t i = 0; i < 63; ++i) many.insert(many.end(), {kWeight, (200 + i) << 16});
    many.insert(many.end(),
                {kWeight, 300 << 16, kWeight, 900 << 16});  // the 64th pair, and one that is not read
    const std::string bold = pairs({kWeight, 700 << 16});
    const std::tuple<const char*, std::string, int> cases[] = {
        {"none", "", 400},
        {"one", bold, 700},
        {"cut", bold.substr(0, 7), 400},
        {"cut after one", bold + bold.substr(0, 7), 700},
        {"unknown axis", pairs({kOther, 20 << 16, kWeight, 700 << 16, 0, 0, 0xFFFFFFFF, 0x80000000}), 700},
        {"beyond", pairs({kWeight, 0x7FFFFFFF}), 900},
        {"below", pairs({kWeight, 0x80000000}), 100},
        {"the last counts", pairs({kWeight, 900 << 16, kWeight, 200 << 16}), 200},
        {"the first 64", pairs(many), 300},
        {"long", bold + std::string(1 << 20, '\xFF'), 700}};
    const FreeTypeOracle oracle(fonts::bytes(Role::kVariable), 0);
    const uint32_t glyph = oracle.glyph('H');
    for (const auto& [name, table, weight] : cases) {
        SCOPED_TRACE(name);
        const std::string file = fonts::withTables(Role::kVariable, {{host::kAxesTable, table}});
        const auto face = opened(file);
        ASSERT_NE(face, nullptr);
        FT_Fixed place = FT_Fixed{weight} << 16;
        ASSERT_EQ(FT_Set_Var_Design_Coordinates(oracle.face(), 1, &place), 0);
        EXPECT_TRUE(samePixels(*face->image(glyph, styled(90), 1), oracle.outline(glyph, 90, 1)));
        FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_NO_SCALE);
        const auto units = static_cast<float>(oracle.face()->glyph->metrics.horiAdvance);
        EXPECT_EQ(face->advance(glyph, styled(static_cast<float>(face->unitsPerEm()))), units);
        hb_font_t* font = hb_font_create(face->hbFace());
        face->setAxes(font);
        EXPECT_EQ(static_cast<float>(hb_font_get_glyph_h_advance(font, glyph)), units);
        hb_font_destroy(font);
    }
    // A font without axes ignores the table.
    const std::string file = fonts::withTables(Role::kLatinSmall, {{host::kAxesTable, bold}});
    EXPECT_TRUE(samePixels(*opened(file)->image(40, styled(90), 0),
                           *fonts::open(Role::kLatinSmall)->image(40, styled(90), 0)));
}

TEST(FontFace, StylesBeyondTheLimitsAreBlank) {
    const auto face = fonts::open(Role::kLatin), emoji = fonts::open(Role::kEmoji);
    const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
    std::vector<GlyphStyle> styles;
    for (const float size : {0.0f, -5.0f, nan, infinity, 16385.0f, 1e30f, 16000.0f})
        styles.push_back(styled(size));
    for (const float value : {nan, infinity, 0.0f, 1e30f}) styles.push_back(styled(20, value));
    for (const float value : {nan, -infinity, 65.0f}) styles.push_back(styled(20, 1, value, true));
    for (const auto& font : {face, emoji}) {
        const uint32_t glyph = glyphOf(*font, font == face ? 'W' : 0x1F600);
        for (const GlyphStyle& style : styles) {
            SCOPED_TRACE(testing::Message() << style.size << " " << style.scaleX << " " << style.skewX);
            EXPECT_TRUE(font->image(glyph, style, 3)->coverage.empty());
            EXPECT_TRUE(boxOf(*font, glyph, style).empty());
            if (std::isnan(style.size + style.scaleX) || std::isinf(style.size)) {
                EXPECT_EQ(font->advance(glyph, style), 0);
            }
        }
    }
    // Tiny sizes leave a pixel or two of an emoji; a small glyph of a large size is no large image.
    for (const float size : {1e-30f, host::kMinGlyphSize}) {
        EXPECT_LE(emoji->image(glyphOf(*emoji, 0x1F600), styled(size), 3)->coverage.size(), 2u);
    }
    EXPECT_FALSE(face->image(glyphOf(*face, '.'), styled(16000), 0)->coverage.empty());
}

}  // namespace
