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

TEST(ResampleAlpha, IsTheMeanUnderEachPixelsBox) {
    std::mt19937 random(7);
    const double steps[][3] = {{1, 0, 1},       {0.3, 0, 0.3}, {2.75, 0, 3.2}, {-1.5, 0, 1.5},
                               {0.5, 0.125, 2}, {9, -2.25, 9}, {100, 0, 100},  {0.001, 0, 0.001}};
    for (const auto& [xStep, xShear, yStep] : steps) {
        const int width = 13, height = 11, step = 4, stride = width * step + 3;
        std::vector<uint8_t> source(static_cast<size_t>(stride) * height), target(17 * 15 + 1, 0xAB);
        for (uint8_t& byte : source) byte = static_cast<uint8_t>(random());
        const auto fixed = [](double v) { return static_cast<int64_t>(std::llround(v * kOne)); };
        const int64_t x = (xStep < 0 ? 14 : -2) * kOne + 12345, y = 4321 - kOne;
        const host::ResampleParam p{source.data() + 3, width, height,      stride, step,
                                    target.data(),     17,    15,          x,      fixed(xStep),
                                    fixed(xShear),     y,     fixed(yStep)};
        host::resampleAlpha(p);
        for (int i = 0; i < 17 * 15; ++i) {
            // Rounded twice, and the weights are 65536ths.
            ASSERT_NEAR(target[static_cast<size_t>(i)], boxMean(p, i % 17, i / 17), 0.51)
                << "step " << xStep << " at " << i % 17 << ", " << i / 17;
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
