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
#include FT_MULTIPLE_MASTERS_H

namespace {

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

GlyphBox edgesOf(const GlyphImage& image) {
    return {image.left, image.top, image.left + image.width, image.top + image.height};
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

GlyphBox unionOf(const GlyphBox& a, const GlyphBox& b) {
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

// Whether `holds(x, y)` is true of every pixel of the box.
template <typename F>
testing::AssertionResult everywhere(const GlyphBox& box, F holds) {
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x) {
            if (!holds(x, y)) return testing::AssertionFailure() << "at " << x << ", " << y;
        }
    }
    return testing::AssertionSuccess();
}

// Equal where either has a pixel; the images' edges may differ by blank rows and columns.
testing::AssertionResult samePixels(const GlyphImage& a, const GlyphImage& b) {
    return everywhere(unionOf(edgesOf(a), edgesOf(b)),
                      [&](int x, int y) { return coverageAt(a, x, y) == coverageAt(b, x, y); });
}

testing::AssertionResult inside(const GlyphImage& image, const GlyphBox& box) {
    return everywhere(edgesOf(image), [&](int x, int y) {
        return coverageAt(image, x, y) == 0 ||
               (x >= box.left && x < box.right && y >= box.top && y < box.bottom);
    });
}

uint32_t glyphOf(const FontFace& face, uint32_t codePoint) {
    hb_font_t* font = hb_font_create(face.hbFace());
    hb_codepoint_t glyph = 0;
    hb_font_get_nominal_glyph(font, codePoint, &glyph);
    hb_font_destroy(font);
    return glyph;
}

std::shared_ptr<FontFace> opened(const std::string& file) {
    return FontFace::open(file.data(), file.size(), 0);
}

TEST(FontFace, OpensOnlyFonts) {
    const std::vector<uint8_t>& file = fonts::bytes(Role::kLatinSmall);
    EXPECT_NE(fonts::open(Role::kLatinSmall), nullptr);
    EXPECT_EQ(FontFace::open(nullptr, file.size(), 0), nullptr);
    for (const size_t size : {0, 11}) EXPECT_EQ(FontFace::open(file.data(), size, 0), nullptr);
    for (const int index : {1, -1, 0x10000, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(fonts::open(Role::kLatinSmall, index), nullptr) << index;
    }
    EXPECT_EQ(opened("wOFF" + std::string(file.begin() + 4, file.end())), nullptr);
    EXPECT_EQ(opened(std::string(5000, 'x')), nullptr);
}

TEST(FontFace, OpensEachFontOfACollection) {
    const auto japanese = fonts::open(Role::kCollection, 0), korean = fonts::open(Role::kCollection, 1);
    ASSERT_TRUE(japanese && korean);
    EXPECT_NE(japanese->uniqueId(), korean->uniqueId());
    EXPECT_EQ(japanese->unitsPerEm(), 1000u);
    // One code point, a glyph of its own in each.
    EXPECT_NE(glyphOf(*japanese, 0x8FD4), glyphOf(*korean, 0x8FD4));
    EXPECT_EQ(fonts::open(Role::kCollection, 1000), nullptr);
    EXPECT_TRUE(japanese->coversVariation(0x845B, 0xE0100));
    EXPECT_FALSE(japanese->coversVariation(0x845B, 0xE01EF));
    EXPECT_FALSE(japanese->coversVariation('A', 0xFE0F));
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
}

TEST(FontFace, AdvancesAreTheFontsOwnScaled) {
    for (const Role role : {Role::kLatin, Role::kCollection, Role::kEmoji, Role::kVariable}) {
        const auto face = fonts::open(role);
        const FreeTypeOracle oracle(fonts::bytes(role), 0);
        for (uint32_t glyph = 0; glyph < std::min(face->glyphCount(), 500u); ++glyph) {
            FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_NO_SCALE);
            // Fonts of strikes only have no unscaled glyphs in FreeType; all their advances are alike.
            const auto units = role == Role::kEmoji ? 2550 : oracle.face()->glyph->metrics.horiAdvance;
            GlyphStyle style = styled(37.5f, 1.25f, -0.25f, true);
            const float whole = face->advance(glyph, style);
            style.subpixel = true;
            const float fractional = face->advance(glyph, style);
            const float expected =
                static_cast<float>(units) * (37.5f * 1.25f) / static_cast<float>(face->unitsPerEm());
            EXPECT_EQ(whole, std::floor(fractional + 0.5f));
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
        int inked = 0;
        for (const float size : {0.5f, 9.0f, 13.25f, 37.5f, 120.0f}) {
            for (uint32_t glyph = 0; glyph < 130; ++glyph) {
                SCOPED_TRACE(testing::Message()
                             << fonts::path(role) << " glyph " << glyph << " size " << size);
                const int quarterX = static_cast<int>(glyph % 4);
                const auto image = face->image(glyph, styled(size), quarterX);
                // FreeType's own entry for sizes knows none below a pixel.
                if (size >= 1) {
                    ASSERT_TRUE(samePixels(*image, oracle.outline(glyph, size, quarterX)));
                }
                const GlyphBox box = boxOf(*face, glyph, styled(size));
                ASSERT_TRUE(inside(*face->image(glyph, styled(size), 0), box));
                inked += inkOf(*image) > 0;
            }
        }
        EXPECT_GT(inked, 300);
    }
}

TEST(FontFace, InkBoxesHugTheInkAndBlankGlyphsHaveNone) {
    const auto face = fonts::open(Role::kLatin);
    // H is all straight lines between on-curve points, from (201, 0) to (1339, 1493) of 2048.
    EXPECT_TRUE(boxOf(*face, glyphOf(*face, 'H'), styled(40)) == (GlyphBox{3, -30, 27, 0}));
    EXPECT_TRUE(boxOf(*face, glyphOf(*face, ' '), styled(40)).empty());
    EXPECT_TRUE(face->image(glyphOf(*face, ' '), styled(40), 0)->coverage.empty());
    EXPECT_TRUE(boxOf(*face, face->glyphCount(), styled(40)).empty());
}

TEST(FontFace, ScaleSkewAndMirrorTransformTheOutline) {
    const auto face = fonts::open(Role::kLatin);
    const uint32_t glyph = glyphOf(*face, 'F');
    const auto plain = face->image(glyph, styled(64), 0), wide = face->image(glyph, styled(64, 2), 0);
    EXPECT_NEAR(inkOf(*wide) / inkOf(*plain), 2, 0.01);
    EXPECT_EQ(wide->top, plain->top);
    EXPECT_NEAR(wide->width, 2 * plain->width, 2);

    const auto mirrored = face->image(glyph, styled(64, -1), 0);
    EXPECT_TRUE(everywhere(edgesOf(*plain), [&](int x, int y) {
        return std::abs(coverageAt(*plain, x, y) - coverageAt(*mirrored, -1 - x, y)) <= 1;
    }));

    // A row's ink moves by -0.25 times its distance below the baseline.
    const auto slanted = face->image(glyph, styled(64, 1, -0.25f), 0);
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
    EXPECT_TRUE(inside(*slanted, boxOf(*face, glyph, styled(64, 1, -0.25f))));
}

TEST(FontFace, FakeBoldWidensBothSidesBySizeOver24To32) {
    const auto face = fonts::open(Role::kLatin);
    const uint32_t glyph = glyphOf(*face, 'l');  // one upright stem
    const std::pair<float, float> cases[] = {
        {6, 1 / 24.0f}, {9, 1 / 24.0f}, {22.5f, 7 / 192.0f}, {36, 1 / 32.0f}, {200, 1 / 32.0f}};
    for (const auto& [size, share] : cases) {
        // A stem of several pixels at any size; the widening is not scaled.
        const GlyphStyle style = styled(size, 8, 0, true);
        const auto plain = face->image(glyph, styled(size, 8), 0), bold = face->image(glyph, style, 0);
        const int y = static_cast<int>(-size / 3), middle = plain->left + plain->width / 2;
        ASSERT_EQ(coverageAt(*plain, middle, y), 255);
        double left = 0, right = 0;
        for (int x = bold->left - 1; x <= bold->left + bold->width; ++x) {
            (x < middle ? left : right) += (coverageAt(*bold, x, y) - coverageAt(*plain, x, y)) / 255.0;
        }
        // Points lie on 64ths of a pixel.
        EXPECT_NEAR(left, size * share / 2, 0.02) << size;
        EXPECT_NEAR(right, size * share / 2, 0.02) << size;
        EXPECT_TRUE(inside(*bold, boxOf(*face, glyph, style)));
        EXPECT_NEAR(static_cast<double>(bold->top), plain->top - size * share / 2, 1) << size;
    }
}

TEST(FontFace, ColourStrikesGiveTheirAlphaAtTheSize) {
    const auto face = fonts::open(Role::kEmoji);
    const uint32_t glyph = glyphOf(*face, 0x1F600);
    const FreeTypeOracle oracle(fonts::bytes(Role::kEmoji), 0);
    ASSERT_EQ(FT_Select_Size(oracle.face(), 0), 0);
    ASSERT_EQ(FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_COLOR), 0);
    const GlyphImage strike = oracle.coverage(4, 3);
    const float ppem = static_cast<float>(oracle.face()->size->metrics.y_ppem);
    for (const bool bold : {false, true}) {  // fake bold leaves strikes alone
        EXPECT_TRUE(samePixels(*face->image(glyph, styled(ppem, 1, 0, bold), 0), strike));
    }
    for (const float scale : {0.1f, 0.37f, 0.5f, 2.0f, 3.3f}) {
        for (const float skew : {0.0f, -0.25f}) {
            for (int quarterX = 0; quarterX < 4; ++quarterX) {
                const float scaleX = quarterX == 3 ? -1.5f : 1;
                const GlyphStyle style = styled(ppem * scale, scaleX, skew);
                const auto image = face->image(glyph, style, quarterX);
                const float factor = scale * scale * std::fabs(scaleX);
                EXPECT_NEAR(inkOf(*image) / (inkOf(strike) * static_cast<double>(factor)), 1, 0.02)
                    << scale << " skew " << skew << " quarter " << quarterX;
                EXPECT_TRUE(quarterX != 0 || inside(*image, boxOf(*face, glyph, style)));
            }
        }
    }
    // The box is the scaled strike, rounded outwards.
    const auto down = [](int v) { return static_cast<int>(std::floor(v / 4.0)); };
    const GlyphBox whole = edgesOf(strike),
                   quarter = {down(whole.left), down(whole.top), -down(-whole.right), -down(-whole.bottom)};
    EXPECT_TRUE(boxOf(*face, glyph, styled(ppem / 4)) == quarter);
}

// The file with glyph `base` made of `layers` (glyph, palette entry); the palette has the given alphas.
std::string layeredFont(Role role, uint32_t base, const std::vector<std::pair<uint32_t, uint32_t>>& layers,
                        const std::vector<uint8_t>& alphas) {
    const auto layerCount = static_cast<uint32_t>(layers.size());
    const auto colors = static_cast<uint32_t>(alphas.size());
    std::string color, palette;
    fonts::put(color, 2, {0, 1});  // version, base glyphs
    fonts::put(color, 4, {14, 20});
    fonts::put(color, 2, {layerCount, base, 0, layerCount});
    for (const auto& [glyph, entry] : layers) fonts::put(color, 2, {glyph, entry});
    fonts::put(palette, 2, {0, colors, 1, colors});
    fonts::put(palette, 4, {14});
    fonts::put(palette, 2, {0});
    for (const uint8_t alpha : alphas)
        fonts::put(palette, 4, {0x10203000u | alpha});  // blue, green, red, alpha
    return fonts::withTables(role,
                             {{HB_TAG('C', 'O', 'L', 'R'), color}, {HB_TAG('C', 'P', 'A', 'L'), palette}});
}

// The file with a strike of each size in which `base` alone has a bitmap.
std::string strikeFont(Role role, uint32_t glyphCount, uint32_t base, const std::string& png,
                       const std::vector<uint32_t>& ppems) {
    const auto strikes = static_cast<uint32_t>(ppems.size());
    const uint32_t header = 4 + 4 * (glyphCount + 1), record = 8 + static_cast<uint32_t>(png.size());
    std::string table;
    fonts::put(table, 2, {1, 1});  // version, flags
    fonts::put(table, 4, {strikes});
    for (uint32_t i = 0; i < strikes; ++i) fonts::put(table, 4, {8 + 4 * strikes + i * (header + record)});
    for (const uint32_t ppem : ppems) {
        fonts::put(table, 2, {ppem, 72});
        for (uint32_t i = 0; i <= glyphCount; ++i) fonts::put(table, 4, {header + (i > base ? record : 0)});
        fonts::put(table, 4, {0});  // the bitmap's lower left corner is at the origin
        table += "png " + png;
    }
    return fonts::withTables(role, {{HB_TAG('s', 'b', 'i', 'x'), table}});
}

TEST(FontFace, TheNearestStrikeNotSmallerThanTheSizeIsScaled) {
    const auto plain = fonts::open(Role::kLatinSmall), emoji = fonts::open(Role::kEmoji);
    hb_font_t* font = hb_font_create(emoji->hbFace());
    hb_blob_t* blob = hb_ot_color_glyph_reference_png(font, glyphOf(*emoji, 0x1F600));
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    const std::string png(data, length);
    hb_blob_destroy(blob);
    hb_font_destroy(font);

    const uint32_t base = glyphOf(*plain, ' ');  // an outline would move the bitmap
    const std::string file = strikeFont(Role::kLatinSmall, plain->glyphCount(), base, png, {40, 160, 20, 80});
    const auto face = opened(file);
    ASSERT_NE(face, nullptr);
    const std::pair<double, int> cases[] = {{8, 20},  {20, 20},  {20.5, 40}, {40, 40},
                                            {79, 80}, {81, 160}, {200, 160}};
    for (const auto& [size, ppem] : cases) {
        const double width = 136 * size / ppem, height = 128 * size / ppem;  // of every bitmap of that font
        const GlyphStyle style = styled(static_cast<float>(size));
        const GlyphBox box = boxOf(*face, base, style), expected = {0, -static_cast<int>(std::ceil(height)),
                                                                    static_cast<int>(std::ceil(width)), 0};
        EXPECT_TRUE(box == expected) << size;
        EXPECT_TRUE(inside(*face->image(base, style, 0), box));
        EXPECT_GT(inkOf(*face->image(base, style, 0)), 255 * width * height / 2);
    }
    EXPECT_TRUE(boxOf(*face, glyphOf(*plain, 'B'), styled(30)).empty());  // such fonts have strikes only
}

TEST(FontFace, LayersLieOverEachOtherWithTheirPaletteAlphas) {
    const auto plain = fonts::open(Role::kLatinSmall);
    const uint32_t base = glyphOf(*plain, 'A'), round = glyphOf(*plain, 'O'), bar = glyphOf(*plain, '|'),
                   dot = glyphOf(*plain, '.');
    const std::string file =
        layeredFont(Role::kLatinSmall, base, {{round, 1}, {bar, 0xFFFF}, {dot, 0}}, {0, 128});
    const auto face = opened(file);
    ASSERT_NE(face, nullptr);
    for (const bool bold : {false, true}) {
        const GlyphStyle style = styled(40, 1, bold ? -0.25f : 0, bold);
        const auto image = face->image(base, style, 1), under = plain->image(round, style, 1),
                   over = plain->image(bar, style, 1);
        EXPECT_TRUE(everywhere({-20, -60, 60, 30}, [&](int x, int y) {
            const uint32_t faint = host::multiplyBytes(static_cast<uint32_t>(coverageAt(*under, x, y)), 128);
            const auto top = static_cast<uint8_t>(coverageAt(*over, x, y));
            return coverageAt(*image, x, y) == host::coverageOver(top, static_cast<uint8_t>(faint));
        }));
        // The box is the layers', invisible ones included, not the base glyph's.
        const GlyphBox box = boxOf(*face, base, style),
                       layers = unionOf(boxOf(*plain, round, style), boxOf(*plain, bar, style));
        EXPECT_EQ(box.top, layers.top);
        EXPECT_EQ(box.bottom, layers.bottom);
        EXPECT_EQ(box.right, layers.right);
    }
    EXPECT_TRUE(samePixels(*face->image(round, styled(40), 0), *plain->image(round, styled(40), 0)));
}

TEST(FontFace, AxesStandWhereTheFontsTableSaysHoweverOddItIs) {
    constexpr uint32_t kWeight = HB_TAG('w', 'g', 'h', 't'), kOther = HB_TAG('o', 'p', 's', 'z');
    const auto pairs = [](std::initializer_list<uint32_t> values) {
        std::string table;
        fonts::put(table, 4, values);
        return table;
    };
    std::string many;
    for (uint32_t i = 0; i < 63; ++i) fonts::put(many, 4, {kWeight, (200 + i) << 16});
    fonts::put(many, 4, {kWeight, 300 << 16, kWeight, 900 << 16});  // the 64th pair, and one that is not read
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
        {"the first 64", many, 300},
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
    // A font without axes takes no notice.
    const std::string file = fonts::withTables(Role::kLatinSmall, {{host::kAxesTable, bold}});
    const auto fixed = opened(file), plain = fonts::open(Role::kLatinSmall);
    ASSERT_NE(fixed, nullptr);
    EXPECT_TRUE(samePixels(*fixed->image(40, styled(90), 0), *plain->image(40, styled(90), 0)));
}

TEST(FontFace, StylesBeyondTheLimitsAreBlank) {
    const auto face = fonts::open(Role::kLatin), emoji = fonts::open(Role::kEmoji);
    const float nan = std::nanf(""), infinity = std::numeric_limits<float>::infinity();
    std::vector<GlyphStyle> styles;
    for (const float size : {0.0f, -5.0f, nan, infinity, 16385.0f, 1e30f, 1e-30f, 16000.0f}) {
        styles.push_back(styled(size));
    }
    for (const float value : {nan, infinity, 0.0f, 1e30f}) styles.push_back(styled(20, value));
    for (const float value : {nan, -infinity, 65.0f}) styles.push_back(styled(20, 1, value));
    for (const auto& font : {face, emoji}) {
        const uint32_t glyph = glyphOf(*font, font == face ? 'W' : 0x1F600);
        for (GlyphStyle style : styles) {
            SCOPED_TRACE(testing::Message() << style.size << " " << style.scaleX << " " << style.skewX);
            for (const bool bold : {false, true}) {
                style.fakeBold = bold;
                // A size that is only tiny leaves at most a pixel of an emoji.
                const size_t most = style.size == 1e-30f && font == emoji ? 1 : 0;
                EXPECT_LE(font->image(glyph, style, 3)->coverage.size(), most);
                EXPECT_TRUE(boxOf(*font, glyph, style).empty() || most > 0);
            }
            if (std::isnan(style.size + style.scaleX) || std::isinf(style.size)) {
                EXPECT_EQ(font->advance(glyph, style), 0);
            }
        }
    }
    // The smallest size leaves a pixel or two; a small glyph of a large size is no large image.
    EXPECT_LE(emoji->image(glyphOf(*emoji, 0x1F600), styled(host::kMinGlyphSize), 3)->coverage.size(), 2u);
    EXPECT_FALSE(face->image(glyphOf(*face, '.'), styled(16000), 0)->coverage.empty());
}

}  // namespace
