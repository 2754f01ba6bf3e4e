// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

#include "effect/filters/ZvLinearGradient.h"
#include "effect/filters/ZvRadialGradient.h"
#include "tests/effect/FilterScene.h"
#include "tests/reference/GradientReference.h"

namespace Zvex {
namespace {

using reference::FillKind;
using reference::Stops;

const Stops kSix = {{0xFFFF0000, 1, 0.1f},  {0x8000FF40, 1, 0.2f}, {0xC01020E0, 1, 0.2f},
                    {0x00FFFFFF, 1, 0.55f}, {0xFF80C0FF, 1, 0.5f}, {0x40FFFFFF, 1, 0.9f}};
const Stops kTwo = {{0xFF000000, 1, 0}, {0xFFFFFFFF, 1, 1}};
const Stops kAlone = {{0xA0FF8001, 1, 0.5f}};

template <typename Filter>
class Gradient : public testing::Test {
public:
    using Property = std::remove_pointer_t<decltype(Filter::property)>;
    static constexpr bool kLinear = std::is_same_v<Filter, ZvLinearGradient>;
    Filter filter;

    void set(float angle, float scale, Stops stops) {
        Property property(angle, scale, 0.5f, static_cast<int>(stops.size()), stops.data());
        filter.setProperty(&property);
    }
    void drawPlain(FilterScene& scene, float angle, float scale, const Stops& stops) {
        reference::drawGradient(kLinear ? FillKind::Linear : FillKind::Radial, scene.target, scene.mask,
                                scene.box, angle, scale, stops);
    }
};
using Fills = testing::Types<ZvLinearGradient, ZvRadialGradient>;
TYPED_TEST_SUITE(Gradient, Fills);

TYPED_TEST(Gradient, EqualsThePlainForm) {
    unsigned seed = 0;
    for (const Stops& stops : {kSix, kTwo, kAlone}) {
        for (float scale : {0.1f, 0.35f, 1.0f, 1.12f, 2.0f, 5.0f}) {
            for (int angle : {0, 1, 30, 45, 90, 144, 180, 209, 270, 300, 359, -30, -200}) {
                SCOPED_TRACE("angle " + std::to_string(angle) + ", scale " + std::to_string(scale));
                this->set(static_cast<float>(angle) + 0.7f, scale, stops);
                const float whole = this->filter.property->angle;
                const auto plain = [&](FilterScene& scene) {
                    this->drawPlain(scene, whole, std::min(scale, 2.0f), stops);
                };
                expectThePlainForm(this->filter, seed++, 4, plain);
                if (angle % 45 == 0) expectThePlainForm(this->filter, 4, 1, plain, 150, 37);  // all of a box
            }
        }
    }
}

TYPED_TEST(Gradient, WithoutStopsDrawsNothing) {
    FilterScene scene(2), before(2);
    Stops stops = kSix;
    const std::pair<int, ZvGradient*> without[] = {{0, stops.data()}, {INT_MIN, stops.data()}, {3, nullptr}};
    for (const auto& [count, data] : without) {
        typename TestFixture::Property property(10, 1, 1, count, data);
        this->filter.setProperty(&property);
        scene.draw(this->filter);
    }
    EXPECT_TRUE(scene.sameAs(before));
}

}  // namespace
}  // namespace Zvex
