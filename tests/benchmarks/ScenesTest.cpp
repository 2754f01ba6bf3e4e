// SPDX-License-Identifier: Apache-2.0
// The scenes for timing show what they claim to: a benchmark of an empty picture would be fast.
#include "benchmarks/Scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace {

using Picture = std::vector<uint32_t>;

Picture render(const std::string& scene, bench::Canvas canvas) {
    Zvex::ZvTextObject object;
    if (!bench::prepareScene(object, scene, canvas)) return {};
    const uint32_t* first = object.RenderTextEffect(canvas.width(), canvas.height());
    if (first == nullptr) return {};
    return Picture(first, first + canvas.width() * canvas.height());
}

// Large is four times small.
TEST(Scenes, EachDrawsAPictureOfItsOwn) {
    long visible[2] = {};
    for (const int size : {0, 1}) {
        bench::Canvas canvas;
        canvas.scale = size == 0 ? 1 : 4;
        std::set<Picture> pictures;
        for (const char* scene : {"S1", "S2", "S3", "S4", "S5", "S6", "S7"}) {
            const Picture picture = render(scene, canvas);
            const auto count =
                std::count_if(picture.begin(), picture.end(), [](uint32_t p) { return p >> 24; });
            if (pictures.empty()) visible[size] = count;
            EXPECT_GT(count, visible[size] * 9 / 10) << scene;  // of the same glyphs
            EXPECT_TRUE(pictures.insert(picture).second) << scene;
        }
    }
    EXPECT_GT(visible[0], 1000);
    EXPECT_NEAR(static_cast<double>(visible[1]) / static_cast<double>(visible[0]), 16, 2);
}

TEST(Scenes, UnknownOnesAreRefused) {
    Zvex::ZvTextObject scene, font;
    EXPECT_FALSE(bench::prepareScene(scene, "S8", bench::Canvas()));
    EXPECT_FALSE(bench::prepareScene(font, "S1", bench::Canvas(), "/nowhere/font.ttf"));
}

}  // namespace
