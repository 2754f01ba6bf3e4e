// SPDX-License-Identifier: Apache-2.0
#include "effect/Composite.h"

#include <gtest/gtest.h>

#include "raster/ZvBitmap.h"
#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/CompositeReference.h"

namespace Zvex {
namespace {

void mergeAllBytes() {
    ZvBitmap picture(256, 256, 4), back(256, 256, 4), mask(256, 256, 1);
    for (int coverage = 0; coverage < 256; ++coverage) {
        for (int y = 0; y < 256; ++y) {
            for (int x = 0; x < 256; ++x) {
                for (int c = 0; c < 4; ++c) {
                    picture.pixels[(y * 256 + x) * 4 + c] = static_cast<uint8_t>(c % 2 == 0 ? x : 255 - x);
                    back.pixels[(y * 256 + x) * 4 + c] = static_cast<uint8_t>(y);
                }
                mask.pixels[y * 256 + x] = static_cast<uint8_t>(coverage);
            }
        }
        mergeBackLayer(&picture, &back, &mask);
        int differences = 0;
        for (int i = 0; i < 256 * 256 * 4; ++i) {
            const int x = i / 4 % 256, y = i / 1024;
            const int front = i % 2 == 0 ? x : 255 - x;
            differences += picture.pixels[i] != reference::mergeByte(front, y, coverage);
        }
        ASSERT_EQ(differences, 0) << "coverage " << coverage;
    }
}

// Every front byte, back byte and coverage, at each of the four bytes of a pixel.
TEST(Composite, MergeEqualsTheDefinitionOnAllBytes) {
    forEachCpuTarget(mergeAllBytes);
}

void finishAllBytes() {
    ZvBitmap picture(256, 256, 4);
    for (int textAlpha = 0; textAlpha < 256; ++textAlpha) {
        for (int i = 0; i < 256 * 256; ++i) {
            for (int c = 0; c < 3; ++c) picture.pixels[i * 4 + c] = static_cast<uint8_t>(i + c);
            picture.pixels[i * 4 + 3] = static_cast<uint8_t>(i >> 8);
        }
        finishPicture(&picture, static_cast<uint8_t>(textAlpha));
        int differences = 0;
        for (int i = 0; i < 256 * 256; ++i) {
            const int alpha = i >> 8;
            for (int c = 0; c < 3; ++c) {
                differences +=
                    picture.pixels[i * 4 + c] != reference::finishedColor((i + c) & 0xFF, alpha, textAlpha);
            }
            differences += picture.pixels[i * 4 + 3] != reference::finishedAlpha(alpha, textAlpha);
        }
        ASSERT_EQ(differences, 0) << "text alpha " << textAlpha;
    }
}

// Every colour byte, alpha and text alpha, also colours above their alpha.
TEST(Composite, FinishEqualsTheDefinitionOnAllBytes) {
    forEachCpuTarget(finishAllBytes);
}

// Whatever the widths; in the mask, whole runs.
TEST(Composite, MergesPixelByPixelInMemory) {
    Random random(1);
    for (const MaskKind kind : {MaskKind::Noise, MaskKind::Shapes, MaskKind::Full}) {
        ZvBitmap picture = makeTarget(TargetKind::Partly, 160, 5, random), expected(picture);
        ZvBitmap back = makeTarget(TargetKind::Partly, 190, 3, random), mask = makeMask(kind, 150, 8, random);
        for (size_t at = 0; at < back.byteCount(); ++at) {  // bytes of the smallest of the three
            const int merged = reference::mergeByte(picture.pixels[at], back.pixels[at], mask.pixels[at / 4]);
            expected.pixels[at] = static_cast<uint8_t>(merged);
        }
        mergeBackLayer(&picture, &back, &mask);
        EXPECT_TRUE(samePixels(expected, picture));
    }
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
