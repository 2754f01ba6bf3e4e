// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectArguments.h"

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "tests/effect/PropertyFields.h"
#include "tests/effect/TestValues.h"

namespace Zvex {
namespace {

TEST(EffectArguments, SingleNumbersAreLimited) {
    // 2^31 - 1 is 127 more than a multiple of 360 and 37 more than one of 90; -2^31 is 128 and 53 less than
    // 0.
    const struct {
        const char* name;
        float (*limit)(float);
        std::vector<float> given, expected;  // and the results for NaN, infinity and minus infinity
        float ofNan, ofEndless, ofMinusEndless;
    } rows[] = {
        {"opacity", opacityArgument, {0.5f, -0.1f, 1.5f}, {0.5f, 0, 1}, 0, 1, 0},
        {"angle",
         angleArgument,
         {45.9f, 360, 725, -30.7f, -0.5f, -360, 359.99f, 3e9f, -3e9f},
         {45, 0, 5, 330, 0, 0, 359, 127, 232},
         0,
         127,
         232},
        {"altitude", altitudeArgument, {89.9f, 90, 100, -1, -90}, {89, 0, 10, 89, 0}, 0, 37, 52},
        {"percent", percentArgument, {12.9f, -3, 100.5f, 101, 1e20f}, {12, 0, 100, 100, 100}, 0, 100, 0},
        {"gradient scale", gradientScaleArgument, {1.25f, -1, 2.5f}, {1.25f, 0, 2}, 0, 2, 0},
        {"pattern scale", patternScaleArgument, {1.25f, -1, 12}, {1.25f, 0, 10}, 0, 10, 0},
    };
    for (const auto& row : rows) {
        for (size_t i = 0; i < row.given.size(); ++i) {
            EXPECT_EQ(row.limit(row.given[i]), row.expected[i]) << row.name << " of " << row.given[i];
        }
        EXPECT_EQ(row.limit(kNotANumber), row.ofNan) << row.name;
        EXPECT_EQ(row.limit(kEndless), row.ofEndless) << row.name;
        EXPECT_EQ(row.limit(-kEndless), row.ofMinusEndless) << row.name;
    }
}

TEST(EffectArguments, ColorsTakeTheirAlphaFromTheOpacity) {
    EXPECT_EQ(premultipliedColor(0x12FF8000, 1.0f), 0xFFFF8000);  // ((c + 1) * 255) >> 8 is c
    EXPECT_EQ(premultipliedColor(0xFFFF8001, 0.5f),
              0x80804001);  // 128; 256 * 128, 129 * 128 and 2 * 128 over 256
    EXPECT_EQ(premultipliedColor(0xFFFFFFFF, 0.0f), 0u);
    EXPECT_EQ(premultipliedColor(0xFFFFFFFF, kNotANumber), 0u);
    EXPECT_EQ(premultipliedColor(0x00123456, kEndless), 0xFF123456);
    EXPECT_EQ(colorWithAlpha(0x12FF8001, 0.5f), 0x80FF8001);
    EXPECT_EQ(colorWithAlpha(0x12FF8001, -3.0f), 0x00FF8001u);
    EXPECT_EQ(colorWithAlpha(0x12FF8001, 7.0f), 0xFFFF8001);
    // Half up: 0.3 * 255 is 76.5.
    EXPECT_EQ(colorWithAlpha(0, 0.3f), 77u << 24);
    EXPECT_EQ(colorWithAlpha(0, 0.29f), 74u << 24);
}

TEST(EffectArguments, StopsAreFoldedAndCut) {
    const ZvGradient given[] = {{0x12FF8001, 0.5f, 0.297f},
                                {0xFF102030, 2.0f, -0.2f},
                                {0x00ABCDEF, -1.0f, 1.7f},
                                {0x44000001, 1.0f, 0.29f},
                                {0x55000002, kNotANumber, kNotANumber},
                                {0x66000003, 1.0f, kEndless}};
    const ZvGradient expected[] = {{0x40FF8001, 0.5f, 0.29f}, {0x80102030, 1.0f, 0.0f},
                                   {0x00ABCDEF, 0.0f, 1.0f},  {0x80000001, 1.0f, 0.29f},
                                   {0x00000002, 0.0f, 0.0f},  {0x80000003, 1.0f, 1.0f}};
    GradientStops stops;
    ASSERT_TRUE(stopArguments(6, given, 0.5f, &stops));
    ASSERT_EQ(stops.count(), 6);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(fieldsOf(stops.data()[i]), fieldsOf(expected[i])) << i;
    EXPECT_EQ(given[0].color, 0x12FF8001u);
}

TEST(EffectArguments, StopCountsAreLimited) {
    const std::vector<ZvGradient> given(300, ZvGradient{1, 1.0f, 0.5f});
    const int counts[][2] = {{3, 3}, {256, 256}, {257, 256}, {INT_MAX, 256}, {0, 0}, {INT_MIN, 0}};
    for (const auto& [count, kept] : counts) {
        GradientStops stops, none;
        EXPECT_TRUE(stopArguments(count, given.data(), 1.0f, &stops) &&
                    stopArguments(count, nullptr, 1.0f, &none));
        EXPECT_EQ(stops.count(), kept) << count;
        EXPECT_EQ(stops.data() != nullptr, kept > 0) << count;
        EXPECT_TRUE(none.count() == 0 && none.data() == nullptr) << count;
    }
}

// Arguments outside their ranges; the two records of a pair are made alike. A relief's size is not limited.
TEST(EffectArguments, RecordsHoldLimitedNumbers) {
    const ZvGradient given[] = {{1, 1.0f, 0.0f}, {2, 1.0f, 1.0f}};
    GradientStops stops;
    ASSERT_TRUE(stopArguments(2, given, 0.5f, &stops));
    const auto glow = glowArguments<ZvOuterGlowProperty>(12.7f, 0x10FF8001, 0.5f, stops);
    const auto linear = gradientArguments<ZvLinearGradientProperty>(-45.5f, 2.5f, 1.5f, stops);
    EXPECT_TRUE(glow.stops == stops.data() && linear.stops == stops.data());
    EXPECT_EQ(patternArguments(nullptr, 12, -1).bitmap, nullptr);
    const Fields shadow = fields(330, 100, 7, 0x80804001, 0.5f);
    const Fields relief = fields(1, 200.5f, 10, 2, 3, 16, 0.5f, 270, 10, 0x40FF8001, 0.5f, 0x80FFFFFF, 1, 0);
    const Fields pairs[][2] = {
        {fieldsOf(shadowArguments<ZvOuterShadowProperty>(-30.5f, 120, 7.9f, 0x10FF8001, 0.5f)), shadow},
        {fieldsOf(shadowArguments<ZvInnerShadowProperty>(-30.5f, 120, 7.9f, 0x10FF8001, 0.5f)), shadow},
        {fieldsOf(glow), fields(12, 0x80FF8001, 0.5f, 2)},  // not premultiplied
        {fieldsOf(glowArguments<ZvInnerGlowProperty>(kEndless, 0x10FF8001, 9.0f, GradientStops())),
         fields(100, 0xFFFF8001, 1, 0)},
        {fieldsOf(linear), fields(315, 2, 1, 2, 0)},
        {fieldsOf(gradientArguments<ZvRadialGradientProperty>(kNotANumber, kNotANumber, kNotANumber, stops)),
         fields(0, 0, 0, 2, 0)},
        {fieldsOf(reliefArguments<ZvBevelProperty>(1, 200.5f, 11, 2, 3, 20, 0.5f, -90.5f, 100, 0x10FF8001,
                                                   0.5f, 0x20FFFFFF, 2)),
         relief},
        {fieldsOf(reliefArguments<ZvEmbossProperty>(1, 200.5f, 11, 2, 3, 20, 0.5f, -90.5f, 100, 0x10FF8001,
                                                    0.5f, 0x20FFFFFF, 2)),
         relief},
        {fieldsOf(strokeArguments(3.9f, 0x10FF8001, 0.5f, INT_MIN, INT_MAX)),
         fields(3, 0x80804001, 0.5f, INT_MIN, INT_MAX)},
        {fieldsOf(strokeArguments(kEndless, ~0u, kNotANumber, 0, 0)), fields(100, 0, 0, 0, 0)},
        {fieldsOf(patternArguments(nullptr, 12, -1)), fields(10, 0, 0)},
        {fieldsOf(textArguments(0x10FF8001, 0.5f)), fields(0x80804001, 0.5f)},
        {fieldsOf(opaqueTextArguments(0x10FF8001)), fields(0xFFFF8001, 1)},
    };
    for (const auto& pair : pairs) EXPECT_EQ(pair[0], pair[1]) << &pair - pairs;
}

}  // namespace
}  // namespace Zvex
