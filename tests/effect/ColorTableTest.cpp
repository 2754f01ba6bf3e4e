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

TEST(ColorTable, StopsMeetWhereTheyLie) {
    const uint32_t A = 0xFF000000, B = 0x00FF0000, C = 0x0000FF00, D = 0x000000FF;
    const auto table = [](const reference::Stops& stops) { return tableOf(stops, stops[0].position, 0); };
    EXPECT_EQ(table({{A, 1, 0}, {D, 1, 1}})[128], 0x7F00007Fu);  // each channel is cut off by itself
    // A step: the lower colour at it, the upper one in the next entry, and only then the next segment.
    const auto step = table({{A, 1, 0}, {B, 1, 0.5f}, {C, 1, 0.5f}, {D, 1, 1}});
    EXPECT_EQ((std::vector<uint32_t>{step[128], step[129], step[130]}),
              (std::vector<uint32_t>{B, C, 0x0000FB03}));
    EXPECT_EQ(table({{A, 1, 0.5f}, {B, 1, 0.5f}})[128], A);
    // Before the first stop, and beyond the last one.
    const auto middle = table({{A, 1, 0.25f}, {B, 1, 0.5f}});
    EXPECT_EQ((std::vector<uint32_t>{middle[1], middle[64], middle[128], middle[255]}),
              (std::vector<uint32_t>{A, A, B, B}));
    // One stop an entry: the last of these is not reached before entry 2.
    const auto crowd = table({{A, 1, 0}, {B, 1, 0.001f}, {C, 1, 0.002f}, {D, 1, 0.003f}});
    EXPECT_EQ((std::vector<uint32_t>{crowd[1], crowd[2]}), (std::vector<uint32_t>{C, D}));
    // The first stop's own position does not count where the walk starts elsewhere.
    EXPECT_EQ(tableOf({{A, 1, 0.5f}, {D, 1, 1}}, 0, 0)[128], 0x7F00007Fu);
}

}  // namespace
}  // namespace Zvex
