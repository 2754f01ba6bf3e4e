// SPDX-License-Identifier: Apache-2.0
#include "scene/Values.h"

#include <gtest/gtest.h>

#include "scene/TextInput.h"
#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

TEST(Values, ColorsTakeThreeFormsWithAlphaFirst) {
    EXPECT_EQ(parseColor("--color", "#f80"), 0xFFFF8800u);
    EXPECT_EQ(parseColor("--color", "#Ff8801"), 0xFFFF8801u);
    EXPECT_EQ(parseColor("--color", "#80ff8801"), 0x80FF8801u);
    for (const char* bad :
         {"", "#", "ff8800", "#ff", "#ff880", "#ff8800f", "#gg8800", "#ff8800ff0", "#-f8800", "#ff 800"}) {
        EXPECT_EQ(refusal([&] { parseColor("--color", bad); }).rfind("--color: '", 0), 0u) << bad;
    }
}

TEST(Values, NumbersOutsideTheirRangeAreRefusedByName) {
    const NumberRange size = {0, 100, "px", true};
    EXPECT_EQ(parseNumber("--size", "12.5", size), 12.5);
    EXPECT_EQ(parseNumber("--size", "100px", size), 100);
    for (const char* bad :
         {"", "nan", "inf", "-inf", "1e9", "-1", "0", "12pt", "px", "12 px", " 12", "1,5", "0x10"}) {
        EXPECT_EQ(refusal([&] { parseNumber("--size", bad, size); }),
                  std::string("--size: '") + bad + "' is not a number above 0 and up to 100 (px)");
    }
    EXPECT_EQ(parseInteger("--width", "32767", 1, 32767), 32767);
    for (const char* bad : {"0", "2147483648", "99999999999999999999", "1.5", "", "-3"}) {
        EXPECT_FALSE(refusal([&] { parseInteger("--width", bad, 1, 32767); }).empty()) << bad;
    }
    EXPECT_EQ(parseOpacity("--opacity", "60%"), 0.6);
    EXPECT_EQ(parseOpacity("--opacity", "0.25"), 0.25);
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "101%"); }).empty());
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "1.01"); }).empty());
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "%"); }).empty());
}

TEST(Values, PaddingTakesOneTwoOrFourSides) {
    const Padding sides = parsePadding("--padding", "10,20");
    EXPECT_EQ(sides.left, 10);
    EXPECT_EQ(sides.top, 20);
    EXPECT_EQ(sides.right, 10);
    EXPECT_EQ(sides.bottom, 20);
    EXPECT_EQ(parsePadding("--padding", "1,2,3,4").bottom, 4);
    EXPECT_FALSE(refusal([] { parsePadding("--padding", "1,2,3"); }).empty());
}

TEST(TextInput, FindsTheFirstByteThatIsNotUtf8) {
    EXPECT_EQ(findInvalidUtf8("Gr\xC3\xBC\xC3\x9F"
                              "e \xF0\x9F\x98\x80"),
              std::string::npos);
    EXPECT_EQ(findInvalidUtf8("ab\xFF"), 2u);
    EXPECT_EQ(findInvalidUtf8("a\xC0\x80"), 1u);         // overlong NUL
    EXPECT_EQ(findInvalidUtf8("\xED\xA0\x80"), 0u);      // surrogate
    EXPECT_EQ(findInvalidUtf8("abc\xE4\xB8"), 3u);       // cut short
    EXPECT_EQ(findInvalidUtf8("\xF4\x90\x80\x80"), 0u);  // beyond U+10FFFF
}

}  // namespace
}  // namespace Zvex::scene
