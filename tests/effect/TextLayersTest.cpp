// SPDX-License-Identifier: Apache-2.0
#include "effect/TextLayers.h"

#include <gtest/gtest.h>

#include <cstring>

#include "effect/LayerJoin.h"
#include "effect/ZvEffect.h"
#include "tests/FailingAllocations.h"
#include "tests/effect/StackPictures.h"
#include "tests/effect/TestPictures.h"

namespace Zvex {
namespace {

constexpr int kLayeredWidth = 90, kLayeredHeight = 60;

void addGlowAndShadow(ZvEffect& effect) {
    effect.addOuterGlowText(6, 0xFF00FF00, 0.7f, 0, nullptr);
    effect.addOuterShadowText(135, 5, 4, 0xFF203040, 0.6f);
    effect.addText(0xFFFF8040);
}

// Two lines, the second one beyond the right edge, as a text object passes them. `around`: the picture has so
// many more pixels on each side, but the text still ends at the same edge.
ZvBitmap drawnText(ZvEffect& effect, int around = 0) {
    Random random(2);
    const ZvBitmap line = makeMask(MaskKind::Shapes, 50, 20, random);
    const ZvRect inside(0, 0, kLayeredWidth - 55, 20);
    return asPicture(effect, kLayeredWidth + 2 * around, kLayeredHeight + 2 * around,
                     {{around + 12, around + 9, line}, {around + 55, around + 31, ZvBitmap(line, &inside)}},
                     PixelOrder::BlueFirst);
}

struct LayeredText {
    ZvEffect plain, owner;
    TextCoverage* coverage = new TextCoverage;

    LayeredText() {
        addGlowAndShadow(plain);
        owner.effects.push_back(coverage);
        drawnText(owner);
    }
    ZvBitmap draw(const TextLayer* layers, size_t count = 1,
                  const ZvRect& clip = ZvRect(0, 0, kLayeredWidth, kLayeredHeight)) {
        ZvBitmap picture(kLayeredWidth, kLayeredHeight, 4);
        EXPECT_TRUE(drawTextLayers(&picture, *coverage, layers, count, clip));
        return picture;
    }
    uint32_t at(int x, int y) const {
        const ZvRect& box = coverage->box;
        const bool inBox = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
        return inBox ? coverage->mask.pixels[(y - box.top) * (box.right - box.left) + x - box.left] : 0;
    }
};

// Within the clip, a single layer equals the text with that stack, moved; it also shows what comes into the
// picture with the move.
TEST(TextLayers, ALayerIsThePictureOfItsStack) {
    LayeredText text;
    const ZvRect clip(1, 5, 85, 52);
    for (int x : {0, -9, 14, -40, 60, -92, 5000}) {
        TextLayer layer;
        layer.effect = &text.plain;
        layer.x = x;
        layer.y = x == -92 ? 0 : x / 2;
        ZvEffect effect;
        addGlowAndShadow(effect);
        const ZvBitmap stack = drawnText(effect, 60);
        ZvBitmap expected(kLayeredWidth, kLayeredHeight, 4);
        JoinedLayer joined;
        joined.picture = &stack;
        joined.x = layer.x - 60;
        joined.y = layer.y - 60;
        joinLayers(&expected, &joined, 1);
        for (int i = 0; i < kLayeredWidth * kLayeredHeight; ++i) {
            const int column = i % 90, row = i / 90;
            const bool shows =
                column >= clip.left && column < clip.right && row >= clip.top && row < clip.bottom;
            if (!shows) std::memset(expected.pixels + i * 4, 0, 4);
        }
        EXPECT_TRUE(samePixels(expected, text.draw(&layer, 1, clip))) << "moved by " << x;
    }
}

// A widened layer at the back shows around the glyphs like their outside stroke. With knockout it has no
// pixel within them, moved or not.
TEST(TextLayers, SpreadIsAStrokeAndKnockoutLeavesTheGlyphsOut) {
    LayeredText text;
    ZvEffect black, stroked;
    black.addText(0xFF000000);
    stroked.addStrokeText(4, 0xFF000000, 1, 0, ZV_STROKE_OUTSIDE);
    stroked.addText(0xFF000000);
    TextLayer layer;
    layer.effect = &black;
    layer.spread = 4;
    const ZvBitmap widened = text.draw(&layer), outlined = drawnText(stroked);
    layer.knockout = true;
    layer.x = 3;
    const ZvBitmap ring = text.draw(&layer);
    int seen = 0;
    for (int i = 0; i < kLayeredWidth * kLayeredHeight; ++i) {
        const uint32_t glyphs = text.at(i % 90, i / 90);
        const int at = i * 4 + 3;
        ASSERT_TRUE(widened.pixels[at] == outlined.pixels[at] || (glyphs > 0 && glyphs < 255)) << i;
        ASSERT_TRUE(ring.pixels[at] == 0 || glyphs < 255) << i;
        seen += ring.pixels[at];
    }
    EXPECT_GT(seen, 0);
}

// Glyphs with colours lie over the effects around them where they are alone, over the fill where other glyphs
// or the spread reach.
TEST(TextLayers, ColorGlyphsTakeThePlaceOfTheFill) {
    LayeredText text;
    ZvEffect around;
    around.addOuterGlowText(6, 0xFF00FF00, 0.7f, 0, nullptr);
    around.addOuterShadowText(135, 5, 4, 0xFF203040, 0.6f);
    ColorGlyphLayer glyphs;
    glyphs.x = text.coverage->box.left - 3;
    glyphs.y = text.coverage->box.top + 2;
    glyphs.picture = ZvBitmap(70, 15, 4);
    glyphs.around = &around;
    auto* words = reinterpret_cast<uint32_t*>(glyphs.picture.pixels);
    // On the left half of the first line, and with less than the coverage in every fifth column.
    for (int i = 0; i < 70 * 15; ++i) {
        const uint32_t coverage = text.at(i % 70 + glyphs.x, i / 70 + glyphs.y);
        const uint32_t alpha = i % 70 < 25 ? coverage / (i % 5 == 0 ? 2 : 1) : 0;
        if (alpha != 0) words[i] = alpha << 24 | 0x3060C0;
    }
    for (const uint32_t color : {0xFFFF8040u, 0x80FF8040u}) {
        text.plain.addText(color);
        around.textAlpha = static_cast<uint8_t>(color >> 24);
        TextLayer layer, under;
        layer.effect = &text.plain;
        under.effect = &around;
        const ZvBitmap filled = text.draw(&layer), beneath = text.draw(&under);
        layer.colorGlyphs = &glyphs;
        const ZvBitmap actual = text.draw(&layer);
        int alone = 0, mixed = 0;
        for (int i = 0; i < kLayeredWidth * kLayeredHeight; ++i) {
            const int x = i % 90 - glyphs.x, y = i / 90 - glyphs.y;
            const uint32_t source = x >= 0 && x < 70 && y >= 0 && y < 15 ? words[y * 70 + x] : 0;
            const bool isAlone = source != 0 && text.at(i % 90, i / 90) <= source >> 24;
            const uint8_t* const below = (isAlone ? beneath : filled).pixels + i * 4;
            const uint8_t* const made = actual.pixels + i * 4;
            const double s = (source >> 24) / 255.0 * (color >> 24) / 255.0, b = below[3] / 255.0;
            const double alpha = s + b * (1 - s);
            ASSERT_NEAR(made[3], alpha * 255, 0.51) << i;
            for (int k = 0; k < 3 && alpha > 0; ++k) {
                const double c = (source >> 8 * k & 255) * s + below[k] * b * (1 - s);
                ASSERT_NEAR(made[k], c / alpha, 0.51) << i;
            }
            alone += isAlone;
            mixed += source != 0 && !isAlone;
        }
        EXPECT_GT(alone, 100);
        EXPECT_GT(mixed, 10);
        layer.x = 20;
        layer.y = -2;
        ZvBitmap moved(kLayeredWidth, kLayeredHeight, 4);
        JoinedLayer joined;
        joined.picture = &actual;
        joined.x = layer.x;
        joined.y = layer.y;
        joinLayers(&moved, &joined, 1);
        EXPECT_TRUE(samePixels(moved, text.draw(&layer)));
    }
}

// Layers that share a stack look as with equal stacks of their own; without a cut it draws once a spread.
TEST(TextLayers, LayersOfOneStackAreDrawnOnce) {
    struct Counting : TextCoverage {
        int drawn = 0;
        int doPostProcessing(ParamPostProcessing*) override { return ++drawn; }
    };
    LayeredText text;
    for (const int inset : {0, 8}) {
        const ZvRect clip(inset, 0, kLayeredWidth, kLayeredHeight - inset);
        ZvEffect own[4];
        auto* counting = new Counting;
        own[0].effects.push_back(counting);
        TextLayer shared[4], apart[4];
        for (int i = 0; i < 4; ++i) {
            addGlowAndShadow(own[i]);
            shared[i].x = 5 * i - 7;
            shared[i].y = 3 - 2 * i;
            shared[i].spread = i == 3 ? 2 : 0;
            shared[i].knockout = i == 1;
            shared[i].opacity = 0.5f;
            apart[i] = shared[i];
            apart[i].effect = &own[i];
            shared[i].effect = &own[0];
        }
        const ZvBitmap expected = text.draw(apart, 4, clip);
        counting->drawn = 0;
        EXPECT_TRUE(samePixels(expected, text.draw(shared, 4, clip))) << inset;
        EXPECT_EQ(counting->drawn, inset == 0 ? 2 : 4);
    }
}

TEST(TextLayers, MarginsGrowWithSpreadAndOffset) {
    ZvEffect glow, none;
    glow.addOuterGlowText(10, 0xFFFFFFFF, 1, 0, nullptr);
    const int own = glow.getLeftOffset();
    TextLayer layers[2];
    layers[0].effect = &glow;
    layers[0].spread = 5;
    layers[0].x = -3;
    layers[1].effect = &none;
    layers[1].spread = -50;
    layers[1].y = 70;
    const ZvRect margins = marginsOf(layers, 2);
    EXPECT_EQ(margins.left, own + 8);
    EXPECT_EQ(margins.right, own + 2);
    EXPECT_EQ(margins.top, own + 5);
    EXPECT_EQ(margins.bottom, 70);
    TextCoverage coverage;
    coverage.margins = margins;
    EXPECT_EQ(coverage.getBottomOffset(), 70);
}

TEST(TextLayers, WithoutMemoryThePictureIsLeftOrLacksAnEffect) {
    LayeredText text;
    TextLayer layers[3];
    for (TextLayer& layer : layers) layer.effect = &text.plain;
    layers[1].spread = -2;
    layers[2].spread = 3;
    layers[2].blend = LayerBlend::Screen;
    ColorGlyphLayer glyphs;
    glyphs.picture = ZvBitmap(20, 20, 4);
    glyphs.around = &text.plain;
    layers[0].colorGlyphs = &glyphs;
    const ZvRect clip(0, 0, kLayeredWidth, kLayeredHeight);
    ZvBitmap picture(kLayeredWidth, kLayeredHeight, 4);
    const ZvBitmap before(picture);
    forEachFailingAllocation([&](bool fails) {
        std::memset(picture.pixels, 0, picture.byteCount());
        const bool drawn = drawTextLayers(&picture, *text.coverage, layers, 3, clip);
        EXPECT_TRUE(drawn || fails);
        EXPECT_EQ(bool(samePixels(before, picture)), !drawn);
    });
}

}  // namespace
}  // namespace Zvex
