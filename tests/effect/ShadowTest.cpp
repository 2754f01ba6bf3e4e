// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <vector>

#include "effect/ZvProperty.h"
#include "effect/filters/ZvInnerShadow.h"
#include "effect/filters/ZvOuterShadow.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/ShadowReference.h"

namespace Zvex {
namespace {

constexpr float kBelowHalf = 0.49999997f;  // its sum with a half is below 1 in double precision only

void setShadow(ZvOuterShadow& filter, float angle, float distance, float size, uint32_t color = kColor) {
    ZvOuterShadowProperty property(angle, distance, size, color, 1);
    filter.setProperty(&property);
}

TEST(OuterShadow, FallsAwayFromTheLight) {
    EXPECT_EQ(ZvOuterShadow().dx, 0);
    EXPECT_EQ(ZvOuterShadow().dy, 0);
    const struct {
        float angle, distance;
        int dx, dy;
    } cases[] = {{0, 5, -5, 0},          {90, 5, 0, 5},
                 {180, 5, 5, 0},         {270, 5, 0, -5},
                 {45, 1, -1, 1},         {-135, 1, 1, -1},
                 {30, 1, -1, 0},  // its sine is below a half with this degree
                 {405.7f, 10, -7, 7},    {0, -5, 5, 0},
                 {0, 0.5f, -1, 0},       {180, 0.5f, 1, 0},
                 {0, kBelowHalf, 0, 0},  {90, 0.5f, 0, 1},
                 {270, 0.5f, 0, -1},     {90, kBelowHalf, 0, 0},
                 {0, 3e9f, INT_MIN, 0},  {180, kEndless, INT_MAX, INT_MAX},
                 {kNotANumber, 5, 0, 0}, {kEndless, 5, 0, 0},
                 {0, kNotANumber, 0, 0}, {45, kEndless, INT_MIN, INT_MAX}};
    for (const auto& c : cases) {
        ZvOuterShadow filter;
        setShadow(filter, c.angle, c.distance, 0);
        EXPECT_EQ(filter.dx, c.dx) << c.angle << " " << c.distance;
        EXPECT_EQ(filter.dy, c.dy) << c.angle << " " << c.distance;
    }
}

using Sides = std::array<int, 4>;  // left, top, right, bottom

Sides marginsOf(ZvOuterShadow& filter) {
    return {filter.getLeftOffset(), filter.getTopOffset(), filter.getRightOffset(), filter.getBottomOffset()};
}

TEST(OuterShadow, MarginsFollowTheShift) {
    ZvOuterShadow filter;
    EXPECT_EQ(marginsOf(filter), (Sides{0, 0, 0, 0}));  // no settings yet
    const struct {
        float angle, distance, size;
        Sides margins;
    } cases[] = {{0, 0, 0, {0, 0, 0, 0}},
                 {0, 5, 0, {5, 0, 0, 0}},
                 {0, 5, 2.4f, {7, 2, 0, 2}},
                 {0, 5, 7.5f, {13, 8, 3, 8}},
                 {90, 5, 7, {7, 2, 7, 12}},
                 {270, 5, 7, {7, 12, 7, 2}},
                 {180, 5, 7, {2, 7, 12, 7}},
                 {0, 0, kBelowHalf, {1, 1, 1, 1}},
                 {0, 0, -3, {0, 0, -2, -2}},
                 {0, 1, -3, {-1, 0, 0, -2}},
                 {0, 0, kNotANumber, {0, 0, 0, 0}},
                 {45, kEndless, 5, {INT_MAX, 0, 0, INT_MAX}},
                 {0, 0, kEndless, {INT_MAX, INT_MAX, INT_MAX, INT_MAX}},
                 {0, 9, 1e30f, {INT_MAX, INT_MAX, INT_MAX - 9, INT_MAX}}};
    for (const auto& c : cases) {
        setShadow(filter, c.angle, c.distance, c.size);
        EXPECT_EQ(marginsOf(filter), c.margins) << c.angle << " " << c.distance << " " << c.size;
        EXPECT_EQ(filter.getOffset(), 0);
    }
}

// How far beyond an opaque text the filter draws on each side.
Sides reachOf(ZvECore& filter) {
    constexpr int kSide = 70;
    FilterScene scene(4, kSide, kSide);  // a full mask
    scene.box = ZvRect(25, 25, 45, 45);
    scene.target = ZvBitmap(kSide, kSide, 4);
    scene.draw(filter);
    Sides reach = {0, 0, 0, 0};
    for (int y = 0; y < kSide; ++y) {
        for (int x = 0; x < kSide; ++x) {
            if (scene.target.pixels[(y * kSide + x) * 4 + 3] == 0) continue;
            const Sides beyond = {scene.box.left - x, scene.box.top - y, x + 1 - scene.box.right,
                                  y + 1 - scene.box.bottom};
            for (size_t i = 0; i < 4; ++i) reach[i] = std::max(reach[i], beyond[i]);
        }
    }
    return reach;
}

// They are filled as long as the outermost pixel of the blur, 255 over the weights' total, is at least 1.
TEST(OuterShadow, MarginsCoverEveryTouchedPixel) {
    for (float size : {0.0f, 0.6f, 2.0f, 3.0f, 4.0f, 9.5f}) {
        for (int i = 0; i < 15; ++i) {
            const float angle = 70.0f * static_cast<float>(i), distance = 3.5f * static_cast<float>(i % 3);
            ZvOuterShadow filter;
            setShadow(filter, angle, distance, size, 0xFFFFFFFF);
            const Sides reach = reachOf(filter), margins = marginsOf(filter);
            for (size_t side = 0; side < 4; ++side) {
                EXPECT_LE(reach[side], margins[side]) << size << " " << angle << " " << distance;
                if (size > 3.5f) continue;
                EXPECT_EQ(reach[side], margins[side]) << size << " " << angle << " " << distance;
            }
        }
    }
}

void setShadow(ZvInnerShadow& filter, float angle, float distance, float size) {
    ZvInnerShadowProperty property(angle, distance, size, kColor, 1);
    filter.setProperty(&property);
}

struct Case {
    float angle, distance, size;
    unsigned scenes;
};

// Then scenes of several bands of rows and strips of columns.
template <typename Filter, typename Draw>
void expectThePlainShadow(const std::vector<Case>& cases, Draw draw) {
    unsigned seed = 0;
    const auto check = [&](const Case& c, int width, int height) {
        Filter filter;
        setShadow(filter, c.angle, c.distance, c.size);
        const reference::Shadow shadow{c.angle, c.distance != c.distance ? 0 : c.distance, c.size, kColor};
        expectThePlainForm(
            filter, seed, c.scenes,
            [&](FilterScene& scene) { draw(&scene.target, scene.mask, scene.box, shadow); }, width, height);
        seed += c.scenes;
    };
    for (const Case& c : cases) check(c, 30, 22);
    for (float size : {3.0f, 26.0f}) check({120, 9, size, 6}, 200, 170);
}

TEST(OuterShadow, EqualsThePlainForm) {
    expectThePlainShadow<ZvOuterShadow>({{0, 0, 0, 6},
                                         {123, 6.5f, 0.4f, 6},
                                         {30, 3, kBelowHalf, 6},
                                         {250, 4, 0.5f, 6},
                                         {10, 9, 1, 12},
                                         {300, 2.2f, 2.4f, 12},
                                         {45, 8, 5.5f, 12},
                                         {-77, 30, 11, 12},
                                         {200, -12, 25, 6},
                                         {90, 100, 100, 3},
                                         {135, 40, 100, 3},
                                         {0, 1, 121, 1},
                                         {0, 1, -4, 6},
                                         {90, kNotANumber, 3, 3}},
                                        reference::drawOuterShadow);
}

TEST(InnerShadow, EqualsThePlainForm) {
    expectThePlainShadow<ZvInnerShadow>({{0, 0, 0, 6},
                                         {123, 6.5f, 0.4f, 6},
                                         {30, 3, kBelowHalf, 6},
                                         {250, 4, 0.5f, 6},
                                         {10, 2, 3, 12},
                                         {45, 9, 2.4f, 12},
                                         {300, 12, 2.4f, 12},
                                         {-77, 15, 5.5f, 12},
                                         {135, 11, 1, 12},
                                         {225, 7, 9.5f, 12},
                                         {200, -12, 25, 12},
                                         {90, 100, 100, 3},
                                         {135, 40, 100, 3},
                                         {270, 101, 121, 3},
                                         {0, 1, -4, 6}},
                                        reference::drawInnerShadow);
}

// A text of 30 x 22 moved to just within a radius of 2, just out of it and one pixel more: from there on the
// coverage is drawn, to the left and upwards a pixel later than to the right and downwards.
TEST(InnerShadow, EqualsThePlainFormWhereTheTextLeavesTheRadius) {
    for (int i = 0; i < 12; ++i) {
        const float angle = 90.0f * static_cast<float>(i % 4);
        const float distance = static_cast<float>((i % 2 == 0 ? 31 : 23) + i / 4);
        ZvInnerShadow filter;
        setShadow(filter, angle, distance, 2);
        FilterScene actual(2), expected(2);
        actual.box = expected.box = ZvRect(0, 0, 30, 22);
        actual.draw(filter);
        reference::drawInnerShadow(&expected.target, expected.mask, expected.box,
                                   {angle, distance, 2, kColor});
        EXPECT_TRUE(actual.sameAs(expected)) << "angle " << angle << ", distance " << distance;
    }
}

}  // namespace
}  // namespace Zvex
