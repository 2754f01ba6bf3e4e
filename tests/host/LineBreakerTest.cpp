// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LineBreaker.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

const uint16_t* units(const std::u16string& text) {
    return reinterpret_cast<const uint16_t*>(text.data());
}

// Every unit is ten pixels wide, so widths are easy to count.
float tenEach(int start, int end) {
    return 10.0f * static_cast<float>(end - start);
}

TEST(LineBreaker, WrapsAtWordsEndsAtLineEndingsAndCutsBetweenClusters) {
    const struct {
        std::u16string text;
        float width;
        std::vector<std::u16string> lines;
    } cases[] = {{u"one two three", 70, {u"one two", u"three"}},
                 {u"one two three", 69, {u"one", u"two", u"three"}},
                 {u"one   two", 30, {u"one", u"two"}},
                 {u"one two", 0, {u"one two"}},
                 {u"well-known", 60, {u"well-", u"known"}},
                 {u"10\u00A0km on", 60, {u"10\u00A0km", u"on"}},
                 {u"a\nb\r\nc\rd\u2028e", 0, {u"a", u"b", u"c", u"d", u"e"}},
                 {u"a\n\nb\n", 100, {u"a", u"", u"b", u""}},
                 {u"   ", 10, {u""}},
                 {u"abcdefgh ij", 30, {u"abc", u"def", u"gh", u"ij"}},
                 {u"a\u0301b\u0301c", 30, {u"a\u0301", u"b\u0301c"}},
                 {u"ab", 5, {u"a", u"b"}},
                 {u"\u65E5\u672C\u8A9E\u306E", 20, {u"\u65E5\u672C", u"\u8A9E\u306E"}}};
    for (const auto& [text, width, lines] : cases) {
        std::vector<std::u16string> parts;
        size_t position = 0;
        for (const LineRange& line : breakLines(units(text), static_cast<int>(text.size()), width, tenEach)) {
            const auto start = static_cast<size_t>(line.start), end = static_cast<size_t>(line.visibleEnd);
            EXPECT_EQ(start, position) << "lines leave no unit out";
            parts.push_back(text.substr(start, end - start));
            position = static_cast<size_t>(line.end);
        }
        EXPECT_EQ(parts, lines) << testing::PrintToString(text);
        EXPECT_EQ(position, text.size());
    }
}

// If pieces are narrower together than alone (ligatures, joining letters), the line takes what really fits.
TEST(LineBreaker, SettlesLinesByTheirWholeShape) {
    const std::u16string text = u"aa bb cc dd";
    const auto tight = [](int start, int end) {
        const int length = end - start;
        return length <= 3 ? 10.0f * static_cast<float>(length) : 20.0f + static_cast<float>(length);
    };
    const auto found = breakLines(units(text), static_cast<int>(text.size()), 31, tight);
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found[0].visibleEnd, 11);
}

TEST(LineBreaker, AMillionCharactersInOneParagraphTakeLinearWork) {
    const struct {
        const char16_t* piece;
        float width;
        size_t lines;
    } cases[] = {
        {u"lorem ipsum ", 800, 12'821}, {u"x", 800, 12'500}, {u"x", 10'000, 1'000}, {u"x", 7'770, 1'288}};
    for (const auto& [piece, width, lines] : cases) {
        std::u16string text;
        while (text.size() < 1'000'000) text += piece;
        int64_t measured = 0;
        const auto count = [&](int start, int end) {
            measured += end - start;
            return tenEach(start, end);
        };
        const auto found = breakLines(units(text), static_cast<int>(text.size()), width, count);
        EXPECT_EQ(found.size(), lines);
        EXPECT_LT(measured, 11'000'000) << piece[0] << width;
    }
}

}  // namespace
}  // namespace host
