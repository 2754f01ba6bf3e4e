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
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/effect/LayerSettings.h"
#include "tests/memory/PeakMemory.h"
#include "tests/text/TextScene.h"

using namespace Zvex;
using text_test::Picture;
using text_test::TextScene;

namespace {

// Bytes a pixel: of a layer, over the text box grown by its margins, and of a render, over its picture, where
// the mask, a second picture and the lines' coverage come in.
struct Limits {
    double layer, render;
};
constexpr Limits kFill = {16, 12}, kRelief = {24, 29};

struct Case {
    std::string name;
    int type;
    LayerSettings settings;
    Limits limits;
};

// Each position of a stroke, shadows near and far, glows with and without stops, styles and techniques of
// reliefs.
std::vector<Case> casesOf(int size, int soften) {
    std::vector<Case> cases;
    for (const int type : kLayerTypes) {
        const bool relief = type == ZV_EFFECT_BEVEL || type == ZV_EFFECT_EMBOSS;
        const bool fill = type == ZV_EFFECT_LINEAR_GRADIENT || type == ZV_EFFECT_RADIAL_GRADIENT;
        const bool pattern = type == ZV_EFFECT_PATTERN;
        const int variants = relief ? 9 : fill || pattern ? 1 : type == ZV_EFFECT_STROKE ? 3 : 2;
        for (int i = 0; i < variants && type != ZV_EFFECT_TEXT; ++i) {
            LayerSettings s(static_cast<float>(size));
            s.soften = soften;
            s.distance = 60.0f * static_cast<float>(i);
            if (i == 0 && !fill) s.stops.clear();
            s.scale = pattern ? s.size / 10 : 0.1f + s.size / 50;
            s.position = s.technique = i % 3;
            s.style = type == ZV_EFFECT_BEVEL ? i / 3 % 2 : 1 + i / 3;
            s.pattern = ZvBitmap(48, 36, 4);
            std::fill_n(s.pattern.pixels, s.pattern.byteCount(), 0xC0);
            cases.push_back({"type " + std::to_string(type) + " case " + std::to_string(i) + " size " +
                                 std::to_string(size) + " soften " + std::to_string(soften),
                             type, s, relief ? kRelief : kFill});
        }
    }
    return cases;
}

// A box full of lines of text.
struct Page {
    int width, height, glyphSize;

    std::string name() const { return ", " + std::to_string(width) + " x " + std::to_string(height); }
};
constexpr Page kPages[] = {{1000, 300, 40}, {4000, 700, 120}};
constexpr wchar_t kText[] = L"Sphinx of black quartz, judge my vow; five boxing wizards jump";

std::unique_ptr<TextScene> makeScene(const Page& page) {
    auto scene = std::make_unique<TextScene>(text_test::kBold, kText, static_cast<float>(page.glyphSize),
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
double measureLayer(Case c, const Page& page, const Picture& text) {
    ZvEffect effects;
    EXPECT_GE(c.settings.addTo(effects, c.type), 0);
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
double measureRender(Case c, const Page& page) {
    const PeakMemory peak;
    const auto scene = makeScene(page);
    EXPECT_GE(c.settings.addTo(scene->effect(), c.type), 0);
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

TEST(Memory, ALayerTakesAFewBytesForEachPixelOfItsArea) {
    for (const Page& page : kPages) {
        const Picture text = makeScene(page)->render();
        ASSERT_GT(text.countVisible(), page.width * page.height / 5);
        for (const auto& [size, soften] : {std::pair{3, 0}, {20, 7}, {100, 0}})
            for (const Case& c : casesOf(size, soften))
                expectAtMost(c.limits.layer, measureLayer(c, page, text), c.name + page.name());
    }
}

TEST(Memory, ARenderTakesAFewBytesForEachPixelOfItsPicture) {
    for (const Page& page : kPages) {
        const auto keepsTheFont = makeScene(page);
        keepsTheFont->render();
        for (const Case& c : casesOf(100, 0))
            expectAtMost(c.limits.render, measureRender(c, page), "render: " + c.name + page.name());
    }
}
