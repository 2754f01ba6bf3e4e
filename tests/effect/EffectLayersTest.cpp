// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "raster/ZvBitmap.h"
#include "tests/effect/LayerSettings.h"
#include "tests/effect/TestPictures.h"

// How the layers meet in a picture: whole renderings through the stack.

namespace Zvex {
namespace {

constexpr int kWidth = 70, kHeight = 60, kLeft = 14, kTop = 12;

// What adds a layer of the type, or nothing.
struct Added {
    int type;
    LayerSettings settings;

    Added(int mType, float size, int style) : type(mType), settings(size) {
        settings.color = type == ZV_EFFECT_OUTER_SHADOW ? 0xFF2040A0 : 0xFFC00000;
        settings.style = style;
        settings.distance = 2 * size;
        settings.angle = 30;
        settings.opacity = 0.8f;
        settings.position = ZV_STROKE_INSIDE;
    }
    void to(ZvEffect& stack) {
        if (type != 0) settings.addTo(stack, type);
    }
};

// Effects that are seen on the glyphs only, whatever they draw beside them.
const Added kInnerEffects[] = {{ZV_EFFECT_INNER_GLOW, 6, 0},
                               {ZV_EFFECT_INNER_SHADOW, 3, 0},
                               {ZV_EFFECT_BEVEL, 6, 1},
                               {ZV_EFFECT_LINEAR_GRADIENT, 0, 0},
                               {ZV_EFFECT_STROKE, 2, 0}};
const Added kNothing(0, 0, 0), OUTER_SHADOW(ZV_EFFECT_OUTER_SHADOW, 4, 0);

// A text of the coverage with two effects, `textOpacity` below 1 for two pictures instead of one.
ZvBitmap render(ZvBitmap& coverage, float textOpacity, Added first, Added second) {
    ZvEffect stack;
    first.to(stack);
    second.to(stack);
    stack.addText(0xFF408040);
    stack.setTextOpacity(textOpacity);
    ZvBitmap picture(kWidth, kHeight, 4);
    ZvGlyph glyph = glyphOf(coverage);
    stack.initEffect(kWidth, kHeight);
    stack.setDstBitmap(&picture);
    stack.renderEffectLayer(kLeft, kTop, &glyph);
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
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            const int column = x - kLeft, row = y - kTop, width = static_cast<int>(coverage.width);
            const bool covered = column >= 0 && column < width && row >= 0 &&
                                 row < static_cast<int>(coverage.height) &&
                                 coverage.pixels[row * width + column] != 0;
            const size_t at = static_cast<size_t>(y * kWidth + x) * 4;
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
    for (const Added& effect : kInnerEffects) {
        for (float textOpacity : {1.0f, 0.5f}) {
            for (const Added& below : {kNothing, OUTER_SHADOW}) {
                SCOPED_TRACE("type " + std::to_string(effect.type) + ", text opacity " +
                             std::to_string(textOpacity) + ", over type " + std::to_string(below.type));
                const ZvBitmap with = render(coverage, textOpacity, effect, below);
                const Differences count =
                    compare(coverage, with, render(coverage, textOpacity, kNothing, below));
                EXPECT_EQ(count.beside, 0);
                EXPECT_GT(count.on, 0);
                EXPECT_EQ(count.seenBeside != 0, below.type != 0);
                // Whichever was added first.
                EXPECT_TRUE(samePixels(with, render(coverage, textOpacity, below, effect)));
            }
        }
    }
}

// A back picture that found no memory takes nothing from what is drawn onto both.
TEST(EffectLayers, DrawOnTheFrontPictureWithoutABackOne) {
    Random random(2);
    ZvBitmap coverage = makeMask(MaskKind::Shapes, 40, 34, random);
    ZvGlyph glyph = glyphOf(coverage);
    Added onBoth[] = {{ZV_EFFECT_STROKE, 5, 0}, {ZV_EFFECT_EMBOSS, 9, 1}};
    onBoth[0].settings.position = ZV_STROKE_CENTER;
    for (Added& add : onBoth) {
        ZvBitmap pictures[] = {ZvBitmap(kWidth, kHeight, 4), ZvBitmap(kWidth, kHeight, 4)};
        for (ZvBitmap& picture : pictures) {
            ZvEffect stack;
            add.to(stack);
            stack.initEffect(kWidth, kHeight);
            if (&picture == &pictures[1]) {
                std::free(stack.back->pixels);
                stack.back->pixels = nullptr;
            }
            stack.setDstBitmap(&picture);
            stack.renderEffectLayer(kLeft, kTop, &glyph);
            stack.doEffectPostProcessing();
        }
        EXPECT_FALSE(samePixels(ZvBitmap(kWidth, kHeight, 4), pictures[0]));
        EXPECT_TRUE(samePixels(pictures[0], pictures[1]));
    }
}

}  // namespace
}  // namespace Zvex
