// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/Values.h"

#include <gtest/gtest.h>

#include <functional>

#include "tools/zvtext/Failure.h"
#include "tools/zvtext/TextInput.h"

namespace zvtext {
namespace {

// The message with which `read` refuses its value; empty when it takes it.
std::string refusal(const std::function<void()>& read) {
    try {
        read();
    } catch (const UsageError& error) {
        return error.what();
    }
    return "";
}

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
    EXPECT_EQ(parseNumber("--size", "12.5", 0, 100), 12.5);
    for (const char* bad : {"", "nan", "inf", "-inf", "1e9", "-1", "0", "12px", " 12", "1,5", "0x10"}) {
        EXPECT_EQ(refusal([&] { parseNumber("--size", bad, 0, 100, true); }),
                  std::string("--size: '") + bad + "' is not a number above 0 and up to 100");
    }
    EXPECT_EQ(parseInteger("--width", "32767", 1, 32767), 32767);
    for (const char* bad : {"0", "2147483648", "99999999999999999999", "1.5", "", "-3"}) {
        EXPECT_FALSE(refusal([&] { parseInteger("--width", bad, 1, 32767); }).empty()) << bad;
    }
    EXPECT_EQ(parseOpacity("--opacity", "60%"), 0.6f);
    EXPECT_EQ(parseOpacity("--opacity", "0.25"), 0.25f);
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "101%"); }).empty());
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "1.01"); }).empty());
    EXPECT_FALSE(refusal([] { parseOpacity("--opacity", "%"); }).empty());
}

TEST(Values, PaddingAndStrokeNameThePartThatIsWrong) {
    const Padding sides = parsePadding("--padding", "10,20");
    EXPECT_EQ(sides.left, 10);
    EXPECT_EQ(sides.top, 20);
    EXPECT_EQ(sides.right, 10);
    EXPECT_EQ(sides.bottom, 20);
    EXPECT_EQ(parsePadding("--padding", "1,2,3,4").bottom, 4);
    EXPECT_FALSE(refusal([] { parsePadding("--padding", "1,2,3"); }).empty());

    const StrokeValue stroke = parseStroke("--stroke", "8.5:#40202020:center");
    EXPECT_EQ(stroke.width, 8.5f);
    EXPECT_EQ(stroke.color, 0x40202020u);
    EXPECT_EQ(stroke.position, 0);
    EXPECT_EQ(parseStroke("--stroke", "3").position, 1);
    EXPECT_EQ(parseStroke("--stroke", "3:#000:inside").position, 2);
    EXPECT_EQ(refusal([] { parseStroke("--stroke", "101:#000"); }),
              "--stroke width: '101' is not a number from 0 to 100");
    EXPECT_EQ(refusal([] { parseStroke("--stroke", "1:red"); }),
              "--stroke colour: 'red' is not a colour; write #rgb, #rrggbb or #aarrggbb");
    EXPECT_EQ(refusal([] { parseStroke("--stroke", "1:#000:left"); }),
              "--stroke position: 'left' is not one of outside, inside, center");
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
}  // namespace zvtext
