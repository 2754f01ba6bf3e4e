// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "effect/filters/ZvInnerGlow.h"
#include "effect/filters/ZvOuterGlow.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/PropertyFields.h"
#include "tests/reference/GlowReference.h"

namespace Zvex {
namespace {

using reference::Stops;

constexpr uint32_t COLOR = 0xC0604020;
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr float ENDLESS = std::numeric_limits<float>::infinity();

const Stops NONE;
const Stops ONE = {{0xA0FF8001, 1, 0.5f}};
const Stops FOUR = {
    {0xFFFF0000, 1, 0.7f}, {0x8000FF40, 1, 0.3f}, {0xC01020E0, 1, 0.3f}, {0xFFFFFFFF, 1, 0.8f}};

template <typename Filter>
class Glow : public testing::Test {
public:
    using Property = std::remove_pointer_t<decltype(Filter::property)>;
    static constexpr bool INSIDE = std::is_same_v<Filter, ZvInnerGlow>;

    static void set(Filter& filter, float size, Stops stops) {
        Property property(size, COLOR, 1, static_cast<int>(stops.size()), stops.data());
        filter.setProperty(&property);
    }
};
using Glows = testing::Types<ZvOuterGlow, ZvInnerGlow>;
TYPED_TEST_SUITE(Glow, Glows);

TYPED_TEST(Glow, TableEqualsThePlainForm) {
    for (const Stops& stops : {NONE, ONE, FOUR}) {
        for (float size : {0.0f, -0.0f, 0.5f, 9.0f}) {
            TypeParam filter;
            this->set(filter, size, stops);
            for (float fadeStart :
                 {0.3f, 0.0f, -2.0f, NOT_A_NUMBER, 0.001f, 0.5f, 0.9f, 0.995f, 1.0f, 3.0f}) {
                for (int curve : {0, 1, 2, 3}) {
                    std::vector<unsigned int> table(258, 0xCAFECAFE);
                    filter.makeColorLUT(table.data(), fadeStart, curve);
                    std::vector<uint32_t> expected =
                        reference::glowTable(size, COLOR, stops, fadeStart, curve);
                    expected.push_back(0xCAFECAFE);
                    ASSERT_EQ(table, expected) << "fade " << fadeStart << ", curve " << curve;
                }
            }
        }
    }
    // The fade of one colour in numbers.
    TypeParam filter;
    this->set(filter, 4, NONE);
    std::vector<unsigned int> table(257, 1);
    filter.makeColorLUT(nullptr, 0.3f, 0);
    TypeParam().makeColorLUT(table.data(), 0.3f, 0);  // without a property
    EXPECT_EQ(table, std::vector<unsigned int>(257, 1));
    filter.makeColorLUT(table.data(), 0.3f, 0);
    EXPECT_EQ((std::vector<unsigned int>{table[0], table[76], table[77], table[166], table[255], table[256]}),
              (std::vector<unsigned int>{COLOR, COLOR, 0xBE604020, 0x60604020, 0x00604020, 0}));
}

TYPED_TEST(Glow, BoxFilterEqualsThePlainForm) {
    Random random(1);
    TypeParam filter;
    filter.increaseByBoxFilter(nullptr, 1, 3, 3);
    for (int i = 0; i < 400; ++i) {
        const int width = random.between(1, i % 4 == 0 ? 3 : 24),
                  height = random.between(1, i % 3 == 0 ? 4 : 12);
        const int passes = random.between(-1, 5);
        const ZvBitmap mask = makeMask(ALL_MASKS[static_cast<size_t>(i) % 6], width, height, random);
        std::vector<uint8_t> actual(mask.pixels, mask.pixels + width * height), expected(actual);
        reference::boxFilter(expected, passes, width, height);
        for (auto* plane : {&actual, &expected}) plane->insert(plane->end(), 8, 0xCA);
        filter.increaseByBoxFilter(actual.data(), passes, width, height);
        ASSERT_EQ(actual, expected) << "case " << i << ", " << width << " x " << height << ", " << passes;
        for (const auto& [w, h] : {std::pair(0, 9), std::pair(-3, 9), std::pair(1, 0), std::pair(1, INT_MIN)})
            filter.increaseByBoxFilter(actual.data(), passes, w, h);
        ASSERT_EQ(actual, expected);
    }
    forEachFailingAllocation([&](bool fails) {
        uint8_t plane[9] = {8, 8, 8, 8, 8, 8, 8, 8, 8};
        filter.increaseByBoxFilter(plane, 1, 3, 3);
        EXPECT_EQ(plane[4] == 8, fails);
    });
}

TYPED_TEST(Glow, EqualsThePlainForm) {
    unsigned seed = 0;
    for (float size : {-0.5f, 0.0f, 0.5f, 1.0f, 3.0f, 4.7f, 9.0f, 18.0f, 37.0f}) {
        for (const Stops& stops : {NONE, ONE, FOUR}) {
            TypeParam filter;
            this->set(filter, size, stops);
            const auto draw = [&](FilterScene& scene) {
                reference::drawGlow(this->INSIDE, scene.target, scene.mask, scene.box, size, COLOR, stops);
            };
            expectThePlainForm(filter, seed++, size < 9 ? 6 : 2, draw);
            if (size == 4.7f) expectThePlainForm(filter, seed, 6, draw, 80, 60);
            if (testing::Test::HasFailure()) FAIL() << "size " << size << ", " << stops.size() << " stops";
        }
    }
    for (float size : {100.0f, 130.5f}) {
        TypeParam filter;
        this->set(filter, size, FOUR);
        expectThePlainForm(
            filter, 2, 1,
            [&](FilterScene& scene) {
                reference::drawGlow(this->INSIDE, scene.target, scene.mask, scene.box, size, COLOR, FOUR);
            },
            6, 5);
    }
}

TYPED_TEST(Glow, KeepsACopyOfItsSettingsAndStops) {
    using Property = typename TestFixture::Property;
    EXPECT_EQ(TypeParam().getStyle(), this->INSIDE ? 4 : 3);
    EXPECT_EQ(TypeParam().getProperty(), nullptr);
    Stops one = ONE, four = FOUR;
    Property first(1, 2, 0.5f, 1, one.data()), second(4.5f, COLOR, 0.25f, 4, four.data());
    expectSettingsCopied<TypeParam>(first, second, fieldsWithStops<Property>);
    TypeParam filter;
    EXPECT_EQ(filter.getOffset(), 0);
    filter.setProperty(&second);
    EXPECT_NE(filter.property->stops, four.data());
    EXPECT_EQ(filter.getLeftOffset(), 0);
    const std::pair<float, int> margins[] = {{4.5f, 5}, {4.4f, 4}, {0, 0}, {-0.7f, 0}, {100, 100}};
    for (const auto& [size, margin] : margins) {
        this->set(filter, size, NONE);
        EXPECT_EQ(filter.getOffset(), margin) << size;
    }
}

TYPED_TEST(Glow, WithoutStopsHasTheColorOfTheProperty) {
    using Property = typename TestFixture::Property;
    Stops stops = FOUR;
    const std::pair<int, ZvGradient*> without[] = {{0, stops.data()}, {-1, stops.data()}, {3, nullptr}};
    const auto draw = [&](FilterScene& scene) {
        reference::drawGlow(this->INSIDE, scene.target, scene.mask, scene.box, 3, COLOR, NONE);
    };
    TypeParam filter;
    for (const auto& [count, data] : without) {
        Property property(3, COLOR, 1, count, data);
        filter.setProperty(&property);
        expectThePlainForm(filter, 2, 1, draw);
    }
    this->set(filter, 3, FOUR);
    filter.property->count = 0;
    expectThePlainForm(filter, 2, 1, draw);
}

TYPED_TEST(Glow, DrawsNothingWithoutItsPartsOrMemory) {
    TypeParam filter;
    FilterScene scene(2), before(2);
    EXPECT_EQ(scene.draw(filter), 0);
    for (float size :
         {-1.0f, -1.5f, -2.0f, -30.0f, 5e4f, 1e6f, 2147483648.0f, 1e30f, ENDLESS, -ENDLESS, NOT_A_NUMBER}) {
        this->set(filter, size, FOUR);
        scene.draw(filter);
        EXPECT_TRUE(scene.sameAs(before)) << size;
    }
    this->set(filter, 3, FOUR);
    expectNothingWithoutParts(filter);
    expectUntouchedWithoutMemory(filter);
}

}  // namespace
}  // namespace Zvex
