// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

#include "scene/Scene.h"
#include "tests/host/Fonts.h"

namespace Zvex::scene {
namespace {

constexpr char kLeaning[] = "DejaVu Serif:bold:italic";

Scene plainScene(const std::string& text, const Font& font = fonts::path(fonts::Role::kLatin)) {
    Scene scene;
    scene.text = text;
    scene.font = font;
    scene.systemFallback = false;
    scene.style.size = 60;
    return scene;
}

Picture inkOf(Scene scene) {
    scene.trim = true;
    return render(scene).picture;
}

// No-break spaces have always left room for ink beyond the letters' advances.
TEST(Layout, NoInkIsCutWhereverTheLinesStand) {
    for (const auto& [text, font, spacing] : std::vector<std::tuple<std::string, std::string, double>>{
             {"Half ff", kLeaning, 0},
             {"jf", kLeaning, 0},
             {"Half", fonts::path(fonts::Role::kLatin), -0.2}}) {
        Scene plain = plainScene(text, font);
        plain.style.letterSpacing = spacing;
        for (const bool stroked : {false, true}) {
            if (stroked) plain.style.add(StrokeSettings{4});
            Scene roomy = plain;
            roomy.text = "\u00A0\u00A0" + text + "\u00A0\u00A0";
            const Picture whole = inkOf(roomy);
            for (const int width : {0, 600}) {
                for (const int sides : {0, 3, 50}) {
                    for (int place = 0; place < 9; ++place) {
                        Scene scene = plain;
                        scene.width = width;
                        scene.height = width / 3;
                        scene.padding = {sides, 0, sides, 0};
                        scene.align = static_cast<Scene::Align>(place % 3);
                        scene.gravity = static_cast<Scene::Gravity>(place / 3);
                        ASSERT_EQ(inkOf(scene).pixels, whole.pixels)
                            << text << ", " << width << " wide, padding " << sides << ", place " << place;
                        if (sides < 50 || width == 0) continue;
                        EXPECT_EQ(measure(scene).picture.width, stroked ? 608 : 600)
                            << "the padding has room";
                    }
                }
            }
        }
    }
}

TEST(Layout, LinesStandByTheirAdvance) {
    for (const char* text : {"Il", "j", "\u05D0\u05D1", "AV\nIl"}) {
        Scene scene = plainScene(text);
        scene.width = 401;
        const Metrics left = measure(scene).metrics;
        for (const auto align : {Scene::Align::Center, Scene::Align::Right}) {
            scene.align = align;
            const Metrics placed = measure(scene).metrics;
            for (size_t i = 0; i < left.lines.size(); ++i) {
                const LineMetrics &from = left.lines[i], &line = placed.lines[i];
                const float room = 401 - (from.box.right - from.box.left);
                const float moved = line.box.left - static_cast<float>(placed.margins.left);
                EXPECT_NEAR(moved, align == Scene::Align::Right ? room : room / 2, 0.5) << text;
                const float bearing = from.glyphs[0].box.left - from.box.left;
                EXPECT_EQ(line.glyphs[0].box.left - line.box.left, bearing) << "the letters stand with it";
            }
        }
    }
}

TEST(Layout, GlyphBoxesHoldTheInkAndMarginsTheRest) {
    const Rendering made = render(plainScene("jf\nf", kLeaning));
    Box all = made.metrics.lines[0].glyphs[0].box;
    for (const LineMetrics& line : made.metrics.lines) {
        for (const GlyphMetrics& glyph : line.glyphs) {
            all.left = std::min(all.left, glyph.box.left);
            all.right = std::max(all.right, glyph.box.right);
        }
    }
    EXPECT_EQ(all.left, 0);
    EXPECT_EQ(all.right, static_cast<float>(made.picture.width));
    EXPECT_EQ(made.metrics.origin.x, made.metrics.margins.left);
    EXPECT_GT(made.metrics.margins.left, 0);
    EXPECT_GT(made.metrics.margins.right, 0);
}

// The first letter of a paragraph sets its direction, however far away the line is.
TEST(Layout, AParagraphsDirectionReachesItsEnd) {
    std::string text = "\u05D0 ";
    for (int i = 0; i < 40; ++i) text += "word ";
    Scene scene = plainScene(text + "\u05D1\u05D1\u00A0CD");
    scene.fallbacks = {Font("DejaVu Sans")};
    scene.width = 300;
    const Metrics metrics = measure(scene).metrics;
    const LineMetrics& last = metrics.lines.back();
    ASSERT_GT(metrics.lines.size(), 5u);
    const auto at = [&](size_t fromEnd) { return last.clusters[last.clusters.size() - fromEnd].box.left; };
    EXPECT_LT(at(1), at(5)) << "the last word stands left of those before it";
}

}  // namespace
}  // namespace Zvex::scene
