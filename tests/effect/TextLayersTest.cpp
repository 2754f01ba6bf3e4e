// SPDX-License-Identifier: Apache-2.0
#include "effect/TextLayers.h"

#include <gtest/gtest.h>

#include <cstring>

#include "effect/LayerJoin.h"
#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "tests/FailingAllocations.h"
#include "tests/effect/TestPictures.h"

namespace Zvex {
namespace {

constexpr unsigned kLayeredWidth = 90, kLayeredHeight = 60;

void addGlowAndShadow(ZvEffect& effect) {
    effect.addOuterGlowText(6, 0xFF00FF00, 0.7f, 0, nullptr);
    effect.addOuterShadowText(135, 5, 4, 0xFF203040, 0.6f);
    effect.addText(0xFFFF8040);
}

// Two lines, the second one beyond the right edge, as a text object passes them.
void drawLines(ZvEffect& effect, ZvBitmap* picture) {
    Random random(2);
    const ZvBitmap line = makeMask(MaskKind::Shapes, 50, 20, random);
    ZvGlyph glyph;
    glyph.pixels = line.pixels;
    glyph.width = 50;
    glyph.height = 20;
    effect.initPicture(picture);
    effect.renderEffectLayer(12, 9, &glyph);
    effect.renderEffectLayer(55, 31, &glyph);
    effect.drawPicture(PixelOrder::BlueFirst);
}

struct LayeredText {
    ZvEffect plain, owner;
    TextCoverage* coverage = new TextCoverage;

    LayeredText() {
        addGlowAndShadow(plain);
        owner.effects.push_back(coverage);
        ZvBitmap none(kLayeredWidth, kLayeredHeight, 4);
        drawLines(owner, &none);
    }
};

// Within the clip, a single layer equals the text with that stack; a moved layer equals that picture moved.
TEST(TextLayers, ALayerIsThePictureOfItsStack) {
    LayeredText text;
    const ZvRect clip(7, 5, 85, 52);
    for (int x : {0, -9, 14}) {
        TextLayer layer;
        layer.effect = &text.plain;
        layer.x = x;
        layer.y = x / 2;
        ZvBitmap stack(kLayeredWidth, kLayeredHeight, 4), expected(stack), actual(stack);
        ASSERT_TRUE(drawTextLayers(&actual, *text.coverage, &layer, 1, clip));
        ZvEffect effect;
        addGlowAndShadow(effect);
        drawLines(effect, &stack);
        JoinedLayer joined;
        joined.picture = &stack;
        joined.x = layer.x;
        joined.y = layer.y;
        joinLayers(&expected, &joined, 1);
        for (int i = 0; i < static_cast<int>(kLayeredWidth * kLayeredHeight); ++i) {
            const int column = i % 90, row = i / 90;
            const bool shows =
                column >= clip.left && column < clip.right && row >= clip.top && row < clip.bottom;
            if (!shows) std::memset(expected.pixels + i * 4, 0, 4);
        }
        EXPECT_TRUE(samePixels(expected, actual)) << "moved by " << x;
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
    ZvBitmap widened(kLayeredWidth, kLayeredHeight, 4), outlined(widened), ring(widened);
    const ZvRect clip(0, 0, kLayeredWidth, kLayeredHeight);
    ASSERT_TRUE(drawTextLayers(&widened, *text.coverage, &layer, 1, clip));
    drawLines(stroked, &outlined);
    layer.knockout = true;
    layer.x = 3;
    ASSERT_TRUE(drawTextLayers(&ring, *text.coverage, &layer, 1, clip));
    const ZvRect& box = text.coverage->box;
    int seen = 0;
    for (int y = 0; y < static_cast<int>(kLayeredHeight); ++y) {
        for (int x = 0; x < static_cast<int>(kLayeredWidth); ++x) {
            const bool inBox = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
            const int glyphs =
                inBox ? text.coverage->mask.pixels[(y - box.top) * (box.right - box.left) + x - box.left] : 0;
            const int at = (y * static_cast<int>(kLayeredWidth) + x) * 4 + 3;
            if (glyphs == 0 || glyphs == 255) {
                ASSERT_EQ(widened.pixels[at], outlined.pixels[at]) << x << ", " << y;
            }
            if (glyphs == 255) {
                ASSERT_EQ(ring.pixels[at], 0) << x << ", " << y;
            }
            seen += ring.pixels[at];
        }
    }
    EXPECT_GT(seen, 0);
}

// Glyphs with colours lie over the effects around them where they are alone, over the fill where other glyphs
// or the spread reach.
TEST(TextLayers, ColourGlyphsTakeThePlaceOfTheFill) {
    LayeredText text;
    const ZvRect& box = text.coverage->box;
    ZvEffect around;
    around.addOuterGlowText(6, 0xFF00FF00, 0.7f, 0, nullptr);
    around.addOuterShadowText(135, 5, 4, 0xFF203040, 0.6f);
    ColourGlyphs glyphs;
    glyphs.x = box.left - 3;
    glyphs.y = box.top + 2;
    glyphs.picture = ZvBitmap(70, 15, 4);
    glyphs.around = &around;
    auto* words = reinterpret_cast<uint32_t*>(glyphs.picture.pixels);
    const auto coverageAt = [&](int x, int y) -> uint32_t {
        const bool inBox = x >= box.left && x < box.right && y >= box.top && y < box.bottom;
        return inBox ? text.coverage->mask.pixels[(y - box.top) * (box.right - box.left) + x - box.left] : 0;
    };
    // On the left half of the first line, and with less than the coverage in every fifth column.
    for (int i = 0; i < 70 * 15; ++i) {
        const int x = i % 70 + glyphs.x, y = i / 70 + glyphs.y;
        const uint32_t alpha = i % 70 < 25 ? coverageAt(x, y) / (i % 5 == 0 ? 2 : 1) : 0;
        if (alpha != 0) words[i] = alpha << 24 | 0x3060C0;
    }
    for (const uint32_t color : {0xFFFF8040u, 0x80FF8040u}) {
        text.plain.addText(color);
        ZvBitmap filled(kLayeredWidth, kLayeredHeight, 4), beneath(filled), actual(filled);
        TextLayer layer;
        layer.effect = &text.plain;
        const ZvRect clip(0, 0, kLayeredWidth, kLayeredHeight);
        ASSERT_TRUE(drawTextLayers(&filled, *text.coverage, &layer, 1, clip));
        around.textAlpha = static_cast<uint8_t>(color >> 24);
        TextLayer under;
        under.effect = &around;
        ASSERT_TRUE(drawTextLayers(&beneath, *text.coverage, &under, 1, clip));
        layer.colours = &glyphs;
        ASSERT_TRUE(drawTextLayers(&actual, *text.coverage, &layer, 1, clip));
        int alone = 0, mixed = 0;
        for (int i = 0; i < static_cast<int>(kLayeredWidth * kLayeredHeight); ++i) {
            const int x = i % 90 - glyphs.x, y = i / 90 - glyphs.y;
            const uint32_t source = x >= 0 && x < 70 && y >= 0 && y < 15 ? words[y * 70 + x] : 0;
            const auto pixelOf = [i](const ZvBitmap& bitmap) {
                uint32_t word;
                std::memcpy(&word, bitmap.pixels + i * 4, 4);
                return word;
            };
            const bool isAlone = source != 0 && coverageAt(i % 90, i / 90) <= source >> 24;
            const uint32_t below = pixelOf(isAlone ? beneath : filled), made = pixelOf(actual);
            const double s = (source >> 24) / 255.0 * (color >> 24) / 255.0, b = (below >> 24) / 255.0;
            const double alpha = s + b * (1 - s);
            ASSERT_NEAR(made >> 24, alpha * 255, 0.51) << i;
            for (int shift = 0; shift < 24 && alpha > 0; shift += 8) {
                const double c = (source >> shift & 255) * s + (below >> shift & 255) * b * (1 - s);
                ASSERT_NEAR(made >> shift & 255, c / alpha, 0.51) << i;
            }
            alone += isAlone;
            mixed += source != 0 && !isAlone;
        }
        EXPECT_GT(alone, 100);
        EXPECT_GT(mixed, 10);
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
        ZvBitmap expected(kLayeredWidth, kLayeredHeight, 4), actual(expected);
        ASSERT_TRUE(drawTextLayers(&expected, *text.coverage, apart, 4, clip));
        counting->drawn = 0;
        ASSERT_TRUE(drawTextLayers(&actual, *text.coverage, shared, 4, clip));
        EXPECT_TRUE(samePixels(expected, actual)) << inset;
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
    ColourGlyphs glyphs;
    glyphs.picture = ZvBitmap(20, 20, 4);
    glyphs.around = &text.plain;
    layers[0].colours = &glyphs;
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
