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
        // The precision of the constant matters from radius 963 on, that of the product from 2452.
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

// Quotients never fall as the sum grows, so testing the ends of each run of equal ones covers all sums.
TEST(Gaussian, DividesEverySumExactly) {
    std::vector<int> radii = {999, 5000, 70000, 150000};
    for (int radius = 0; radius <= 150; ++radius) radii.push_back(radius);
    for (const int radius : radii) {
        Gaussian kernel;
        ASSERT_TRUE(kernel.make(radius, radius % 2 == 0 ? 100 : 128, GaussianConstant::Single));
        const uint64_t total = kernel.total;
        const auto [factor, multiplier, shift] = kernel.divisor;
        ASSERT_EQ(factor == 0, total > 1u << 12);
        ASSERT_EQ(multiplier == 0, total > 1u << 23);
        for (uint64_t i = 0; i < 256; ++i) {
            for (const uint64_t sum : {i * total, i * total + total - 1}) {
                const uint64_t byFactor = static_cast<uint64_t>(static_cast<float>(sum) * factor);
                ASSERT_EQ(factor != 0 ? byFactor : i, i) << radius;
                ASSERT_EQ(multiplier != 0 ? sum * multiplier >> (32 + shift) : i, i) << radius;
            }
        }
    }
}

// The large planes have several strips and bands, with empty and full ones among them.
TEST(Gaussian, BlurEqualsThePlainForm) {
    Random random(1);
    for (int i = 0; i < 250; ++i) {
        const bool large = i % 5 == 0;
        const int radius = random.below(!large ? 8 : i % 3 == 0 ? 90 : 24);
        const int width = 2 * radius + (large ? random.between(60, 330) : random.between(1, 40));
        const int height = 2 * radius + random.between(1, i % 40 == 0 ? 90 : large ? 20 : 9);
        const ZvBitmap plane = makeMask(kAllMasks[static_cast<size_t>(i) % 6], width, height, random);
        const std::vector<uint8_t> source(plane.pixels, plane.pixels + width * height);
        const uint8_t before = static_cast<uint8_t>(random.below(256));
        std::vector<uint8_t> expected(source.size(), before);
        const reference::Blur blur{width,
                                   radius + random.below(2),
                                   width - radius - random.below(2),
                                   radius + random.below(2),
                                   height - radius - random.below(2),
                                   i % 2 == 1};
        const int scale = i % 4 < 2 ? 100 : 128;
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
}

// A line of pixels that begins at `at`, as a row, as a column and pixel by pixel, against the plain sums.
void expectThePlainPass(int radius, const std::vector<uint8_t>& source, int at, int count, bool inverted) {
    Gaussian kernel;
    ASSERT_TRUE(kernel.make(radius, 100, GaussianConstant::Single));
    // Its own: the plain form squares distances as ints.
    const std::vector<int> weights(kernel.weights.get(), kernel.weights.get() + radius + 1);
    const int end = at + static_cast<int>(source.size());
    const int64_t total = kernel.total;
    Blur blur;
    ASSERT_TRUE(blur.prepare(kernel, count, count));
    std::vector<uint8_t> expected, rows(static_cast<size_t>(count)), columns(rows);
    for (int x = 0; x < count; ++x) {
        const int64_t sum = reference::gaussianSum(weights, [&](int i) {
            return x + i >= at && x + i < end ? source[static_cast<size_t>(x + i - at)] : 0;
        });
        expected.push_back(static_cast<uint8_t>((inverted ? 255 * total - sum : sum) / total));
    }
    forEachCpuTarget([&] {
        blur.rows({source.data(), 0, at, end, rows.data(), 0, count, 1, false, inverted});
        blur.columns({source.data(), 1, at, end, columns.data(), 1, 1, count, false, inverted});
        ASSERT_EQ(rows, expected) << at;
        ASSERT_EQ(columns, expected) << at;
        if (inverted) return;
        ColumnSums sums;
        ASSERT_TRUE(sums.prepare(kernel, 0, count, 1));
        for (int y = at; y < end; ++y) sums.add(source.data() + (y - at), y);
        sums.finish(columns.data());
        ASSERT_EQ(columns, expected) << at;
    });
}

// One opaque run at each place in and beside a target of several blocks. The inverted pass shows even a
// single weight.
TEST(Gaussian, PassesTakeInTheLastPixelOfEachWindow) {
    for (int at = -71; at < 307; ++at) {
        for (bool inverted : {false, true})
            expectThePlainPass(5, std::vector<uint8_t>(64, 255), at, 300, inverted);
    }
}

TEST(Gaussian, SumsThatNoMultiplierDividesEqualThePlainForm) {
    Random random(3);
    std::vector<uint8_t> source(100000);
    for (uint8_t& pixel : source) pixel = static_cast<uint8_t>(random.between(180, 255));
    for (bool inverted : {false, true}) expectThePlainPass(110000, source, -50000, 3, inverted);
}

}  // namespace
}  // namespace Zvex
