// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Gaussian.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/CpuTargets.h"
#include "tests/effect/TestPictures.h"
#include "tests/reference/GaussianReference.h"

namespace Zvex {
namespace {

TEST(Gaussian, WeightsAreTheDefinition) {
    for (GaussianConstant constant : {GaussianConstant::Single, GaussianConstant::Double}) {
        // The precision of the constant shows from radius 963 on, that of the product from 2452.
        for (int radius : {-3, 0, 1, 2, 3, 5, 17, 50, 68, 100, 963, 2452, 30000}) {
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
    Gaussian endless;
    EXPECT_FALSE(endless.make(300000, 128, GaussianConstant::Single));  // the sums would not fit
}

// A quotient never falls as the sum grows, so that the ends of each run of equal ones decide about all sums.
TEST(Gaussian, DividesEverySumExactly) {
    for (int scale : {100, 128}) {
        for (int radius : {0, 1, 2, 3, 4, 5, 999, 5000, 70000, 150000}) {
            for (int next = 0; next < (radius == 5 ? 146 : 1); ++next) {
                Gaussian kernel;
                ASSERT_TRUE(kernel.make(radius + next, scale, GaussianConstant::Single));
                const auto quotient = [&](uint64_t sum) {
                    return sum * kernel.divisor.multiplier >> (32 + kernel.divisor.shift);
                };
                const uint64_t total = kernel.total;
                ASSERT_EQ(kernel.divisor.multiplier == 0, total > 1u << 23);
                for (uint64_t i = 0; i < 256 && kernel.divisor.multiplier != 0; ++i) {
                    ASSERT_EQ(quotient(i * total), i) << radius + next << " " << scale;
                    ASSERT_EQ(quotient(i * total + total - 1), i) << radius + next << " " << scale;
                }
            }
        }
    }
}

void expectThePlainBlur(int i, int radius, int scale, int width, int height, Random& random) {
    const ZvBitmap plane = makeMask(kAllMasks[static_cast<size_t>(i) % 6], width, height, random);
    const std::vector<uint8_t> source(plane.pixels, plane.pixels + width * height);
    const uint8_t before = static_cast<uint8_t>(random.below(256));
    std::vector<uint8_t> expected(source.size(), before);
    reference::Blur blur{width,
                         radius + random.below(2),
                         width - radius - random.below(2),
                         radius + random.below(2),
                         height - radius - random.below(2),
                         i % 2 == 1};
    blur.draw(source, expected, reference::gaussianWeights(radius, scale, true));
    Gaussian kernel;
    ASSERT_TRUE(kernel.make(radius, scale, GaussianConstant::Single));
    forEachCpuTarget([&] {
        std::vector<uint8_t> actual(source.size(), before);
        EXPECT_TRUE(blurPlane({source.data(), actual.data(), width, &kernel, blur.inverted, blur.xBegin,
                               blur.xEnd, blur.yBegin, blur.yEnd}));
        ASSERT_EQ(actual, expected) << "case " << i << ", radius " << radius << ", width " << width;
    });
}

TEST(Gaussian, BlurEqualsThePlainForm) {
    Random random(1);
    for (int i = 0; i < 200; ++i) {
        const int radius = random.below(8), width = 2 * radius + random.between(1, 40);
        expectThePlainBlur(i, radius, 100, width, 2 * radius + random.between(1, 9), random);
    }
    // Several strips and bands, with empty and full ones among them.
    for (int i = 0; i < 48; ++i) {
        const int radius = random.below(i % 3 == 0 ? 90 : 24), width = 2 * radius + random.between(60, 330);
        const int height = 2 * radius + random.between(1, i % 8 == 0 ? 90 : 20);
        expectThePlainBlur(i, radius, i % 4 < 2 ? 100 : 128, width, height, random);
    }
}

// One opaque run, at each place in and beside a target of several blocks. Inverted, a single weight shows.
TEST(Gaussian, PassesTakeInTheLastPixelOfEachWindow) {
    constexpr int kCount = 300, kRun = 64, kRadius = 5;
    Gaussian kernel;
    ASSERT_TRUE(kernel.make(kRadius, 100, GaussianConstant::Single));
    const std::vector<int> weights = reference::gaussianWeights(kRadius, 100, true);
    const std::vector<uint8_t> source(kRun, 255);
    Blur blur;
    ASSERT_TRUE(blur.prepare(kernel, kCount, kCount));
    for (int at = -kRun - kRadius - 2; at < kCount + kRadius + 2; ++at) {
        std::vector<uint8_t> expected, rows(kCount), columns(kCount);
        for (int x = 0; x < kCount; ++x) {
            const int64_t sum = reference::gaussianSum(
                weights, [&](int i) { return x + i >= at && x + i < at + kRun ? 255 : 0; });
            expected.push_back(static_cast<uint8_t>((int64_t{255} * kernel.total - sum) / kernel.total));
        }
        forEachCpuTarget([&] {
            blur.rows({source.data(), 0, at, at + kRun, rows.data(), 0, kCount, 1, false, true});
            blur.columns({source.data(), 1, at, at + kRun, columns.data(), 1, 1, kCount, false, true});
            ASSERT_EQ(rows, expected) << at;
            ASSERT_EQ(columns, expected) << at;
        });
    }
}

// Sums that no multiplier divides exactly; one pass, because a plane with room for its windows is too large.
TEST(Gaussian, BlurOfAnEndlessRadiusEqualsThePlainForm) {
    constexpr int kRadius = 110000;
    Gaussian kernel;
    ASSERT_TRUE(kernel.make(kRadius, 100, GaussianConstant::Single));
    // Its own: the plain form squares distances as ints.
    const std::vector<int> weights(kernel.weights.get(), kernel.weights.get() + kRadius + 1);
    Random random(3);
    std::vector<uint8_t> source(100000);
    for (uint8_t& pixel : source) pixel = static_cast<uint8_t>(random.between(180, 255));
    Blur blur;
    ASSERT_TRUE(blur.prepare(kernel, 3, 3));
    for (bool inverted : {false, true}) {
        uint8_t rows[3], columns[3];
        blur.rows({source.data(), 0, -50000, 50000, rows, 0, 3, 1, false, inverted});
        blur.columns({source.data(), 1, -50000, 50000, columns, 1, 1, 3, false, inverted});
        for (int x = 0; x < 3; ++x) {
            const int64_t sum = reference::gaussianSum(weights, [&](int i) {
                const int at = x + i + 50000;
                return at < 0 || at >= 100000 ? 0 : source[static_cast<size_t>(at)];
            });
            const int64_t total = kernel.total;
            const int expected = static_cast<int>((inverted ? 255 * total - sum : sum) / total);
            EXPECT_EQ(rows[x], expected);
            EXPECT_EQ(columns[x], expected);
        }
    }
}

}  // namespace
}  // namespace Zvex
