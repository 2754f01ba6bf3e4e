// SPDX-License-Identifier: Apache-2.0
// How much memory a render takes beyond the picture it makes: a few bytes a pixel, whatever the sizes of the
// effect, and nothing that stays. Each line that is printed has the bytes a pixel.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "effect/ZvEffect.h"
#include "foundation/KeptMemory.h"
#include "platform/host/GlyphCache.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/RandomLayer.h"
#include "tests/memory/PeakMemory.h"
#include "tests/text/TextScene.h"

using namespace Zvex;
using text_test::TextScene;

namespace {

// Bytes a pixel of the picture: the mask, a second picture, the lines' coverage and what the effect takes.
constexpr double kFill = 10, kRelief = 22;

struct Case {
    std::string name;
    int type;
    LayerSettings settings;
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
                             type, s});
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

// All that a text object with this effect takes until its first picture is made, without that picture.
void expectFewBytes(Case c, const Page& page) {
    const PeakMemory peak;
    const auto scene = makeScene(page);
    ZvEffect& effects = scene->effect();
    EXPECT_GE(c.settings.addTo(effects, c.type), 0);
    const int width = effects.getLeftOffset() + page.width + effects.getRightOffset(),
              height = effects.getTopOffset() + page.height + effects.getBottomOffset();
    scene->view().SetBitmapWidth(width);
    scene->view().SetBitmapHeight(height);
    EXPECT_NE(scene->object.RenderTextEffect(width, height), nullptr);
    const double taken = static_cast<double>(peak.bytes()) / width / height - 4;
    std::printf("%5.2f  %s%s\n", taken, c.name.c_str(), page.name().c_str());
    EXPECT_LE(taken, c.type == ZV_EFFECT_BEVEL || c.type == ZV_EFFECT_EMBOSS ? kRelief : kFill)
        << c.name << page.name();
}

}  // namespace

TEST(Memory, ARenderTakesAFewBytesForEachPixelOfItsPicture) {
    for (const Page& page : kPages) {
        const auto keepsTheFont = makeScene(page);
        keepsTheFont->render();
        for (const auto& [size, soften] : {std::pair{3, 0}, {20, 7}, {100, 0}})
            for (const Case& c : casesOf(size, soften)) expectFewBytes(c, page);
    }
}

// Of new texts and changed ones, with failures among them. ZVEX_TEST_RENDERS says how many, 3000 if it does
// not.
TEST(Memory, ManyRendersHoldNoMoreThanSome) {
    const char* const kFonts[] = {text_test::kSans, text_test::kBold, text_test::kCjk, text_test::kEmoji};
    const wchar_t* const kTexts[] = {L"Hamburgefonst", L"Gr\u00FC\u00DFe, \u4E16\u754C", L"",
                                     L"\u0645\u0631\u062D\u0628\u0627 \U0001F600", L"\u0e01\u0e33 fi\u0301n"};
    const char* const asked = std::getenv("ZVEX_TEST_RENDERS");
    const long renders = asked != nullptr ? std::max(1000L, std::atol(asked)) : 3000;
    FontManager::GetInstance()->SetSystemFontFamilies(
        text_test::makeFamilies({text_test::makeFamily("", {text_test::kEmoji}),
                                 text_test::makeFamily("zh-Hans", {text_test::kCjk})}));
    ASSERT_NE(std::freopen("/dev/null", "w", stderr), nullptr);  // what fails is in the log
    host::setGlyphCacheLimit(1 << 18);                           // full before the memory is looked at
    const KeptMemory::Use nothing(nullptr);                      // what the thread keeps may still grow
    Random random(7);
    std::unique_ptr<TextScene> scene;
    std::unique_ptr<PeakMemory> sinceTheFirstQuarter;
    long visible = 0;
    for (long i = 0; i < renders; ++i) {
        if (i % 4 == 0) {
            const char* const font = kFonts[random.below(4)];
            scene =
                std::make_unique<TextScene>(font, L"", static_cast<float>(random.between(6, 40)), 200, 60);
        }
        scene->object.SetText(kTexts[random.below(5)]);
        scene->effect().setTextOpacity(static_cast<float>(random.below(5)) * 0.25f);
        addLayer(scene->effect(), random.below(kLayerKinds), random);
        if (i % 6 == 0) {  // the object stays as it is
            EXPECT_FALSE(scene->object.SetFont("/nowhere/missing.ttf"));
            EXPECT_FALSE(scene->object.SetFont("none", text_test::newBuffer(std::string(500, 'x')), 500));
            EXPECT_EQ(scene->object.RenderTextEffect(INT_MAX, INT_MAX), nullptr);
        }
        scene->setLines({TextScene::makeLine(-5, 30, 0, 30), TextScene::makeLine(40, 60, 1, 9, -1)});
        visible += scene->render().countVisible() > 50;
        if (i == renders / 4) sinceTheFirstQuarter = std::make_unique<PeakMemory>();
    }
    std::printf("%8ld bytes of growth\n", static_cast<long>(sinceTheFirstQuarter->growth()));
    EXPECT_LE(sinceTheFirstQuarter->growth(), 1 << 19);
    EXPECT_GT(visible, renders / 3);
}
