// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include "FreeTypeOracle.h"
#include "PaintTable.h"
#include "tests/reference/LayerJoinReference.h"

namespace {

using fonts::glyphOf;
using fonts::Role;
using host::ColorImage;
using host::FontFace;
using host::GlyphImage;
using host::GlyphStyle;

constexpr uint32_t kText = 0xFF102030;
// 2048 units an em; the base has no outline of its own.
constexpr int kEm = 2048;

GlyphStyle sized(float size, host::Rendering rendering = host::Rendering::Plain) {
    GlyphStyle style;
    style.size = size;
    style.rendering = rendering;
    return style;
}

const FontFace& plainFont() {
    static const auto face = fonts::open(Role::kLatinSmall);
    return *face;
}
const uint32_t kBase = glyphOf(plainFont(), ' '), kRound = glyphOf(plainFont(), 'O'),
               kBar = glyphOf(plainFont(), '|');

// The small font with a palette: red, half-transparent green, blue.
struct ColorFont {
    std::string file;
    std::shared_ptr<FontFace> face;
    explicit ColorFont(const std::string& table) {
        const std::string palette =
            paints::big(2, {0, 3, 1, 3, 0, 14, 0}) + paints::big(4, {0x0000FFFF, 0x00FF0080, 0xFF0000FF});
        file = fonts::withTables(
            Role::kLatinSmall, {{HB_TAG('C', 'O', 'L', 'R'), table}, {HB_TAG('C', 'P', 'A', 'L'), palette}});
        face = FontFace::open(file.data(), file.size(), 0);
    }
    ColorFont(const std::string& paint, const std::vector<int>& clip)
        : ColorFont(paints::Table{{{kBase, paint}}, {}, clip}.bytes()) {}
    ColorImage image(float size) const { return face->colorImage(kBase, sized(size), 0, kText); }
};

// Pixels of the pen's grid, 0 outside the image.
uint32_t at(const ColorImage& image, int x, int y) {
    x -= image.left;
    y -= image.top;
    if (x < 0 || x >= image.width || y < 0 || y >= image.height) return 0;
    return image.pixels[static_cast<size_t>(y * image.width + x)];
}

std::vector<uint8_t> alphasOf(const ColorImage& image) {
    std::vector<uint8_t> alphas;
    for (const uint32_t word : image.pixels) alphas.push_back(static_cast<uint8_t>(word >> 24));
    return alphas;
}

// The greatest difference of a channel, premultiplied.
double apart(uint32_t a, uint32_t b) {
    const auto p = reference::pixelOf(a), q = reference::pixelOf(b);
    return 255.0 * static_cast<double>(
                       std::max({std::fabs(p.alpha - q.alpha), std::fabs(p.color.r - q.color.r),
                                 std::fabs(p.color.g - q.color.g), std::fabs(p.color.b - q.color.b)}));
}
double apart(const ColorImage& a, const ColorImage& b) {
    double most = 0;
    for (int y = std::min(a.top, b.top); y < std::max(a.top + a.height, b.top + b.height); ++y) {
        for (int x = std::min(a.left, b.left); x < std::max(a.left + a.width, b.left + b.width); ++x) {
            most = std::max(most, apart(at(a, x, y), at(b, x, y)));
        }
    }
    return most;
}

TEST(ColorGlyphs, AlphaIsTheSilhouettesInEveryStyle) {
    const std::string layered = paints::big(2, {0, 1}) + paints::big(4, {14, 20}) +
                                paints::big(2, {3, kBase, 0, 3, kRound, 1, kBar, 0xFFFF, kBar + 1, 2});
    const ColorFont layers(layered), graph(paints::shape(kRound, paints::solid(1)), {});
    const auto emoji = fonts::open(Role::kEmoji);
    const std::pair<const FontFace*, uint32_t> glyphs[] = {
        {emoji.get(), glyphOf(*emoji, 0x1F600)}, {layers.face.get(), kBase}, {graph.face.get(), kBase}};
    int drawn = 0;
    for (const auto& [face, glyph] : glyphs) {
        for (const host::Rendering rendering : {host::Rendering::Phone, host::Rendering::Plain}) {
            for (const float size : {9.0f, 24.5f, 109.0f, 200.0f}) {
                for (int variant = 0; variant < 8; ++variant) {
                    GlyphStyle style = sized(size, rendering);
                    style.antiAlias = variant % 2 == 0;
                    style.skewX = variant / 2 % 2 != 0 ? -0.25f : 0;
                    style.fakeBold = variant / 4 != 0;
                    if (variant == 6) style.scaleX = -1.5f;
                    const auto silhouette = face->image(glyph, style, variant % 4);
                    const ColorImage image = face->colorImage(glyph, style, variant % 4, kText);
                    ASSERT_EQ(image.left, silhouette->left);
                    ASSERT_EQ(image.top, silhouette->top);
                    ASSERT_EQ(image.width, silhouette->width);
                    ASSERT_EQ(alphasOf(image), silhouette->coverage) << size << ", variant " << variant;
                    drawn += !image.pixels.empty();
                }
            }
        }
    }
    EXPECT_EQ(drawn, 3 * 2 * 4 * 8);
    EXPECT_TRUE(plainFont().colorImage(kRound, sized(40), 0, kText).pixels.empty());
    // A base with an outline of its own keeps it as its silhouette.
    const ColorFont outlined(
        paints::Table{{{kBar, paints::shape(kRound, paints::solid(0))}}, {}, {}}.bytes());
    EXPECT_EQ(outlined.face->image(kBar, sized(40), 0)->coverage,
              plainFont().image(kBar, sized(40), 0)->coverage);
}

TEST(ColorGlyphs, StrikesKeepTheirColors) {
    const auto face = fonts::open(Role::kEmoji);
    const uint32_t glyph = glyphOf(*face, 0x1F600);
    const FreeTypeOracle oracle(fonts::bytes(Role::kEmoji), 0);
    FT_Select_Size(oracle.face(), 0);
    FT_Load_Glyph(oracle.face(), glyph, FT_LOAD_COLOR);
    GlyphImage channels[4];
    for (unsigned i = 0; i < 4; ++i) channels[i] = oracle.coverage(4, i);
    const auto ppem = static_cast<float>(oracle.face()->size->metrics.y_ppem);
    // Squares of as many pixels as the strike is shrunk by have the picture's means, premultiplied.
    for (const int shrunk : {1, 4}) {
        const ColorImage image = face->colorImage(glyph, sized(ppem / static_cast<float>(shrunk)), 0, kText);
        ASSERT_FALSE(image.pixels.empty());
        for (int y = image.top + 1; y < image.top + image.height - 1; ++y) {
            for (int x = image.left + 1; x < image.left + image.width - 1; ++x) {
                const auto pixel = reference::pixelOf(at(image, x, y));
                const float shown[] = {pixel.color.b, pixel.color.g, pixel.color.r, pixel.alpha};
                for (int i = 0; i < 4; ++i) {
                    double sum = 0;
                    for (int dy = 0; dy < shrunk; ++dy) {
                        for (int dx = 0; dx < shrunk; ++dx) {
                            const int column = x * shrunk + dx - channels[i].left;
                            const int row = y * shrunk + dy - channels[i].top;
                            if (column < channels[i].width && row < channels[i].height && column >= 0 &&
                                row >= 0)
                                sum += channels[i]
                                           .coverage[static_cast<size_t>(row * channels[i].width + column)];
                        }
                    }
                    ASSERT_NEAR(255 * static_cast<double>(shown[i]), sum / (shrunk * shrunk), 1)
                        << x << ", " << y << ": " << i;
                }
            }
        }
    }
}

TEST(ColorGlyphs, LayersHaveTheirPalettesColorsAndTheTexts) {
    const ColorFont font(paints::big(2, {0, 1}) + paints::big(4, {14, 20}) +
                         paints::big(2, {2, kBase, 0, 2, kBar, 0, kBar, 1}));
    const ColorFont text(paints::big(2, {0, 1}) + paints::big(4, {14, 20}) +
                         paints::big(2, {1, kBase, 0, 1, kBar, 0xFFFF}));
    const auto bar = plainFont().inkBox(kBar, sized(400));
    const int x = static_cast<int>(bar.left + bar.right) / 2;
    EXPECT_EQ(at(font.image(400), x, -100), 0xFF7F8000);  // 128 of 255 green over red
    EXPECT_EQ(at(text.image(400), x, -100), kText);
}

// 64 pixels for 64 units, so that positions are easily told.
constexpr float kUnitSize = kEm;

TEST(PaintGraphs, GradientsHaveTheColorsOfTheirFormulas) {
    const std::vector<paints::Stop> ramp = {{0, 0, 1}, {1, 2, 1}}, part = {{0.25, 0, 1}, {0.75, 2, 0.5}};
    const auto frac = [](double v) { return v - std::floor(v); };
    constexpr double kPi = 3.14159265358979323846;
    struct Case {
        const char* what;
        std::string paint;
        std::function<double(double, double)> position;  // on the ramp from red to blue; y upwards
    };
    const Case cases[] = {
        {"linear, the third point turns it", paints::gradient(4, {8, 0, 40, 0, 24, 16}, ramp),
         [](double x, double y) { return std::clamp((x - y - 8) / 32, 0.0, 1.0); }},
        {"linear, repeated", paints::gradient(4, {8, 0, 24, 0, 8, 10}, ramp, 1),
         [&](double x, double) { return frac((x - 8) / 16); }},
        {"linear, reflected", paints::gradient(4, {8, 0, 24, 0, 8, 10}, ramp, 2),
         [&](double x, double) { return 1 - std::fabs(1 - 2 * frac((x - 8) / 32)); }},
        {"linear, stops in any order", paints::gradient(4, {8, 0, 40, 0, 8, 10}, {ramp[1], ramp[0]}),
         [](double x, double) { return std::clamp((x - 8) / 32, 0.0, 1.0); }},
        {"linear, no direction", paints::gradient(4, {8, 0, 40, 0, 60, 0}, ramp),
         [](double, double) { return -1.0; }},
        {"radial, rings", paints::gradient(6, {32, 32, 4, 32, 32, 28}, ramp),
         [](double x, double y) { return std::clamp((std::hypot(x - 32, y - 32) - 4) / 24, 0.0, 1.0); }},
        {"radial, a cone of equal circles is a strip", paints::gradient(6, {16, 32, 8, 48, 32, 8}, ramp),
         [](double x, double y) {
             const double half = 64 - (y - 32) * (y - 32);
             return half < 0 ? -1 : std::clamp((x - 16 + std::sqrt(half)) / 32, 0.0, 1.0);
         }},
        {"sweep, all around", paints::gradient(8, {32, 32, -16384, 16384}, ramp),
         [&](double x, double y) { return frac(std::atan2(y - 32, x - 32) / (2 * kPi)); }},
        {"sweep, repeated quarters", paints::gradient(8, {32, 32, -16384, -8192}, ramp, 1),
         [&](double x, double y) { return frac(std::atan2(y - 32, x - 32) / (kPi / 2)); }},
    };
    for (const Case& one : cases) {
        const ColorImage image = ColorFont(one.paint, {0, 0, 64, 64}).image(kUnitSize);
        ASSERT_EQ(image.width, 64) << one.what;
        for (int y = -64; y < 0; ++y) {
            for (int x = 0; x < 64; ++x) {
                const double t = one.position(x + 0.5, -y - 0.5);
                const auto blue = static_cast<uint32_t>(std::floor(255 * std::max(t, 0.0) + 0.5));
                const uint32_t expected = t < 0 ? 0 : 0xFF000000 | (255 - blue) << 16 | blue;
                ASSERT_LE(apart(at(image, x, y), expected), 1.001) << one.what << ": " << x << ", " << y;
            }
        }
    }
    // Exactly, at the middles of pixels 16 and 0.
    const ColorImage faint =
        ColorFont(paints::gradient(4, {0, 0, 33, 0, 0, 9}, part), {0, 0, 64, 64}).image(kUnitSize);
    EXPECT_EQ(at(faint, 16, -1), 0xC0800080);
    EXPECT_EQ(at(faint, 0, -1), 0xFFFF0000);
    EXPECT_EQ(at(faint, 63, -1), 0x800000FF);
}

TEST(PaintGraphs, CompositesFollowTheirFormulas) {
    // The library's blends in the fonts' order, from 13 on.
    using reference::Mode;
    const Mode blends[] = {Mode::Screen,     Mode::Overlay,   Mode::Darken,    Mode::Lighten,
                           Mode::ColorDodge, Mode::ColorBurn, Mode::HardLight, Mode::SoftLight,
                           Mode::Difference, Mode::Exclusion, Mode::Multiply,  Mode::Hue,
                           Mode::Saturation, Mode::Color,     Mode::Luminosity};
    for (uint32_t mode = 0; mode < 28; ++mode) {
        for (const auto& [s, b] : {std::pair<float, float>{1, 1}, {0.5f, 0.75f}, {0.25f, 0}, {0, 0.75f}}) {
            const ColorFont font(paints::composite(paints::solid(1, s), mode, paints::solid(0xFFFF, b)),
                                 {0, 0, 4, 4});
            const float below = std::floor(255 * b + 0.5f) / 255, above = std::floor(128 * s + 0.5f) / 255;
            const reference::JoinedPixel back = {{below * 0x10 / 255, below * 0x20 / 255, below * 0x30 / 255},
                                                 below};
            const std::pair<float, float> shares[] = {{0, 0},
                                                      {1, 0},
                                                      {0, 1},
                                                      {1, 1 - above},
                                                      {1 - below, 1},
                                                      {below, 0},
                                                      {0, above},
                                                      {1 - below, 0},
                                                      {0, 1 - above},
                                                      {below, 1 - above},
                                                      {1 - below, above},
                                                      {1 - below, 1 - above}};
            reference::JoinedPixel expected;
            if (mode < 12) {
                const auto [fs, fb] = shares[mode];
                expected = {{back.color.r * fb, above * fs + back.color.g * fb, back.color.b * fb},
                            above * fs + below * fb};
            } else {
                expected = reference::joinPixel(back, {0, 1, 0}, above,
                                                mode == 12 ? Mode::PlusLighter : blends[mode - 13]);
            }
            const auto shown = reference::pixelOf(at(font.image(kUnitSize), 1, -2));
            EXPECT_NEAR(shown.alpha, expected.alpha, 0.51 / 255) << mode << ": " << s << " on " << b;
            EXPECT_NEAR(shown.color.r, expected.color.r, 1.01 / 255) << mode << ": " << s << " on " << b;
            EXPECT_NEAR(shown.color.g, expected.color.g, 1.01 / 255) << mode << ": " << s << " on " << b;
            EXPECT_NEAR(shown.color.b, expected.color.b, 1.01 / 255) << mode << ": " << s << " on " << b;
        }
    }
}

// Each transform beside the matrix that means the same, on a shape and the gradient in it.
TEST(PaintGraphs, TransformsMoveShapesAndTheirFills) {
    using paints::share;
    const std::string paint =
        paints::shape(kRound, paints::gradient(4, {0, 0, 1400, 0, 0, 100}, {{0, 0, 1}, {1, 2, 1}}));
    const double slope = std::tan(15 * 3.14159265358979323846 / 180);
    struct Case {
        int format;
        std::vector<int> values;
        std::vector<double> matrix;
    };
    const Case cases[] = {
        {14, {300, -200}, {1, 0, 0, 1, 300, -200}},
        {16, {share(1.5), share(0.5)}, {1.5, 0, 0, 0.5, 0, 0}},
        {18, {share(1.5), share(0.5), 700, 600}, {1.5, 0, 0, 0.5, -350, 300}},
        {20, {share(0.75)}, {0.75, 0, 0, 0.75, 0, 0}},
        {22, {share(0.75), 700, 600}, {0.75, 0, 0, 0.75, 175, 150}},
        {24, {share(0.5)}, {0, 1, -1, 0, 0, 0}},
        {26, {share(0.5), 700, 600}, {0, 1, -1, 0, 1300, -100}},
        {28, {share(15.0 / 180), 0}, {1, 0, -slope, 1, 0, 0}},
        {30, {0, share(15.0 / 180), 700, 600}, {1, slope, 0, 1, 0, -700 * slope}},
    };
    for (const Case& one : cases) {
        const ColorImage expected = ColorFont(paints::transformed(one.matrix, paint), {}).image(100);
        for (const int variable : {0, 1}) {
            const ColorFont font(paints::moved(one.format + variable, one.values, paint), {});
            ASSERT_FALSE(font.image(100).pixels.empty()) << one.format;
            // The angles of tables are multiples of 180 / 16384 degrees.
            EXPECT_LE(apart(font.image(100), expected), one.format >= 28 ? 8 : 1.001)
                << one.format + variable;
        }
    }
    const ColorImage still = ColorFont(paint, {}).image(100),
                     turned = ColorFont(paints::moved(24, {share(0.5)}, paint), {}).image(100);
    EXPECT_LE(apart(at(still, 40, -10), at(turned, 10, -41)), 3);  // a quarter to the left
    // The shape is the outline's.
    const auto outline = plainFont().image(kRound, sized(100), 0);
    ASSERT_EQ(still.pixels.size(), outline->coverage.size());
    for (size_t i = 0; i < still.pixels.size(); ++i) {
        ASSERT_NEAR(still.pixels[i] >> 24, outline->coverage[i], 8);
    }
}

TEST(PaintGraphs, GlyphsAndLayersOfGlyphsAreWithinTheirClips) {
    paints::Table table;
    table.layers = {paints::shape(kBar, paints::solid(0)), paints::glyph(kRound), paints::solid(1)};
    table.glyphs = {{kBase, paints::layers(2, 0)}, {kRound, paints::shape(kRound, paints::solid(2))}};
    ASSERT_LT(kBase, kRound);
    const ColorImage free = ColorFont(table.bytes()).image(100);
    table.clip = {0, 0, kEm / 4, kEm / 4};
    const ColorImage cut = ColorFont(table.bytes()).image(100);
    EXPECT_TRUE(cut.left >= 0 && cut.left + cut.width <= 25 && cut.top == -25 && cut.height <= 25);
    for (int y = -25; y < 0; ++y) {
        for (int x = 0; x < 25; ++x) ASSERT_EQ(at(cut, x, y), at(free, x, y));
    }
    EXPECT_GT(free.height, 80);  // the bar's
    // The inner glyph's box moves along with it.
    table.glyphs = {{kBase, paints::moved(14, {kEm / 8, 0}, paints::glyph(kRound))},
                    {kRound, paints::solid(2)}};
    const ColorImage moved = ColorFont(table.bytes()).image(100);
    EXPECT_EQ(moved.left, 12);
    EXPECT_EQ(moved.width, 13);
}

// Endless and damaged graphs end, the same each time.
TEST(PaintGraphs, HostileTablesEnd) {
    paints::Table table;
    std::string doubled =
        paints::shape(kRound, paints::composite(paints::glyph(kBase), 3, paints::glyph(kBase)));
    table.glyphs = {{kBase, doubled}};
    EXPECT_GT(ColorFont(table.bytes()).face->image(kBase, sized(40), 0)->width, -1);
    table.layers = {paints::layers(255, 0),
                    paints::glyph(kBase),
                    paints::transformed({30000, 0, 0, 30000, 0, 0}, paints::shape(kRound, paints::solid(0))),
                    paints::gradient(6, {5, 5, 9, 5, 5, 9}, {}),
                    paints::gradient(8, {0, 0, 0, 0}, {{0, 0, 1}}, 1),
                    paints::moved(28, {paints::share(0.5), paints::share(0.5)}, doubled),
                    paints::shape(kBar, paints::composite(paints::solid(0), 77, paints::solid(1)))};
    table.glyphs = {{kBase, paints::layers(7, 0)}};
    table.clip = {-500, -500, 2000, 2000};
    const std::string whole = table.bytes();
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        std::string damaged = whole;
        for (int i = 0; i < round % 8; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
        if (round % 5 == 4) damaged.resize(random() % damaged.size());
        const ColorFont font(damaged);
        if (font.face == nullptr) continue;
        const ColorImage image = font.image(12);
        ASSERT_EQ(image.pixels, font.image(12).pixels) << round;
        EXPECT_FALSE(round == 0 && image.pixels.empty());
    }
}

}  // namespace
