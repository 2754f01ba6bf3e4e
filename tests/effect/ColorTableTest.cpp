// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/ColorTable.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/effect/TestPictures.h"
#include "tests/effect/TestValues.h"
#include "tests/reference/GradientReference.h"

namespace Zvex {
namespace {

std::vector<uint32_t> tableOf(const reference::Stops& stops, float firstStart, int curve) {
    std::vector<uint32_t> table(kColorTableSize);
    fillColorTable(table.data(), stops.data(), static_cast<int>(stops.size()), firstStart, curve);
    return table;
}

TEST(ColorTable, EqualsThePlainForm) {
    Random random(1);
    const float odd[] = {kNotANumber, -0.5f, 0.0f, 0.5f, 0.5f, 1.0f, 7.0f, -3.0f, kEndless};
    for (int i = 0; i < 3000; ++i) {
        reference::Stops stops(static_cast<size_t>(random.between(1, 2 + i % 7)));
        for (size_t s = 0; s < stops.size(); ++s) {
            stops[s].color = random.color();
            const bool orderly = i % 3 != 0 || random.below(4) != 0;
            const int hundredths = static_cast<int>(s) * 100 / static_cast<int>(stops.size());
            stops[s].position = orderly ? static_cast<float>(hundredths + random.below(25)) / 100.0f
                                        : odd[static_cast<size_t>(random.below(9))];
        }
        const float firstStart = i % 2 == 0 ? 0.0f : stops[0].position;
        ASSERT_EQ(tableOf(stops, firstStart, i % 4), reference::colorTable(stops, firstStart, i % 4))
            << "case " << i << ", " << stops.size() << " stops";
    }
}

}  // namespace
}  // namespace Zvex
