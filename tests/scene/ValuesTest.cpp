// SPDX-License-Identifier: Apache-2.0
#include "scene/Values.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace Zvex::scene {
namespace {

// The other ways are those of the styles and the settings of effects.
TEST(Values, PaddingTakesOneTwoOrFourSides) {
    const std::pair<const char*, std::array<int, 4>> cases[] = {
        {"7", {7, 7, 7, 7}}, {"10,20", {10, 20, 10, 20}}, {"1,2,3,4", {1, 2, 3, 4}}};
    for (const auto& [text, expected] : cases) {
        const Padding sides = parsePadding("--padding", text);
        EXPECT_EQ((std::array<int, 4>{sides.left, sides.top, sides.right, sides.bottom}), expected) << text;
    }
}

}  // namespace
}  // namespace Zvex::scene
