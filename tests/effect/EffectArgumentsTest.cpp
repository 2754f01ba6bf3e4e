// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectArguments.h"

#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <vector>

#include "tests/FailingAllocations.h"

namespace Zvex {
namespace {

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

struct FloatCase {
    float given, expected;
};

TEST(EffectArguments, SingleNumbersAreLimited) {
    for (const FloatCase& c :
         {FloatCase{0.5f, 0.5f}, {-0.1f, 0}, {1.5f, 1}, {NOT_A_NUMBER, 0}, {ENDLESS, 1}, {-ENDLESS, 0}}) {
        EXPECT_EQ(opacityArgument(c.given), c.expected) << c.given;
    }
    // 2^31 - 1 is 127 more than a multiple of 360, and -2^31 is 128 less than one.
    for (const FloatCase& c : {FloatCase{45.9f, 45},
                               {360, 0},
                               {725, 5},
                               {-30.7f, 330},
                               {-0.5f, 0},
                               {-360, 0},
                               {359.99f, 359},
                               {NOT_A_NUMBER, 0},
                               {ENDLESS, 127},
                               {-ENDLESS, 232},
                               {3e9f, 127},
                               {-3e9f, 232}}) {
        EXPECT_EQ(angleArgument(c.given), c.expected) << c.given;
    }
    // 2^31 - 1 is 37 more than a multiple of 90.
    for (const FloatCase& c : {FloatCase{89.9f, 89},
                               {90, 0},
                               {100, 10},
                               {-1, 89},
                               {-90, 0},
                               {NOT_A_NUMBER, 0},
                               {ENDLESS, 37},
                               {-ENDLESS, 52}}) {
        EXPECT_EQ(altitudeArgument(c.given), c.expected) << c.given;
    }
    for (const FloatCase& c : {FloatCase{12.9f, 12},
                               {-3, 0},
                               {100.5f, 100},
                               {101, 100},
                               {1e20f, 100},
                               {NOT_A_NUMBER, 0},
                               {ENDLESS, 100},
                               {-ENDLESS, 0}}) {
        EXPECT_EQ(percentArgument(c.given), c.expected) << c.given;
    }
    for (const FloatCase& c :
         {FloatCase{1.25f, 1.25f}, {-1, 0}, {2.5f, 2}, {NOT_A_NUMBER, 0}, {ENDLESS, 2}}) {
        EXPECT_EQ(gradientScaleArgument(c.given), c.expected) << c.given;
    }
    for (const FloatCase& c :
         {FloatCase{1.25f, 1.25f}, {-1, 0}, {12, 10}, {NOT_A_NUMBER, 0}, {ENDLESS, 10}}) {
        EXPECT_EQ(patternScaleArgument(c.given), c.expected) << c.given;
    }
}

TEST(EffectArguments, ColorsTakeTheirAlphaFromTheOpacity) {
    EXPECT_EQ(premultipliedColor(0x12FF8000, 1.0f), 0xFFFF8000);  // ((c + 1) * 255) >> 8 is c
    EXPECT_EQ(premultipliedColor(0xFFFF8001, 0.5f),
              0x80804001);  // 128; 256 * 128, 129 * 128 and 2 * 128 over 256
    EXPECT_EQ(premultipliedColor(0xFFFFFFFF, 0.0f), 0u);
    EXPECT_EQ(premultipliedColor(0xFFFFFFFF, NOT_A_NUMBER), 0u);
    EXPECT_EQ(premultipliedColor(0x00123456, ENDLESS), 0xFF123456);
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
                                {0x55000002, NOT_A_NUMBER, NOT_A_NUMBER},
                                {0x66000003, 1.0f, ENDLESS}};
    GradientStops stops;
    ASSERT_TRUE(stopArguments(6, given, 0.5f, &stops));
    ASSERT_EQ(stops.count(), 6);
    const ZvGradient expected[] = {{0x40FF8001, 0.5f, 0.29f}, {0x80102030, 1.0f, 0.0f},
                                   {0x00ABCDEF, 0.0f, 1.0f},  {0x80000001, 1.0f, 0.29f},
                                   {0x00000002, 0.0f, 0.0f},  {0x80000003, 1.0f, 1.0f}};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(stops.data()[i].color, expected[i].color) << i;
        EXPECT_EQ(stops.data()[i].opacity, expected[i].opacity) << i;
        EXPECT_EQ(stops.data()[i].position, expected[i].position) << i;
    }
    EXPECT_EQ(given[0].color, 0x12FF8001u);
}

TEST(EffectArguments, StopCountsAreLimited) {
    std::vector<ZvGradient> given(300, ZvGradient{1, 1.0f, 0.5f});
    const struct {
        int count;
        const ZvGradient* stops;
        int expected;
    } cases[] = {{3, given.data(), 3},         {256, given.data(), 256}, {257, given.data(), 256},
                 {INT_MAX, given.data(), 256}, {0, given.data(), 0},     {-1, given.data(), 0},
                 {INT_MIN, given.data(), 0},   {3, nullptr, 0},          {INT_MAX, nullptr, 0}};
    for (const auto& c : cases) {
        GradientStops stops;
        EXPECT_TRUE(stopArguments(c.count, c.stops, 1.0f, &stops));
        EXPECT_EQ(stops.count(), c.expected) << c.count;
        EXPECT_EQ(stops.data() != nullptr, c.expected > 0) << c.count;
    }
}

TEST(EffectArguments, StopsThatCannotBeCopiedAreReported) {
    const ZvGradient given[2] = {};
    forEachFailingAllocation([&](bool fails) {
        GradientStops stops;
        EXPECT_EQ(stopArguments(2, given, 1.0f, &stops), !fails);
        EXPECT_EQ(stops.count(), fails ? 0 : 2);
    });
}

template <typename Shadow>
void checkShadow() {
    const Shadow shadow = shadowArguments<Shadow>(-30.5f, 120.0f, 7.9f, 0x10FF8001, 0.5f);
    EXPECT_EQ(shadow.angle, 330.0f);
    EXPECT_EQ(shadow.distance, 100.0f);
    EXPECT_EQ(shadow.size, 7.0f);
    EXPECT_EQ(shadow.color, 0x80804001);
    EXPECT_EQ(shadow.opacity, 0.5f);
    const Shadow odd =
        shadowArguments<Shadow>(NOT_A_NUMBER, NOT_A_NUMBER, -ENDLESS, 0xFFFFFFFF, NOT_A_NUMBER);
    EXPECT_EQ(odd.angle, 0.0f);
    EXPECT_EQ(odd.distance, 0.0f);
    EXPECT_EQ(odd.size, 0.0f);
    EXPECT_EQ(odd.color, 0u);
    EXPECT_EQ(odd.opacity, 0.0f);
}

TEST(EffectArguments, BothShadows) {
    checkShadow<ZvOuterShadowProperty>();
    checkShadow<ZvInnerShadowProperty>();
}

template <typename Glow>
void checkGlow() {
    const ZvGradient given[] = {{1, 1.0f, 0.0f}, {2, 1.0f, 1.0f}};
    GradientStops stops;
    ASSERT_TRUE(stopArguments(2, given, 0.5f, &stops));
    const Glow glow = glowArguments<Glow>(12.7f, 0x10FF8001, 0.5f, stops);
    EXPECT_EQ(glow.size, 12.0f);
    EXPECT_EQ(glow.color, 0x80FF8001);  // not premultiplied
    EXPECT_EQ(glow.opacity, 0.5f);
    EXPECT_EQ(glow.count, 2);
    EXPECT_EQ(glow.stops, stops.data());
    const Glow plain = glowArguments<Glow>(ENDLESS, 0x10FF8001, 9.0f, GradientStops());
    EXPECT_EQ(plain.size, 100.0f);
    EXPECT_EQ(plain.opacity, 1.0f);
    EXPECT_EQ(plain.count, 0);
    EXPECT_EQ(plain.stops, nullptr);
}

TEST(EffectArguments, BothGlows) {
    checkGlow<ZvOuterGlowProperty>();
    checkGlow<ZvInnerGlowProperty>();
}

template <typename Gradient>
void checkGradient() {
    const ZvGradient given[] = {{1, 1.0f, 0.0f}};
    GradientStops stops;
    ASSERT_TRUE(stopArguments(1, given, 1.0f, &stops));
    const Gradient gradient = gradientArguments<Gradient>(-45.5f, 2.5f, 1.5f, stops);
    EXPECT_EQ(gradient.angle, 315.0f);
    EXPECT_EQ(gradient.scale, 2.0f);
    EXPECT_EQ(gradient.opacity, 1.0f);
    EXPECT_EQ(gradient.color, 0u);
    EXPECT_EQ(gradient.count, 1);
    EXPECT_EQ(gradient.stops, stops.data());
}

TEST(EffectArguments, BothGradients) {
    checkGradient<ZvLinearGradientProperty>();
    checkGradient<ZvRadialGradientProperty>();
}

template <typename Relief>
void checkRelief() {
    const Relief relief = reliefArguments<Relief>(1, 200.5f, 11.0f, 2, 3, 20, 0.5f, -90.5f, 100.0f,
                                                  0x10FF8001, 0.5f, 0x20FFFFFF, 2.0f);
    EXPECT_EQ(relief.style, 1);
    EXPECT_EQ(relief.size, 200.5f);  // not limited
    EXPECT_EQ(relief.depth, 10.0f);
    EXPECT_EQ(relief.direction, 2);
    EXPECT_EQ(relief.technique, 3);
    EXPECT_EQ(relief.soften, 16);
    EXPECT_EQ(relief.opacity, 0.5f);
    EXPECT_EQ(relief.angle, 270.0f);
    EXPECT_EQ(relief.altitude, 10.0f);
    EXPECT_EQ(relief.shadowColor, 0x40FF8001u);  // half of a half
    EXPECT_EQ(relief.shadowOpacity, 0.5f);
    EXPECT_EQ(relief.highlightColor, 0x80FFFFFF);
    EXPECT_EQ(relief.highlightOpacity, 1.0f);
    EXPECT_EQ(relief.color, 0u);
    const Relief odd =
        reliefArguments<Relief>(INT_MIN, 0, NOT_A_NUMBER, INT_MAX, INT_MIN, INT_MIN, NOT_A_NUMBER, ENDLESS,
                                NOT_A_NUMBER, 0xFFFFFFFF, ENDLESS, 0xFFFFFFFF, -ENDLESS);
    EXPECT_EQ(odd.depth, 0.0f);
    EXPECT_EQ(odd.soften, 0);
    EXPECT_EQ(odd.opacity, 0.0f);
    EXPECT_EQ(odd.angle, 127.0f);
    EXPECT_EQ(odd.altitude, 0.0f);
    EXPECT_EQ(odd.shadowColor, 0x00FFFFFFu);
    EXPECT_EQ(odd.shadowOpacity, 1.0f);
    EXPECT_EQ(odd.highlightOpacity, 0.0f);
}

TEST(EffectArguments, BevelAndEmboss) {
    checkRelief<ZvBevelProperty>();
    checkRelief<ZvEmbossProperty>();
}

TEST(EffectArguments, StrokePatternAndText) {
    const ZvStrokeProperty stroke = strokeArguments(3.9f, 0x10FF8001, 0.5f, INT_MIN, INT_MAX);
    EXPECT_EQ(stroke.width, 3.0f);
    EXPECT_EQ(stroke.color, 0x80804001);
    EXPECT_EQ(stroke.opacity, 0.5f);
    EXPECT_EQ(stroke.kind, INT_MIN);
    EXPECT_EQ(stroke.position, INT_MAX);
    EXPECT_EQ(strokeArguments(NOT_A_NUMBER, 0, 0, 0, 0).width, 0.0f);
    EXPECT_EQ(strokeArguments(ENDLESS, 0, 0, 0, 0).width, 100.0f);

    const ZvPatternProperty pattern = patternArguments(nullptr, 12.0f, -1.0f);
    EXPECT_EQ(pattern.bitmap, nullptr);
    EXPECT_EQ(pattern.scale, 10.0f);
    EXPECT_EQ(pattern.opacity, 0.0f);
    EXPECT_EQ(pattern.color, 0u);
    EXPECT_EQ(patternArguments(nullptr, NOT_A_NUMBER, 1.0f).scale, 0.0f);

    const ZvTextProperty text = textArguments(0x10FF8001, 0.5f);
    EXPECT_EQ(text.color, 0x80804001);
    EXPECT_EQ(text.opacity, 0.5f);
    const ZvTextProperty opaque = opaqueTextArguments(0x10FF8001);
    EXPECT_EQ(opaque.color, 0xFFFF8001);
    EXPECT_EQ(opaque.opacity, 1.0f);
}

}  // namespace
}  // namespace Zvex
