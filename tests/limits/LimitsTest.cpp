// SPDX-License-Identifier: Apache-2.0
// Sizes at the limits of a type, and large work: each ends in a bounded time, with the picture that smaller
// numbers give, or with none.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cfloat>
#include <climits>
#include <limits>
#include <string>
#include <vector>

#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/RandomLayer.h"
#include "tests/limits/TimeLimit.h"
#include "tests/text/TextScene.h"

using namespace Zvex;
using namespace text_test;

namespace {

constexpr float kEndless = std::numeric_limits<float>::infinity();
constexpr uint32_t kDark = 0xFF202020, kLight = 0xFFFFF0C0;

// A line of `count` of the text's characters from `start` on.
ZvLineInfo lineAt(int x, int y, int start = 0, int count = 2) {
    return TextScene::makeLine(x, y, start, start + count);
}

Picture cutOut(const Picture& picture, int left, int top, int width, int height) {
    Picture part{width, height, {}};
    for (int y = top; y < top + height; ++y)
        for (int x = left; x < left + width; ++x) part.pixels.push_back(picture.at(x, y));
    return part;
}

constexpr int kSizedTypes[] = {ZV_EFFECT_OUTER_SHADOW, ZV_EFFECT_INNER_SHADOW, ZV_EFFECT_OUTER_GLOW,
                               ZV_EFFECT_INNER_GLOW,   ZV_EFFECT_STROKE,       ZV_EFFECT_BEVEL,
                               ZV_EFFECT_EMBOSS};

int addSized(ZvEffect& effects, int type, float size) {
    LayerSettings settings(size);
    settings.distance = size;
    settings.technique = type == ZV_EFFECT_EMBOSS ? 1 : 0;
    return settings.addTo(effects, type);
}

// These depend on the box of all the glyphs.
void addFills(ZvEffect& effects) {
    LayerSettings settings(1);
    settings.opacity = 0.5f;
    settings.angle = 30;
    for (const int type : {ZV_EFFECT_LINEAR_GRADIENT, ZV_EFFECT_RADIAL_GRADIENT, ZV_EFFECT_PATTERN})
        settings.addTo(effects, type);
}

}  // namespace

// A picture that extends beyond 2^15 or 2^16 pixels looks there as a small one does.
TEST(Limits, PicturesWiderAndHigherThanSixteenBits) {
    constexpr int kSmall = 150;
    for (const bool atStart : {false, true}) {  // another line at the picture's start makes the box large
        const auto draw = [&](int width, int height, const std::vector<ZvLineInfo>& lines) {
            TextScene scene(kBold, L"Ag", 50, width, height);
            scene.object.SetTextColor(0xFF40C080);
            for (const int type : kSizedTypes) addSized(scene.effect(), type, 5);
            if (atStart) {
                // Its outermost pixels differ where the box ends.
                scene.effect().removeEffect(scene.effect().getEffect(ZV_EFFECT_EMBOSS)->getId());
            } else {
                addFills(scene.effect());
            }
            scene.setLines(lines);
            return scene.render();
        };
        const Picture small = draw(kSmall, kSmall, {lineAt(30, 90)});
        ASSERT_GT(small.countVisible(), 2000);
        for (const int size : {32768, 65537}) {
            for (const bool wide : {true, false}) {
                SCOPED_TRACE(std::to_string(size) + (wide ? " wide" : " high"));
                const TimeLimit limit(8);
                const int away = size - kSmall;
                std::vector<ZvLineInfo> lines = {wide ? lineAt(30 + away, 90) : lineAt(30, 90 + away)};
                if (atStart) lines.push_back(lineAt(30, 90));
                const Picture large = wide ? draw(size, kSmall, lines) : draw(kSmall, size, lines);
                const auto part = [&](int at) {
                    return cutOut(large, wide ? at : 0, wide ? 0 : at, small.width, small.height);
                };
                EXPECT_TRUE(part(away) == small);
                EXPECT_EQ(part(0) == small, atStart);
            }
        }
    }
}

// Sizes that no machine can hold are refused, here by a process with a low memory limit.
TEST(Limits, PicturesBeyondTheMemoryAreRefused) {
    if (TimeLimit::kSlowness > 1) GTEST_SKIP() << "the sanitizers' own memory is beyond any limit";
    TextScene scene(kBold, L"Ag", 20, 60, 40);
    scene.effect().addStrokeText(3, kDark, 1, 0, ZV_STROKE_OUTSIDE);
    scene.setLines({lineAt(5, 30)});
    const Picture before = scene.render();
    rlimit usual = {};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &usual), 0);
    const rlimit little = {rlim_t{1} << 30, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &little), 0);
    const int sizes[][2] = {{23171, 23171}, {32768, 16384}, {46341, 46341},    {65536, 65536},
                            {INT_MAX, 1},   {1, INT_MAX},   {INT_MAX, INT_MAX}};
    for (const auto& size : sizes) {
        const TimeLimit limit(3);  // a mask of half a gigabyte may have been cleared
        EXPECT_EQ(scene.object.RenderTextEffect(size[0], size[1]), nullptr) << size[0] << " x " << size[1];
    }
    scene.setLines({lineAt(5, 30)});
    const Picture after = scene.render();
    ASSERT_EQ(setrlimit(RLIMIT_AS, &usual), 0);
    EXPECT_TRUE(after == before);
}

// A letter is drawn at sizes of many thousand pixels, and not at all if the image of its line is too large.
TEST(Limits, TextSizes) {
    constexpr float kLargest = 20000;
    for (const float size : {16383.0f, 16385.0f, kLargest, 1e6f, 2147483520.0f, 2147483648.0f, 4294967296.0f,
                             FLT_MAX, kEndless, -1.0f, -32768.0f}) {
        SCOPED_TRACE(size);
        const TimeLimit limit(2);
        TextScene scene(kSans, L"I", size, 100, 40);
        scene.effect().addStrokeText(3, kDark, 1, 0, ZV_STROKE_OUTSIDE);
        const bool drawn = size > 0 && size <= kLargest;
        // The pixel is in the middle of the stem: the image begins up to a 64th of the size before the ink.
        const int left = drawn ? -static_cast<int>(0.03f * size) : 0;
        scene.setLines({lineAt(left, 9000, 0, 1)});
        EXPECT_NEAR(scene.render().count(0xFF000000), drawn ? 100 * 40 : 0, drawn ? 900 : 0);
        if (size < 1e6f || size > 1e7f) {
            EXPECT_NEAR(scene.line(0).rect.right, drawn ? left + 0.295 * size : 0, 24);
        }
    }
}

// The image of a line has 16 bits of width, so a longer line shows only its beginning.
TEST(Limits, LinesWiderThanSixteenBits) {
    constexpr int kCount = 4000;
    TextScene scene(kSans, std::wstring(kCount, L'm').c_str(), 20, 20000, 40);
    scene.setLines({lineAt(0, 30, 0, 1)});
    scene.render();
    const int letter = scene.line(0).rect.right;
    scene.setLines({lineAt(0, 30, 0, kCount)});
    const TimeLimit limit(4);
    const Picture drawn = scene.render();
    const int advance = scene.line(0).rect.right, shown = advance & 0xFFFF;
    EXPECT_NEAR(advance, kCount * letter, kCount);
    ASSERT_GT(advance, 65536);
    ASSERT_LT(shown, 19000);
    scene.setLines({lineAt(0, 30, 0, 1000)});
    const Picture beginning = scene.render();
    EXPECT_TRUE(cutOut(drawn, 0, 0, shown, 40) == cutOut(beginning, 0, 0, shown, 40));
    EXPECT_EQ(cutOut(drawn, shown, 0, drawn.width - shown, 40).countVisible(), 0);
}

TEST(Limits, AMillionCharacters) {
    const std::wstring piece = L"lorem ipsum ";
    const int length = TimeLimit::kSlowness > 1 ? 120'000 : 1'200'000;
    std::wstring text;
    while (static_cast<int>(text.size()) < length) text += piece;
    const TimeLimit limit(41);
    TextScene scene(kSans, text.c_str(), 20, 1000, 40);
    scene.setLines({lineAt(0, 30, 0, length)});
    scene.render();
    EXPECT_GT(scene.line(0).rect.right, 9 * length);
    // All lines are at the same place, so that each is drawn but only one shows.
    std::vector<ZvLineInfo> cut;
    for (int i = 0; i < length / 120; ++i) cut.push_back(lineAt(0, 30, 120 * i, 120));
    scene.setLines(cut);
    const Picture all = scene.render();
    scene.setLines({cut[0]});
    EXPECT_TRUE(all == scene.render());
    EXPECT_GT(all.countVisible(), 3000);
}

// The largest sizes there are on a picture as wide as a screen of the largest kind.
TEST(Limits, LargestEffectsOnAWidePicture) {
    for (const int type : kSizedTypes) {
        TextScene scene(kBold, L"Hamburgefonst", 500, 4096, 700);
        scene.object.SetTextColor(kLight);
        scene.setLines({lineAt(0, 550, 0, 13)});
        EXPECT_GE(addSized(scene.effect(), type, 100), 0);
        const TimeLimit limit(8, "type " + std::to_string(type));
        const Picture picture = scene.render();
        EXPECT_GT(picture.countVisible(), 500'000) << type;
        EXPECT_NE(picture.count(kLight), picture.countVisible()) << type;
    }
}
