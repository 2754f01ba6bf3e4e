// SPDX-License-Identifier: Apache-2.0
// How much memory an effect takes beyond the pictures it is given, and a render beyond the picture it makes:
// a few bytes a pixel, whatever the sizes of the effect. Each line that is printed has the bytes a pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "effect/ZvECore.h"
#include "effect/ZvEffect.h"
#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/memory/PeakMemory.h"
#include "tests/text/TextScene.h"

using namespace Zvex;
using text_test::Picture;
using text_test::TextScene;

namespace {

constexpr uint32_t DARK = 0xFF202020, LIGHT = 0xFFFFF0C0;

// Bytes a pixel: of a layer, over the text box grown by its margins, and of a render, over its picture, where
// the mask, a second picture and the lines' coverage come in.
struct Limits {
    double layer, render;
};
constexpr Limits FILL = {16, 12}, RELIEF = {24, 29};

struct Case {
    std::string name;
    int type;
    Limits limits;
    std::function<int(ZvEffect&)> add;
};

void addReliefs(std::vector<Case>& cases, int type, int size, int soften) {
    const bool bevel = type == ZV_EFFECT_BEVEL;
    const auto add = bevel ? &ZvEffect::addBevelText : &ZvEffect::addEmbossText;
    for (const int style : bevel ? std::vector<int>{0, 1} : std::vector<int>{1, 2, 3}) {
        for (const int technique : {0, 1, 2}) {
            const std::string name = std::string(bevel ? "bevel" : "emboss") + " style " +
                                     std::to_string(style) + " technique " + std::to_string(technique) +
                                     " size " + std::to_string(size) + " soften " + std::to_string(soften);
            cases.push_back({name, type, RELIEF, [=](ZvEffect& e) {
                                 return (e.*add)(style, static_cast<float>(size), 2, 1, technique, soften, 1,
                                                 135, 30, DARK, 0.75f, LIGHT, 0.75f);
                             }});
        }
    }
}

std::vector<Case> casesOf(int size, int soften) {
    static ZvGradient stops[] = {{0xFFFF0000, 1, 0}, {0xFF0000FF, 1, 1}};
    static ZvBitmap tile(48, 36, 4);
    std::fill_n(tile.pixels, tile.byteCount(), 0xC0);
    const float pixels = static_cast<float>(size);
    std::vector<Case> cases;
    const auto add = [&](const std::string& name, int type, std::function<int(ZvEffect&)> layer) {
        cases.push_back({name + " size " + std::to_string(size), type, FILL, std::move(layer)});
    };
    for (const int position : {ZV_STROKE_CENTER, ZV_STROKE_OUTSIDE, ZV_STROKE_INSIDE})
        add("stroke position " + std::to_string(position), ZV_EFFECT_STROKE,
            [=](ZvEffect& e) { return e.addStrokeText(pixels, DARK, 1, 0, position); });
    for (const float distance : {0.0f, 60.0f}) {
        const std::string at = " distance " + std::to_string(static_cast<int>(distance));
        add("outer shadow" + at, ZV_EFFECT_OUTER_SHADOW,
            [=](ZvEffect& e) { return e.addOuterShadowText(135, distance, pixels, DARK, 1); });
        add("inner shadow" + at, ZV_EFFECT_INNER_SHADOW,
            [=](ZvEffect& e) { return e.addInnerShadowText(135, distance, pixels, DARK, 1); });
    }
    for (const int count : {0, 2}) {
        const std::string stopped = " stops " + std::to_string(count);
        add("outer glow" + stopped, ZV_EFFECT_OUTER_GLOW,
            [=](ZvEffect& e) { return e.addOuterGlowText(pixels, DARK, 1, count, stops); });
        add("inner glow" + stopped, ZV_EFFECT_INNER_GLOW,
            [=](ZvEffect& e) { return e.addInnerGlowText(pixels, DARK, 1, count, stops); });
    }
    // These have a scale, 2 at most for the gradients.
    add("linear gradient", ZV_EFFECT_LINEAR_GRADIENT,
        [=](ZvEffect& e) { return e.addLinearGradientText(30, 0.1f + pixels / 50, 1, 2, stops); });
    add("radial gradient", ZV_EFFECT_RADIAL_GRADIENT,
        [=](ZvEffect& e) { return e.addRadialGradientText(0.1f + pixels / 50, 1, 2, stops); });
    add("pattern", ZV_EFFECT_PATTERN,
        [=](ZvEffect& e) { return e.addPatternText(&tile, pixels / 10, 0.8f); });
    addReliefs(cases, ZV_EFFECT_BEVEL, size, soften);
    addReliefs(cases, ZV_EFFECT_EMBOSS, size, soften);
    return cases;
}

// A box full of lines of text.
struct Page {
    int width, height, glyphSize;

    std::string name() const { return ", " + std::to_string(width) + " x " + std::to_string(height); }
};
constexpr Page PAGES[] = {{1000, 300, 40}, {4000, 700, 120}};
constexpr wchar_t TEXT[] = L"Sphinx of black quartz, judge my vow; five boxing wizards jump";

std::unique_ptr<TextScene> makeScene(const Page& page) {
    auto scene = std::make_unique<TextScene>(text_test::kBold, TEXT, static_cast<float>(page.glyphSize),
                                             page.width, page.height);
    scene->object.SetTextColor(0xFFFFFFFF);
    std::vector<ZvLineInfo> lines;
    for (int y = page.glyphSize; y < page.height - page.glyphSize / 4; y += page.glyphSize)
        lines.push_back(TextScene::makeLine(0, y, 0, 60));
    scene->setLines(lines);
    return scene;
}

// The sizes of a page with the margins of its effects.
struct Area {
    int left, top, width, height;

    Area(const Page& page, ZvEffect& effects)
        : left(effects.getLeftOffset()),
          top(effects.getTopOffset()),
          width(left + page.width + effects.getRightOffset()),
          height(top + page.height + effects.getBottomOffset()) {}
    double bytesPerPixel(const PeakMemory& peak) const {
        return static_cast<double>(peak.bytes()) / width / height;
    }
};

// Draws the page with the case's layer alone; the bytes a pixel that it took.
double measureLayer(const Case& c, const Page& page, const Picture& text) {
    ZvEffect effects;
    EXPECT_GE(c.add(effects), 0);
    const Area area(page, effects);
    ZvBitmap target(static_cast<unsigned>(area.width), static_cast<unsigned>(area.height), 4),
        mask(target.width, target.height, 1);
    for (int y = 0; y < page.height; ++y)
        for (int x = 0; x < page.width; ++x)
            mask.pixels[(y + area.top) * area.width + x + area.left] =
                static_cast<uint8_t>(text.at(x, y) >> 24);
    ZvRect box(area.left, area.top, area.left + page.width, area.top + page.height);
    ZvECore::ParamPostProcessing param;
    param.target = &target;
    param.mask = &mask;
    param.textRect = &box;
    const PeakMemory peak;
    effects.getEffect(c.type)->doPostProcessing(&param);
    const double taken = area.bytesPerPixel(peak);
    bool drawn = false;
    for (size_t i = 0; i < target.byteCount() && !drawn; ++i) drawn = target.pixels[i] != 0;
    EXPECT_TRUE(drawn) << c.name;
    return taken;
}

// All that a text object with this effect takes until its first picture is made, without that picture.
double measureRender(const Case& c, const Page& page) {
    const PeakMemory peak;
    const auto scene = makeScene(page);
    EXPECT_GE(c.add(scene->effect()), 0);
    const Area area(page, scene->effect());
    scene->view().SetBitmapWidth(area.width);
    scene->view().SetBitmapHeight(area.height);
    EXPECT_NE(scene->object.RenderTextEffect(area.width, area.height), nullptr);
    return area.bytesPerPixel(peak) - 4;
}

void expectAtMost(double limit, double taken, const std::string& name) {
    std::printf("%5.2f  %s\n", taken, name.c_str());
    EXPECT_LE(taken, limit) << name;
}

}  // namespace

TEST(Memory, IsCountedWhereverItComesFrom) {
    constexpr size_t SIZE = 1 << 20;
    static void* volatile block;  // else the compiler leaves out what is freed unused
    const std::function<void()> ways[] = {
        [] { std::free(block = std::malloc(SIZE)); },
        [] { std::free(block = std::calloc(SIZE, 1)); },
        [] { std::free(block = std::realloc(std::malloc(SIZE / 4), SIZE)); },
        [] { std::free(block = std::aligned_alloc(64, SIZE)); },
        [] { ::operator delete(block = ::operator new(SIZE)); },
        [] { std::string{}.reserve(SIZE); },  // in the shared library of C++
    };
    for (const auto& way : ways) {
        const PeakMemory peak;
        for (int i = 0; i < 3; ++i) way();
        EXPECT_GE(peak.bytes(), int64_t{SIZE});
        EXPECT_LE(peak.bytes(), int64_t{SIZE} * 5 / 4 + 8192);
    }
}

TEST(Memory, ALayerTakesAFewBytesForEachPixelOfItsArea) {
    for (const Page& page : PAGES) {
        const Picture text = makeScene(page)->render();
        ASSERT_GT(text.countVisible(), page.width * page.height / 5);
        for (const auto& [size, soften] : {std::pair{3, 0}, {20, 7}, {100, 0}})
            for (const Case& c : casesOf(size, soften))
                expectAtMost(c.limits.layer, measureLayer(c, page, text), c.name + page.name());
    }
}

TEST(Memory, ARenderTakesAFewBytesForEachPixelOfItsPicture) {
    for (const Page& page : PAGES) {
        const auto keepsTheFont = makeScene(page);
        keepsTheFont->render();
        for (const Case& c : casesOf(100, 0))
            expectAtMost(c.limits.render, measureRender(c, page), "render: " + c.name + page.name());
    }
}
