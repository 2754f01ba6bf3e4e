// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <limits>
#include <type_traits>
#include <utility>

#include "effect/filters/ZvLinearGradient.h"
#include "effect/filters/ZvRadialGradient.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/PropertyFields.h"
#include "tests/reference/GradientReference.h"

namespace Zvex {
namespace {

using reference::FillKind;
using reference::Stops;

const Stops SIX = {{0xFFFF0000, 1, 0.1f},  {0x8000FF40, 1, 0.2f}, {0xC01020E0, 1, 0.2f},
                   {0x00FFFFFF, 1, 0.55f}, {0xFF80C0FF, 1, 0.5f}, {0x40FFFFFF, 1, 0.9f}};
const Stops TWO = {{0xFF000000, 1, 0}, {0xFFFFFFFF, 1, 1}};
const Stops ONE = {{0xA0FF8001, 1, 0.5f}};

template <typename Filter>
using PropertyOf = std::remove_pointer_t<decltype(Filter::property)>;

template <typename Filter>
PropertyOf<Filter> record(float angle, float scale, Stops& stops) {
    return PropertyOf<Filter>(angle, scale, 0.5f, static_cast<int>(stops.size()), stops.data());
}

// Everything covered, nothing drawn yet.
FilterScene filledBox(int width, int height) {
    Random random(1);
    FilterScene scene(0, width, height);
    scene.box = ZvRect(0, 0, width, height);
    scene.mask = makeMask(MaskKind::Full, width, height, random);
    scene.target = makeTarget(TargetKind::Empty, width, height, random);
    return scene;
}

template <typename Filter>
class Gradient : public testing::Test {
public:
    static constexpr bool LINEAR = std::is_same_v<Filter, ZvLinearGradient>;
    static constexpr FillKind KIND = LINEAR ? FillKind::Linear : FillKind::Radial;

    static void set(Filter& filter, float angle, float scale, Stops stops) {
        PropertyOf<Filter> property = record<Filter>(angle, scale, stops);
        filter.setProperty(&property);
    }
};
using Fills = testing::Types<ZvLinearGradient, ZvRadialGradient>;
TYPED_TEST_SUITE(Gradient, Fills);

TYPED_TEST(Gradient, EqualsThePlainForm) {
    unsigned seed = 0;
    for (const Stops& stops : {SIX, TWO, ONE}) {
        for (float scale : {0.1f, 0.35f, 1.0f, 2.0f, 5.0f}) {
            for (int angle : {0, 1, 30, 45, 90, 144, 180, 209, 270, 300, 359, -30, -200}) {
                if (!this->LINEAR && angle > 30) continue;
                TypeParam filter;
                this->set(filter, static_cast<float>(angle) + 0.7f, scale, stops);
                const float whole = filter.property->angle, limited = std::min(scale, 2.0f);
                const auto draw = [&](FilterScene& scene) {
                    reference::drawGradient(this->KIND, scene.target, scene.mask, scene.box, whole, limited,
                                            stops);
                };
                expectThePlainForm(filter, seed++, 6, draw);
                if (testing::Test::HasFailure()) FAIL() << "angle " << angle << ", scale " << scale;
            }
        }
    }
}

// All pixels of a box, at sizes and scales at which some of them lie on the border between two entries.
TYPED_TEST(Gradient, EqualsThePlainFormToTheLastBit) {
    for (float scale : {1.0f, 1.12f}) {
        for (float angle : {0.0f, 45.0f, 90.0f, 139.0f, 271.0f}) {
            TypeParam filter;
            this->set(filter, angle, scale, TWO);
            FilterScene actual = filledBox(50, 37), expected = filledBox(50, 37);
            actual.draw(filter);
            reference::drawGradient(this->KIND, expected.target, expected.mask, expected.box, angle, scale,
                                    TWO);
            EXPECT_TRUE(actual.sameAs(expected)) << "angle " << angle << ", scale " << scale;
        }
    }
}

TYPED_TEST(Gradient, KeepsACopyOfItsSettingsAndStops) {
    EXPECT_EQ(TypeParam().getStyle(), this->LINEAR ? 7 : 8);
    EXPECT_EQ(TypeParam().getProperty(), nullptr);
    EXPECT_EQ(TypeParam().getOffset(), 0);
    Stops one = ONE, six = SIX;
    auto first = record<TypeParam>(400, 0.5f, one), second = record<TypeParam>(-30, 1.5f, six);
    expectSettingsCopied<TypeParam>(first, second, fieldsWithStops<PropertyOf<TypeParam>>);
    TypeParam filter;
    filter.setProperty(&second);
    EXPECT_NE(filter.property->stops, six.data());
    second.stops = nullptr;
    second.scale = 7;  // limited again
    filter.setProperty(&second);
    EXPECT_EQ(fieldsWithStops(*filter.property), fields(-30, 2, 0.5, 6, 0));
}

TYPED_TEST(Gradient, DrawsNothingWithoutItsPartsOrMemory) {
    TypeParam filter;
    FilterScene scene(2), before(2);
    EXPECT_EQ(scene.draw(filter), 0);
    this->set(filter, 10, 1, SIX);
    expectNothingWithoutParts(filter);
    expectUntouchedWithoutMemory(filter);
    for (float scale : {0.05f, 0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
        filter.property->scale = scale;
        scene.draw(filter);
    }
    Stops stops = SIX;
    const std::pair<int, ZvGradient*> without[] = {{0, stops.data()}, {INT_MIN, stops.data()}, {3, nullptr}};
    for (const auto& [count, data] : without) {
        PropertyOf<TypeParam> property(10, 1, 1, count, data);
        filter.setProperty(&property);
        scene.draw(filter);
    }
    this->set(filter, 10, 1, SIX);
    filter.property->count = 0;
    scene.draw(filter);
    EXPECT_TRUE(scene.sameAs(before));
}

// Where along the line a pixel of a box of 256 x 64 lies: entries of the table, truncated towards the middle.
TEST(LinearGradient, RunsAcrossTheBox) {
    const struct {
        float angle, scale;
        int x, y, entry;
    } cases[] = {{0, 1, 0, 9, 0},     {0, 1, 1, 9, 1},      {0, 1, 127, 9, 127},   {0, 1, 128, 9, 128},
                 {0, 1, 129, 9, 129}, {0, 1, 255, 9, 255},  {90, 1, 128, 63, 4},   {90, 1, 128, 0, 255},
                 {180, 1, 1, 9, 255}, {180, 1, 255, 32, 1}, {0, 2, 0, 9, 64},      {0, 2, 255, 9, 191},
                 {0, 0.5f, 64, 9, 0}, {0, 0.5f, 66, 9, 4},  {0, 0.5f, 192, 9, 255}};
    for (const auto& c : cases) {
        ZvLinearGradient filter;
        Gradient<ZvLinearGradient>::set(filter, c.angle, c.scale, TWO);
        FilterScene scene = filledBox(256, 64);
        scene.draw(filter);
        // Entry i of black to white is 255 * i / 256, cut off.
        EXPECT_EQ(scene.target.pixels[(c.y * 256 + c.x) * 4], std::max(c.entry - 1, 0))
            << c.angle << " degrees, scale " << c.scale << ", pixel " << c.x << " " << c.y;
    }
}

}  // namespace
}  // namespace Zvex
