// SPDX-License-Identifier: Apache-2.0
#include <unicode/ubidi.h>
#include <unicode/ubrk.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>

#include "Lines.h"
#include "platform/host/BidiRuns.h"
#include "platform/host/Clusters.h"
#include "platform/host/LogCapture.h"

using namespace hosttest;

namespace {

const char* const kArabic = "NotoNaskhArabic-Regular.ttf";
const char* const kDevanagari = "NotoSansDevanagari-Regular.ttf";

const uint16_t* unitsOf(const std::u16string& text) {
    return reinterpret_cast<const uint16_t*>(text.data());
}

std::u16string repeated(const std::u16string& piece, size_t count) {
    std::u16string text;
    while (count-- > 0) text += piece;
    return text;
}

Layout laidOut(const std::u16string& text, const FontPtr& font, const android::Paint& paint) {
    return layLine(text, typefaceOf({familyOf(font)}), paint);
}

}  // namespace

// The last value of a repeated tag wins; too many tags are refused and logged once.
TEST(Layout, HundredsOfThousandsOfFeatureSettings) {
    android::Paint paint = paintOf(32);
    std::string same, different;
    for (int i = 0; i < 300000; i++) {
        same += "liga,";
        for (int digit = i, k = 0; k < 4; k++, digit /= 26) different += static_cast<char>('A' + digit % 26);
        different += ',';
    }
    host::LogCapture log;
    for (const std::string& settings : {same + "liga=0", "liga=0," + different, "liga=0," + different}) {
        paint.setFontFeatureSettings(settings);
        EXPECT_EQ(2u, laidOut(u"fi", roboto(), paint).nGlyphs());
    }
    EXPECT_EQ(1u, log.lines().size());
}

// In a process of its own, because HarfBuzz reads the variable only once.
TEST(Layout, TheEnvironmentChoosesNoShaper) {
    setenv("HB_SHAPER_LIST", "fallback", 1);
    EXPECT_EQ(1u, laidOut(u"fi", roboto(), paintOf(32)).nGlyphs());
    unsetenv("HB_SHAPER_LIST");
}

// The paragraphs that a range touches are enough context: the order equals that of the whole text, cut to the
// range.
TEST(Layout, VisualRunsAgreeWithTheWholeText) {
    const char16_t alphabet[] = u"abאבش١12 .,(-)\n\r\u2029\u200F\u2067\u2068\u2069\u202B\u202C\U0001E900漢";
    std::mt19937 random(20240601);
    UBiDi* analysis = ubidi_open();
    for (int round = 0; round < 3000; round++) {
        std::u16string text(1 + random() % 24, u' ');
        for (char16_t& unit : text) unit = alphabet[random() % (std::size(alphabet) - 1)];
        const size_t start = random() % text.size(), end = start + 1 + random() % (text.size() - start);
        const Bidi bidi = static_cast<Bidi>(random() % 4);
        const UBiDiLevel levels[] = {0, 1, UBIDI_DEFAULT_LTR, UBIDI_DEFAULT_RTL};
        std::vector<UBiDiLevel> resolved;
        UErrorCode status = U_ZERO_ERROR;
        for (size_t at = 0; at < text.size();) {
            size_t next = std::min(text.find_first_of(u"\n\r\u2029", at), text.size() - 1) + 1;
            if (text[next - 1] == u'\r' && text[next] == u'\n') next++;
            const auto length = static_cast<int32_t>(next - at);
            ubidi_setPara(analysis, text.data() + at, length, levels[static_cast<int>(bidi)], nullptr,
                          &status);
            const UBiDiLevel* found = ubidi_getLevels(analysis, &status);
            ASSERT_TRUE(U_SUCCESS(status));
            resolved.insert(resolved.end(), found, found + length);
            at = next;
        }
        std::vector<int32_t> order(text.size());
        ubidi_reorderVisual(resolved.data(), static_cast<int32_t>(resolved.size()), order.data());
        std::vector<size_t> expected, actual;
        for (const int32_t index : order) {
            const auto at = static_cast<size_t>(index);
            if (at >= start && at < end) expected.push_back(at);
        }
        for (const host::BidiRun& run : host::visualRuns(unitsOf(text), start, end, text.size(), bidi)) {
            for (size_t i = 0; i < run.end - run.start; i++) {
                actual.push_back(run.rightToLeft ? run.end - 1 - i : run.start + i);
            }
        }
        ASSERT_EQ(expected, actual) << "round " << round << " [" << start << ", " << end << ") bidi "
                                    << static_cast<int>(bidi) << " of " << testing::PrintToString(text);
    }
    ubidi_close(analysis);
}

TEST(Layout, ClustersAreThoseOfABreakIterator) {
    const char32_t alphabet[] =
        U"ae\u0301\u0308\u200D\u200C\uFE0F\u20E3\r\n\u00AD가각\u1100\u1161\u11A8नि\u094Dที่\U0001F468\U0001F3FD"
        U"\u2764\U0001F1E9\U0001F1EA\U000E0067\u0600漢\u0903";
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* breaks = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    std::mt19937 random(7);
    for (int round = 0; round < 5000; round++) {
        std::u16string text;
        for (size_t i = 1 + random() % 10; i > 0; i--) {
            const char32_t c = alphabet[random() % (std::size(alphabet) - 1)];
            if (c >= 0x10000) text += static_cast<char16_t>(0xD7C0 + (c >> 10));
            text += static_cast<char16_t>(c >= 0x10000 ? 0xDC00 | (c & 0x3FF) : c);
        }
        ubrk_setText(breaks, text.data(), static_cast<int32_t>(text.size()), &status);
        for (size_t at = 0; at < text.size();) {
            const auto expected = static_cast<size_t>(ubrk_following(breaks, static_cast<int32_t>(at)));
            ASSERT_EQ(expected, host::clusterEnd(unitsOf(text), at, text.size()))
                << "round " << round << " at " << at << " of " << testing::PrintToString(text);
            at = expected;
        }
    }
    ubrk_close(breaks);
}

TEST(Layout, FontRunsSetThePaintUpAndPutItBack) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto()), familyOf(hebrew())}, 700, 1);
    android::Paint paint = paintOf(30);
    paint.setTextSkewX(-0.1f);
    const Layout layout = layLine(u"ab אב cd", typeface, paint);
    std::vector<std::pair<size_t, size_t>> runs;
    auto draw = [&](size_t start, size_t end) {
        runs.emplace_back(start, end);
        EXPECT_EQ(&faceOf(layout.getFont(static_cast<int>(start))), paint.getTypeface()->face().get());
        EXPECT_TRUE(paint.isFakeBoldText());
        EXPECT_FLOAT_EQ(-0.35f, paint.getTextSkewX());
    };
    android::MinikinUtils::forFontRun(layout, &paint, draw);
    EXPECT_EQ((std::vector<std::pair<size_t, size_t>>{{0, 3}, {3, 5}, {5, 8}}), runs);
    EXPECT_FALSE(paint.isFakeBoldText());
    EXPECT_EQ(-0.1f, paint.getTextSkewX());

    paint.setFakeBoldText(true);
    const Layout regular = laidOut(u"ab", roboto(), paint);
    auto check = [&paint](size_t, size_t) { EXPECT_TRUE(paint.isFakeBoldText()); };
    android::MinikinUtils::forFontRun(regular, &paint, check);
    EXPECT_TRUE(paint.isFakeBoldText());
}

TEST(Layout, NothingToLayOutIsEmpty) {
    const TypefacePtr typeface = typefaceOf({nullptr, familyOf(roboto()), nullptr});
    const TypefacePtr fontless = typefaceOf({nullptr, familyOf(nullptr)});
    const android::Paint paint = paintOf(30);
    const uint16_t text[] = {'a', 'b', 'c'};
    const struct {
        const android::Paint* paint;
        const android::Typeface* typeface;
        const uint16_t* text;
        size_t start, length, glyphs;
    } cases[] = {{nullptr, typeface.get(), text, 0, 3, 0},   {&paint, nullptr, text, 0, 3, 0},
                 {&paint, typeface.get(), nullptr, 0, 3, 0}, {&paint, fontless.get(), text, 0, 3, 0},
                 {&paint, typeface.get(), text, 0, 0, 0},    {&paint, typeface.get(), text, 4, 1, 0},
                 {&paint, typeface.get(), text, 2, 9, 1},    {&paint, typeface.get(), text, 1, SIZE_MAX, 2}};
    for (const auto& c : cases) {
        const Layout layout = android::MinikinUtils::doLayout(c.paint, Bidi::DEFAULT_LTR, c.typeface, c.text,
                                                              c.start, c.length, 3, nullptr);
        EXPECT_EQ(c.glyphs, layout.nGlyphs()) << &c - cases;
        EXPECT_EQ(c.glyphs == 0, layout.getAdvance() == 0) << &c - cases;
    }
    MinikinRect box;
    const Layout blank = laidOut(u" \u00A0 ", roboto(), paint);
    blank.getBounds(&box);
    EXPECT_TRUE(box.mLeft == 0 && box.mTop == 0 && box.mRight == 0 && box.mBottom == 0);
    EXPECT_GT(blank.getAdvance(), 0);
}

TEST(Layout, OddSizesAreFinite) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto()), familyOf(emoji())});
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float size : {30.0f, 0.0f, 1e-30f, inf, 1e30f, 20000.0f, 3.4e38f}) {
        for (const float odd : {1.0f, 0.0f, -1.0f, nan, inf, 1e30f}) {
            android::Paint paint = paintOf(size);
            paint.setLetterSpacing(odd);
            const float spaced = layLine(u"aé\U0001F600", typeface, paint).getAdvance();
            EXPECT_TRUE(std::isfinite(spaced)) << size << " by " << odd;
            EXPECT_TRUE(size != 30 || odd < 0 || spaced > 0) << odd;
            paint.setTextScaleX(odd);
            paint.setTextSkewX(odd);
            const Layout layout = layLine(u"aé\U0001F600", typeface, paint);
            EXPECT_EQ(3u, layout.nGlyphs());
            EXPECT_TRUE(std::isnan(odd) ? layout.getAdvance() == 0 : std::isfinite(layout.getAdvance()));
        }
    }
}

// Long words are shaped in pieces; the seams must not show.
TEST(Layout, LongWordsHaveNoSeams) {
    const std::pair<FontPtr, const char16_t*> cases[] = {{roboto(), u"AVoffi"},
                                                         {fontNamed(kArabic), u"لب"},
                                                         {fontNamed(kDevanagari), u"क्षत्रिय"},
                                                         {fontNamed("NotoSansThai-Regular.ttf"), u"น้ำก็"}};
    for (const auto& [font, piece] : cases) {
        const auto times = [&font = font, piece = piece](size_t count) {
            return laidOut(repeated(piece, count), font, paintOf(20)).getAdvance();
        };
        const float ten = times(20) - times(10);
        for (const size_t count : {1000, 10000}) {
            EXPECT_EQ(static_cast<float>(count) / 10 * ten, times(count + 10) - times(10))
                << count << " times " << testing::PrintToString(std::u16string(piece));
        }
    }
}

// Sequences of marks longer than the shaper can chain, with a font that makes 17 of each: the shaper counts
// the glyphs between a mark and its base in 16 bits, and aborts the process beyond that.
TEST(Layout, RowsOfMarks) {
    for (const char16_t* pair : {u"\u0301\u0323", u"\u20D0\u200D", u"\u05B8\u0301"}) {
        const std::u16string text = u"x" + repeated(pair, 35000);
        EXPECT_EQ(text.size(), laidOut(text, dejavu(), paintOf(20)).nGlyphs());
    }

    const unsigned count = 17, glyph = nominalGlyph(dejavu().get(), U'\u0301');
    // The offsets of scripts, features and lookups; the script DFLT, the feature ccmp, the lookup.
    std::string table;
    fonts::put(table, 2, {1, 0, 10, 30, 44, 1, 0x4446, 0x4C54, 8, 4, 0, 0, 0xFFFF, 1,  0, 1, 0x6363, 0x6D70,
                          8, 0, 1,  0,  1,  4, 2,      0,      1, 8, 1, 8, 1,      14, 1, 1, glyph,  count});
    for (unsigned i = 0; i < count; i++) fonts::put(table, 2, {glyph});
    const std::string bytes = fonts::withTables(fonts::Role::kLatin, {{HB_TAG('G', 'S', 'U', 'B'), table}});
    android::Paint paint = paintOf(20);
    paint.setFontFeatureSettings("-mkmk");
    const std::u16string text = u"x" + std::u16string(2047, u'\u0301');
    EXPECT_EQ(1u + 2047 * count, laidOut(text, fontOf(bytes), paint).nGlyphs());
}

TEST(Layout, ThreadsGetTheSameLines) {
    const std::string fonts =
        "Roboto-Regular.ttf,NotoSansHebrew-Regular.ttf:und-Hebr,NotoNaskhArabic-Regular.ttf:und-Arab,"
        "NotoSansDevanagari-Regular.ttf:und-Deva,NotoSansCJK-Regular.ttc#0:ja,NotoColorEmoji.ttf:und-Zsye,"
        "DejaVuSans.ttf";
    const std::string text = u8"Ham שלום سلام 12 देवनागरी 漢字 e\u0332 \U0001F468\u200D\U0001F469";
    for (const std::string& font : split(fonts, ','))
        fontNamed(split(font, ':')[0]);  // the map is not safe for threads
    const auto print = [&](const char* size, int region = 100) {
        // Threads register new lists of locales meanwhile.
        const Line line({{"fonts", fonts},
                         {"text", text},
                         {"size", size},
                         {"locales", "en-" + std::to_string(region) + ",ja"}});
        const Layout layout = line.layOut();
        MinikinRect box;
        layout.getBounds(&box);
        std::vector<float> all = {layout.getAdvance(), box.mLeft, box.mTop, box.mRight, box.mBottom};
        for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
            all.insert(all.end(), {layout.getX(i), static_cast<float>(layout.getGlyphId(i))});
        }
        return all;
    };
    const std::vector<float> expected[] = {print("20"), print("31")};
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    for (int& mine : wrong) {
        threads.emplace_back([&] {
            for (int i = 0; i < 50; i++) mine += print(i % 2 ? "31" : "20", 101 + i) != expected[i % 2];
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::vector<int>(4, 0), wrong);
}
