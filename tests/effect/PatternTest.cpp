// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvPattern.h"

#include <gtest/gtest.h>

#include "effect/ZvProperty.h"
#include "raster/ZvBitmap.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/PatternReference.h"

namespace Zvex {
namespace {

// Straight colours of any alpha.
ZvBitmap makePattern(int width, int height) {
    Random random(static_cast<unsigned>(100 * width + height));
    ZvBitmap pattern(static_cast<unsigned>(width), static_cast<unsigned>(height), 4);
    for (size_t i = 0; i < pattern.byteCount(); ++i)
        pattern.pixels[i] = static_cast<uint8_t>(random.below(4) == 0 ? 255 : random.below(256));
    return pattern;
}

void setPattern(ZvPattern& filter, ZvBitmap* bitmap, float scale, float opacity) {
    ZvPatternProperty property(bitmap, scale, opacity);
    filter.setProperty(&property);
}

// Products beyond 32 bits among them. On wide scenes, what repeats along rows, columns, both or neither takes
// different ways; so do short repeats and long ones.
TEST(Pattern, EqualsThePlainForm) {
    const struct {
        int width, height;
        float scale, opacity;
        bool wide;
    } cases[] = {{1, 1, 1, 1, false},         {5, 3, 1, 1, false},
                 {4, 6, 2, 0.5f, false},      {7, 5, 1.5f, 1, false},
                 {3, 4, 0.37f, 0.3f, false},  {2, 3, 10, 1, false},
                 {41, 37, 0.9f, 1, false},    {10, 12, 0.1f, 1, false},
                 {64, 4, 0.33f, 0.9f, false}, {6, 5, 3.3f, 0, false},
                 {5, 5, 1.2f, 1.7f, false},   {5, 4, 1, 300, false},
                 {6, 7, 0.7f, 1e7f, false},   {40, 30, 1, 132626.234f, false},
                 {5, 3, 1, 1, true},          {7, 300, 1.3f, 0.8f, true},
                 {150, 3, 2, 1, true},        {130, 300, 2.1f, 1, true},
                 {700, 3, 1, 1, true},        {900, 50, 1.1f, 0.6f, true},
                 {64, 50, 4, 1.5f, true}};
    unsigned seed = 0;
    for (const auto& c : cases) {
        ZvPattern filter;
        ZvBitmap pattern = makePattern(c.width, c.height);
        {
            ZvBitmap givenUp(pattern);
            setPattern(filter, &givenUp, c.scale, c.opacity);
        }
        const auto plain = [&](FilterScene& scene) {
            reference::drawPattern(&scene.target, scene.mask, scene.box, pattern, c.scale, c.opacity);
        };
        expectThePlainForm(filter, seed, c.wide ? 6 : 12, plain, c.wide ? 620 : 30, c.wide ? 18 : 22);
        seed += 12;
    }
}

TEST(Pattern, BitmapsThatAreNoneDrawNothing) {
    FilterScene scene(2);
    const FilterScene before(2);
    ZvPattern filter;
    ZvBitmap colors = makePattern(40, 30), high = makePattern(4, 30), wide = makePattern(30, 4);
    ZvBitmap empty, coverage(4, 9, 1), flat(4, 0, 4), unallocated;
    unallocated.width = unallocated.height = unallocated.bytesPerPixel = 4;
    for (ZvBitmap* bitmap :
         {static_cast<ZvBitmap*>(nullptr), &empty, &coverage, &flat, &unallocated, &high, &wide}) {
        // The scale of 0.2 makes repeats shorter than a pixel.
        setPattern(filter, bitmap, bitmap == &high || bitmap == &wide ? 0.2f : 1, 1);
        EXPECT_EQ(scene.draw(filter), 0);
    }
    EXPECT_TRUE(scene.sameAs(before));
    setPattern(filter, &colors, 1, 1);
    EXPECT_NE(filter.property->bitmap, &colors);
    for (float scale : {1e9f, 3e38f, kEndless}) {  // must not fault; draws the first pixel
        filter.property->scale = scale;
        filter.property->opacity = kEndless;
        EXPECT_EQ(scene.draw(filter), 0);
    }
}

}  // namespace
}  // namespace Zvex
