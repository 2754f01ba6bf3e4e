// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "effect/filters/ZvInnerGlow.h"
#include "effect/filters/ZvOuterGlow.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/GlowReference.h"

namespace Zvex {
namespace {

using reference::Stops;
using Table = std::vector<unsigned int>;

const Stops NONE;
const Stops kOne = {{0xA0FF8001, 1, 0.5f}};
const Stops kFour = {
    {0xFFFF0000, 1, 0.7f}, {0x8000FF40, 1, 0.3f}, {0xC01020E0, 1, 0.3f}, {0xFFFFFFFF, 1, 0.8f}};

template <typename Filter>
class Glow : public testing::Test {
public:
    using Property = std::remove_pointer_t<decltype(Filter::property)>;
    static constexpr bool kInside = std::is_same_v<Filter, ZvInnerGlow>;
    Filter filter;

    void set(float size, Stops stops) {
        Property property(size, kColor, 1, static_cast<int>(stops.size()), stops.data());
        filter.setProperty(&property);
    }
    void expectThePlainGlow(float size, const Stops& stops, unsigned seed, unsigned seeds, int width = 30,
                            int height = 22) {
        SCOPED_TRACE("size " + std::to_string(size) + ", " + std::to_string(stops.size()) + " stops");
        const auto draw = [&](FilterScene& scene) {
            reference::drawGlow(kInside, scene.target, scene.mask, scene.box, size, kColor, stops);
        };
        expectThePlainForm(filter, seed, seeds, draw, width, height);
    }
};
using Glows = testing::Types<ZvOuterGlow, ZvInnerGlow>;
TYPED_TEST_SUITE(Glow, Glows);

TYPED_TEST(Glow, TableEqualsThePlainForm) {
    Table table(257, 1);
    this->filter.makeColorLUT(table.data(), 0.3f, 0);  // no settings yet
    EXPECT_EQ(table, Table(257, 1));
    for (const Stops& stops : {NONE, kOne, kFour}) {
        for (float size : {0.0f, -0.0f, 0.05f}) {
            this->set(size, stops);
            for (float start : {0.3f, -2.0f, kNotANumber, 0.001f, 0.995f, 1.0f, 3.0f}) {
                this->filter.makeColorLUT(table.data(), start, 2);
                ASSERT_EQ(table, reference::glowTable(size, kColor, stops, start, 2))
                    << "size " << size << ", fade " << start;
            }
        }
    }
}

// Planes of all sizes. Some are so large that blocks inside and around shapes do not change.
TYPED_TEST(Glow, BoxFilterEqualsThePlainForm) {
    Random random(1);
    this->filter.increaseByBoxFilter(nullptr, 1, 3, 3);
    for (int i = 0; i < 300; ++i) {
        const bool large = i % 8 == 0;
        const int width = large ? random.between(100, 420) : random.between(1, i % 4 == 1 ? 3 : 24);
        const int height = large ? random.between(3, 70) : random.between(1, i % 3 == 0 ? 4 : 12);
        const int passes = random.between(-1, large ? 22 : 5);
        const MaskKind kind =
            large && i % 16 == 0 ? MaskKind::Shapes : kAllMasks[static_cast<size_t>(i / 8 + i) % 6];
        const ZvBitmap mask = makeMask(kind, width, height, random);
        const std::vector<uint8_t> source(mask.pixels, mask.pixels + width * height);
        std::vector<uint8_t> expected = source;
        reference::boxFilter(expected, passes, width, height);
        forEachCpuTarget([&] {
            std::vector<uint8_t> actual(source);
            this->filter.increaseByBoxFilter(actual.data(), passes, width, height);
            for (int none : {0, -3, INT_MIN}) {
                this->filter.increaseByBoxFilter(actual.data(), passes, none, 9);
                this->filter.increaseByBoxFilter(actual.data(), passes, 1, none);
            }
            ASSERT_EQ(actual, expected) << "case " << i << ", " << width << " x " << height << ", " << passes;
        });
    }
}

TYPED_TEST(Glow, EqualsThePlainForm) {
    unsigned seed = 0;
    for (float size : {-0.5f, 0.0f, 0.5f, 1.0f, 3.0f, 4.7f, 9.0f, 18.0f, 37.0f, 39.0f, 39.5f, 40.0f}) {
        for (const Stops& stops : {NONE, kOne, kFour}) {
            this->set(size, stops);
            this->expectThePlainGlow(size, stops, seed++, size < 9 ? 6 : 2);
        }
    }
    this->set(37, kFour);
    this->expectThePlainGlow(37, kFour, 2, 1, 80, 60);
    this->set(9, kFour);
    this->expectThePlainGlow(9, kFour, 0, 6, 200, 170);  // several bands of rows
    for (float size : {100.0f, 130.5f}) {
        this->set(size, kFour);
        this->expectThePlainGlow(size, kFour, 2, 1, 6, 5);
    }
}

TYPED_TEST(Glow, MarginIsTheSizeRounded) {
    for (const auto& [size, margin] : {std::pair(4.5f, 5), {4.4f, 4}, {0.0f, 0}, {-0.7f, 0}, {100.0f, 100}}) {
        this->set(size, NONE);
        EXPECT_EQ(this->filter.getOffset(), margin) << size;
    }
}

TYPED_TEST(Glow, WithoutStopsHasTheColorOfTheProperty) {
    Stops stops = kFour;
    const std::pair<int, ZvGradient*> without[] = {{0, stops.data()}, {-1, stops.data()}, {3, nullptr}};
    for (const auto& [count, data] : without) {
        typename TestFixture::Property property(3, kColor, 1, count, data);
        this->filter.setProperty(&property);
        this->expectThePlainGlow(3, NONE, 2, 1);
    }
    this->set(3, kFour);
    this->filter.property->count = 0;
    this->expectThePlainGlow(3, NONE, 2, 1);
}

}  // namespace
}  // namespace Zvex
