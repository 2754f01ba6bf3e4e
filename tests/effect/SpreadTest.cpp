// SPDX-License-Identifier: Apache-2.0
#include "effect/Spread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/StrokeReference.h"

namespace Zvex {
namespace {

// The coverage as defined, in the box and kAround pixels around it: the larger of itself and the stroke
// around it, over everything within reach.
constexpr int kAround = 30;
reference::Plane spreadPlainly(const ZvBitmap& mask, const ZvRect& box, int pixels) {
    const int r = std::abs(pixels), flip = pixels < 0 ? 255 : 0;
    reference::Plane plane{box.right - box.left + 2 * kAround, box.bottom - box.top + 2 * kAround, {}};
    for (int i = 0; i < plane.width * plane.height; ++i) {
        const int x = i % plane.width - kAround, y = i / plane.width - kAround;
        const bool inside = x >= 0 && y >= 0 && x < box.right - box.left && y < box.bottom - box.top;
        plane.values.push_back((inside ? reference::coverageIn(mask, box, x, y) : 0) ^ flip);
    }
    const reference::Plane stroke = reference::dilate(plane, reference::makeDisc(static_cast<float>(r)));
    for (int i = 0; i < plane.width * plane.height; ++i) {
        int& value = plane.values[static_cast<size_t>(i)];
        value = std::max(value, stroke.at(i % plane.width + r, i / plane.width + r)) ^ flip;
    }
    return plane;
}

TEST(Spread, EqualsThePlainForm) {
    const int widths[] = {0, 1, 2, 3, 5, 9, -1, -2, -3, -5, -12, 14};
    for (unsigned seed = 0; seed < 72; ++seed) {
        Random random(seed);
        const ZvBitmap mask = makeMask(kAllMasks[seed % 6], 34, 21, random);
        ZvRect box(0, 0, 34, 21);
        if (random.below(2) == 0) {
            box = ZvRect(random.between(-6, 12), random.between(-6, 9), random.between(14, 40),
                         random.between(10, 25));
        }
        const int pixels = widths[seed % 12];
        const reference::Plane expected = spreadPlainly(mask, box, pixels);
        forEachCpuTarget([&] {
            Spread spread;
            ASSERT_TRUE(spread.make(mask, box, pixels));
            const ZvRect& at = spread.box();
            if (at.left < at.right) {
                ASSERT_EQ(at.left, box.left - pixels);
                ASSERT_EQ(at.top, box.top - pixels);
                ASSERT_EQ(at.right, box.right + pixels);
                ASSERT_EQ(at.bottom, box.bottom + pixels);
            }
            for (int y = box.top - 16; y < box.bottom + 16; ++y) {
                for (int x = box.left - 16; x < box.right + 16; ++x) {
                    const bool inside = x >= at.left && x < at.right && y >= at.top && y < at.bottom;
                    const int actual =
                        inside ? spread.coverage()[(y - at.top) * (at.right - at.left) + x - at.left] : 0;
                    ASSERT_EQ(actual, expected.at(x - box.left + kAround, y - box.top + kAround))
                        << "seed " << seed << ", " << pixels << " pixels, at " << x << ", " << y;
                }
            }
        });
    }
}

TEST(Spread, HoldsItsWidthAndRefusesWhatDoesNotFit) {
    Random random(3);
    const ZvBitmap mask = makeMask(MaskKind::Full, 8, 8, random), none;
    Spread spread;
    ASSERT_TRUE(spread.make(mask, ZvRect(0, 0, 8, 8), INT_MAX));
    EXPECT_EQ(spread.box().right, 8 + kMaxSpread);
    ASSERT_TRUE(spread.make(mask, ZvRect(0, 0, 8, 8), INT_MIN));
    EXPECT_EQ(spread.box().left, spread.box().right);
    EXPECT_EQ(spread.coverage(), nullptr);
    EXPECT_TRUE(spread.make(mask, ZvRect(5, 5, 5, 9), 4));  // an empty box
    EXPECT_EQ(spread.coverage(), nullptr);
    EXPECT_FALSE(spread.make(none, ZvRect(0, 0, 8, 8), 1));
    for (const ZvRect& box :
         {ZvRect(INT_MIN, 0, INT_MAX, 9), ZvRect(0, 0, 65536, 65536), ZvRect(INT_MIN, 0, INT_MIN + 4, 4)}) {
        EXPECT_FALSE(spread.make(mask, box, 2));
        EXPECT_EQ(spread.coverage(), nullptr);
    }
}

}  // namespace
}  // namespace Zvex
