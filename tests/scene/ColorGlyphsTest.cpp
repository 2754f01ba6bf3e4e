// SPDX-License-Identifier: Apache-2.0
#include "scene/ColorGlyphs.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/host/FontFace.h"
#include "scene/Scene.h"
#include "tests/host/Fonts.h"

namespace Zvex::scene {
namespace {

constexpr char kLetters[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr char kEmojiFont[] = "/usr/share/fonts/truetype/noto/NotoColorEmoji.ttf";
constexpr char kIdeographs[] = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";

Scene emojiScene(const std::string& text, double size) {
    Scene scene;
    scene.text = text;
    scene.font = kLetters;
    scene.fallbacks = {kEmojiFont, kIdeographs};
    scene.systemFallback = false;
    scene.style.size = size;
    scene.style.color = 0xFF2040C0;
    return scene;
}

uint32_t pixelAt(const Picture& picture, int x, int y) {
    const bool inside = x >= 0 && x < picture.width && y >= 0 && y < picture.height;
    return inside ? picture.pixels[static_cast<size_t>(y * picture.width + x)] : 0;
}

// The picture in the emoji font.
host::ColorImage imageOf(uint32_t codePoint, float size, host::Rendering rendering) {
    const auto face = fonts::open(fonts::Role::kEmoji);
    const uint32_t glyph = fonts::glyphOf(*face, codePoint);
    host::GlyphStyle style;
    style.size = size;
    style.rendering = rendering;
    return face->colorImage(glyph, style, 0, 0xFF000000);
}

TEST(ColorGlyphs, EmojiAreTheFontsPicturesAtEverySize) {
    for (const host::Rendering rendering : {host::Rendering::Phone, host::Rendering::Plain}) {
        for (const float size : {40.0f, 109.0f, 300.0f}) {
            Scene scene = emojiScene("\U0001F44D", static_cast<double>(size));
            scene.rendering = rendering;
            const Rendering colored = render(scene);
            EXPECT_TRUE(colored.warnings.empty());
            const host::ColorImage image = imageOf(0x1F44D, size, rendering);
            const auto middle = static_cast<size_t>(image.height / 2 * image.width + image.width / 2);
            EXPECT_GT(image.pixels[middle] >> 16 & 255, image.pixels[middle] & 255u);  // yellow
            // Ink begins at the line's left end.
            size_t shown = 0;
            for (int y = 0; y < image.height; ++y) {
                for (int x = 0; x < image.width; ++x) {
                    const uint32_t word = image.pixels[static_cast<size_t>(y * image.width + x)];
                    shown += word != 0 &&
                             word == pixelAt(colored.picture, x, colored.metrics.baseline + image.top + y);
                }
            }
            const size_t ink = image.pixels.size() -
                               static_cast<size_t>(std::count(image.pixels.begin(), image.pixels.end(), 0u));
            EXPECT_GE(shown, ink * 95 / 100) << size;  // a row or column may be cut with the line

            scene.style.colorGlyphs = false;
            const Picture silhouette = render(scene).picture;
            ASSERT_EQ(silhouette.pixels.size(), colored.picture.pixels.size());
            for (size_t i = 0; i < silhouette.pixels.size(); ++i) {
                ASSERT_EQ(silhouette.pixels[i] >> 24, colored.picture.pixels[i] >> 24) << size << ": " << i;
                if (silhouette.pixels[i] >> 24 < 255) continue;
                ASSERT_EQ(silhouette.pixels[i] & 0xFFFFFF, 0x2040C0u) << size;
            }
        }
    }
}

// Outside the emoji's shape the picture is that with its silhouette: the text and the effects keep their
// bytes. Along its edge the stroke goes on beneath.
TEST(ColorGlyphs, EffectsGoAroundTheShape) {
    Scene plain = emojiScene("A\U0001F9D0\U0001F1E9\U0001F1EA\U0001F44D\U0001F3FDx", 60);
    const Picture shape = render(plain).picture;
    for (const bool ground : {false, true}) {
        Scene scene = emojiScene(plain.text, 60);
        scene.style.effects = {StrokeSettings(), OuterShadowSettings(), InnerGlowSettings()};
        if (ground) scene.style.background = 0xFFE0F0FF;
        if (ground) scene.style.opacity = 0.6;
        const Rendering colored = render(scene);
        scene.style.colorGlyphs = false;
        const Picture silhouettes = render(scene).picture;
        const ClusterMetrics *clusters = colored.metrics.lines.at(0).clusters.data(), &last = clusters[4];
        const Margins& margins = colored.metrics.margins;
        int inside = 0, edge = 0;
        for (int y = 0; y < silhouettes.height; ++y) {
            for (int x = 0; x < silhouettes.width; ++x) {
                const uint32_t made = pixelAt(colored.picture, x, y), flat = pixelAt(silhouettes, x, y);
                const uint32_t alpha = pixelAt(shape, x - margins.left, y - margins.top) >> 24;
                const bool letter =
                    static_cast<float>(x) < clusters[1].box.left || static_cast<float>(x) >= last.box.left;
                ASSERT_TRUE(made == flat || (alpha > 0 && !letter)) << x << ", " << y;
                ASSERT_NEAR(made >> 24, flat >> 24, ground ? 32 : 8) << x << ", " << y;
                inside += alpha == 255 && made != flat;
                edge += alpha < 255 && made != flat;
            }
        }
        EXPECT_GT(inside, 3000);
        EXPECT_GT(edge, 300);
    }
}

TEST(ColorGlyphs, TheFrontLayerHasThemUnlessOthersAskForThem) {
    using Flags = std::vector<std::optional<bool>>;
    const struct {
        std::optional<bool> style;
        Flags layers;
        std::vector<bool> expected;
    } kCases[] = {
        {{}, {}, {true}},
        {false, {}, {false}},
        {{}, {{}, {}}, {true, false}},
        {{}, {false, {}}, {false, false}},
        {{}, {{}, true, true}, {false, true, true}},
        {false, {{}, {}}, {false, false}},
        {false, {{}, true}, {false, true}},
    };
    for (const auto& one : kCases) {
        Style style;
        style.colorGlyphs = one.style;
        for (const std::optional<bool>& flag : one.layers) style.layers.emplace_back().colorGlyphs = flag;
        EXPECT_EQ(coloredLayers(style), one.expected) << &one - kCases;
    }
    // Behind an opaque front layer they do not show.
    Scene scene = emojiScene("\U0001F44D", 50);
    scene.style.layers.resize(2);
    scene.style.layers[1].colorGlyphs = true;
    const Picture behind = render(scene).picture;
    const size_t middle = static_cast<size_t>(behind.height / 2 * behind.width + behind.width / 2);
    EXPECT_EQ(behind.pixels[middle] & 0xFFFFFF, 0x2040C0u);
    scene.style.layers[1].colorGlyphs.reset();
    EXPECT_NE(render(scene).picture.pixels[middle] & 0xFFFFFF, 0x2040C0u);
}

TEST(ColorGlyphs, AWarningTellsOfSilhouettesThatAreNotWanted) {
    std::string table;
    fonts::put(table, 2, {0, 0, 10, 0, 0, 1, 0, 0xFFFF});  // one document, for all glyphs
    fonts::put(table, 4, {14, 6});
    Scene scene = emojiScene("A", 40);
    scene.font = Font::fromBytes(
        fonts::withTables(fonts::Role::kLatinSmall, {{HB_TAG('S', 'V', 'G', ' '), table + "<svg/>"}}));
    EXPECT_NE(render(scene).warnings.at(0).find("SVG"), std::string::npos);
    scene.style.colorGlyphs = false;
    EXPECT_TRUE(render(scene).warnings.empty());
    Scene large = emojiScene("\U0001F44D", 4000);
    EXPECT_NE(measure(large).warnings.at(0).find("large"), std::string::npos);
}

TEST(Render, CharactersOfEveryPlaneAreThemselves) {
    Scene scene = emojiScene("a\U00020BB7\U0001F600\U0002000B", 40);
    const Rendering rendering = render(scene);
    EXPECT_TRUE(rendering.warnings.empty());
    std::string ranges;
    for (const ClusterMetrics& cluster : rendering.metrics.lines.at(0).clusters)
        ranges += std::to_string(cluster.start) + "-" + std::to_string(cluster.end) + " ";
    EXPECT_EQ(ranges, "0-1 1-5 5-9 9-13 ");
    scene.text = "a\U0002000B\U0001F600\U00020BB7";
    EXPECT_NE(render(scene).picture.pixels, rendering.picture.pixels);
    scene.text = "\U0002A6DF";  // no font has it
    EXPECT_NE(render(scene).warnings.at(0).find("U+2A6DF"), std::string::npos);
}

}  // namespace
}  // namespace Zvex::scene
