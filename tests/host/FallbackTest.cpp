// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "LayoutHelpers.h"
#include "platform/host/LocaleLists.h"

using namespace hosttest;

namespace {

using Variant = FontFamily::Variant;

struct Entry {
    FontPtr font;
    const char* locales = "";
    Variant variant = Variant::DEFAULT;
};

// Which of the entries draw the text, as fontsOf() says it.
std::string fontsFor(const std::u16string& text, const std::vector<Entry>& entries, const char* locales = "",
                     Variant variant = Variant::DEFAULT) {
    std::vector<FamilyPtr> families;
    std::vector<FontPtr> fonts;
    for (const Entry& entry : entries) {
        families.push_back(familyOf(entry.font, entry.locales, entry.variant));
        fonts.push_back(entry.font);
    }
    android::Paint paint = paintOf(32);
    paint.setMinikinLocaleListId(minikin::registerLocaleList(locales));
    paint.setFamilyVariant(variant);
    return fontsOf(layLine(text, typefaceOf(families), paint), fonts);
}

}  // namespace

TEST(Fallback, FirstFamilyThatCovers) {
    EXPECT_EQ("0", fontsFor(u"abc", {{roboto()}, {dejavu()}}));
    EXPECT_EQ("0", fontsFor(u"abc", {{dejavu()}, {roboto()}}));
    EXPECT_EQ("010", fontsFor(u"ab שלום cd", {{roboto()}, {dejavu()}, {hebrew()}}));
    EXPECT_EQ("020", fontsFor(u"ab שלום cd", {{roboto()}, {symbols()}, {dejavu()}}));
    EXPECT_EQ("10", fontsFor(u"אבسل", {{hebrew()}, {arabic()}}))
        << "right to left, the last font stands first";
}

TEST(Fallback, WhatNoFamilyCoversIsMissingInTheFirst) {
    const std::vector<FontPtr> fonts = {hebrew(), thai()};
    const TypefacePtr typeface = typefaceOf({familyOf(fonts[0]), familyOf(fonts[1])});
    const Layout layout = layLine(u"\u0E01漢\u0E01", typeface, paintOf(32));
    ASSERT_EQ(3u, layout.nGlyphs());
    EXPECT_EQ(fonts[0].get(), layout.getFont(1));
    EXPECT_EQ(0u, layout.getGlyphId(1));
    EXPECT_GT(layout.getX(2), layout.getX(1)) << "the missing glyph takes room";
}

TEST(Fallback, FirstFamilyWinsOverLocales) {
    const std::vector<Entry> entries = {{japanese(), "ja"}, {chinese(), "zh-Hans"}};
    EXPECT_EQ("0", fontsFor(u"直", entries, "zh-Hans"));
}

TEST(Fallback, LocalesChooseAmongLaterFamilies) {
    const std::vector<Entry> entries = {{roboto()}, {chinese(), "zh-Hans"}, {japanese(), "ja"}};
    EXPECT_EQ("1", fontsFor(u"直", entries)) << "earlier in the list";
    EXPECT_EQ("2", fontsFor(u"直", entries, "ja"));
    EXPECT_EQ("2", fontsFor(u"直", entries, "ja-JP,zh-Hans"));
    EXPECT_EQ("1", fontsFor(u"直", entries, "zh-CN,ja"));
    EXPECT_EQ("2", fontsFor(u"直", entries, "en-US,ja")) << "English says nothing of Han";
    EXPECT_EQ("02", fontsFor(u"a直", entries, "ja"));
    const std::vector<Entry> byScript = {{roboto()}, {dejavu()}, {hebrew(), "und-Hebr"}};
    EXPECT_EQ("1", fontsFor(u"אב", byScript, "en"));
    EXPECT_EQ("2", fontsFor(u"אב", byScript, "he")) << "the script alone counts as well";
}

TEST(Fallback, VariantBreaksTies) {
    const std::vector<Entry> entries = {
        {roboto()}, {dejavu(), "und-Hebr", Variant::ELEGANT}, {hebrew(), "und-Hebr", Variant::COMPACT}};
    EXPECT_EQ("1", fontsFor(u"אב", entries));
    EXPECT_EQ("1", fontsFor(u"אב", entries, "", Variant::ELEGANT));
    EXPECT_EQ("2", fontsFor(u"אב", entries, "", Variant::COMPACT));
    EXPECT_EQ("0", fontsFor(u"ab", entries, "", Variant::COMPACT)) << "the first family outranks it";
}

TEST(Fallback, MarksStayWithTheirBase) {
    // Roboto has the x but not the mark, so both go to the first font that has both.
    EXPECT_EQ("010", fontsFor(u"ax\u20D0b", {{roboto()}, {dejavu()}}));
    EXPECT_EQ("020", fontsFor(u"ax\u20D0b", {{roboto()}, {symbols()}, {dejavu()}}));
    EXPECT_EQ("010", fontsFor(u"ax\u20DDb", {{roboto()}, {symbols()}, {dejavu()}}));
    // No font has both, so they stay with the base's.
    EXPECT_EQ("0", fontsFor(u"ax\u20D0b", {{roboto()}, {symbols()}}));
    EXPECT_EQ("0", fontsFor(u"ax\u20D0\u20DDb", {{roboto()}, {symbols()}, {dejavu()}}));
    // Spelled with a mark that the font lacks, but it has the composed letter.
    EXPECT_EQ("0", fontsFor(u"ae\u0301b", {{roboto()}, {dejavu()}}));
    const TypefacePtr typeface = typefaceOf({familyOf(roboto())});
    EXPECT_EQ(nominalGlyphs(roboto(), U"é"), glyphsOf(layLine(u"e\u0301", typeface, paintOf(32))));
}

TEST(Fallback, DecomposesWhatNoFontHasWhole) {
    EXPECT_EQ("1", fontsFor(u"\u226E", {{thai()}, {roboto()}}));
    const Layout layout = layLine(u"\u226E", typefaceOf({familyOf(thai()), familyOf(roboto())}), paintOf(32));
    EXPECT_EQ(nominalGlyphs(roboto(), U"<\u0338"), glyphsOf(layout));
}

TEST(Fallback, ScriptsWithClustersKeepOneFont) {
    const std::vector<Entry> entries = {{roboto()}, {devanagari(), "und-Deva"}, {thai()}, {dejavu()}};
    EXPECT_EQ("1", fontsFor(u"क्षत्रिय\u200Dर्\u200Cकि", entries));
    EXPECT_EQ("2", fontsFor(u"ที่นี่น้ำ", entries));
}

TEST(Fallback, InvisibleCharactersJoinTheirNeighbour) {
    const std::vector<Entry> entries = {{roboto()}, {hebrew()}};
    EXPECT_EQ("0", fontsFor(u"a\u00ADb\u200E\u2060c\uFEFF", entries));
    EXPECT_EQ("1", fontsFor(u"\uFEFF\u200Fא\u200Fב\u00AD", entries));
    EXPECT_EQ("0", fontsFor(u"\u200F\u00AD", entries));
    const TypefacePtr typeface = typefaceOf({familyOf(roboto()), familyOf(hebrew())});
    EXPECT_EQ(3u, layLine(u"\uFEFF\u200Fא", typeface, paintOf(32)).nGlyphs()) << "none is left out";
}

TEST(Fallback, EmojiSequencesAreOneGlyph) {
    const std::vector<FontPtr> fonts = {roboto(), dejavu(), emoji()};
    const TypefacePtr typeface =
        typefaceOf({familyOf(roboto()), familyOf(dejavu()), familyOf(emoji(), "und-Zsye")});
    for (const char16_t* text : {u"\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466",  // family
                                 u"\U0001F1E9\U0001F1EA",                                        // flag
                                 u"\U0001F44D\U0001F3FD",                                        // skin tone
                                 u"\u261D\U0001F3FF",  // skin tone on a hand that the second font has
                                 u"1\uFE0F\u20E3",     // keycap
                                 u"\u2764\uFE0F\u200D\U0001F525", u"\U0001F3F3\uFE0F\u200D\U0001F308",
                                 u"\U0001F3F4\U000E0067\U000E0062\U000E0073\U000E0063\U000E0074\U000E007F"}) {
        const Layout layout = layLine(text, typeface, paintOf(32));
        EXPECT_EQ("2", fontsOf(layout, fonts)) << testing::PrintToString(std::u16string(text));
        unsigned inked = 0;
        for (int i = 0; i < static_cast<int>(layout.nGlyphs()); i++) {
            host::GlyphStyle style;
            style.size = 32;
            inked += !faceOf(emoji().get()).inkBox(layout.getGlyphId(i), style).empty();
        }
        EXPECT_EQ(1u, inked) << testing::PrintToString(std::u16string(text));
    }
}

TEST(Fallback, SelectorsAskForAPresentation) {
    const std::vector<Entry> entries = {{roboto()}, {symbols(), "und-Zsym"}, {emoji(), "und-Zsye"}};
    EXPECT_EQ("1", fontsFor(u"\u263A", entries)) << "earlier in the list";
    EXPECT_EQ("1", fontsFor(u"\u263A\uFE0E", entries));
    EXPECT_EQ("2", fontsFor(u"\u263A\uFE0F", entries));
    const std::vector<Entry> emojiBefore = {{roboto()}, {emoji(), "und-Zsye"}, {symbols(), "und-Zsym"}};
    EXPECT_EQ("1", fontsFor(u"\u263A", emojiBefore));
    EXPECT_EQ("2", fontsFor(u"\u263A\uFE0E", emojiBefore));
    EXPECT_EQ("1", fontsFor(u"\u263A\uFE0F", emojiBefore));
    // The first family too gives way to one with what the selector asks for.
    const std::vector<Entry> emojiFirst = {{emoji(), "und-Zsye"}, {symbols(), "und-Zsym"}};
    EXPECT_EQ("0", fontsFor(u"\u263A", emojiFirst));
    EXPECT_EQ("1", fontsFor(u"\u263A\uFE0E", emojiFirst));
    const std::vector<Entry> textFirst = {{dejavu()}, {emoji(), "und-Zsye"}};
    EXPECT_EQ("0", fontsFor(u"\u2764", textFirst));
    EXPECT_EQ("1", fontsFor(u"\u2764\uFE0F", textFirst));
    // A family may be made for emoji without a table of selectors.
    const std::vector<Entry> tableless = {{roboto()}, {symbols()}, {dejavu(), "und-Zsye"}};
    EXPECT_EQ("1", fontsFor(u"\u263A\uFE0E", tableless));
    EXPECT_EQ("2", fontsFor(u"\u263A\uFE0F", tableless));
    // A selector no font knows changes nothing.
    EXPECT_EQ("0", fontsFor(u"a\uFE03b", textFirst));
}

TEST(Fallback, IdeographicVariantsGoToTheFontThatHasThem) {
    const std::vector<Entry> entries = {{korean()}, {japanese(), "ja"}};
    const std::u16string variant = u"\u845B\U000E0100";
    const bool koreanHas = faceOf(entries[0].font.get()).coversVariation(0x845B, 0xE0100);
    const bool japaneseHas = faceOf(japanese().get()).coversVariation(0x845B, 0xE0100);
    ASSERT_TRUE(japaneseHas);
    EXPECT_EQ(koreanHas ? "0" : "1", fontsFor(variant, entries));
}

TEST(Fallback, NoUsableFont) {
    EXPECT_EQ("", fontsFor(u"abc", {}));
    EXPECT_EQ("", fontsFor(u"abc", {{nullptr}}));
    EXPECT_EQ("1", fontsFor(u"abc", {{nullptr}, {roboto()}}));
    const TypefacePtr typeface = typefaceOf({nullptr, familyOf(roboto()), nullptr});
    EXPECT_EQ(3u, layLine(u"abc", typeface, paintOf(32)).nGlyphs());
    const FontPtr empty = std::make_shared<android::MinikinFontSkia>(nullptr, nullptr, 0, 0,
                                                                     std::vector<minikin::FontVariation>());
    EXPECT_EQ("1", fontsFor(u"abc", {{empty}, {roboto()}}));
}

TEST(Fallback, FamilyAnswersWithItsClosestFont) {
    using Slant = FontStyle::Slant;
    const FontStyle styles[] = {
        {300, Slant::UPRIGHT}, {400, Slant::UPRIGHT}, {700, Slant::UPRIGHT}, {400, Slant::ITALIC}};
    const FontPtr files[] = {roboto(), dejavu(), symbols(), emoji()};
    std::vector<Font> fonts;
    for (size_t i = 0; i < std::size(styles); i++)
        fonts.push_back(Font::Builder(files[i]).setStyle(styles[i]).build());
    const FontFamily family(std::move(fonts));
    const auto closest = [&](int weight, Slant slant) {
        const minikin::FakedFont match =
            family.getClosestMatch(FontStyle(static_cast<uint16_t>(weight), slant));
        std::string answer;
        for (size_t i = 0; i < std::size(files); i++) {
            if (files[i] == match.font->typeface()) answer += static_cast<char>('0' + i);
        }
        if (match.fakery.isFakeBold()) answer += 'b';
        if (match.fakery.isFakeItalic()) answer += 'i';
        return answer;
    };
    EXPECT_EQ("0", closest(100, Slant::UPRIGHT));
    EXPECT_EQ("1", closest(500, Slant::UPRIGHT));
    EXPECT_EQ("2", closest(600, Slant::UPRIGHT));
    EXPECT_EQ("2", closest(800, Slant::UPRIGHT));
    EXPECT_EQ("2b", closest(900, Slant::UPRIGHT));
    EXPECT_EQ("3", closest(500, Slant::ITALIC));
    EXPECT_EQ("3b", closest(600, Slant::ITALIC)) << "two hundreds off is nearer than one and the wrong slant";
    EXPECT_EQ("2i", closest(700, Slant::ITALIC));
    EXPECT_EQ("0", closest(390, Slant::UPRIGHT)) << "hundreds are cut, so this is 300";
}

TEST(Fallback, FakeryOfAFamilyOfOneFont) {
    using Slant = FontStyle::Slant;
    const auto fakery = [](int wanted, bool italic, int has, bool hasItalic) {
        const FontStyle style(static_cast<uint16_t>(has), hasItalic ? Slant::ITALIC : Slant::UPRIGHT);
        const FamilyPtr family = familyOf(roboto(), "", Variant::DEFAULT, style);
        const Layout layout = layLine(u"a", typefaceOf({family}, wanted, italic), paintOf(20));
        return std::string(layout.getFakery(0).isFakeBold() ? "b" : "") +
               (layout.getFakery(0).isFakeItalic() ? "i" : "");
    };
    EXPECT_EQ("", fakery(400, false, 400, false));
    EXPECT_EQ("", fakery(599, false, 100, false));
    EXPECT_EQ("b", fakery(600, false, 400, false));
    EXPECT_EQ("", fakery(600, false, 401, false));
    EXPECT_EQ("b", fakery(1000, false, 800, false));
    EXPECT_EQ("i", fakery(400, true, 400, false));
    EXPECT_EQ("", fakery(400, true, 400, true));
    EXPECT_EQ("", fakery(400, false, 400, true));
    EXPECT_EQ("bi", fakery(700, true, 400, false));
}

TEST(Fallback, StyleThatWasNotSetIsTheFiles) {
    const Font bold = Font::Builder(fontOf(fonts::Role::kLatinBoldItalic)).build();
    EXPECT_EQ(700, bold.style().weight());
    EXPECT_EQ(FontStyle::Slant::ITALIC, bold.style().slant());
    const Font plain = Font::Builder(dejavu()).setWeight(250).build();
    EXPECT_EQ(250, plain.style().weight());
    EXPECT_EQ(FontStyle::Slant::UPRIGHT, plain.style().slant());
}

TEST(LocaleList, SameListSameId) {
    using minikin::registerLocaleList;
    EXPECT_EQ(0u, registerLocaleList(""));
    EXPECT_EQ(0u, registerLocaleList(" , ,"));
    EXPECT_EQ(0u, registerLocaleList("!!,12345678901234567890"));
    const uint32_t list = registerLocaleList("en-US,ja-JP");
    EXPECT_NE(0u, list);
    EXPECT_EQ(list, registerLocaleList("en-US,ja-JP"));
    EXPECT_EQ(list, registerLocaleList(" EN-us , !! , ja"));
    EXPECT_NE(list, registerLocaleList("ja-JP,en-US"));
    EXPECT_NE(list, registerLocaleList("en-US"));
    EXPECT_NE(registerLocaleList("zh-Hans"), registerLocaleList("zh-Hant"));
    EXPECT_NE(registerLocaleList("und-Cyrl"), registerLocaleList("und-Arab"));
    EXPECT_NE(registerLocaleList("und-Zsye"), registerLocaleList("und-Zsym"));
    EXPECT_NE(registerLocaleList("und-Cyrl"), registerLocaleList("ru"))
        << "a script is no guess at a language";
    EXPECT_TRUE(host::localeListOf(0xFFFFFFF0).empty());
}

TEST(LocaleList, ScoresLanguageBeforeScriptBeforeNothing) {
    const auto score = [](const char* wanted, const char* offered) {
        return host::localeScore(host::localeListOf(minikin::registerLocaleList(wanted)),
                                 host::localeListOf(minikin::registerLocaleList(offered)));
    };
    EXPECT_EQ(0u, score("", "ja"));
    EXPECT_EQ(0u, score("ja", ""));
    EXPECT_EQ(0u, score("ja", "und-Arab"));
    EXPECT_EQ(3u, score("ja", "ja-JP"));
    EXPECT_EQ(1u, score("fr", "en"));
    EXPECT_EQ(1u, score("ar", "und-Arab"));
    EXPECT_EQ(0u, score("zh-Hans", "zh-Hant"));
    EXPECT_EQ(3u, score("zh-Hani", "zh-Hant")) << "any Han will do";
    EXPECT_EQ(3u, score("zh-Hanb", "zh-Hant,zh-Bopo")) << "the parts of a script one by one";
    EXPECT_EQ(4u, score("und-Zsye", "und-Zsye"));
    EXPECT_EQ(2u, score("en-u-em-emoji", "und-Zsye"));
    EXPECT_EQ(3u * 5 + 0, score("ja,en", "ja"));
    EXPECT_EQ(0u * 5 + 3, score("en,ja", "ja"));
    EXPECT_LT(score("en,ja,ja", "ja"), score("ja,en,en", "ja")) << "one wanted earlier outweighs the rest";
}

TEST(LocaleList, RegisteringFromManyThreads) {
    std::vector<std::vector<uint32_t>> ids(4);
    std::vector<std::thread> threads;
    for (std::vector<uint32_t>& mine : ids) {
        threads.emplace_back([&mine] {
            for (char c = 'A'; c <= 'Z'; c++) {
                const std::string tag = std::string("de-") + c + 'Q';
                mine.push_back(minikin::registerLocaleList(tag));
                mine.push_back(static_cast<uint32_t>(host::localeListOf(mine.back()).size()));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::vector<uint32_t>& other : ids) EXPECT_EQ(ids[0], other);
    EXPECT_EQ(1u, ids[0][1]);
}
