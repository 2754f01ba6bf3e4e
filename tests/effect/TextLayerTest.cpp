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
    param.layerMode = layerMode;  // no box: the whole mask is drawn
    param.overLayers = overLayers;
    EXPECT_EQ(text.doPostProcessing(&param), 0);
}

// With two layers the full colour lies wherever there is coverage; the first layer of one picture is blended.
TEST(TextLayer, EqualsABlendOfTheMask) {
    Random random(4);
    for (MaskKind maskKind : kAllMasks) {
        ZvBitmap mask = makeMask(maskKind, 20, 15, random);
        for (TargetKind kind : kAllTargets) {
            for (const int layerMode : {0, 1}) {
                ZvBitmap target = makeTarget(kind, 18, 17, random), expected(target);
                reference::drawBitmapBlend8(0, 0, &expected, mask.pixels, 20, 15, 20, kColor,
                                            layerMode == 1 ? 3 : 7);
                drawText(&target, &mask, layerMode, layerMode == 1);
                EXPECT_TRUE(samePixels(expected, target));
            }
        }
    }
}

// An inside stroke, or a gradient, that is drawn first fills all around the glyphs; only what covers them may
// stay.
TEST(TextLayer, OneLayerIsCutDownToTheGlyphs) {
    constexpr int W = 150;
    Random random(2);
    for (MaskKind maskKind : kAllMasks) {
        ZvBitmap mask = makeMask(maskKind, W, 15, random);
        for (TargetKind kind : kAllTargets) {
            for (int grow : {-3, 0, 4}) {  // pixels of the target beyond the mask count as not covered
                ZvBitmap target = makeTarget(kind, W + grow, 15 + grow, random);
                ZvBitmap expected(target);
                reference::drawBitmapBlend8(0, 0, &expected, mask.pixels, W, 15, W, kColor, 7);
                for (int y = 0; y < 15 + grow; ++y) {
                    for (int x = 0; x < W + grow; ++x) {
                        if (x < W && y < 15 && mask.pixels[y * W + x] != 0) continue;
                        std::memset(expected.pixels + (y * (W + grow) + x) * 4, 0, 4);
                    }
                }
                forEachCpuTarget([&] {
                    ZvBitmap actual(target);
                    drawText(&actual, &mask, 0, true);
                    EXPECT_TRUE(samePixels(expected, actual))
                        << "mask " << static_cast<int>(maskKind) << ", grow " << grow;
                });
            }
        }
    }
}

TEST(TextLayer, DrawsNothingWithoutItsParts) {
    Random random(3);
    ZvBitmap mask = makeMask(MaskKind::Noise, 6, 6, random);
    ZvBitmap target = makeTarget(TargetKind::Partly, 6, 6, random);
    const ZvBitmap before(target);
    ZvBitmap empty;
    for (int layerMode : {0, 1}) {
        drawText(nullptr, &mask, layerMode);
        drawText(&empty, &mask, layerMode);
        drawText(&mask, &mask, layerMode);  // not a colour picture
        drawText(&target, nullptr, layerMode);
        drawText(&target, &empty, layerMode);
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
