// SPDX-License-Identifier: Apache-2.0
#include "scene/Scene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <functional>
#include <sstream>

#include "scene/Failure.h"
#include "scene/Png.h"
#include "scene/WebpWriter.h"
#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr char kCjk[] = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";

Scene sceneOf(const std::string& text, Font font = kFont) {
    Scene scene;
    scene.text = text;
    scene.font = std::move(font);
    scene.style = styleFromPreset("gold");
    return scene;
}

TEST(Render, TheFallbackFontsOfOneSceneAreNotThoseOfTheNext) {
    Scene scene = sceneOf("世");
    const std::vector<uint32_t> before = render(scene).picture.pixels;
    scene.fallbacks = {kCjk};
    EXPECT_NE(render(scene).picture.pixels, before);
    scene.fallbacks.clear();
    EXPECT_EQ(render(scene).picture.pixels, before);
}

TEST(Render, AFontsBytesDrawAsItsFile) {
    std::stringstream bytes;
    bytes << std::ifstream(kFont, std::ios::binary).rdbuf();
    EXPECT_EQ(render(sceneOf("Bytes", Font::fromBytes(bytes.str()))).picture.pixels,
              render(sceneOf("Bytes")).picture.pixels);
    // A fallback that is lighter is widened, whatever name the bytes have.
    Scene named = sceneOf("世");
    named.fallbacks = {kCjk};
    const std::vector<uint32_t> widened = render(named).picture.pixels;
    named.font = "sans";
    named.font.source = namedBytes({{"sans", std::make_shared<const std::string>(bytes.str())}});
    EXPECT_EQ(render(named).picture.pixels, widened);
    EXPECT_EQ(refusal([] {
                  render(sceneOf("x", Font::fromBytes("none")));
              }).rfind("--font: 'bytes' is not a font", 0),
              0u);
}

TEST(Render, MeasuresAndDrawsIntoTheCallersMemory) {
    const Scene scene = sceneOf("Two\nlines");
    const Rendering whole = render(scene), measured = measure(scene);
    const int width = measured.picture.width, height = measured.picture.height;
    EXPECT_TRUE(measured.picture.pixels.empty());
    const std::string why = "picture: it is " + std::to_string(width) + " x " + std::to_string(height) +
                            " pixels and holds 0; it was measured, not drawn";
    EXPECT_EQ(refusal([&] { encodePng(measured.picture); }), why);
    EXPECT_EQ(refusal([&] { encodeWebp(measured.picture); }), why);
    EXPECT_EQ(refusal([&] { pixelBytes(measured.picture); }), why);
    EXPECT_EQ(writeMetrics(measured.metrics), writeMetrics(whole.metrics));
    const size_t stride = static_cast<size_t>(width) + 3;
    std::vector<uint32_t> memory(stride * static_cast<size_t>(height), 7);
    renderInto(scene, memory.data(), width, height, stride);
    for (size_t i = 0; i < memory.size(); ++i) {
        const size_t x = i % stride, y = i / stride;
        ASSERT_EQ(memory[i], x < stride - 3 ? whole.picture.pixels[y * (stride - 3) + x] : 7) << i;
    }
    EXPECT_NE(refusal([&] { renderInto(scene, memory.data(), width - 1, height, stride); }), "");
    EXPECT_EQ(refusal([&] { renderInto(scene, memory.data(), width, height, 1); }),
              "stride: 1 is less than the picture's width, " + std::to_string(width));
    EXPECT_EQ(refusal([&] { renderInto(scene, nullptr, width, height, stride); }),
              "pixels: is a null pointer");
    renderInto(scene, memory.data(), width, height, stride, PixelFormat::RgbaPremultiplied);
    const auto* bytes = reinterpret_cast<const uint8_t*>(memory.data());
    for (size_t i = 0; i < whole.picture.pixels.size(); ++i) {
        const uint32_t word = whole.picture.pixels[i], alpha = word >> 24;
        const uint8_t* pixel = bytes + 4 * (i / (stride - 3) * stride + i % (stride - 3));
        for (int part = 0; part < 3; ++part) {
            const double straight = word >> (16 - 8 * part) & 0xFF;
            ASSERT_EQ(pixel[part], std::lround(straight * alpha / 255)) << i;
        }
        ASSERT_EQ(pixel[3], alpha) << i;
    }
}

TEST(Render, TellsWhereTheOriginAndTheClustersAre) {
    Scene scene = sceneOf("Ae\u0301 世א\nb");
    scene.fallbacks = {kCjk};
    scene.systemFallback = false;
    const Rendering whole = render(scene);
    std::string ranges;
    for (const LineMetrics& line : whole.metrics.lines) {
        for (const ClusterMetrics& c : line.clusters) {
            for (const size_t offset : {c.start, c.end, c.startCharacter, c.endCharacter})
                ranges += std::to_string(offset) + " ";
            ranges += c.box.right > c.box.left ? "ink," : "blank,";
        }
        ranges += std::to_string(line.startCharacter) + "-" + std::to_string(line.endCharacter) + ";";
    }
    EXPECT_EQ(ranges,
              "0 1 0 1 ink,1 4 1 3 ink,4 5 3 4 blank,5 8 4 5 ink,8 10 5 6 ink,0-6;11 12 7 8 ink,7-8;");

    // The origin stays where the text is when the border goes.
    scene.padding = {7, 9, 0, 0};
    const Rendering wide = render(scene);
    scene.trim = true;
    const Rendering trimmed = render(scene);
    ASSERT_LT(trimmed.picture.height, wide.picture.height);
    const int dx = wide.metrics.origin.x - trimmed.metrics.origin.x;
    const int dy = wide.metrics.origin.y - trimmed.metrics.origin.y;
    EXPECT_EQ(wide.metrics.origin.y, whole.metrics.origin.y + 9);
    EXPECT_EQ(wide.metrics.origin.x, wide.metrics.margins.left + 7);
    for (int y = 0; y < trimmed.picture.height; ++y) {
        const auto row = trimmed.picture.pixels.begin() + y * trimmed.picture.width;
        const auto from = wide.picture.pixels.begin() + (y + dy) * wide.picture.width + dx;
        ASSERT_TRUE(std::equal(row, row + trimmed.picture.width, from)) << y;
    }
}

TEST(Render, ErrorsSayPlaceAndCauseAndWarningsComeWithThePicture) {
    Scene scene = sceneOf("x");
    scene.limits.pixels = 100;
    try {
        render(scene);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.place(), "size");
        EXPECT_EQ(error.cause().rfind("the picture would be ", 0), 0u) << error.cause();
    }
    scene = sceneOf("\uE123");
    scene.systemFallback = false;
    testing::internal::CaptureStderr();
    ASSERT_EQ(render(scene).warnings.size(), 1u);
    EXPECT_EQ(render(scene).warnings[0].rfind("no font has U+E123", 0), 0u);
    std::istringstream lines(testing::internal::GetCapturedStderr());
    for (std::string line; std::getline(lines, line);) EXPECT_EQ(line.rfind("D/", 0), 0u) << line;
}

TEST(Render, ReadsStylesPatternsAndFontsByNameFromBytes) {
    const auto bytesOf = [](const std::string& path) {
        std::stringstream bytes;
        bytes << std::ifstream(path, std::ios::binary).rdbuf();
        return std::make_shared<const std::string>(bytes.str());
    };
    const Picture dots = {4, 4, std::vector<uint32_t>(16, 0xFFFF0000)};
    const Bytes style = std::make_shared<const std::string>(
        R"({"effects": [{"type": "pattern", "file": "dots.png"}], "canvas": "pattern:sub/dots.png"})");
    const Bytes png = std::make_shared<const std::string>(encodePng(dots));
    const auto source = namedBytes({{"looks/a.json", style},
                                    {"looks/dots.png", png},
                                    {"looks/sub/dots.png", png},
                                    {"a.ttf", bytesOf(kFont)}});
    Scene scene = sceneOf("Named");
    scene.style = Style();
    readStyle("style", "looks/a.json", scene.style, source);
    scene.font = "a.ttf";
    scene.font.source = source;
    const Picture made = render(scene).picture;
    EXPECT_TRUE(std::all_of(made.pixels.begin(), made.pixels.end(), [](uint32_t pixel) {
        return (pixel & 0xFFFFFF) > 0xF00000 && (pixel & 0xFFFF) == 0;
    }));
    EXPECT_NE(writeStyle(scene.style).find("\"looks/sub/dots.png\""), std::string::npos);
    // Another source has another font of that name, although one is loaded.
    Scene other = scene;
    other.style = Style();
    other.font.source = namedBytes({{"a.ttf", bytesOf(kCjk)}});
    EXPECT_NE(measure(other).picture.width, measure(scene).picture.width);
    other.font.source = namedBytes({});
    EXPECT_EQ(refusal([&] { measure(other); }), "--font: there is no 'a.ttf'");
    other.style.add(PatternSettings{"none.png", source});
    other.font.source = source;
    EXPECT_EQ(refusal([&] { measure(other); }), "--pattern: there is no 'none.png'");
}

// The places of what is set in code; no number reaches the library unseen.
TEST(Render, RefusesWhatNoStyleFileCouldHold) {
    const double nan = std::nan("");
    const auto stops = [](std::vector<Stop> list) {
        LinearGradientSettings gradient;
        gradient.stops = std::move(list);
        return gradient;
    };
    const std::vector<std::pair<std::string, std::function<void(Scene&)>>> cases = {
        {"text", [](Scene& s) { s.text = "a\xFF"; }},
        {"width", [](Scene& s) { s.width = -1; }},
        {"padding", [](Scene& s) { s.padding.top = 40000; }},
        {"max-lines", [](Scene& s) { s.maxLines = -1; }},
        {"size", [&](Scene& s) { s.style.size = nan; }},
        {"opacity", [](Scene& s) { s.style.opacity = 1.5; }},
        {"line-height", [](Scene& s) { s.style.lineHeight = -1; }},
        {"word-spacing", [&](Scene& s) { s.style.wordSpacing = nan; }},
        {"fit", [](Scene& s) { s.fit = 20; }},
        {"fit", [](Scene& s) { s.fit = 97, s.width = 50; }},
        {"fit", [&](Scene& s) { s.fit = nan, s.width = 50; }},
        {"ellipsis", [](Scene& s) { s.ellipsis = true; }},
        {"align", [](Scene& s) { s.align = Scene::Align::Justify; }},
        {"align", [](Scene& s) { s.align = static_cast<Scene::Align>(6); }},
        {"language", [](Scene& s) { s.language = "english"; }},
        {"tab-stops",
         [](Scene& s) {
             s.tabStops = {50, 50};
         }},
        {"tab-stops", [&](Scene& s) { s.tabStops = {nan}; }},
        {"features", [](Scene& s) { s.style.features.assign(5000, 'x'); }},
        {"features", [](Scene& s) { s.style.features = "liga on on"; }},
        {"stroke width", [](Scene& s) { s.style.add(StrokeSettings{-3}); }},
        {"stroke position",
         [](Scene& s) {
             s.style.add(StrokeSettings{3, 0, 77});
         }},
        {"stroke", [](Scene& s) { s.style.effects.assign(2, StrokeSettings()); }},
        {"designed-for", [&](Scene& s) { s.style.layersDesignedFor = nan; }},
        {"stroke designed-for",
         [](Scene& s) {
             s.style.add(StrokeSettings()).designedFor[EffectSettings(StrokeSettings()).index()] = -1;
         }},
        {"bevel soften",
         [](Scene& s) {
             s.style.add(BevelSettings{1, 0, 1, 8, 1, 0, 30, 99});
         }},
        {"bevel highlight opacity",
         [&](Scene& s) {
             BevelSettings bevel;
             bevel.highlight.opacity = nan;
             s.style.add(bevel);
         }},
        {"linear-gradient stops", [&](Scene& s) { s.style.add(stops({})); }},
        {"linear-gradient stops", [&](Scene& s) { s.style.add(stops(std::vector<Stop>(257))); }},
        {"linear-gradient stops[1].position",
         [&](Scene& s) {
             s.style.add(stops({{0, 50}, {0, 40}}));
         }},
        {"linear-gradient stops[0].position",
         [&](Scene& s) {
             s.style.add(stops({{0, nan}, {0, 40}}));
         }},
        {"pattern file", [](Scene& s) { s.style.add(PatternSettings()); }},
        {"canvas", [](Scene& s) { s.style.canvas = Canvas{StrokeSettings()}; }},
        {"canvas linear-gradient stops", [&](Scene& s) { s.style.canvas = Canvas{stops({})}; }},
        {"layers[1].spread", [](Scene& s) { s.style.layers.resize(2), s.style.layers[1].spread = 0.5; }},
        {"layers[0].offset x", [](Scene& s) { s.style.layers.resize(1), s.style.layers[0].offset.x = 1e9; }},
        {"layers[0].blend",
         [](Scene& s) { s.style.layers.resize(1), s.style.layers[0].blend = static_cast<LayerBlend>(17); }},
        {"layers[0].stroke width",
         [](Scene& s) { s.style.layers.resize(1), s.style.layers[0].add(StrokeSettings{101}); }},
        {"layers[0].clip", [](Scene& s) { s.style.layers.resize(1), s.style.layers[0].clip = true; }},
        {"layers", [](Scene& s) { s.style.layers.resize(33); }},
        {"stroke", [](Scene& s) { s.style.layers.resize(1), s.style.add(StrokeSettings()); }}};
    for (const auto& [place, change] : cases) {
        Scene scene;
        scene.text = "x";
        scene.font = kFont;
        change(scene);
        try {
            measure(scene);
            ADD_FAILURE() << place << " is taken";
        } catch (const UsageError& error) {
            EXPECT_EQ(error.place(), place) << error.what();
        }
    }
    try {
        styleFromText(R"({"layers": [{"spread": 200}]})");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.place(), "layers[0].spread");
    }
}

}  // namespace
}  // namespace Zvex::scene
