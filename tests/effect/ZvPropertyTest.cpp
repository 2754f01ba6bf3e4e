// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvProperty.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "raster/ZvBitmap.h"
#include "tests/effect/PropertyFields.h"
#include "tests/effect/TestValues.h"

namespace Zvex {
namespace {

// A record's key as its letter followed by two hexadecimal digits for the low seven bits of each byte. That
// is easier to read, and it fails for a byte without its top bit. Also checks the announced length and the
// bytes after the key.
std::string keyOf(ZvProperty& property, int announced = -1) {
    if (announced >= 0) {
        EXPECT_EQ(property.getSequentialCharLength(), announced);
    }
    const size_t length = static_cast<size_t>(property.getSequentialCharLength());
    std::vector<char> memory(length + 2, '?');
    char* cursor = memory.data();
    EXPECT_EQ(property.toSequentialChar(&cursor), 1);
    const size_t written = static_cast<size_t>(cursor - memory.data());
    EXPECT_LE(written, length);
    EXPECT_EQ(*cursor, '\0');
    EXPECT_EQ(memory[length + 1], '?');
    std::string text(1, memory[0]);
    for (size_t i = 1; i < written; ++i) {
        const unsigned byte = static_cast<unsigned char>(memory[i]);
        EXPECT_GE(byte, 0x80u) << "byte " << i;
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", byte & 0x7F);
        text += digits;
    }
    return text;
}

constexpr char kColorKey[] = "01020a0b0c0d0e0f";  // one byte for each digit of the colour
constexpr uint32_t kKeyed = 0x12ABCDEF;

TEST(LayerKey, AnglesAreBroughtToACircle) {
    const struct {
        float angle;
        const char* key;
    } cases[] = {{0, "0000"},   {127.9f, "007f"}, {128, "0100"},         {359, "0267"},     {720, "0000"},
                 {-30, "024a"}, {-0.9f, "0000"},  {kNotANumber, "0000"}, {kEndless, "007f"}};
    for (const auto& c : cases) {
        ZvOuterShadowProperty shadow(c.angle, 0, 0, 0, 0);
        EXPECT_EQ(keyOf(shadow).substr(1, 4), c.key) << c.angle;
    }
}

TEST(LayerKey, SmallFieldsKeepSevenBits) {
    ZvStrokeProperty stroke(129.9f, kKeyed, 1.0f, 300, -1);
    EXPECT_EQ(keyOf(stroke, 12), std::string("K") + "01" + kColorKey + "2c" + "7f");
    ZvStrokeProperty odd(kNotANumber, 0, 0, INT_MIN, INT_MAX);
    EXPECT_EQ(keyOf(odd), std::string("K") + "00" + "0000000000000000" + "00" + "7f");
}

TEST(LayerKey, StopCountsNobodyMeantAreHarmless) {
    ZvGradient stop{kKeyed, 1.0f, 0.5f};
    for (int count : {-1, INT_MIN}) {
        ZvOuterGlowProperty glow(1, kKeyed, 1, count, &stop);
        EXPECT_EQ(keyOf(glow, 10).size(), 1u + 2 * 9);
        ZvLinearGradientProperty gradient(0, 1, 1, count, &stop);
        EXPECT_EQ(keyOf(gradient, 5).size(), 1u + 2 * 4);
    }
    ZvInnerGlowProperty glow(1, kKeyed, 1, 7, nullptr), huge(1, kKeyed, 1, INT_MAX, nullptr);
    EXPECT_EQ(keyOf(glow).size(), 1u + 2 * 9);
    EXPECT_GT(huge.getSequentialCharLength(), 2000000000);
}

TEST(LayerKey, PatternsAreToldApartByTheirBitmap) {
    ZvBitmap one(2, 2, 4), two(one);
    ZvPatternProperty first(&one, 12.0f, 0.29f), second(&two, 12.0f, 0.29f);
    EXPECT_EQ(first.getSequentialCharLength(), 17);
    const uint32_t address = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&one));
    std::string digits;
    for (int shift = 28; shift >= 0; shift -= 4) digits += {'0', "0123456789abcdef"[address >> shift & 15]};
    EXPECT_EQ(keyOf(first), "P" + digits + "00030e08" + "0000010c");  // 1000 and 28
    EXPECT_NE(keyOf(first), keyOf(second));
}

TEST(ZvProperty, RecordsKeepOrLimitTheirNumbers) {
    EXPECT_EQ(fieldsOf(ZvOuterShadowProperty(-405.7f, -3, 1e9f, kKeyed, 7)),
              fields(-405.7f, -3, 1e9f, kKeyed, 7));
    const float angles[][2] = {{405.7f, 45}, {-30.2f, -30}, {kNotANumber, 0}, {-kEndless, -128}};
    for (const auto& angle : angles) {
        EXPECT_EQ(fieldsOf(ZvInnerShadowProperty(angle[0], 1, 2, 3, 4)), fields(angle[1], 1, 2, 3, 4));
    }
    EXPECT_EQ(fieldsOf(ZvLinearGradientProperty(-405.7f, 3.5f, 0.5f, 2, nullptr)),
              fields(-45, 2, 0.5f, 2, 0));
    for (float low : {-1.0f, kNotANumber}) {
        EXPECT_EQ(ZvRadialGradientProperty(0, low, 0, 0, nullptr).scale, 0.0f);
        EXPECT_EQ(ZvPatternProperty(nullptr, low, 1.0f).scale, 0.0f);
    }
    EXPECT_EQ(ZvPatternProperty(nullptr, 11.0f, 1.0f).scale, 10.0f);
    EXPECT_EQ(fieldsOf(ZvBevelProperty(3, -5, -1, 4, 5, 20, 0.75f, 370.5f, -100.5f, kKeyed, 2, ~kKeyed, 3)),
              fields(3, -5, 0, 4, 5, 16, 0.75f, 10, -10, kKeyed, 2, ~kKeyed, 3, 0));
    EXPECT_EQ(fieldsOf(ZvEmbossProperty(0, 0, 11, 0, 0, -4, 0, 0, 0, 0, 0, 0, 0)),
              fields(0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
}

}  // namespace
}  // namespace Zvex
