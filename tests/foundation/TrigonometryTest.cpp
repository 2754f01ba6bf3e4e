// SPDX-License-Identifier: Apache-2.0
#include "foundation/Trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace Zvex {
namespace {

uint32_t bitsOf(float value) {
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

// The radians that the shadows, the reliefs and the linear gradient make of an angle.
const float kScales[] = {3.14159f / 180.0f, -0.01745328f};

TEST(Trigonometry, WholeAnglesHaveTheValuesOfTodaysPictures) {
    uint32_t digest = 2166136261u;  // FNV-1a
    for (int degrees = -720; degrees <= 720; ++degrees) {
        for (const float x :
             {static_cast<float>(degrees) * 3.14159f / 180.0f, static_cast<float>(degrees) * kScales[0],
              static_cast<float>(degrees) * kScales[1]}) {
            for (const float value : {sine(x), cosine(x), tangent(x)})
                digest = (digest ^ bitsOf(value)) * 16777619u;
#if defined(__GLIBC__) && defined(__x86_64__)  // whose tangent is another one on ARM
            EXPECT_EQ(bitsOf(sine(x)), bitsOf(std::sin(x))) << degrees;
            EXPECT_EQ(bitsOf(cosine(x)), bitsOf(std::cos(x))) << degrees;
            EXPECT_EQ(bitsOf(tangent(x)), bitsOf(std::tan(x))) << degrees;
#endif
        }
    }
    EXPECT_EQ(digest, 1215868023u);  // on every machine
}

TEST(Trigonometry, AnglesBetweenAndBeyondAreWithinAUnitInTheLastPlace) {
    for (int i = -200000; i <= 200000; ++i) {
        const float x = static_cast<float>(i) / 1999;
        const auto exact = static_cast<double>(x);
        EXPECT_NEAR(sine(x), std::sin(exact), 6e-8);
        EXPECT_NEAR(cosine(x), std::cos(exact), 6e-8);
        EXPECT_NEAR(tangent(x), std::tan(exact), 1.2e-7 * std::fmax(1, std::fabs(std::tan(exact))));
    }
    for (const float x : {121.0f, -1e6f, 3e9f}) {
        EXPECT_NEAR(sine(x), std::sin(static_cast<double>(x)), 1e-6) << x;
        EXPECT_NEAR(cosine(x), std::cos(static_cast<double>(x)), 1e-6) << x;
    }
    const float infinity = std::numeric_limits<float>::infinity();
    for (const float x : {infinity, -infinity, std::nanf("")})
        EXPECT_TRUE(std::isnan(sine(x)) && std::isnan(cosine(x)) && std::isnan(tangent(x)));
    EXPECT_TRUE(std::signbit(sine(-0.0f)) && std::signbit(tangent(-0.0f)));
    EXPECT_EQ(sine(1e-30f), 1e-30f);
}

}  // namespace
}  // namespace Zvex
