// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

std::vector<uint32_t> pixelsOf(const Scene& scene) {
    return render(scene).picture.pixels;
}

Scene withText(Scene scene, const std::string& text) {
    scene.text = text;
    return scene;
}

TEST(Layout, BaselinesStandTheLineHeightApartAndNothingIsCut) {
    for (const double height : {0.25, 1.03, 3.0}) {
        Scene scene = plainScene("Aj\n\nÂg\nxyz");
        scene.style.lineHeight = height;
        const Metrics metrics = measure(scene).metrics;
        for (size_t i = 0; i < metrics.lines.size(); ++i) {
            const double down = metrics.lines[i].baseline - metrics.lines[0].baseline;
            EXPECT_NEAR(down, 60 * height * static_cast<double>(i), 1) << height;
        }
        EXPECT_NEAR(metrics.height - metrics.margins.top - metrics.margins.bottom, 240 * height, 1);
        Scene roomy = scene;
        roomy.padding = {99, 99, 99, 99};
        EXPECT_EQ(inkOf(scene).pixels, inkOf(roomy).pixels) << height;
    }
}

TEST(Layout, WordSpacingWidensSpacesAndNothingElse) {
    const auto boxes = [](double spacing) {
        Scene scene = plainScene("ab c\u00A0d");
        scene.style.wordSpacing = spacing;
        return measure(scene).metrics.lines[0];
    };
    const LineMetrics plain = boxes(0);
    const float space = 19;  // of the font, at 60 pixels
    for (const double spacing : {-1.0, -0.1, 0.4}) {
        const LineMetrics line = boxes(spacing);
        const float more = std::max(static_cast<float>(60 * spacing), -space);
        const float moves[] = {0, 0, 0, 1, 1, 2};
        for (size_t i = 0; i < 6; ++i) {
            if (i == 2 || i == 4) continue;  // the spaces
            EXPECT_NEAR(line.clusters[i].box.left - plain.clusters[i].box.left, moves[i] * more, 1)
                << spacing;
        }
        EXPECT_NEAR(line.box.right - plain.box.right, 2 * more, 1);
    }
}

TEST(Layout, TabsLeadToTheirStopsFromTheLinesStart) {
    Scene scene = plainScene("a\tb\t\tc\nfarther than it\tb");
    const std::vector<uint32_t> spaces = pixelsOf(withText(scene, "a b  c\nfarther than it b"));
    EXPECT_EQ(pixelsOf(scene), spaces) << "without stops";
    scene.tabStops = {100, 260};
    const Metrics metrics = measure(scene).metrics;
    const auto at = [&](size_t line, size_t cluster) {
        const LineMetrics& l = metrics.lines[line];
        return l.clusters[cluster].box.left - l.box.left;
    };
    const float bearing = measure(plainScene("b")).metrics.lines[0].clusters[0].box.left;
    EXPECT_EQ(at(0, 2), 100 + bearing);
    EXPECT_EQ(metrics.lines[0].clusters[1].end, 2u) << "the tab";
    EXPECT_NEAR(at(0, 5), 420, 6) << "the last distance again";
    EXPECT_NEAR(at(1, 16), 580, 6);
    // In a paragraph that begins at the right.
    Scene right = plainScene("\u05D0\t\u05D1");
    right.tabStops = {100};
    const LineMetrics line = measure(right).metrics.lines[0];
    EXPECT_NEAR(line.box.right - line.clusters[2].box.right, 100, 8);
    EXPECT_LT(line.box.right - line.clusters[0].box.right, 8);
}

TEST(Layout, AnEllipsisEndsWhatHasNoRoom) {
    const std::string words = "Some words of which not all have room\nand more";
    const std::string hebrew = "\u05D0\u05D1\u05D2 \u05D3\u05D4 \u05D5\u05D6\u05D7\u05D8 \u05D9\u05DB\u05DC";
    struct Case {
        std::string text;
        int width, height, maxLines;
    };
    for (const Case& c : {Case{words, 400, 0, 1},
                          {words, 400, 0, 2},
                          {words, 400, 150, 0},
                          {words, 0, 0, 1},
                          {words, 20, 0, 1},
                          {hebrew, 300, 0, 1},
                          {"One\nTwo", 400, 0, 1}}) {
        for (const auto gravity : {Scene::Gravity::Top, Scene::Gravity::Bottom}) {
            Scene scene = plainScene(c.text);
            scene.width = c.width;
            scene.height = c.height;
            scene.maxLines = c.maxLines;
            scene.gravity = gravity;
            scene.ellipsis = true;
            const Rendering made = render(scene);
            const LineMetrics& last = made.metrics.lines.back();
            ASSERT_LT(last.end, c.text.size());
            EXPECT_EQ(last.clusters.back().start, last.end);
            EXPECT_TRUE(last.end == 0 || c.text[last.end - 1] != ' ') << last.end;
            // The same, with the character itself in the text.
            Scene typed = withText(scene, c.text.substr(0, last.start) + (last.start > 0 ? "\n" : "") +
                                              c.text.substr(last.start, last.end - last.start) + "\u2026");
            typed.ellipsis = false;
            if (c.width == 20) continue;  // not even the ellipsis has room
            EXPECT_EQ(made.picture.pixels, pixelsOf(typed)) << last.end;
            // One letter more is too much.
            if (c.width < 100 || c.text[last.end] == '\n') continue;
            size_t more = last.end;
            do {
                for (++more; (c.text[more] & 0xC0) == 0x80;) ++more;
            } while (c.text[more - 1] == ' ');
            typed.text = c.text.substr(last.start, more - last.start) + "\u2026";
            typed.width = typed.height = 0;
            EXPECT_GT(measure(typed).picture.width, c.width);
        }
    }
    Scene all = plainScene("It all fits");
    all.maxLines = 2;
    all.ellipsis = true;
    EXPECT_EQ(pixelsOf(all), pixelsOf(plainScene("It all fits")));
}

TEST(Layout, TextShrinksUntilItFits) {
    struct Case {
        std::string text;
        int width, height, maxLines;
    };
    for (const Case& c : {Case{"Some words to fit", 300, 0, 1},
                          {"Some words to fit", 300, 100, 0},
                          {"Incomprehensibilities", 300, 0, 0},
                          {"Two\nlines", 0, 70, 0},
                          {"Small", 500, 300, 3},
                          {"words words words words words", 180, 0, 3}}) {
        for (const double lineHeight : {0.0, 1.5}) {
            Scene scene = plainScene(c.text);
            scene.style = styleFromPreset("gold");  // designed for another size
            scene.style.size = 90;
            scene.style.lineHeight = lineHeight;
            scene.width = c.width;
            scene.height = c.height;
            scene.maxLines = c.maxLines;
            const Scene large = scene;
            scene.fit = 5;
            const Rendering made = render(scene);
            const double size = made.metrics.size;
            Scene sized = large;
            sized.style.size = size;
            EXPECT_EQ(made.picture.pixels, pixelsOf(sized)) << c.text;
            const auto fits = [&](double tried) {
                Scene free = large;
                free.style = Style();
                free.style.size = tried;
                free.style.lineHeight = lineHeight;
                free.height = free.maxLines = 0;
                const Metrics metrics = measure(free).metrics;
                bool whole = true;
                for (size_t i = 0; i + 1 < metrics.lines.size(); ++i)
                    whole = whole && c.text[metrics.lines[i].end] <= ' ';
                return whole &&
                       (c.maxLines == 0 || metrics.lines.size() <= static_cast<size_t>(c.maxLines)) &&
                       (c.height == 0 || metrics.lines.back().box.bottom - metrics.lines[0].box.top <=
                                             static_cast<float>(c.height));
            };
            EXPECT_TRUE(fits(size)) << c.text << " at " << size;
            EXPECT_TRUE(size == 90 || !fits(size + 1)) << c.text << " at " << size;
        }
    }
    Scene none = plainScene("Much too long for so little room");
    none.width = 60;
    none.maxLines = 1;
    none.fit = 40;
    const Rendering made = measure(none);
    EXPECT_EQ(made.metrics.size, 40);
    ASSERT_EQ(made.warnings.size(), 1u);
    EXPECT_EQ(made.warnings[0].rfind("the text does not fit even at 40 px", 0), 0u);
}

TEST(Layout, UpperCaseKeepsItsPlacesInTheText) {
    for (const auto& [language, text, upper] :
         std::vector<std::tuple<const char*, const char*, const char*>>{{"", "Straße i ﬃ", "STRASSE I FFI"},
                                                                        {"tr", "ilık", "İLIK"},
                                                                        {"", "Άλφα", "ΆΛΦΑ"},
                                                                        {"el", "Άλφα ΰ", "ΑΛΦΑ Ϋ"},
                                                                        {"lt", "i\u0307\u0301", "I\u0301"},
                                                                        {"", "\U00010428x", "\U00010400X"}}) {
        Scene scene = plainScene(text);
        scene.language = language;
        Scene spelled = withText(scene, upper);
        scene.style.upperCase = true;
        EXPECT_EQ(pixelsOf(scene), pixelsOf(spelled)) << text;
    }
    Scene scene = plainScene("aßéﬁb");
    scene.style.upperCase = true;
    std::string places;
    const Metrics metrics = measure(scene).metrics;
    for (const ClusterMetrics& cluster : metrics.lines[0].clusters)
        places += std::to_string(cluster.start) + "-" + std::to_string(cluster.endCharacter) + " ";
    EXPECT_EQ(places, "0-1 1-2 3-3 5-4 8-5 ");
}

TEST(Layout, DirectionIsThatOfAMarkBeforeEachParagraph) {
    for (const auto& [direction, mark] :
         {std::pair{Scene::Direction::RightToLeft, "\u200F"}, {Scene::Direction::LeftToRight, "\u200E"}}) {
        for (const std::string text : {"abc, (\u05D0\u05D1) 1!", "\u05D0\u05D1 abc?"}) {
            Scene scene = plainScene(text + "\n12.");
            scene.width = 400;
            Scene marked = withText(scene, mark + text + "\n" + mark + "12.");
            scene.direction = direction;
            for (const auto align : {Scene::Align::Start, Scene::Align::End, Scene::Align::Center}) {
                scene.align = marked.align = align;
                ASSERT_EQ(pixelsOf(scene), pixelsOf(marked)) << text;
            }
            marked.align =
                direction == Scene::Direction::RightToLeft ? Scene::Align::Right : Scene::Align::Left;
            scene.align = Scene::Align::Start;
            EXPECT_EQ(pixelsOf(scene), pixelsOf(marked)) << text;
        }
    }
}

TEST(Layout, JustifiedLinesFillTheWidthEvenly) {
    Scene scene = plainScene("These are some words that are set in a block of lines\nand two more.");
    scene.style.size = 20;
    scene.width = 200;
    const Metrics plain = measure(scene).metrics;
    scene.align = Scene::Align::Justify;
    const Metrics block = measure(scene).metrics;
    ASSERT_EQ(block.lines.size(), plain.lines.size());
    for (size_t i = 0; i < block.lines.size(); ++i) {
        const LineMetrics &line = block.lines[i], &from = plain.lines[i];
        const bool last = i + 1 == block.lines.size() || scene.text[line.end] == '\n';
        EXPECT_EQ(line.box.right - line.box.left, last ? from.box.right - from.box.left : 200);
        float least = 1e9f, most = 0, before = 0;
        for (size_t c = 0; c < line.clusters.size(); ++c) {
            const float moved = line.clusters[c].box.left - from.clusters[c].box.left;
            if (c > 0 && scene.text[line.clusters[c - 1].start] == ' ') {
                least = std::min(least, moved - before);
                most = std::max(most, moved - before);
            } else {
                EXPECT_EQ(moved, before) << "letters of a word";
            }
            before = moved;
        }
        EXPECT_LE(most - least, 1);
    }
    Scene japanese = plainScene("吾輩は猫である名前はまだ無い", fonts::path(fonts::Role::kCollection));
    japanese.style.size = 20;
    japanese.width = 130;
    japanese.align = Scene::Align::Justify;
    const LineMetrics line = measure(japanese).metrics.lines[0];
    EXPECT_EQ(line.box.right - line.box.left, 130);
}

}  // namespace
}  // namespace Zvex::scene
