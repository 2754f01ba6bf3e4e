// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "effect/ZvEffect.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/TestPictures.h"

// How the layers meet in a picture: whole renderings through the stack.

namespace Zvex {
namespace {

constexpr int WIDTH = 70, HEIGHT = 60, LEFT = 14, TOP = 12;

using Add = void (*)(ZvEffect&);

// Effects that are seen on the glyphs only, whatever they draw beside them.
const struct {
    const char* name;
    Add add;
} INNER_EFFECTS[] = {
    {"inner glow", [](ZvEffect& stack) { stack.addInnerGlowText(6, 0xFFC00000, 0.8f, 0, nullptr); }},
    {"inner shadow", [](ZvEffect& stack) { stack.addInnerShadowText(30, 12, 3, 0xFFC00000, 0.8f); }},
    {"inner bevel",
     [](ZvEffect& stack) {
         stack.addBevelText(1, 6, 2, 1, 0, 2, 1, 120, 30, 0xFF000000, 0.8f, 0xFFFFFFFF, 0.8f);
     }},
    {"linear gradient",
     [](ZvEffect& stack) {
         ZvGradient stops[] = {{0xFFC00000, 1, 0}, {0xFF0000C0, 0.5f, 1}};
         stack.addLinearGradientText(30, 1, 0.8f, 2, stops);
     }},
    {"inside stroke", [](ZvEffect& stack) { stack.addStrokeText(2, 0xFFC00000, 0.8f, 0, 2); }},
};

void addNothing(ZvEffect&) {}
void addOuterShadow(ZvEffect& stack) {
    stack.addOuterShadowText(45, 6, 4, 0xFF2040A0, 0.9f);
}

// A text of the coverage with two effects, `textOpacity` below 1 for two pictures instead of one.
ZvBitmap render(ZvBitmap& coverage, float textOpacity, Add first, Add second) {
    ZvEffect stack;
    first(stack);
    second(stack);
    stack.addText(0xFF408040);
    stack.setTextOpacity(textOpacity);
    ZvBitmap picture(WIDTH, HEIGHT, 4);
    ZvGlyph glyph = glyphOf(coverage);
    stack.initEffect(WIDTH, HEIGHT);
    stack.setDstBitmap(&picture);
    stack.renderEffectLayer(LEFT, TOP, &glyph);
    stack.doEffectPostProcessing();
    stack.compositeLayers(&picture);
    return picture;
}

struct Differences {
    int beside = 0, on = 0;  // pixels that differ where there is no coverage, and where there is
    int seenBeside = 0;      // pixels of the first picture where there is no coverage
};

Differences compare(const ZvBitmap& coverage, const ZvBitmap& first, const ZvBitmap& second) {
    Differences count;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const int column = x - LEFT, row = y - TOP, width = static_cast<int>(coverage.width);
            const bool covered = column >= 0 && column < width && row >= 0 &&
                                 row < static_cast<int>(coverage.height) &&
                                 coverage.pixels[row * width + column] != 0;
            const size_t at = static_cast<size_t>(y * WIDTH + x) * 4;
            const bool same = std::memcmp(first.pixels + at, second.pixels + at, 4) == 0;
            if (!same) ++(covered ? count.on : count.beside);
            if (!covered && first.pixels[at + 3] != 0) ++count.seenBeside;
        }
    }
    return count;
}

TEST(EffectLayers, InnerEffectsAreSeenOnTheGlyphsOnly) {
    Random random(1);
    ZvBitmap coverage = makeMask(MaskKind::Shapes, 40, 34, random);
    for (const auto& effect : INNER_EFFECTS) {
        for (float textOpacity : {1.0f, 0.5f}) {
            for (Add below : {addNothing, addOuterShadow}) {
                SCOPED_TRACE(std::string(effect.name) + ", text opacity " + std::to_string(textOpacity) +
                             (below == addNothing ? "" : ", over a shadow"));
                const ZvBitmap with = render(coverage, textOpacity, effect.add, below);
                const Differences count =
                    compare(coverage, with, render(coverage, textOpacity, addNothing, below));
                EXPECT_EQ(count.beside, 0);
                EXPECT_GT(count.on, 0);
                EXPECT_EQ(count.seenBeside != 0, below == addOuterShadow);
                // Whichever was added first.
                EXPECT_TRUE(samePixels(with, render(coverage, textOpacity, below, effect.add)));
            }
        }
    }
}

// A back picture that found no memory takes nothing from what is drawn onto both.
TEST(EffectLayers, DrawOnTheFrontPictureWithoutABackOne) {
    Random random(2);
    ZvBitmap coverage = makeMask(MaskKind::Shapes, 40, 34, random);
    ZvGlyph glyph = glyphOf(coverage);
    const Add onBoth[] = {
        [](ZvEffect& stack) { stack.addStrokeText(5, 0xFFC00000, 0.8f, 0, 0); },
        [](ZvEffect& stack) {
            stack.addEmbossText(1, 9, 2, 1, 0, 2, 1, 120, 30, 0xFF000000, 0.8f, 0xFFFFFFFF, 0.8f);
        },
    };
    for (const Add add : onBoth) {
        ZvBitmap pictures[] = {ZvBitmap(WIDTH, HEIGHT, 4), ZvBitmap(WIDTH, HEIGHT, 4)};
        for (ZvBitmap& picture : pictures) {
            ZvEffect stack;
            add(stack);
            stack.initEffect(WIDTH, HEIGHT);
            if (&picture == &pictures[1]) {
                std::free(stack.back->pixels);
                stack.back->pixels = nullptr;
            }
            stack.setDstBitmap(&picture);
            stack.renderEffectLayer(LEFT, TOP, &glyph);
            stack.doEffectPostProcessing();
        }
        EXPECT_FALSE(samePixels(ZvBitmap(WIDTH, HEIGHT, 4), pictures[0]));
        EXPECT_TRUE(samePixels(pictures[0], pictures[1]));
    }
}

}  // namespace
}  // namespace Zvex
