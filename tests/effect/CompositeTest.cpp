// SPDX-License-Identifier: Apache-2.0
#include "effect/Composite.h"

#include <gtest/gtest.h>

#include <cstring>

#include "raster/ZvBitmap.h"
#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/CompositeReference.h"

namespace Zvex {
namespace {

// Every front byte, back byte and coverage, at each of the four bytes of a pixel.
TEST(Composite, MergeEqualsTheDefinitionOnAllBytes) {
    ZvBitmap front(256, 256, 4), back(front), mask(256, 256, 1), expected(front);
    for (int coverage = 0; coverage < 256; ++coverage) {
        std::memset(mask.pixels, coverage, mask.byteCount());
        for (int i = 0; i < 256 * 256 * 4; ++i) {
            const int x = i / 4 % 256, y = i / 1024;
            front.pixels[i] = static_cast<uint8_t>(i % 2 == 0 ? x : 255 - x);
            back.pixels[i] = static_cast<uint8_t>(y);
            expected.pixels[i] = static_cast<uint8_t>(reference::mergeByte(front.pixels[i], y, coverage));
        }
        forEachCpuTarget([&] {
            ZvBitmap actual(front);
            mergeBackLayer(&actual, &back, &mask);
            ASSERT_TRUE(samePixels(expected, actual)) << "coverage " << coverage;
        });
    }
}

// Every colour byte, alpha and text alpha, also colours above their alpha.
TEST(Composite, FinishEqualsTheDefinitionOnAllBytes) {
    ZvBitmap picture(256, 256, 4), expected(picture);
    for (int textAlpha = 0; textAlpha < 256; ++textAlpha) {
        for (int i = 0; i < 256 * 256 * 4; ++i) {
            const int color = (i / 4 + i % 4) & 255, alpha = i >> 10;
            picture.pixels[i] = static_cast<uint8_t>(i % 4 == 3 ? alpha : color);
            expected.pixels[i] =
                static_cast<uint8_t>(i % 4 == 3 ? reference::finishedAlpha(alpha, textAlpha)
                                                : reference::finishedColor(color, alpha, textAlpha));
        }
        forEachCpuTarget([&] {
            ZvBitmap actual(picture);
            finishPicture(&actual, static_cast<uint8_t>(textAlpha));
            ASSERT_TRUE(samePixels(expected, actual)) << "text alpha " << textAlpha;
        });
    }
}

// Whatever the widths; in the mask, whole runs.
TEST(Composite, MergesPixelByPixelInMemory) {
    Random random(1);
    ZvBitmap picture = makeTarget(TargetKind::Partly, 160, 5, random), expected(picture);
    ZvBitmap back = makeTarget(TargetKind::Partly, 190, 3, random),
             mask = makeMask(MaskKind::Shapes, 150, 8, random);
    for (size_t at = 0; at < back.byteCount(); ++at) {  // bytes of the smallest of the three
        const int merged = reference::mergeByte(picture.pixels[at], back.pixels[at], mask.pixels[at / 4]);
        expected.pixels[at] = static_cast<uint8_t>(merged);
    }
    mergeBackLayer(&picture, &back, &mask);
    EXPECT_TRUE(samePixels(expected, picture));
}

TEST(Composite, IgnoresWhatIsNoPicture) {
    Random random(2);
    ZvBitmap picture = makeTarget(TargetKind::Partly, 4, 4, random);
    const ZvBitmap before(picture);
    ZvBitmap back(4, 4, 4), mask(4, 4, 1), empty, noPixels(0, 4, 4);
    for (ZvBitmap* bad : {static_cast<ZvBitmap*>(nullptr), &empty, &noPixels, &mask}) {
        mergeBackLayer(&picture, bad, &mask);
        mergeBackLayer(bad, &back, &mask);
        finishPicture(bad, 100);
    }
    for (ZvBitmap* bad : {static_cast<ZvBitmap*>(nullptr), &empty, &back})
        mergeBackLayer(&picture, &back, bad);
    EXPECT_TRUE(samePixels(before, picture));
}

}  // namespace
}  // namespace Zvex
