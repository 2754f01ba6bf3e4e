// SPDX-License-Identifier: Apache-2.0
#include "effect/Canvas.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "effect/ZvEffect.h"
#include "tests/effect/StackPictures.h"
#include "tests/effect/TestPictures.h"

namespace Zvex {
namespace {

uint32_t canvasWord(const ZvBitmap& picture, unsigned x, unsigned y) {
    uint32_t word;
    std::memcpy(&word, picture.pixels + (y * picture.width + x) * 4, 4);
    return word;
}

// A fill of the whole picture equals the fill of one glyph of that size, whatever the picture held before.
TEST(Canvas, FillsAsOneGlyphOfThePicturesSize) {
    Random random(1);
    const unsigned width = 600, height = 301;
    const std::vector<Line> full = {{0, 0, makeMask(MaskKind::Full, width, height, random)}};
    ZvGradient stops[] = {{0xFFFF0000, 1, 0}, {0xFF0000FF, 0.5f, 1}};
    ZvBitmap tile = makeTarget(TargetKind::Opaque, 7, 5, random);
    for (int kind = 0; kind < 3; ++kind) {
        ZvEffect fill;
        if (kind == 0) fill.addLinearGradientText(37, 1, 1, 2, stops);
        if (kind == 1) fill.addRadialGradientText(0.8f, 1, 2, stops);
        if (kind == 2) fill.addPatternText(&tile, 3, 1);
        ZvBitmap actual = makeTarget(TargetKind::Partly, width, height, random);
        const ZvBitmap expected = asPicture(fill, width, height, full, PixelOrder::BlueFirst);
        fillCanvas(&actual, &fill);
        EXPECT_TRUE(samePixels(expected, actual)) << "kind " << kind;
        EXPECT_NE(canvasWord(actual, 0, 0), canvasWord(actual, width / 2, height - 1)) << "kind " << kind;
    }
}

TEST(Canvas, FillsWithAColorAndKnowsNoOtherDepth) {
    ZvBitmap picture(3, 2, 4), mask(3, 2, 1);
    fillCanvas(&picture, 0x80102030);
    fillCanvas(&mask, 0x80102030);
    fillCanvas(nullptr, 0x80102030);
    for (unsigned i = 0; i < 6; ++i) EXPECT_EQ(canvasWord(picture, i % 3, i / 3), 0x80102030u);
    EXPECT_EQ(mask.pixels[0], 0);
}

}  // namespace
}  // namespace Zvex
