// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cstring>
#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/ZvString.h"
#include "foundation/ZvStringImpl.h"
#include "tests/foundation/Outcome.h"

namespace Zvex {
namespace {

using Units = std::vector<uint16_t>;

const char* const kNoChars = nullptr;
const wchar_t* const kNoWide = nullptr;
const ZvString* const kNoString = nullptr;

wchar_t wide(uint32_t c) {
    return static_cast<wchar_t>(c);
}

std::wstring textOf(const ZvString& string) {
    const wchar_t* text = string.GetPointer();
    return text != nullptr ? text : L"(null)";
}

std::string utf8Of(const ZvString& string) {
    std::vector<char> buffer(static_cast<size_t>(std::max(string.GetUTF8Size(), 1)), '#');
    EXPECT_EQ(string.GetUTF8(buffer.data(), static_cast<int>(buffer.size())), 1);
    return buffer.data();
}

Units utf16Of(const ZvString& string) {
    int count = -1;
    const std::unique_ptr<uint16_t[]> units(string.GetUTF16(count));
    if (units == nullptr || count < 0) return {0xDEAD};
    EXPECT_EQ(units[static_cast<size_t>(count)], 0);
    return Units(units.get(), units.get() + count);
}

TEST(String, ConstructsFromEverySource) {
    ZvString empty, fromChars, fromWide, copy, prefix, cut, beyond, copyOfEmpty;
    const wchar_t unterminated[3] = {L'a', L'b', L'c'};
    ASSERT_EQ(empty.Construct() + fromChars.Construct("gr\xC3\xBC\xC3\x9F") + fromWide.Construct(L"wide"), 3);
    ASSERT_EQ(copy.Construct(&fromWide) + prefix.Construct(&fromWide, 2) + cut.Construct(unterminated, 3), 3);
    ASSERT_EQ(beyond.Construct(L"abc", INT_MAX) + copyOfEmpty.Construct(&empty), 2);
    EXPECT_EQ(empty.GetPointer(), nullptr);
    EXPECT_EQ(empty.GetLength(), 0);
    EXPECT_EQ(textOf(fromChars), L"gr\u00FC\u00DF");
    EXPECT_EQ(textOf(copy), L"wide");
    EXPECT_NE(copy.GetPointer(), fromWide.GetPointer());
    EXPECT_EQ(textOf(prefix), L"wi");
    EXPECT_EQ(textOf(cut), L"abc");
    EXPECT_EQ(textOf(beyond), L"abc");
    EXPECT_EQ(copyOfEmpty.GetPointer(), nullptr);
}

TEST(String, RefusesWhatCannotBeDone) {
    constexpr char kTag[] = "ZvString";
    ZvString bare, text;
    ASSERT_EQ(text.Construct(L"abc"), 1);
    char utf8[] = "####";
    int count = -5;
    wchar_t out = 0;
    EXPECT_OUTCOMES(4, 0, kTag, of(text.Construct()), of(text.Construct(L"x")), of(text.Construct(kNoChars)));
    EXPECT_OUTCOMES(7, 0, kTag, of(bare.Construct(kNoChars)), of(bare.Construct(kNoWide)),
                    of(bare.Construct(kNoString)), of(bare.Construct(kNoWide, 3)),
                    of(bare.Construct(L"x", -1)));
    // Every operation of a string that is still not constructed.
    EXPECT_OUTCOMES(8, 0, kTag, of(bare.Set(L"x")), of(bare.Set("x")), of(bare.Set(&text)),
                    of(bare.Set(kNoString)), of(bare.Clear()), of(bare.Append(L"x")), of(bare.Append("x")),
                    of(bare.Append(&text)), of(bare.Insert(L"x", 0)), of(bare.Remove(0, 0)),
                    of(bare.SetSubstring(&text, 0, 1)), of(bare.GetPointer()), of(bare.GetChar(0, &out)),
                    of(bare.GetUTF8(utf8, 4)), of(bare.GetUTF16(count)));
    EXPECT_OUTCOMES(8, -1, kTag, of(bare.GetLength()), of(bare.CompareTo(&text)), of(bare.CompareTo("x")),
                    of(bare.CompareTo("x", 1)), of(bare.Find(L"x")), of(bare.Find("x")),
                    of(bare.ReverseFind(L"x")), of(bare.ReverseFind("x")), of(bare.GetUTF8Size()));
    EXPECT_EQ(count, -5);
    EXPECT_OUTCOMES(3, 0, kTag, of(text.Insert(L"x", -1)), of(text.Insert(L"x", 4)), of(text.Remove(-1, 1)),
                    of(text.Remove(3, 0)), of(text.GetChar(3, &out)), of(text.GetChar(-1, &out)));
    EXPECT_OUTCOMES(7, 0, kTag, of(text.Insert(L"", 1)), of(text.Insert(kNoWide, 1)),
                    of(text.Insert(&bare, 1)), of(text.Remove(1, 3)), of(text.Remove(1, INT_MAX)),
                    of(text.Remove(1, -1)), of(text.SetSubstring(kNoString, 0, 1)),
                    of(text.GetUTF8(nullptr, 4)), of(text.GetUTF8(utf8, -1)), of(text.GetUTF8(utf8, 0)));
    EXPECT_OUTCOMES(7, -1, kTag, of(text.CompareTo(kNoString)), of(text.Find(kNoWide)));
    EXPECT_STREQ(utf8, "####") << "no room, nothing written";
    EXPECT_EQ(textOf(text), L"abc") << "failures leave the text alone";
}

TEST(String, EditsTheText) {
    ZvString text, other;
    wchar_t c = 0;
    ASSERT_EQ(text.Construct() + other.Construct(L"[]"), 2);
    EXPECT_OUTCOMES(0, 1, nullptr, of(text.Append(L"bd")), of(text.Insert(L"a", 0)), of(text.Insert(L"c", 2)),
                    of(text.Insert(&other, 4)), of(text.Append("\xE2\x82\xAC")), of(text.Append(&other)),
                    of(text.Append(kNoChars)), of(text.Append(kNoWide)), of(text.Append(kNoString)));
    EXPECT_EQ(textOf(text), L"abcd[]\u20AC[]");
    EXPECT_OUTCOMES(0, 1, nullptr, of(text.Remove(2, 0)), of(text.Remove(4, 5)), of(text.GetChar(3, &c)),
                    of(other.SetSubstring(&text, 1, 2)));
    EXPECT_EQ(textOf(text), L"abcd");
    EXPECT_EQ(c, L'd');
    EXPECT_EQ(textOf(other), L"bc");
    EXPECT_EQ(other.SetSubstring(&text, -7, INT_MAX), 1) << "only what exists";
    EXPECT_EQ(textOf(other), L"abcd");
    EXPECT_EQ(other.SetSubstring(&text, 3, 1), 1);
    EXPECT_EQ(textOf(other), L"");
    const std::function<int()> clearings[] = {
        [&] { return other.Set(kNoChars); }, [&] { return other.Set(kNoWide); },
        [&] { return other.Set(kNoString); }, [&] { return other.Clear(); }};
    for (const auto& clear : clearings) {
        EXPECT_OUTCOMES(0, 1, nullptr, of(other.Set("set")), of(other.GetLength() == 3), of(clear()));
        EXPECT_EQ(other.GetPointer(), nullptr);
        EXPECT_EQ(other.GetLength(), 0);
    }
}

TEST(String, SourcesMayBeTheStringItself) {
    ZvString text;
    ASSERT_EQ(text.Construct(L"abcd"), 1);
    EXPECT_EQ(text.Set(text.GetPointer() + 1), 1);
    EXPECT_EQ(textOf(text), L"bcd");
    EXPECT_EQ(text.Set(&text), 1);
    EXPECT_EQ(text.Append(&text), 1);
    EXPECT_EQ(text.Insert(&text, 1), 1);
    EXPECT_EQ(textOf(text), L"bbcdbcdcdbcd");
    EXPECT_EQ(text.SetSubstring(&text, 2, 3), 1);
    EXPECT_EQ(textOf(text), L"cd");
}

// Lengths first, then characters; with a count only characters. Of a char text the length is its bytes.
TEST(String, Compares) {
    ZvString b, aa, ab, empty, accented;
    ASSERT_EQ(b.Construct(L"b") + aa.Construct(L"aa") + ab.Construct(L"ab") + empty.Construct(), 4);
    ASSERT_EQ(accented.Construct("\xC3\xA9"), 1);
    EXPECT_EQ(b.CompareTo(&aa), -1);
    EXPECT_EQ(aa.CompareTo(&b), 1);
    EXPECT_LT(aa.CompareTo(&ab), 0);
    EXPECT_GT(ab.CompareTo(&aa), 0);
    EXPECT_LT(ab.CompareTo("abc", 3), 0);
    EXPECT_OUTCOMES(0, 0, nullptr, of(ab.CompareTo(&ab)), of(ab.CompareTo("ab")), of(ab.CompareTo("abc", 2)),
                    of(empty.CompareTo("")), of(accented.CompareTo("\xC3\xA9", 1)));
    EXPECT_EQ(ab.CompareTo("b"), 1);
    EXPECT_EQ(empty.CompareTo(&b), -1);
    EXPECT_EQ(accented.CompareTo("\xC3\xA9"), -1) << "one character against two bytes";
}

TEST(String, FindMissesTheEndThatReverseFindSees) {
    const struct {
        const wchar_t* sought;
        int first, last;
    } rows[] = {{L"ab", 0, 3},     {L"bca", 1, 1},      {L"cab", -1, 2},  // only at the very end
                {L"abcab", -1, 0}, {L"abcabc", -1, -1}, {L"x", -1, -1}};
    ZvString text, empty;
    ASSERT_EQ(text.Construct(L"abcab") + empty.Construct(), 2);
    for (const auto& row : rows) {
        const std::string chars(row.sought, row.sought + std::wcslen(row.sought));
        EXPECT_EQ(text.Find(row.sought), row.first) << chars;
        EXPECT_EQ(text.Find(chars.c_str()), row.first) << chars;
        EXPECT_EQ(text.ReverseFind(row.sought), row.last) << chars;
        EXPECT_EQ(text.ReverseFind(chars.c_str()), row.last) << chars;
        EXPECT_EQ(empty.Find(row.sought) + empty.ReverseFind(row.sought), -2) << chars;
    }
}

TEST(StringUTF8, SizesAndBytesAgreeInEveryLengthClass) {
    if (sizeof(wchar_t) < 4) GTEST_SKIP() << "characters above 0xFFFF are pairs here";
    const struct {
        uint32_t c;
        const char* utf8;
    } rows[] = {{0x01, "\x01"},
                {0x7F, "\x7F"},
                {0x80, "\xC2\x80"},
                {0x7FF, "\xDF\xBF"},
                {0x800, "\xE0\xA0\x80"},
                {0xD800, "\xED\xA0\x80"},
                {0xDFFF, "\xED\xBF\xBF"},  // surrogates alone stay what they are
                {0xFFFF, "\xEF\xBF\xBF"},
                {0x10000, "\xF0\x90\x80\x80"},
                {0x10FFFF, "\xF4\x8F\xBF\xBF"},
                {0x1FFFFF, "\xF7\xBF\xBF\xBF"},
                {0x200000, "\xF8\x88\x80\x80\x80"},
                {0x3FFFFFF, "\xFB\xBF\xBF\xBF\xBF"},
                {0x4000000, "\xFC\x84\x80\x80\x80\x80"},
                {0x7FFFFFFF, "\xFD\xBF\xBF\xBF\xBF\xBF"}};
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.c);
        const wchar_t text[] = {wide(row.c), 0};
        ZvString string, back;
        ASSERT_EQ(string.Construct(text), 1);
        EXPECT_EQ(string.GetUTF8Size(), static_cast<int>(std::strlen(row.utf8)) + 1);
        EXPECT_EQ(utf8Of(string), row.utf8);
        ASSERT_EQ(back.Construct(row.utf8), 1);
        EXPECT_EQ(textOf(back), text);
    }
    EXPECT_EQ(ZvStringImpl::GetUTF8Size(nullptr), 1);
    EXPECT_EQ(ZvStringImpl::GetUTF8Size(L""), 1);
}

TEST(StringUTF8, NegativeCharactersCountMinusOneAndEndTheConversion) {
    if (sizeof(wchar_t) < 4) GTEST_SKIP() << "no negative characters here";
    const wchar_t text[] = {L'a', L'b', L'c', wide(0x80000000u), L'd', 0};
    ZvString string;
    ASSERT_EQ(string.Construct(text), 1);
    EXPECT_EQ(string.GetUTF8Size(), 4);
    EXPECT_EQ(utf8Of(string), "abc");
    EXPECT_EQ(utf16Of(string), (Units{'a', 'b', 'c'}));

    // A size below 1: the empty text, however much room there is.
    const wchar_t sunk[] = {L'a', wide(0xFFFFFFFFu), wide(0xFFFFFFFFu), wide(0xFFFFFFFFu), 0};
    string.Set(sunk);
    EXPECT_EQ(string.GetUTF8Size(), -1);
    char room[8] = "#######";
    EXPECT_EQ(string.GetUTF8(room, 8), 1);
    EXPECT_STREQ(room, "");
    EXPECT_EQ(utf16Of(string), Units{});
}

TEST(StringUTF8, CutsAtWholeCharactersAndAlwaysEnds) {
    ZvString string;
    ASSERT_EQ(string.Construct(L"a\u20AC!"), 1);
    const std::string whole = "a\xE2\x82\xAC!";
    const size_t shown[] = {0, 1, 1, 1, 4, 5, 5};
    for (size_t size = 1; size <= 7; ++size) {
        char buffer[9];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(string.GetUTF8(buffer, static_cast<int>(size)), 1);
        EXPECT_EQ(buffer, whole.substr(0, shown[size - 1])) << size;
        EXPECT_EQ(buffer[size - 1], '\0') << size;
        EXPECT_EQ(buffer[size], '#') << size;
    }
    string.Clear();
    char buffer[3] = {'#', '#', '#'};
    EXPECT_EQ(string.GetUTF8(buffer, 3), 1);
    EXPECT_EQ(std::string(buffer, 3), std::string("\0##", 3)) << "without a buffer only the first byte";
}

TEST(StringUTF8, ReadingEndsAtTheFirstMalformedByte) {
    for (const char* tail : {"\x80", "\xBF", "\xC3", "\xC3(", "\xE2\x82", "\xE2(\xAC", "\xF0\x9F\x98", "\xFE",
                             "\xFF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF",
                             "\xF8\x87\xBF\xBF\xBF", "\xFD\xBF\xBF\xBF\xBF"}) {
        ZvString string;
        // In memory of its exact size, so that the address sanitizer sees a read past the NUL.
        const std::string text = std::string("ok") + tail;
        const std::unique_ptr<char[]> exact(new char[text.size() + 1]);
        std::memcpy(exact.get(), text.c_str(), text.size() + 1);
        EXPECT_EQ(string.Construct(exact.get()), 1);
        EXPECT_EQ(textOf(string), L"ok") << testing::PrintToString(tail);
    }
}

// Java's native strings write a character above U+FFFF as its two surrogates.
TEST(StringUTF8, ReadsSurrogatePairsOfThreeByteSequencesAsOneCharacter) {
    ZvString string;
    ASSERT_EQ(string.Construct("\xED\xA0\xBD\xED\xB8\x80!"), 1);
    EXPECT_EQ(utf8Of(string), "\xF0\x9F\x98\x80!");
    EXPECT_EQ(utf16Of(string), (Units{0xD83D, 0xDE00, '!'}));
    for (const char* alone : {"\xED\xA0\xBD", "\xED\xB8\x80", "\xED\xB8\x80\xED\xA0\xBD", "\xED\xA0\xBDx"}) {
        string.Set(alone);
        EXPECT_EQ(utf8Of(string), alone);
    }
}

TEST(StringUTF8, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "C.UTF-8", "", "de_DE.ISO-8859-1"}) {
        if (std::setlocale(LC_ALL, locale) == nullptr) continue;
        ZvString string;
        EXPECT_EQ(string.Construct("\xE6\x96\x87\xC3\xA9"), 1);
        EXPECT_EQ(textOf(string), L"\u6587\u00E9") << locale;
        EXPECT_EQ(utf8Of(string), "\xE6\x96\x87\xC3\xA9") << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

TEST(StringUTF16, UnitsOfEveryClass) {
    ZvString string;
    ASSERT_EQ(string.Construct("Az\x7F\xC3\xA9\xE2\x82\xAC\xEF\xBF\xBF\xF0\x90\x80\x80\xF0\x9F\xBF\xBF"), 1);
    EXPECT_EQ(utf16Of(string), (Units{'A', 'z', 0x7F, 0xE9, 0x20AC, 0xFFFF, 0xD800, 0xDC00, 0xD83F, 0xDFFF}));
    string.Set("");
    EXPECT_EQ(utf16Of(string), Units{});
    string.Clear();
    int count = 77;
    const std::unique_ptr<uint16_t[]> empty(string.GetUTF16(count));
    ASSERT_NE(empty, nullptr);
    EXPECT_EQ(empty[0], 0);
    EXPECT_EQ(count, 77) << "without a buffer the count stays";
    if (sizeof(wchar_t) < 4) return;
    // The high unit ignores the lead byte: of U+20000 it should be D840, of U+10FFFF DBFF.
    string.Set("\xF0\xA0\x80\x80\xF4\x8F\xBF\xBF");
    EXPECT_EQ(utf16Of(string), (Units{0xD800, 0xDC00, 0xD83F, 0xDFFF}));
    const wchar_t old[] = {L'a', wide(0x200000), wide(0x7FFFFFFF), L'b', 0};
    string.Set(old);
    EXPECT_EQ(utf16Of(string), (Units{'a', 0x25A1, 0x25A1, 'b'})) << "white squares";
}

TEST(StringUTF16, WorkersStayInsideAnyBytes) {
    // A stray byte ends both, a sequence cut off by the end is left out.
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("ab\x80!", 4), 2);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("\xFE", 1), 0);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("a\xF0\x9F\x98", 4), 1);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("a", 0), 0);
}

}  // namespace
}  // namespace Zvex
