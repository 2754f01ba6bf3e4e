// SPDX-License-Identifier: Apache-2.0
// From a text object to pixels: which lines become images, where they are placed, what the clip and the
// background do, and what is logged if a part is missing.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "TextScene.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvGlyph.h"
#include "foundation/Error.h"
#include "foundation/SafeConvert.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "text/FontManager.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObjectImpl.h"

using namespace Zvex;
using namespace text_test;

namespace {

// A line image as the effect stack gets it.
struct Handed {
    int x, y, width, height, baseline;
    std::vector<uint8_t> pixels;
};

// A layer that draws nothing and records every line image.
class Recorder : public ZvECoreBase {
public:
    explicit Recorder(std::vector<Handed>* handed) : mHanded(handed) {}
    int render(ParamRender* p) override {
        const ZvGlyph& g = *p->glyph;
        mHanded->push_back({p->x, p->y, g.width, g.height, g.baseline,
                            std::vector<uint8_t>(g.pixels, g.pixels + size_t{g.width} * g.height)});
        return 1;
    }
    void setProperty(ZvProperty*) override {}
    ZvProperty* getProperty() override { return nullptr; }

private:
    std::vector<Handed>* mHanded;
};

using Edges = std::array<int, 4>;

Edges edgesOf(const ZvRect& rect) {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

// Box of the pixels that are not transparent.
ZvRect inkOf(const Picture& picture) {
    ZvRect box(picture.width, picture.height, 0, 0);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            if (picture.at(x, y) == 0) continue;
            box = ZvRect(std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                         std::max(box.bottom, y + 1));
        }
    }
    return box;
}

TEST(TextDrawing, FailuresSayWhatIsMissing) {
    const std::pair<const char*, std::function<void(TextScene&)>> cases[] = {
        {"text is NULL", [](auto& s) { s.object.SetText(static_cast<const wchar_t*>(nullptr)); }},
        {"textLength is 0", [](auto& s) { s.object.SetText(L""); }},
        {"Effect is NULL", [](auto& s) { delete std::exchange(s.object.mImpl->effect, nullptr); }},
        {"lineInfoList is NULL",
         [](auto& s) {
             s.object.mImpl->clearLineInfo();
             delete std::exchange(s.object.mImpl->lineInfo, nullptr);
         }},
        {"GetMinikinFontFamilies failed",
         [](auto& s) { s.object.GetFont()->SetFontPath("TextDrawing.unknown"); }},
    };
    for (const auto& [line, spoil] : cases) {
        SCOPED_TRACE(line);
        OneLine scene(L"ab", 20, 60, 30, 0, 20);
        spoil(scene);
        ZvBitmap out(60, 30, 4);
        Error::SetError(0);
        host::LogCapture log;
        EXPECT_EQ(scene.object.GetFont()->DrawTextEffect(&scene.object, &out), 0);
        const std::vector<std::string> lines = errorLines(log);
        const unsigned error = std::string(line) == "lineInfoList is NULL" ? 8 : 0;
        ASSERT_EQ(lines.size(), error != 0 ? 2u : 1u);
        EXPECT_EQ(lines[0],
                  "ZvFontDrawing: DrawTextEffect(" + addressOf(scene.object.GetFont()) + ") - " + line);
        EXPECT_EQ(Error::GetError(), error);
        EXPECT_EQ(std::count(out.pixels, out.pixels + out.byteCount(), 0), 60 * 30 * 4);
    }
}

// The single steps give the bytes of a picture, with red and blue exchanged.
TEST(TextDrawing, DrawTextEffectDrawsThePicture) {
    OneLine scene(L"Hp\u0416", 24, 90, 40, 5, 28);
    scene.object.SetTextColor(0xE02040C0);
    for (const float opacity : {1.0f, 0.4f}) {
        scene.effect().setTextOpacity(opacity);
        scene.effect().addOuterShadowText(40, 5, 3, 0xFF00FF00, 0.9f);
        Picture expected = scene.render();
        ZvBitmap out(static_cast<unsigned>(expected.width), static_cast<unsigned>(expected.height), 4);
        EXPECT_EQ(scene.object.GetFont()->DrawTextEffect(&scene.object, &out), 0);
        ZvBlender::convertBGRAToARGB(&out);
        EXPECT_GT(expected.countVisible(), 200);
        EXPECT_EQ(std::memcmp(out.pixels, expected.pixels.data(), out.byteCount()), 0) << opacity;
        EXPECT_EQ(scene.effect().getDstBitmap(), nullptr);
    }
}

TEST(TextDrawing, LayersOfOtherClassesAreSeen) {
    class Marker : public ZvECoreBase {
        int render(ParamRender* p) override { return std::memset(p->target->pixels, 255, 8), 1; }
        void setProperty(ZvProperty*) override {}
        ZvProperty* getProperty() override { return nullptr; }
    };
    OneLine scene(L"ab", 20, 60, 30, 5, 25);
    scene.object.SetTextColor(0xFF0000FF);
    scene.effect().setTextOpacity(0.5f);  // two pictures, so the text cuts nothing off
    const int text = scene.render().count(0xFF0000FF);
    scene.effect().effects.push_back(new Marker);
    EXPECT_EQ(scene.render().count(0xFF0000FF), text);
}

TEST(TextDrawing, AnImageBeyondTwoGigabytesIsLeftOutWithALine) {
    OneLine scene(L"MMMMMMMM", 20, 60, 30, 0, 25);
    scene.changePaint([](android::Paint& paint) {
        paint.setTextSize(60000);
        paint.setTextScaleX(0.14f);
    });
    host::LogCapture log;
    EXPECT_EQ(scene.render().countVisible(), 0);
    const std::vector<std::string> lines = errorLines(log);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(lines[0].find("is too large, it is left out"), std::string::npos) << lines[0];
}

TEST(TextDrawing, LineImagesAreAsWideAsTheAdvanceAndAsHighAsTheInk) {
    std::vector<Handed> handed;
    TextScene scene(kSans, L"Hpp  \u0416", 20, 200, 60);
    // The stack owns it, although it is of no known type.
    scene.effect().effects.push_back(new Recorder(&handed));
    scene.setLines({TextScene::makeLine(7, 30, 0, 1), TextScene::makeLine(7, 30, 1, 2),
                    TextScene::makeLine(7, 30, 1, 3), TextScene::makeLine(7, 30, 3, 5),
                    TextScene::makeLine(-3, 30, 5, 6, -1)});
    const Picture picture = scene.render();
    ASSERT_EQ(handed.size(), 5u);

    const Handed& capital = handed[0];
    EXPECT_EQ(capital.x, 7);
    EXPECT_EQ(capital.height, capital.baseline);  // stands on the baseline
    EXPECT_EQ(capital.y, 30 - capital.baseline);
    EXPECT_EQ(capital.width, 15);  // 0.752 of 20, rounded to a whole pixel without the linear-text flag
    EXPECT_GE(*std::max_element(capital.pixels.begin(), capital.pixels.end()), 250);

    EXPECT_GT(handed[1].height, handed[1].baseline);  // extends below it
    EXPECT_EQ(handed[2].width, 2 * handed[1].width);
    EXPECT_EQ(handed[3].height, 0);  // blanks: an image without rows, as wide as their advances
    EXPECT_GT(handed[3].width, 0);
    EXPECT_EQ(handed[4].x, -3);
    EXPECT_GT(picture.countVisible(), 0);

    // With linear metrics advances have fractions. The image's width and the line's right edge drop them.
    scene.changePaint([](android::Paint& paint) {
        paint.setFlags(paint.getFlags() | 0x40);
        paint.setTextSize(31.9f);  // the letter is 1540 of the design's 2048 units wide: 23.99 pixels
    });
    scene.setLines({TextScene::makeLine(7, 30, 0, 1)});
    scene.render();
    EXPECT_EQ(handed.back().width, 23);
    EXPECT_EQ(scene.line(0).rect.right, 7 + 23);
}

// The letters beside a line join its own, although they are not drawn with it.
TEST(TextDrawing, ALineIsLaidOutWithTheWholeTextAsContext) {
    std::vector<Handed> handed;
    for (const wchar_t* text : {L"\u0628", L"\u0628\u0628\u0628"}) {
        TextScene scene(kSans, text, 40, 200, 80);
        scene.effect().effects.push_back(new Recorder(&handed));
        const int middle = text[1] == 0 ? 0 : 1;
        scene.setLines({TextScene::makeLine(7, 40, middle, middle + 1, -1)});
        scene.render();
    }
    ASSERT_EQ(handed.size(), 2u);
    EXPECT_NE(handed[0].pixels, handed[1].pixels);  // alone, and in the middle of a word
}

TEST(TextDrawing, PensRunAlongTheListAndBackwardsForRightToLeft) {
    std::vector<Handed> handed;
    Recorder recorder(&handed);
    ZvEffect effect;
    effect.layers.push_back(&recorder);
    uint8_t pixel = 0;
    ZvGlyph glyphs[2];
    List list;
    list.Construct();
    for (int i = 0; i < 2; ++i) {
        glyphs[i].pixels = &pixel;
        glyphs[i].width = static_cast<uint16_t>(10 + i);
        glyphs[i].baseline = i;
        glyphs[i].left = 100 * i;
        list.Add(static_cast<void*>(&glyphs[i]));
    }
    ZvFontDrawing drawing;
    drawing._DoRender(5 * 64 + 63, -2 * 64 - 1, &list, &effect, 0);
    drawing._DoRender(5 * 64, 20 * 64, &list, &effect, -1);
    drawing._DoRender(0, 0, nullptr, &effect, 0);
    std::vector<std::array<int, 3>> places;
    for (const Handed& line : handed) places.push_back({line.x, line.y, line.width});
    EXPECT_EQ(places, (std::vector<std::array<int, 3>>{
                          {5, -3, 10}, {5 + 10 + 100, -4, 11}, {5 + 100, 19, 11}, {5 + 11, 20, 10}}));
}

TEST(TextDrawing, MarginsMoveTheText) {
    OneLine scene(L"Twice", 24, 120, 40, 10, 28);
    scene.object.SetTextColor(0x802040C0);
    const Picture plain = scene.render();
    EXPECT_GT(plain.count(0x802040C0), 50);  // the alpha is the whole picture's
    scene.effect().addStrokeText(4, 0xFFFFFFFF, 1.0f, 0, 1);
    const int left = scene.effect().getLeftOffset(), top = scene.effect().getTopOffset();
    ASSERT_GE(left, 4);
    const Picture stroked = scene.render();
    EXPECT_EQ(stroked.width, 120 + left + scene.effect().getRightOffset());
    const ZvRect before = inkOf(plain), after = inkOf(stroked);
    EXPECT_NEAR(after.left, before.left + left - 4.5, 1.5);  // a stroke of 4 and its blurred edge
    EXPECT_NEAR(after.bottom, before.bottom + top + 4.5, 1.5);
}

TEST(TextDrawing, BackgroundFillsTheLineRectangles) {
    OneLine scene(L"ab", 20, 100, 50, 10, 30);
    scene.line(0).rect = ZvRect(0, 12, 0, 35);  // left and right are computed again
    scene.object.SetBackgroundColor(0xFF00FF00, true);
    const Picture picture = scene.render();
    EXPECT_EQ(edgesOf(inkOf(picture)), (Edges{10, 12, scene.line(0).rect.right, 35}));
    EXPECT_EQ(scene.line(0).rect.left, 10);
    EXPECT_EQ(picture.at(10, 12), 0xFF00FF00u);
    EXPECT_GT(picture.count(0xFF000000), 20);
    scene.object.SetBackgroundColor(0xFF00FF00, false);
    EXPECT_EQ(scene.render().count(0xFF00FF00), 0);
}

// Rendering again without a new layout moves the background down by the top margin.
TEST(TextDrawing, EveryRenderingMovesTheLineRectanglesDown) {
    OneLine scene(L"ab", 20, 100, 50, 10, 30);
    scene.effect().addStrokeText(5, 0xFFFFFFFF, 1.0f, 0, 1);
    const int left = 10 + scene.effect().getLeftOffset(), top = scene.effect().getTopOffset();
    ASSERT_GT(top, 0);
    const ZvRect before = scene.line(0).rect;
    scene.render();
    const int right = scene.line(0).rect.right;
    scene.render();
    EXPECT_EQ(edgesOf(scene.line(0).rect),
              (Edges{left, before.top + 2 * top, right, before.bottom + 2 * top}));
}

TEST(TextDrawing, ClipKeepsThePaddingOnlyAwayFromTheGravity) {
    const std::pair<int, Edges> cases[] = {
        {0x33, {0, 0, 100 - 7, 60 - 9}},  // left, top
        {0x55, {5, 6, 100, 60}},          // right, bottom
        {0x11, {5, 6, 100 - 7, 60 - 9}},  // centre
        {0x77, {5, 6, 100 - 7, 60 - 9}},  // fill
    };
    OneLine scene(L"a", 10, 100, 60, 0, 30);
    scene.view().SetPadding(5, 6, 7, 9);
    // An advance wider than the view, so that the background covers it all.
    scene.changePaint([](android::Paint& paint) { paint.setTextScaleX(30); });
    scene.line(0).rect = ZvRect(0, -100, 0, 200);
    scene.object.SetBackgroundColor(0xFFFF0000, true);
    for (const auto& [gravity, visible] : cases) {
        scene.view().gravity = gravity;
        EXPECT_EQ(edgesOf(inkOf(scene.render())), visible) << gravity;
    }
    scene.view().SetPadding(0, 0, 170, -2147483647);  // more than the width, and far below 0
    scene.view().gravity = 0x33;
    EXPECT_EQ(scene.render().countVisible(), 0);
}

TEST(TextDrawing, LinesOutsideTheTextAreCutToIt) {
    TextScene scene(kSans, L"abc", 20, 100, 40);
    scene.setLines({TextScene::makeLine(0, 30, 1, 3)});
    const Picture expected = scene.render();
    scene.setLines({TextScene::makeLine(0, 30, 1, 1000)});
    EXPECT_TRUE(expected == scene.render());
    const int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    for (const auto& [start, end] :
         {std::pair(2, 1), std::pair(3, 3), std::pair(kMax, kMin), std::pair(-9, -2)}) {
        scene.setLines({TextScene::makeLine(0, 30, start, end)});
        EXPECT_EQ(scene.render().countVisible(), 0) << start << " " << end;
    }
}

TEST(TextDrawing, AbsurdPositionsDrawNothingAndOverflowNothing) {
    const int kMin = std::numeric_limits<int>::min(), kMax = std::numeric_limits<int>::max();
    TextScene scene(kSans, L"abc", 20, 100, 40);
    scene.effect().addStrokeText(3, 0xFFFFFFFF, 1.0f, 0, 1);
    ZvLineInfo low = TextScene::makeLine(0, 0, 0, 3);
    low.x = low.y = kMin;
    low.rect = ZvRect(kMin, kMin, kMin, kMin);
    ZvLineInfo high = TextScene::makeLine(kMax / 64, 0, 0, 3);
    high.y = kMax;
    high.rect = ZvRect(kMax, kMax, kMax, kMax);
    scene.setLines({low, high, TextScene::makeLine(1 << 24, 1 << 24, 0, 3)});
    scene.object.SetBackgroundColor(0xFF00FF00, true);
    scene.render();
    scene.render();
    // 26 bits of pixels: 2^26 is 0 again.
    scene.effect().cleanAllEffect();
    scene.setLines({TextScene::makeLine(1 << 26, (1 << 26) + 30, 0, 3)});
    EXPECT_GT(scene.render().countVisible(), 0);
}

// The bold style bit does not affect drawing; a font named bold is drawn as it is.
TEST(TextDrawing, ItalicStyleSlantsAFontThatIsNotItalicAndBoldChangesNothing) {
    OneLine scene(L"lll", 40, 100, 60, 10, 45);
    const Picture upright = scene.render();
    scene.object.SetTextStyle(true, false);
    EXPECT_TRUE(upright == scene.render());
    scene.object.SetTextStyle(false, true);
    const Picture slanted = scene.render();
    EXPECT_FALSE(upright == slanted);
    EXPECT_GT(slanted.countVisible(), 0);
    // A font whose name says italic gets no slant.
    const std::string bytes = readFile(kSans);
    const auto size = static_cast<unsigned>(bytes.size());
    ASSERT_TRUE(scene.object.SetFont("TextDrawing-Italic", newBuffer(bytes), size));
    EXPECT_TRUE(upright == scene.render());
}

TEST(SafeConvert, CutsOffFractionsAndSaturates) {
    const float kInfinity = std::numeric_limits<float>::infinity();
    EXPECT_EQ(truncateToUnsigned(3.99f), 3u);
    EXPECT_EQ(truncateToUnsigned(-1e20f), 0u);
    EXPECT_EQ(truncateToUnsigned(std::nanf("")), 0u);
    EXPECT_EQ(truncateToUnsigned(4294967296.0f), 4294967295u);
    EXPECT_EQ(truncateToInt(-3.99f), -3);
    EXPECT_EQ(truncateToInt(std::nanf("")), 0);
    EXPECT_EQ(truncateToInt(2147483648.0f), 2147483647);
    EXPECT_EQ(truncateToInt(-kInfinity), std::numeric_limits<int>::min());
}

}  // namespace
