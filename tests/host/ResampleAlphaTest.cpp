// SPDX-License-Identifier: Apache-2.0
#include "platform/host/ResampleAlpha.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int64_t kOne = 65536;

// The definition in floating point: the mean of the source under a box.
double boxMean(const host::ResampleParam& p, int i, int j) {
    const auto real = [](int64_t v) { return static_cast<double>(v) / kOne; };
    const double x = real(p.x + i * p.xStep + j * p.xShear), y = real(p.y + j * p.yStep);
    const double halfWidth = std::max(1.0, std::fabs(real(p.xStep))) / 2;
    const double halfHeight = std::max(1.0, real(p.yStep)) / 2;
    double sum = 0;
    for (int row = 0; row < p.sourceHeight; ++row) {
        const double high = std::min(row + 1.0, y + halfHeight) - std::max<double>(row, y - halfHeight);
        for (int column = 0; column < p.sourceWidth; ++column) {
            const double wide =
                std::min(column + 1.0, x + halfWidth) - std::max<double>(column, x - halfWidth);
            if (high > 0 && wide > 0)
                sum += high * wide * p.source[row * p.sourceStride + column * p.sourceStep];
        }
    }
    return sum / (4 * halfWidth * halfHeight);
}

struct Case {
    double xStep, xShear, yStep;
};

TEST(ResampleAlpha, IsTheMeanUnderEachPixelsBox) {
    std::mt19937 random(7);
    const Case cases[] = {{1, 0, 1},       {0.3, 0, 0.3}, {2.75, 0, 3.2}, {-1.5, 0, 1.5},
                          {0.5, 0.125, 2}, {9, -2.25, 9}, {100, 0, 100},  {0.001, 0, 0.001}};
    for (const Case& c : cases) {
        const int width = 13, height = 11, step = 4, stride = width * step + 3;
        std::vector<uint8_t> source(static_cast<size_t>(stride) * height);
        for (uint8_t& byte : source) byte = static_cast<uint8_t>(random());
        std::vector<uint8_t> target(17 * 15 + 1, 0xAB);
        host::ResampleParam p;
        p.source = source.data() + 3;
        p.sourceWidth = width;
        p.sourceHeight = height;
        p.sourceStride = stride;
        p.sourceStep = step;
        p.target = target.data();
        p.targetWidth = 17;
        p.targetHeight = 15;
        p.xStep = std::llround(c.xStep * kOne);
        p.xShear = std::llround(c.xShear * kOne);
        p.yStep = std::llround(c.yStep * kOne);
        p.x = (c.xStep < 0 ? 14 : -2) * kOne + 12345;
        p.y = -kOne + 4321;
        host::resampleAlpha(p);
        for (int j = 0; j < p.targetHeight; ++j) {
            for (int i = 0; i < p.targetWidth; ++i) {
                // Rounded twice, and the weights are 65536ths.
                ASSERT_NEAR(target[static_cast<size_t>(j * p.targetWidth + i)], boxMean(p, i, j), 0.51)
                    << "step " << c.xStep << " at " << i << ", " << j;
            }
        }
        EXPECT_EQ(target.back(), 0xAB);
    }
}

TEST(ResampleAlpha, FullStaysFullAndScaleOneCopies) {
    std::vector<uint8_t> source(64 * 64, 255), target(20 * 20);
    host::ResampleParam p{source.data(), 64,     64, 64,       1,     target.data(), 20, 20,
                          2 * kOne,      196607, 0,  2 * kOne, 196607};
    host::resampleAlpha(p);
    EXPECT_EQ(target, std::vector<uint8_t>(20 * 20, 255));

    std::mt19937 random(8);
    for (uint8_t& byte : source) byte = static_cast<uint8_t>(random());
    target.resize(64 * 64);
    p = {source.data(), 64, 64, 64, 1, target.data(), 64, 64, kOne / 2, kOne, 0, kOne / 2, kOne};
    host::resampleAlpha(p);
    EXPECT_EQ(target, source);
}

}  // namespace
