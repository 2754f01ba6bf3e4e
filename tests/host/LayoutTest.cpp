// SPDX-License-Identifier: Apache-2.0
#include <unicode/ubidi.h>
#include <unicode/ubrk.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <thread>

#include "LayoutHelpers.h"
#include "platform/host/BidiRuns.h"
#include "platform/host/Clusters.h"
#include "platform/host/LogCapture.h"

using namespace hosttest;

namespace {

float advanceOf(const std::u16string& text, const FontPtr& font, const android::Paint& paint) {
    return layLine(text, typefaceOf({familyOf(font)}), paint).getAdvance();
}

}  // namespace

TEST(Layout, LetterSpacingKeepsClustersAndJoinedScriptsWhole) {
    android::Paint paint = paintOf(32);
    const auto growth = [&paint](const std::u16string& text, const FontPtr& font) {
        const TypefacePtr typeface = typefaceOf({familyOf(font)});
        paint.setLetterSpacing(0);
        const float plain = layLine(text, typeface, paint).getAdvance();
        paint.setLetterSpacing(0.25f);
        return layLine(text, typeface, paint).getAdvance() - plain;
    };
    EXPECT_EQ(16, growth(u"אב", hebrew()));
    EXPECT_EQ(16, growth(u"א\u05B8ב\u05BC", hebrew())) << "points ride on their letters";
    EXPECT_EQ(0, growth(u"سلام", arabic()));
    EXPECT_EQ(0, growth(u"देव", devanagari()));
    EXPECT_EQ(16, growth(u"ที่นี่", thai()));
}

TEST(Layout, WideLetterSpacingTurnsLigaturesOff) {
    const TypefacePtr typeface = typefaceOf({familyOf(dejavu())});
    android::Paint paint = paintOf(32);
    const auto count = [&](float spacing, const char* features) {
        paint.setLetterSpacing(spacing);
        paint.setFontFeatureSettings(features);
        return layLine(u"fi", typeface, paint).nGlyphs();
    };
    EXPECT_EQ(1u, count(0, ""));
    EXPECT_EQ(1u, count(0.03f, ""));
    EXPECT_EQ(2u, count(0.04f, ""));
    EXPECT_EQ(2u, count(-0.04f, ""));
    EXPECT_EQ(1u, count(0.04f, "liga")) << "a setting outranks the spacing";
}

TEST(Layout, FeatureSettingsInEveryForm) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    android::Paint paint = paintOf(32);
    const auto glyphs = [&](const char* features) {
        paint.setFontFeatureSettings(features);
        return glyphsOf(layLine(u"fi", typeface, paint));
    };
    const std::vector<unsigned> plain = glyphs("-liga"), joined = glyphs(""), small = glyphs("smcp,-liga");
    ASSERT_EQ(nominalGlyphs(roboto(), U"fi"), plain);
    ASSERT_EQ(1u, joined.size());
    ASSERT_EQ(2u, small.size());
    ASSERT_NE(plain, small);
    for (const char* form :
         {"liga=0", "liga off", "'liga' 0", "\"liga\" off", " -liga ", "rubbish!!,,-liga", "-liga,=,x"}) {
        EXPECT_EQ(plain, glyphs(form)) << form;
    }
    EXPECT_EQ(small, glyphs("'smcp' on, 'liga' 0"));
    EXPECT_EQ(joined, glyphs("liga[0:1]=0,liga[1:]=0")) << "ranges are not taken";
}

// Of a tag that comes again the last value holds; too many tags are refused.
TEST(Layout, HundredsOfThousandsOfFeatureSettings) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    android::Paint paint = paintOf(32);
    std::string same, different;
    for (int i = 0; i < 300000; i++) {
        same += "liga,";
        for (int digit = i, k = 0; k < 4; k++, digit /= 26) different += static_cast<char>('A' + digit % 26);
        different += ',';
    }
    paint.setFontFeatureSettings(same + "liga=0");
    EXPECT_EQ(2u, layLine(u"fi", typeface, paint).nGlyphs());
    host::LogCapture log;
    paint.setFontFeatureSettings("liga=0," + different);
    EXPECT_EQ(2u, layLine(u"fi", typeface, paint).nGlyphs());
    EXPECT_EQ(2u, layLine(u"fi", typeface, paint).nGlyphs());
    EXPECT_EQ(1u, log.lines().size());
}

// HarfBuzz reads it once, so this can fail only in a process of its own.
TEST(Layout, TheEnvironmentChoosesNoShaper) {
    setenv("HB_SHAPER_LIST", "fallback", 1);
    EXPECT_EQ(1u, layLine(u"fi", typefaceOf({familyOf(roboto())}), paintOf(32)).nGlyphs());
    unsetenv("HB_SHAPER_LIST");
}

TEST(Layout, RunsStandInVisualOrder) {
    const FontPtr font = dejavu();  // Hebrew and Latin in one font
    const TypefacePtr typeface = typefaceOf({familyOf(font)});
    const android::Paint paint = paintOf(20);
    const struct {
        const char16_t* text;
        Bidi bidi;
        const char32_t* visual;
    } cases[] = {
        {u"אב 12 cd", Bidi::DEFAULT_LTR, U"cd 12 בא"},
        {u"אב 12 cd", Bidi::DEFAULT_RTL, U"cd 12 בא"},
        {u"אב 12 cd", Bidi::LTR, U"12 בא cd"},
        {u"cd אב 12", Bidi::DEFAULT_RTL, U"cd 12 בא"},
        {u"cd אב 12", Bidi::RTL, U"12 בא cd"},
        {u"אב", Bidi::FORCE_LTR, U"אב"},
        {u"12 cd", Bidi::FORCE_RTL, U"dc 21"},
        {u"12.", Bidi::DEFAULT_RTL, U".12"},
        {u"12.", Bidi::DEFAULT_LTR, U"12."},
        {u"a\n12.", Bidi::DEFAULT_RTL, U"a\n.12"},
        {u"\u2068a\u2069 12.", Bidi::DEFAULT_RTL, U".12 \u2069a\u2068"},
        {u"\u202Eab\u202C", Bidi::LTR, U"\u202Eba\u202C"},
    };
    for (const auto& c : cases) {
        const Layout layout = layLine(c.text, typeface, paint, c.bidi);
        // Controls are laid out as glyphs without width; leave them out on both sides.
        std::u32string visible;
        for (const char32_t ch : std::u32string(c.visual)) {
            if (ch > 0x20 && !host::isDefaultIgnorable(ch)) visible += ch;
        }
        const unsigned space = nominalGlyphs(font, U" ")[0], missing = 0;
        std::vector<unsigned> glyphs;
        for (const unsigned glyph : glyphsOf(layout)) {
            if (glyph != space && glyph != missing) glyphs.push_back(glyph);
        }
        EXPECT_EQ(nominalGlyphs(font, visible), glyphs)
            << testing::PrintToString(std::u16string(c.text)) << " bidi " << static_cast<int>(c.bidi);
    }
}

// The paragraphs that a range touches are enough: what the bidirectional algorithm makes of the whole text,
// cut to the range, is the same.
TEST(Layout, VisualRunsAgreeWithTheWholeText) {
    const char16_t alphabet[] = u"abאבش١12 .,(-)\n\r\u2029\u200F\u2067\u2068\u2069\u202B\u202C\U0001E900漢";
    const size_t letters = std::size(alphabet) - 1;
    std::mt19937 random(20240601);
    for (int round = 0; round < 3000; round++) {
        std::u16string text(1 + random() % 24, u' ');
        for (char16_t& unit : text) unit = alphabet[random() % letters];
        const size_t start = random() % text.size(), end = start + 1 + random() % (text.size() - start);
        const Bidi bidi = static_cast<Bidi>(random() % 4);
        const UBiDiLevel levels[] = {0, 1, UBIDI_DEFAULT_LTR, UBIDI_DEFAULT_RTL};

        std::vector<UBiDiLevel> resolved;
        UErrorCode status = U_ZERO_ERROR;
        UBiDi* analysis = ubidi_open();
        for (size_t at = 0; at < text.size();) {
            size_t next = text.find_first_of(u"\n\r\u2029", at);
            next = next == std::u16string::npos ? text.size() : next + 1;
            if (text[next - 1] == u'\r' && text[next] == u'\n') next++;
            const auto length = static_cast<int32_t>(next - at);
            ubidi_setPara(analysis, text.data() + at, length, levels[static_cast<int>(bidi)], nullptr,
                          &status);
            const UBiDiLevel* found = ubidi_getLevels(analysis, &status);
            ASSERT_TRUE(U_SUCCESS(status));
            resolved.insert(resolved.end(), found, found + length);
            at = next;
        }
        ubidi_close(analysis);
        std::vector<int32_t> order(text.size());
        ubidi_reorderVisual(resolved.data(), static_cast<int32_t>(resolved.size()), order.data());
        std::vector<size_t> expected;
        for (const int32_t at : order) {
            if (at >= static_cast<int32_t>(start) && at < static_cast<int32_t>(end)) {
                expected.push_back(static_cast<size_t>(at));
            }
        }

        std::vector<size_t> actual;
        const auto* units = reinterpret_cast<const uint16_t*>(text.data());
        for (const host::BidiRun& run : host::visualRuns(units, start, end, text.size(), bidi)) {
            for (size_t i = 0; i < run.end - run.start; i++) {
                actual.push_back(run.rightToLeft ? run.end - 1 - i : run.start + i);
            }
        }
        ASSERT_EQ(expected, actual) << "round " << round << " [" << start << ", " << end << ") bidi "
                                    << static_cast<int>(bidi) << " of " << testing::PrintToString(text);
    }
}

TEST(Layout, ClustersAreThoseOfABreakIterator) {
    const char32_t alphabet[] =
        U"ae\u0301\u0308\u200D\u200C\uFE0F\u20E3\r\n\u00AD가각\u1100\u1161\u11A8नि\u094Dที่\U0001F468\U0001F3FD"
        U"\u2764"
        U"\U0001F1E9\U0001F1EA\U000E0067\u0600漢\u0903";
    const size_t letters = std::size(alphabet) - 1;
    UErrorCode status = U_ZERO_ERROR;
    UBreakIterator* breaks = ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    std::mt19937 random(7);
    for (int round = 0; round < 5000; round++) {
        std::u16string text;
        for (size_t i = 1 + random() % 10; i > 0; i--) {
            const char32_t c = alphabet[random() % letters];
            if (c >= 0x10000) text += static_cast<char16_t>(0xD7C0 + (c >> 10));
            text += static_cast<char16_t>(c >= 0x10000 ? 0xDC00 | (c & 0x3FF) : c);
        }
        ubrk_setText(breaks, text.data(), static_cast<int32_t>(text.size()), &status);
        const auto* units = reinterpret_cast<const uint16_t*>(text.data());
        for (size_t at = 0; at < text.size();) {
            const auto expected = static_cast<size_t>(ubrk_following(breaks, static_cast<int32_t>(at)));
            ASSERT_EQ(expected, host::clusterEnd(units, at, text.size()))
                << "round " << round << " at " << at << " of " << testing::PrintToString(text);
            at = expected;
        }
    }
    ubrk_close(breaks);
}

TEST(Layout, TextAroundTheLineShapesItsLetters) {
    const TypefacePtr typeface = typefaceOf({familyOf(arabic())});
    const android::Paint paint = paintOf(40);
    const std::u16string text = u"ببب";
    const std::vector<unsigned> whole = glyphsOf(layLine(text, typeface, paint));
    const unsigned alone = glyphsOf(layLine(u"ب", typeface, paint)).back();
    std::vector<unsigned> parts;
    for (size_t at = text.size(); at-- > 0;) {
        const std::vector<unsigned> part = glyphsOf(layRange(text, at, at + 1, typeface, paint));
        EXPECT_NE(alone, part.back()) << "unit " << at;
        parts.insert(parts.end(), part.begin(), part.end());
    }
    EXPECT_EQ(whole, parts);
}

TEST(Layout, LanguageComesFromTheLocaleThatWritesTheScript) {
    // Han shapes differ by language within one font of the collection.
    const TypefacePtr typeface = typefaceOf({familyOf(japanese())});
    android::Paint paint = paintOf(40);
    const auto glyphIn = [&](const char* locales) {
        paint.setMinikinLocaleListId(minikin::registerLocaleList(locales));
        return glyphsOf(layLine(u"直", typeface, paint)).at(0);
    };
    const unsigned japanese = glyphIn("ja"), chinese = glyphIn("zh-Hans");
    ASSERT_NE(japanese, chinese);
    EXPECT_EQ(japanese, glyphIn(""));
    EXPECT_EQ(chinese, glyphIn("en,zh-Hans")) << "English is not written in Han";
    EXPECT_EQ(chinese, glyphIn("zh-CN,ja")) << "the first that fits";
    EXPECT_EQ(japanese, glyphIn("en-US,ja-JP,zh-Hans"));
}

TEST(Layout, BlankTextHasAdvanceButNoBounds) {
    const Layout layout = layLine(u" \u00A0 ", typefaceOf({familyOf(roboto())}), paintOf(30));
    MinikinRect bounds;
    layout.getBounds(&bounds);
    EXPECT_EQ(0, bounds.mLeft);
    EXPECT_EQ(0, bounds.mTop);
    EXPECT_EQ(0, bounds.mRight);
    EXPECT_EQ(0, bounds.mBottom);
    EXPECT_GT(layout.getAdvance(), 0);
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
    const Layout regular = layLine(u"ab", typefaceOf({familyOf(roboto())}), paint);
    auto check = [&paint](size_t, size_t) { EXPECT_TRUE(paint.isFakeBoldText()); };
    android::MinikinUtils::forFontRun(regular, &paint, check);
    EXPECT_TRUE(paint.isFakeBoldText());
}

TEST(Layout, NothingToLayOutIsEmpty) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    const TypefacePtr fontless = typefaceOf({nullptr, familyOf(nullptr)});
    const android::Paint paint = paintOf(30);
    const uint16_t text[] = {'a', 'b', 'c'};
    const auto count = [&](const android::Paint* p, const android::Typeface* t, const uint16_t* buffer,
                           size_t start, size_t length, size_t size) {
        const Layout layout =
            android::MinikinUtils::doLayout(p, Bidi::DEFAULT_LTR, t, buffer, start, length, size, nullptr);
        EXPECT_EQ(layout.nGlyphs() == 0, layout.getAdvance() == 0);
        return layout.nGlyphs();
    };
    EXPECT_EQ(0u, count(nullptr, typeface.get(), text, 0, 3, 3));
    EXPECT_EQ(0u, count(&paint, nullptr, text, 0, 3, 3));
    EXPECT_EQ(0u, count(&paint, typeface.get(), nullptr, 0, 3, 3));
    EXPECT_EQ(0u, count(&paint, fontless.get(), text, 0, 3, 3));
    EXPECT_EQ(0u, count(&paint, typeface.get(), text, 0, 0, 3));
    EXPECT_EQ(0u, count(&paint, typeface.get(), text, 4, 1, 3));
    EXPECT_EQ(1u, count(&paint, typeface.get(), text, 2, 9, 3));
    EXPECT_EQ(2u, count(&paint, typeface.get(), text, 1, SIZE_MAX, 3));
}

TEST(Layout, OddSizesDrawNothing) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto()), familyOf(emoji())});
    const float nan = std::numeric_limits<float>::quiet_NaN(), inf = std::numeric_limits<float>::infinity();
    for (const float size : {0.0f, 1e-30f, inf, 1e30f, 20000.0f, 3.4e38f}) {
        for (const float scaleX : {1.0f, 0.0f, -1.0f, nan, inf, 1e30f}) {
            android::Paint paint = paintOf(size);
            paint.setTextScaleX(scaleX);
            paint.setTextSkewX(scaleX);
            paint.setLetterSpacing(scaleX);
            const Layout layout = layLine(u"aé\U0001F600", typeface, paint);
            EXPECT_EQ(3u, layout.nGlyphs());
            EXPECT_TRUE(std::isfinite(layout.getAdvance())) << size << " x " << scaleX;
        }
    }
    android::Paint paint = paintOf(30);
    paint.setTextScaleX(nan);
    EXPECT_EQ(0, layLine(u"abc", typeface, paint).getAdvance());
    paint.setTextScaleX(1);
    paint.setLetterSpacing(nan);
    EXPECT_GT(layLine(u"abc", typeface, paint).getAdvance(), 0);
}

TEST(Layout, LoneSurrogatesAreMissingCharacters) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    const std::vector<unsigned> replacement = nominalGlyphs(roboto(), U"a\uFFFDb");
    for (const char16_t unit : {u'\xD83D', u'\xDE00'}) {
        const std::u16string text = {u'a', unit, u'b'};
        EXPECT_EQ(replacement, glyphsOf(layLine(text, typeface, paintOf(30))));
    }
    // A range that starts or ends within a pair.
    EXPECT_EQ(1u, layRange(u"\U0001F600", 0, 1, typeface, paintOf(30)).nGlyphs());
    EXPECT_EQ(1u, layRange(u"\U0001F600", 1, 2, typeface, paintOf(30)).nGlyphs());
}

TEST(Layout, AMillionCharacters) {
    const TypefacePtr typeface = typefaceOf({familyOf(roboto()), familyOf(hebrew())});
    const android::Paint paint = paintOf(16);
    for (const char16_t* piece : {u"Ham אב ", u"unbroken"}) {
        std::u16string text;
        while (text.size() < 1000000) text += piece;
        const Layout layout = layLine(text, typeface, paint);
        EXPECT_EQ(text.size(), layout.nGlyphs());
        EXPECT_GT(layout.getAdvance(), 16 * 100000);

        // Its lines: as many as a long text has, all in one paragraph.
        size_t glyphs = 0;
        for (size_t at = 0; at < text.size(); at += 1000) {
            glyphs += layRange(text, at, std::min(at + 1000, text.size()), typeface, paint).nGlyphs();
        }
        EXPECT_EQ(text.size(), glyphs);
    }
}

// Long words are shaped in pieces; where they meet must not show.
TEST(Layout, LongWordsHaveNoSeams) {
    const std::pair<FontPtr, const char16_t*> cases[] = {
        {roboto(), u"AVoffi"}, {arabic(), u"لب"}, {devanagari(), u"क्षत्रिय"}, {thai(), u"น้ำก็"}};
    for (const auto& [font, piece] : cases) {
        const auto times = [piece = piece](size_t count) {
            std::u16string text;
            for (size_t i = 0; i < count; i++) text += piece;
            return text;
        };
        const android::Paint paint = paintOf(20);
        const float ten = advanceOf(times(20), font, paint) - advanceOf(times(10), font, paint);
        for (const size_t count : {1000, 10000}) {
            EXPECT_EQ(static_cast<float>(count) / 10 * ten,
                      advanceOf(times(count + 10), font, paint) - advanceOf(times(10), font, paint))
                << count << " times " << testing::PrintToString(std::u16string(piece));
        }
    }
}

// Rows of marks longer than the shaper can chain.
TEST(Layout, RowsOfMarks) {
    const TypefacePtr typeface = typefaceOf({familyOf(dejavu())});
    for (const char16_t* pair : {u"\u0301\u0323", u"\u20D0\u200D", u"\u05B8\u0301"}) {
        std::u16string text = u"x";
        while (text.size() < 70001) text += pair;
        EXPECT_EQ(text.size(), layLine(text, typeface, paintOf(20)).nGlyphs());
    }
}

// The font with another table of substitutions: the mark becomes `count` of its kind.
std::vector<uint8_t> multiplyingFont(const FontPtr& font, char32_t mark, uint16_t count) {
    const auto glyph = static_cast<uint16_t>(nominalGlyphs(font, {mark})[0]);
    // Where scripts, features and lookups are; the script DFLT, the feature ccmp, the lookup.
    std::vector<uint16_t> words = {1,      0, 10, 30, 44,     1,      0x4446, 0x4C54, 8, 4, 0,     0,
                                   0xFFFF, 1, 0,  1,  0x6363, 0x6D70, 8,      0,      1, 0, 1,     4,
                                   2,      0, 1,  8,  1,      8,      1,      14,     1, 1, glyph, count};
    words.insert(words.end(), count, glyph);
    std::string table;
    for (const uint16_t word : words) table += {static_cast<char>(word >> 8), static_cast<char>(word & 0xFF)};

    hb_face_t* face = faceOf(font.get()).hbFace();
    hb_face_t* changed = hb_face_builder_create();
    hb_tag_t tags[64];
    unsigned tagCount = 64;
    hb_face_get_table_tags(face, 0, &tagCount, tags);
    const auto add = [changed](hb_tag_t tag, hb_blob_t* blob) {
        hb_face_builder_add_table(changed, tag, blob);
        hb_blob_destroy(blob);
    };
    const hb_tag_t substitutions = HB_TAG('G', 'S', 'U', 'B');
    for (unsigned i = 0; i < tagCount; i++) {
        if (tags[i] != substitutions) add(tags[i], hb_face_reference_table(face, tags[i]));
    }
    add(substitutions, hb_blob_create(table.data(), static_cast<unsigned>(table.size()),
                                      HB_MEMORY_MODE_DUPLICATE, nullptr, nullptr));
    hb_blob_t* file = hb_face_reference_blob(changed);
    unsigned size = 0;
    const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(file, &size));
    std::vector<uint8_t> result(bytes, bytes + size);
    hb_blob_destroy(file);
    hb_face_destroy(changed);
    return result;
}

// The shaper counts the glyphs between a mark and its base in 16 bits, and gives the process up beyond.
TEST(Layout, FontsThatMultiplyMarks) {
    const std::vector<uint8_t> bytes = multiplyingFont(dejavu(), U'\u0301', 17);
    auto* stream = new SkMemoryStream(bytes.data(), bytes.size());
    const auto font =
        std::make_shared<android::MinikinFontSkia>(SkTypeface::MakeFromStream(stream, 0), bytes.data(),
                                                   bytes.size(), 0, std::vector<minikin::FontVariation>());
    android::Paint paint = paintOf(20);
    paint.setFontFeatureSettings("-mkmk");
    const std::u16string text = u"x" + std::u16string(2047, u'\u0301');
    EXPECT_EQ(1u + 2047 * 17, layLine(text, typefaceOf({familyOf(font)}), paint).nGlyphs());
}

TEST(Layout, ThreadsGetTheSameLines) {
    const std::u16string text = u"Ham שלום سلام 12 देवनागरी 漢字 e\u0332 \U0001F468\u200D\U0001F469";
    const std::vector<FamilyPtr> families = {familyOf(roboto()),
                                             familyOf(hebrew(), "und-Hebr"),
                                             familyOf(arabic(), "und-Arab"),
                                             familyOf(devanagari(), "und-Deva"),
                                             familyOf(japanese(), "ja"),
                                             familyOf(emoji(), "und-Zsye"),
                                             familyOf(dejavu())};
    const auto print = [&text, &families](float size) {
        const TypefacePtr typeface = typefaceOf(families);
        android::Paint paint = paintOf(size);
        paint.setMinikinLocaleListId(minikin::registerLocaleList("en-US,ja"));
        const Layout layout = layLine(text, typeface, paint);
        MinikinRect bounds;
        layout.getBounds(&bounds);
        std::vector<float> all = pensOf(layout);
        for (const unsigned glyph : glyphsOf(layout)) all.push_back(static_cast<float>(glyph));
        all.insert(all.end(),
                   {layout.getAdvance(), bounds.mLeft, bounds.mTop, bounds.mRight, bounds.mBottom});
        return all;
    };
    const std::vector<float> expected[] = {print(20), print(31)};
    std::vector<int> wrong(4, 0);
    std::vector<std::thread> threads;
    for (size_t t = 0; t < wrong.size(); t++) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 50; i++) wrong[t] += print(i % 2 ? 31 : 20) != expected[i % 2];
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::vector<int>(4, 0), wrong);
}
