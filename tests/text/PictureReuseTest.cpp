// SPDX-License-Identifier: Apache-2.0
// A text without background is drawn straight into its picture, which is reused. With a background, the
// effects' picture and the canvas come in between. An invisible background must not change the bytes, and
// neither must earlier renders of the object.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TextScene.h"
#include "raster/ZvBitmap.h"

using namespace Zvex;
using namespace text_test;

namespace {

constexpr wchar_t kReused[] = L"Wave\x00E9 jg";
constexpr uint32_t kInvisible = 0x00FFFFFF;

struct Look {
    const char* name;
    std::function<void(TextScene&)> apply;
};

std::vector<Look> looks() {
    static ZvGradient stops[] = {{0xFFFF0000, 1.0f, 0.0f}, {0x400000FF, 1.0f, 1.0f}};
    return {
        {"plain", [](TextScene&) {}},
        {"opacity", [](TextScene& s) { s.effect().setTextOpacity(0.4f); }},
        {"gradient", [](TextScene& s) { s.effect().addLinearGradientText(30, 1, 0.7f, 2, stops); }},
        {"pattern",
         [](TextScene& s) {
             ZvBitmap tile(5, 3, 4);
             for (size_t i = 0; i < tile.byteCount(); ++i) tile.pixels[i] = static_cast<uint8_t>(i * 37);
             s.effect().addRadialGradientText(0.5f, 0.3f, 2, stops);
             s.effect().addPatternText(&tile, 2.0f, 0.5f);
         }},
        {"inside stroke", [](TextScene& s) { s.effect().addStrokeText(3, 0xFF0000FF, 0.8f, 0, 2); }},
        {"shadow and centred stroke",
         [](TextScene& s) {
             s.effect().addOuterShadowText(100, 7, 9, 0xFF00FF00, 0.5f);
             s.effect().addStrokeText(4, 0xFF0000FF, 0.8f, 0, 0);
         }},
    };
}

// A view of some size, and a text that it cuts at its right side and, depending on the gravity, at its
// paddings.
void setUp(TextScene& scene, int width, int height, int gravity, const Look& look) {
    scene.effect().cleanAllEffect();
    scene.effect().clearTextOpacity();
    scene.object.SetTextColor(0xFFFF8040);
    scene.view().SetSize(width, height);
    scene.view().gravity = gravity;
    scene.view().SetPadding(9, 11, 13, 6);
    scene.setLines({TextScene::makeLine(-3, 30, 0, 5), TextScene::makeLine(width - 35, height - 4, 5, 8)});
    look.apply(scene);
}

std::unique_ptr<TextScene> makeScene(int width, int height, int gravity, const Look& look) {
    auto scene = std::make_unique<TextScene>(kSans, kReused, 34.0f, width, height);
    setUp(*scene, width, height, gravity, look);
    return scene;
}

TEST(PictureReuse, StraightIntoThePictureIsTheSameAsOverAnInvisibleBackground) {
    for (const Look& look : looks()) {
        for (const int gravity : {0x33, 0x55, 0x11}) {
            SCOPED_TRACE(std::string(look.name) + ", gravity " + std::to_string(gravity));
            const auto straight = makeScene(130, 70, gravity, look),
                       composed = makeScene(130, 70, gravity, look);
            composed->object.SetBackgroundColor(kInvisible, true);
            const Picture expected = composed->render();
            EXPECT_GT(expected.countVisible(), 300);
            EXPECT_TRUE(straight->render() == expected);
        }
    }
}

// One object renders all sizes and looks; its caller overwrites each picture afterwards.
TEST(PictureReuse, APictureDoesNotDependOnTheOnesBefore) {
    TextScene old(kSans, kReused, 34.0f, 0, 0);
    const int sizes[][2] = {{130, 70}, {130, 70}, {90, 50}, {200, 90}, {130, 70}};
    for (const auto& size : sizes) {
        for (const Look& look : looks()) {
            for (const bool background : {false, true}) {
                SCOPED_TRACE(std::string(look.name) + " at " + std::to_string(size[0]));
                const auto fresh = makeScene(size[0], size[1], 0x55, look);
                setUp(old, size[0], size[1], 0x55, look);
                for (TextScene* scene : {&old, fresh.get()}) {
                    scene->object.SetBackgroundColor(0x80204060, background);
                }
                const Picture picture = old.render();
                EXPECT_TRUE(picture == fresh->render());
                uint32_t* pixels = old.object.RenderTextEffect(picture.width, picture.height);
                ASSERT_NE(pixels, nullptr);
                std::memset(pixels, 0xAB, picture.pixels.size() * 4);
            }
        }
    }
}

}  // namespace
