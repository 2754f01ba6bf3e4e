// SPDX-License-Identifier: Apache-2.0
// The scenes for timing show what they claim to: a benchmark of an empty picture would be fast.
#include "benchmarks/Scenes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Picture = std::vector<uint32_t>;

struct Ink {
    int left = 1 << 20, top = 1 << 20, right = -1, bottom = -1;  // half-open
};

Picture render(const std::string& scene, bench::Canvas canvas) {
    Zvex::ZvTextObject object;
    if (!bench::prepareScene(object, scene, canvas)) return {};
    const uint32_t* first = object.RenderTextEffect(canvas.width(), canvas.height());
    if (first == nullptr) return {};
    return Picture(first, first + canvas.width() * canvas.height());
}

Ink inkOf(const Picture& picture, int width) {
    Ink ink;
    for (size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] >> 24 == 0) continue;
        const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
        ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
               std::max(ink.bottom, y + 1)};
    }
    return ink;
}

// How far each scene's ink reaches beyond the glyphs on the left, top and bottom; the right is cut off. A
// blur fades out before the end of its reach.
struct Reach {
    const char* scene;
    int left, top, bottom, fade;
};
constexpr Reach kReaches[] = {{"S1", 0, 0, 0, 0}, {"S2", 8, 8, 8, 0},    {"S3", 22, 22, 38, 9},
                              {"S4", 0, 0, 0, 0}, {"S5", 22, 22, 38, 9}, {"S6", 20, 20, 20, 3},
                              {"S7", 0, 0, 0, 0}};

// Large is four times small.
TEST(Scenes, EachDrawsItsEffectAroundTheSameGlyphs) {
    for (const int scale : {1, 4}) {
        bench::Canvas canvas;
        canvas.scale = scale;
        const Picture fill = render("S1", canvas);
        const Ink glyphs = inkOf(fill, canvas.width());
        EXPECT_NEAR(glyphs.top, canvas.baseline() - 91 * scale, 4);  // an ascender is 0.76 em high
        EXPECT_TRUE(scale > 1 || glyphs.left == canvas.inkX()) << glyphs.left;
        for (const Reach& reach : kReaches) {
            if (scale > 1 && &reach != &kReaches[2]) continue;  // one large size is enough
            SCOPED_TRACE(reach.scene);
            const Picture picture = render(reach.scene, canvas);
            EXPECT_EQ(picture == fill, std::string(reach.scene) == "S1");
            const Ink ink = inkOf(picture, canvas.width());
            const int fade = (reach.fade + 1) * scale;
            // Left and bottom are also where the canvas ends.
            EXPECT_NEAR(ink.left, std::max(glyphs.left - reach.left * scale, 0), fade);
            EXPECT_NEAR(ink.top, glyphs.top - reach.top * scale, fade);
            EXPECT_NEAR(ink.bottom, std::min(glyphs.bottom + reach.bottom * scale, canvas.height()), fade);
            EXPECT_EQ(ink.right, canvas.width());
        }
    }
}

TEST(Scenes, UnknownOnesAreRefused) {
    Zvex::ZvTextObject scene, font;
    EXPECT_FALSE(bench::prepareScene(scene, "S8", bench::Canvas()));
    EXPECT_FALSE(bench::prepareScene(font, "S1", bench::Canvas(), "/nowhere/font.ttf"));
}

}  // namespace
