// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <climits>

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

constexpr float kBelowHalf = 0.49999997f;  // its sum with 0.5 is below 1 only in double precision

void setShadow(ZvOuterShadow& filter, float angle, float distance, float size) {
    ZvOuterShadowProperty property(angle, distance, size, kColor, 1);
    filter.setProperty(&property);
}

TEST(OuterShadow, FallsAwayFromTheLight) {
    EXPECT_EQ(ZvOuterShadow().dx, 0);
    EXPECT_EQ(ZvOuterShadow().dy, 0);
    const struct {
        float angle, distance;
        int dx, dy;
    } cases[] = {{45, 1, -1, 1},         {-135, 1, 1, -1},
                 {30, 1, -1, 0},  // its sine is below a half with this degree
                 {405.7f, 10, -7, 7},    {0, -5, 5, 0},
                 {0, 0.5f, -1, 0},       {180, 0.5f, 1, 0},
                 {0, kBelowHalf, 0, 0},  {270, 0.5f, 0, -1},
                 {0, 3e9f, INT_MIN, 0},  {180, kEndless, INT_MAX, INT_MAX},
                 {kNotANumber, 5, 0, 0}, {kEndless, 5, 0, 0},
                 {0, kNotANumber, 0, 0}};
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
    } cases[] = {{0, 5, 2.4f, {7, 2, 0, 2}},
                 {90, 5, 7, {7, 2, 7, 12}},
                 {270, 5, 7, {7, 12, 7, 2}},
                 {180, 5, 7, {2, 7, 12, 7}},
                 {0, 0, kBelowHalf, {1, 1, 1, 1}},
                 {0, 1, -3, {-1, 0, 0, -2}},
                 {0, 0, kNotANumber, {0, 0, 0, 0}},
                 {45, kEndless, 5, {INT_MAX, 0, 0, INT_MAX}},
                 {0, 9, 1e30f, {INT_MAX, INT_MAX, INT_MAX - 9, INT_MAX}}};
    for (const auto& c : cases) {
        setShadow(filter, c.angle, c.distance, c.size);
        EXPECT_EQ(marginsOf(filter), c.margins) << c.angle << " " << c.distance << " " << c.size;
        EXPECT_EQ(filter.getOffset(), 0);
    }
}

template <typename Filter>
class Shadow : public testing::Test {};
using Shadows = testing::Types<ZvOuterShadow, ZvInnerShadow>;
TYPED_TEST_SUITE(Shadow, Shadows);

// Near and far, beyond the scene, with radii of nothing to more than it; the last ones on scenes of several
// bands of rows and strips of columns.
TYPED_TEST(Shadow, EqualsThePlainForm) {
    const struct {
        float angle, distance, size;
        unsigned scenes;
    } cases[] = {{0, 0, 0, 6},      {123, 6.5f, 0.4f, 6},  {30, 3, kBelowHalf, 6}, {250, 4, 0.5f, 6},
                 {10, 9, 1, 12},    {300, 2.2f, 2.4f, 12}, {45, 8, 5.5f, 12},      {-77, 30, 11, 12},
                 {200, -12, 25, 6}, {90, 100, 100, 3},     {135, 40, 100, 3},      {0, 1, 121, 1},
                 {0, 1, -4, 6},     {0, 31, 2, 12},        {90, 24, 2, 12},        {180, 32, 2, 12},
                 {270, 25, 2, 12},  {120, 9, 3, 6},        {120, 9, 26, 6}};
    constexpr bool kInside = std::is_same_v<TypeParam, ZvInnerShadow>;
    unsigned seed = 0;
    for (const auto& c : cases) {
        TypeParam filter;
        std::remove_pointer_t<decltype(filter.property)> property(c.angle, c.distance, c.size, kColor, 1);
        filter.setProperty(&property);
        const bool large = c.angle == 120;
        const auto plain = [&](FilterScene& scene) {
            (kInside ? reference::drawInnerShadow : reference::drawOuterShadow)(
                &scene.target, scene.mask, scene.box, {c.angle, c.distance, c.size, kColor});
        };
        expectThePlainForm(filter, seed, c.scenes, plain, large ? 200 : 30, large ? 170 : 22);
        seed += c.scenes;
    }
}

}  // namespace
}  // namespace Zvex
