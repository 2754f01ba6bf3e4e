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

TEST(Values, ColorsAreThoseOfCss) {
    const std::pair<const char*, uint32_t> cases[] = {{"RebeccaPurple", 0xFF663399},
                                                      {"transparent", 0},
                                                      {"rgb(255, 136, 0)", 0xFFFF8800},
                                                      {"rgb(100%,50%,0%)", 0xFFFF8000},
                                                      {"RGBA(1,2,3,.5)", 0x80010203},
                                                      {"rgb(1 2 3 / 50%)", 0x80010203},
                                                      {"rgb( 1.5 2 3/0 )", 0x00020203},
                                                      {"hsl(120, 100%, 25%)", 0xFF008000},
                                                      {"hsl(-240deg 100 25)", 0xFF008000},
                                                      {"hsla(0.75turn, 60%, 70%, 0.2)", 0x33B385E0},
                                                      {"hsl(3.14159265rad 50% 50% / 1)", 0xFF40BFBF},
                                                      {"hsl(200grad 0% 100%)", 0xFFFFFFFF}};
    for (const auto& [text, expected] : cases) EXPECT_EQ(readColor(text), expected) << text;
    for (const char* text : {"",
                             "#",
                             "redd",
                             "rgb",
                             "rgb()",
                             "rgb(1,2)",
                             "rgb(1,2,3",
                             "rgb(1,2,3))",
                             "rgb(1 2 3 4)",
                             "rgb(1 2 / 3)",
                             "rgb(1,2,3/4)",
                             "rgb(256,0,0)",
                             "rgb(1,,3)",
                             "rgb(-1,0,0)",
                             "rgb(1,2,3,2)",
                             "rgb(1px,2,3)",
                             "rgb(101%,0%,0%)",
                             "hsl(inf,0%,0%)",
                             "hsl(0,101%,0%)",
                             "lab(1 2 3)"}) {
        EXPECT_EQ(readColor(text), std::nullopt) << text;
    }
    EXPECT_EQ(colorNames().size(), 149u);
}

// Where the first two digits are no opacity that anybody would write, and the last two are.
TEST(Values, EightDigitsThatMayBeMeantAsInCssAreToldOf) {
    const std::pair<const char*, const char*> cases[] = {
        {"#ff000080",
         "color: '#ff000080' is #aarrggbb, the opaque #000080; write that, or rgb(255 0 0 / 50.2%)"},
        {"#00FF00ff",
         "color: '#00FF00ff' is #aarrggbb, which is invisible; if that is not meant, write "
         "rgb(0 255 0 / 100%)"},
        {"#80ffffff", ""},
        {"#ff123400", ""},
        {"#ffffffff", ""},
        {"#00000000", ""},
        {"#ff0080", ""}};
    for (const auto& [text, expected] : cases) {
        std::vector<std::string> warnings;
        parseColor("--color", text, &warnings);
        EXPECT_EQ(warnings.empty() ? "" : warnings[0], expected);
    }
}

}  // namespace
}  // namespace Zvex::scene
