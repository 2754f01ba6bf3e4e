// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
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
    // Every operation of an unconstructed string.
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
    EXPECT_OUTCOMES(0, 1, nullptr, of(other.Set(text.GetPointer() + 2)),
                    of(other.Set(other.GetPointer() + 1)), of(other.Append(&other)),
                    of(other.Insert(&other, 1)));
    EXPECT_EQ(textOf(other), L"dddd");
    const std::function<int()> clearings[] = {
        [&] { return other.Set(kNoChars); }, [&] { return other.Set(kNoWide); },
        [&] { return other.Set(kNoString); }, [&] { return other.Clear(); }};
    for (const auto& clear : clearings) {
        EXPECT_OUTCOMES(0, 1, nullptr, of(other.Set("set")), of(other.GetLength() == 3), of(clear()));
        EXPECT_EQ(other.GetPointer(), nullptr);
        EXPECT_EQ(other.GetLength(), 0);
    }
}

// Lengths come first, then characters; with a count only characters. The length of a char text is its bytes.
// A pattern at the very end is found only backwards.
TEST(String, ComparesAndFindsChars) {
    ZvString ab, accented, empty;
    ASSERT_EQ(ab.Construct(L"abab") + accented.Construct("\xC3\xA9") + empty.Construct(), 3);
    EXPECT_LT(ab.CompareTo("abac", 4), 0);
    EXPECT_OUTCOMES(0, 0, nullptr, of(ab.CompareTo("abab")), of(ab.CompareTo("abc", 2)),
                    of(empty.CompareTo("")), of(accented.CompareTo("\xC3\xA9", 1)), of(ab.Find("ab")));
    EXPECT_OUTCOMES(0, -1, nullptr, of(accented.CompareTo("\xC3\xA9")), of(ab.Find("bab")),
                    of(empty.Find("a")), of(empty.ReverseFind("a")), of(ab.ReverseFind("x")));
    EXPECT_OUTCOMES(0, 1, nullptr, of(ab.CompareTo("b")), of(ab.Find("ba")), of(ab.ReverseFind("bab")));
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

TEST(StringUTF16, WorkersStayInsideAnyBytes) {
    ZvString string;
    int count = 77;
    ASSERT_EQ(string.Construct(), 1);
    const std::unique_ptr<uint16_t[]> empty(string.GetUTF16(count));
    EXPECT_EQ(empty[0], 0);
    EXPECT_EQ(count, 77) << "without a buffer the count stays";
    // A stray byte ends both, a sequence cut off by the end is left out.
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("ab\x80!", 4), 2);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("\xFE", 1), 0);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("a\xF0\x9F\x98", 4), 1);
    EXPECT_EQ(ZvStringImpl::GetUTF16Size("a", 0), 0);
}

}  // namespace
}  // namespace Zvex
