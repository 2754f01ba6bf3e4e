// SPDX-License-Identifier: Apache-2.0
// What all filters promise: they keep a copy of their settings, and draw all of a picture or nothing.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "effect/EffectFactory.h"
#include "tests/effect/FilterScene.h"
#include "tests/effect/LayerSettings.h"
#include "tests/effect/TestValues.h"

namespace Zvex {
namespace {

std::string keyOf(ZvProperty* record) {
    if (record == nullptr) return "";
    std::vector<char> memory(static_cast<size_t>(record->getSequentialCharLength()) + 1);
    char* cursor = memory.data();
    record->toSequentialChar(&cursor);
    // A pattern's key contains the address of its bitmap.
    return memory[0] == 'P' ? std::string(memory.data() + 9, cursor) : std::string(memory.data(), cursor);
}

class FilterContract : public testing::TestWithParam<int> {
protected:
    const int type = GetParam();
    const std::unique_ptr<ZvECore> filter{newEffectLayer(type)};

    void set(LayerSettings& settings) { filter->setProperty(settings.record(type).get()); }

    // Settings with which each kernel of the filter draws something.
    std::vector<LayerSettings> looks() const {
        std::vector<LayerSettings> looks(6, LayerSettings(3));
        for (int i = 0; i < 6; ++i) {
            LayerSettings& s = looks[static_cast<size_t>(i)];
            s.angle = 20;
            s.distance = i == 4 && type == ZV_EFFECT_INNER_SHADOW ? 30.0f : static_cast<float>(i);
            s.position = s.technique = i % 3;
            s.style = i < 3 ? 3 : 1;
            s.soften = i % 2 * 3;
            const bool relief = type == ZV_EFFECT_BEVEL || type == ZV_EFFECT_EMBOSS;
            if (relief && i % 3 == 2) s.size = 28;  // uses the other method
            if (i == 5) s.stops.resize(1);
        }
        return looks;
    }
};

TEST_P(FilterContract, KeepsACopyOfItsSettings) {
    EXPECT_EQ(filter->getStyle(), type);
    EXPECT_EQ(filter->getProperty(), nullptr);
    EXPECT_EQ(filter->getOffset() + filter->getLeftOffset() + filter->getBottomOffset(), 0);
    LayerSettings a(2), b(4);
    b.scale = 1.5f, b.angle = -30, b.color = 0x11223344, b.stops.resize(1), b.pattern = ZvBitmap(2, 3, 4);
    const auto first = a.record(type), second = b.record(type);
    ASSERT_NE(keyOf(first.get()), keyOf(second.get()));
    forEachFailingAllocation([&](bool fails) {
        const std::unique_ptr<ZvECore> layer(newEffectLayer(type));
        if (layer == nullptr) return;
        layer->setProperty(first.get());
        const std::string before = keyOf(layer->getProperty());
        layer->setProperty(second.get());
        layer->setProperty(nullptr);
        const std::string after = keyOf(layer->getProperty());
        EXPECT_TRUE(after == keyOf(second.get()) || (fails && after == before));
        EXPECT_TRUE(before == keyOf(first.get()) || (fails && before.empty()));
        EXPECT_NE(layer->getProperty(), second.get());
        layer->setProperty(layer->getProperty());  // its own record
        EXPECT_EQ(keyOf(layer->getProperty()), after);
    });
}

TEST_P(FilterContract, DrawsNothingWithoutItsPartsOrMemory) {
    FilterScene scene(2);
    const FilterScene before(2);
    EXPECT_EQ(scene.draw(*filter), 0);
    EXPECT_TRUE(scene.sameAs(before)) << "without settings";
    for (LayerSettings& look : looks()) {
        set(look);
        expectNothingWithoutParts(*filter);
        expectUntouchedWithoutMemory(*filter);
    }
}

// Each field in turn gets sizes that do not fit and values that are no numbers: then nothing is drawn.
TEST_P(FilterContract, DrawsNothingWithAbsurdSettings) {
    using Field = float LayerSettings::*;
    const struct {
        std::vector<int> types;
        Field field;
        std::vector<float> values;
    } rows[] = {
        {{ZV_EFFECT_STROKE},
         &LayerSettings::size,
         {-0.25f, -3, 5e4f, 2147483648.0f, kEndless, -kEndless, kNotANumber}},
        {{ZV_EFFECT_OUTER_GLOW, ZV_EFFECT_INNER_GLOW},
         &LayerSettings::size,
         {-1, -1.5f, -2, -30, 5e4f, 2147483648.0f, kEndless, -kEndless, kNotANumber}},
        {{ZV_EFFECT_OUTER_SHADOW}, &LayerSettings::size, {20000, 1e9f, 3e9f, kEndless}},
        {{ZV_EFFECT_INNER_SHADOW}, &LayerSettings::size, {3e5f, 1e9f, 3e9f, kEndless}},
        {{ZV_EFFECT_OUTER_SHADOW}, &LayerSettings::distance, {100, 3e9f, kEndless}},
        {{ZV_EFFECT_LINEAR_GRADIENT, ZV_EFFECT_RADIAL_GRADIENT, ZV_EFFECT_PATTERN},
         &LayerSettings::scale,
         {0.0999f, 0, -1, kNotANumber}},
        {{ZV_EFFECT_PATTERN}, &LayerSettings::opacity, {-1, 0, 3e-3f, -kEndless, kNotANumber}},
        {{ZV_EFFECT_BEVEL, ZV_EFFECT_EMBOSS},
         &LayerSettings::size,
         {-20, 1e5f, 2147483648.0f, kEndless, -kEndless}},
    };
    FilterScene scene(2);
    const FilterScene before(2);
    for (const auto& row : rows) {
        if (std::count(row.types.begin(), row.types.end(), type) == 0) continue;
        for (const float value : row.values) {
            for (LayerSettings& look : looks()) {
                look.*row.field = value;
                look.angle = 90;
                set(look);
                EXPECT_EQ(scene.draw(*filter), 0);
                ASSERT_TRUE(scene.sameAs(before)) << value;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, FilterContract,
                         testing::ValuesIn(kLayerTypes, kLayerTypes + kLayerKinds - 1));

}  // namespace
}  // namespace Zvex
