// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/Gaussian.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/FailingAllocations.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/GaussianReference.h"

namespace Zvex {
namespace {

TEST(Gaussian, WeightsAreTheDefinition) {
    for (GaussianConstant constant : {GaussianConstant::Single, GaussianConstant::Double}) {
        // 963 is the first radius at which the precision of the constant shows.
        for (int radius : {-3, 0, 1, 2, 3, 5, 17, 50, 68, 100, 963, 30000}) {
            for (int scale : {100, 128}) {
                Gaussian kernel;
                ASSERT_TRUE(kernel.make(radius, scale, constant));
                const std::vector<int> expected =
                    reference::gaussianWeights(radius, scale, constant == GaussianConstant::Single);
                ASSERT_EQ(static_cast<size_t>(kernel.radius) + 1, expected.size());
                EXPECT_EQ(std::vector<int>(kernel.weights.get(), kernel.weights.get() + expected.size()),
                          expected)
                    << radius;
                EXPECT_EQ(kernel.total, static_cast<uint32_t>(reference::gaussianTotal(expected)));
            }
        }
    }
    Gaussian two;
    ASSERT_TRUE(two.make(2, 100, GaussianConstant::Single));
    EXPECT_EQ(std::vector<int>(two.weights.get(), two.weights.get() + 3), (std::vector<int>{100, 32, 1}));
    EXPECT_FALSE(two.make(300000, 128, GaussianConstant::Single));  // the sums would not fit
}

TEST(Gaussian, BlurEqualsThePlainForm) {
    Random random(1);
    for (int i = 0; i < 200; ++i) {
        const int radius = random.below(8), width = 2 * radius + random.below(40),
                  height = 2 * radius + random.below(9);
        if (width < 1 || height < 1) continue;
        const ZvBitmap plane = makeMask(ALL_MASKS[static_cast<size_t>(i) % 6], width, height, random);
        const std::vector<uint8_t> source(plane.pixels, plane.pixels + width * height);
        const uint8_t before = static_cast<uint8_t>(random.below(256));
        std::vector<uint8_t> actual(source.size(), before), expected(actual);
        reference::Blur blur{width,
                             radius + random.below(2),
                             width - radius - random.below(2),
                             radius + random.below(2),
                             height - radius - random.below(2),
                             i % 2 == 1};
        blur.draw(source, expected, reference::gaussianWeights(radius, 100, true));
        Gaussian kernel;
        ASSERT_TRUE(kernel.make(radius, 100, GaussianConstant::Single));
        EXPECT_TRUE(blurPlane({source.data(), actual.data(), width, &kernel, blur.inverted, blur.xBegin,
                               blur.xEnd, blur.yBegin, blur.yEnd}));
        ASSERT_EQ(actual, expected) << "case " << i << ", radius " << radius << ", width " << width;
    }
}

TEST(Gaussian, WithoutMemoryNothingIsWritten) {
    const std::vector<uint8_t> source(100, 255);
    forEachFailingAllocation([&](bool fails) {
        uint8_t target[100] = {};
        Gaussian kernel;
        const bool drawn = kernel.make(2, 100, GaussianConstant::Single) &&
                           blurPlane({source.data(), target, 10, &kernel, false, 2, 8, 2, 8});
        EXPECT_EQ(drawn, !fails);
        EXPECT_EQ(target[55] == 0, fails);
    });
}

}  // namespace
}  // namespace Zvex
