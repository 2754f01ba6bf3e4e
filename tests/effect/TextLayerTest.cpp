// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvText.h"

#include <gtest/gtest.h>

#include <cstring>

#include "raster/ZvBitmap.h"
#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/BlenderReference.h"

namespace Zvex {
namespace {

void drawText(ZvBitmap* target, ZvBitmap* mask, int layerMode, bool overLayers = false) {
    ZvText text;
    ZvTextProperty property(kColor, 1.0f);
    text.setProperty(&property);
    ZvECore::ParamPostProcessing param;
    param.target = target;
    param.mask = mask;
    param.layerMode = layerMode;  // without a box the whole mask is drawn
    param.overLayers = overLayers;
    EXPECT_EQ(text.doPostProcessing(&param), 0);
}

// With two pictures the full colour lies wherever there is coverage; the first layer of one picture is
// blended. Over other layers it cuts them down to the glyphs: an inside stroke or a gradient fills all around
// them. Pixels of the target beyond the mask count as not covered.
TEST(TextLayer, EqualsThePlainForm) {
    constexpr int W = 150;
    Random random(2);
    for (int i = 0; i < 6 * 3 * 3 * 4; ++i) {
        ZvBitmap mask = makeMask(kAllMasks[i % 6], W, 15, random);
        const int grow = i / 18 % 3 * 4 - 4, layerMode = i / 54 % 2;
        const bool cut = i / 108 == 1;
        ZvBitmap target = makeTarget(kAllTargets[i / 6 % 3], W + grow, 15 + grow, random), expected(target);
        reference::drawBitmapBlend8(0, 0, &expected, mask.pixels, W, 15, W, kColor, layerMode == 1 ? 3 : 7);
        for (int at = 0; at < (W + grow) * (15 + grow) && cut && layerMode == 0; ++at) {
            const int x = at % (W + grow), y = at / (W + grow);
            if (x < W && y < 15 && mask.pixels[y * W + x] != 0) continue;
            std::memset(expected.pixels + at * 4, 0, 4);
        }
        forEachCpuTarget([&] {
            ZvBitmap actual(target);
            drawText(&actual, &mask, layerMode, cut);
            EXPECT_TRUE(samePixels(expected, actual)) << "case " << i;
        });
    }
}

TEST(TextLayer, DrawsNothingWithoutItsParts) {
    Random random(3);
    ZvBitmap mask = makeMask(MaskKind::Noise, 6, 6, random);
    ZvBitmap target = makeTarget(TargetKind::Partly, 6, 6, random);
    const ZvBitmap before(target);
    ZvBitmap empty;
    for (int layerMode : {0, 1}) {
        for (ZvBitmap* bad : {static_cast<ZvBitmap*>(nullptr), &empty}) {
            drawText(bad, &mask, layerMode);
            drawText(&target, bad, layerMode);
        }
        drawText(&mask, &mask, layerMode);  // not a colour picture
    }
    ZvText text;
    ZvECore::ParamPostProcessing param;
    param.target = &target;
    param.mask = &mask;
    text.setProperty(nullptr);
    text.doPostProcessing(&param);  // no settings
    text.doPostProcessing(nullptr);
    EXPECT_TRUE(samePixels(before, target));
}

}  // namespace
}  // namespace Zvex
