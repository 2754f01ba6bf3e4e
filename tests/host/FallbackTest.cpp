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

TEST(Fallback, ChoosesByCoverageThenLocaleVariantAndPresentation) {
    const Entry roman{roboto()}, sans{dejavu()}, signs{symbols()}, symbolic{symbols(), "und-Zsym"},
        emojis{emoji(), "und-Zsye"}, hans{chinese(), "zh-Hans"}, ja{japanese(), "ja"}, none{nullptr};
    const Entry elegant{dejavu(), "und-Hebr", Variant::ELEGANT},
        compact{hebrew(), "und-Hebr", Variant::COMPACT};
    struct Case {
        const char* fonts;
        const char16_t* text;
        const char* locales = "";
        Variant variant = Variant::DEFAULT;
    };
    const std::pair<std::vector<Entry>, std::vector<Case>> groups[] = {
        {{}, {{"", u"abc"}}},
        {{none}, {{"", u"abc"}}},
        {{none, roman}, {{"1", u"abc"}}},
        {{sans, roman}, {{"0", u"abc"}}},
        {{roman, sans, {hebrew()}}, {{"010", u"ab שלום cd"}}},
        {{{hebrew()}, {arabic()}}, {{"10", u"אבسل"}}},  // right to left, the last font stands first
        {{{thai()}, roman}, {{"1", u"\u226E"}}},        // decomposed: no font has it whole
        // The first family wins over locales, they choose among the later ones.
        {{ja, hans}, {{"0", u"直", "zh-Hans"}}},
        {{roman, hans, ja},
         {{"1", u"直"},
          {"2", u"直", "ja"},
          {"2", u"直", "ja-JP,zh-Hans"},
          {"1", u"直", "zh-CN,ja"},
          {"2", u"直", "en-US,ja"},
          {"02", u"a直", "ja"}}},
        // The script alone counts as well.
        {{roman, sans, {hebrew(), "und-Hebr"}}, {{"1", u"אב", "en"}, {"2", u"אב", "he"}}},
        // The variant breaks ties, and the first family outranks it. Whoever wants none gets the compact one.
        {{roman, elegant, compact},
         {{"2", u"אב"},
          {"1", u"אב", "", Variant::ELEGANT},
          {"2", u"אב", "", Variant::COMPACT},
          {"0", u"ab", "", Variant::COMPACT}}},
        // Marks: Roboto has the x but not the mark, so both go to the first font that has both. It has the
        // composed letter of a mark that it lacks.
        {{roman, sans}, {{"0", u"abc"}, {"010", u"ax\u20D0b"}, {"0", u"ae\u0301b"}}},
        // Where no font has both they stay with the base's.
        {{roman, signs}, {{"0", u"ax\u20D0b"}}},
        {{roman, signs, sans},
         {{"020", u"ab שלום cd"},
          {"020", u"ax\u20D0b"},
          {"010", u"ax\u20DDb"},
          {"0210", u"ax\u20D0\u20DDb"}}},
        {{roman, {devanagari(), "und-Deva"}, {thai()}, sans},
         {{"1", u"क्षत्रिय\u200Dर्\u200Cकि"}, {"2", u"ที่นี่น้ำ"}}},
        // Invisible characters join their neighbour in the word; directional marks are words.
        {{roman, {hebrew()}},
         {{"0", u"a\u00ADb\u200E\u2060c\uFEFF"},
          {"1", u"\uFEFFא\u00ADב\u00AD"},
          {"10", u"\u200Fא"},
          {"0", u"\u200F\u00AD"}}},
        // Signs stay in the font of the text before them, in the same word.
        {{roman, sans, {japanese()}},
         {{"2", u"漢!字-."}, {"202", u"漢(字!"}, {"202", u"漢 !字"}, {"0", u"a!-"}}},
        // The modifier of an emoji takes it along.
        {{sans, emojis}, {{"1", u"\u261D\U0001F3FF"}, {"0", u"\u261D"}}},
        // Selectors ask for a presentation; the first family too gives way to one that has it. One that no
        // font knows changes nothing.
        {{roman, symbolic, emojis}, {{"1", u"\u263A"}, {"1", u"\u263A\uFE0E"}, {"2", u"\u263A\uFE0F"}}},
        {{roman, emojis, symbolic}, {{"1", u"\u263A"}, {"2", u"\u263A\uFE0E"}, {"1", u"\u263A\uFE0F"}}},
        // A family may be made for emoji without a table of selectors.
        {{roman, signs, {dejavu(), "und-Zsye"}}, {{"1", u"\u263A\uFE0E"}, {"2", u"\u263A\uFE0F"}}},
        {{emojis, symbolic}, {{"0", u"\u263A"}, {"1", u"\u263A\uFE0E"}}},
        {{sans, emojis}, {{"0", u"\u2764"}, {"1", u"\u2764\uFE0F"}, {"0", u"a\uFE03b"}}},
    };
    for (const auto& [entries, cases] : groups) {
        for (const Case& c : cases) {
            EXPECT_EQ(c.fonts, fontsFor(c.text, entries, c.locales, c.variant))
                << testing::PrintToString(std::u16string(c.text)) << " in " << c.locales;
        }
    }
}

TEST(Fallback, WhatNoFamilyCoversIsMissingInTheFirst) {
    const FontPtr first = hebrew();
    const TypefacePtr typeface = typefaceOf({familyOf(first), familyOf(thai())});
    const Layout layout = layLine(u"\u0E01漢\u0E01", typeface, paintOf(32));
    ASSERT_EQ(3u, layout.nGlyphs());
    EXPECT_EQ(first.get(), layout.getFont(1));
    EXPECT_EQ(0u, layout.getGlyphId(1));
    EXPECT_GT(layout.getX(2), layout.getX(1)) << "the missing glyph takes room";
}

TEST(Fallback, ComposesAndDecomposesAndLeavesNothingOut) {
    const TypefacePtr typeface = typefaceOf({familyOf(thai()), familyOf(roboto()), familyOf(hebrew())});
    const auto glyphs = [&](const char16_t* text) { return glyphsOf(layLine(text, typeface, paintOf(32))); };
    EXPECT_EQ(nominalGlyphs(roboto(), U"é"), glyphs(u"e\u0301"));
    EXPECT_EQ(nominalGlyphs(roboto(), U"<\u0338"), glyphs(u"\u226E"));
    EXPECT_EQ(3u, glyphs(u"\uFEFF\u200Fא").size());
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

TEST(Fallback, IdeographicVariantsGoToTheFontThatHasThem) {
    const bool koreanHas = faceOf(korean().get()).coversVariation(0x845B, 0xE0100);
    ASSERT_TRUE(faceOf(japanese().get()).coversVariation(0x845B, 0xE0100));
    EXPECT_EQ(koreanHas ? "0" : "1", fontsFor(u"\u845B\U000E0100", {{korean()}, {japanese(), "ja"}}));
}

TEST(Fallback, UnusableFontsAreSkipped) {
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
    const std::tuple<const char*, int, Slant> cases[] = {
        {"0", 100, Slant::UPRIGHT}, {"1", 500, Slant::UPRIGHT},  {"2", 600, Slant::UPRIGHT},
        {"2", 800, Slant::UPRIGHT}, {"2b", 900, Slant::UPRIGHT}, {"3", 500, Slant::ITALIC},
        {"3b", 600, Slant::ITALIC},  // two hundreds off is nearer than one and the wrong slant
        {"2i", 700, Slant::ITALIC}, {"0", 390, Slant::UPRIGHT}};  // hundreds are cut, so this is 300
    for (const auto& [answer, weight, slant] : cases) EXPECT_EQ(answer, closest(weight, slant)) << weight;
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
    const std::tuple<const char*, int, bool, int, bool> cases[] = {
        {"", 400, false, 400, false}, {"", 599, false, 100, false},   {"b", 600, false, 400, false},
        {"", 600, false, 401, false}, {"b", 1000, false, 800, false}, {"i", 400, true, 400, false},
        {"", 400, true, 400, true},   {"", 400, false, 400, true},    {"bi", 700, true, 400, false}};
    for (const auto& [answer, wanted, italic, has, hasItalic] : cases) {
        EXPECT_EQ(answer, fakery(wanted, italic, has, hasItalic)) << wanted << " of " << has;
    }
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
    for (const char* empty : {"", " , ,", "!!,12345678901234567890"})
        EXPECT_EQ(0u, registerLocaleList(empty));
    const uint32_t list = registerLocaleList("en-US,ja-JP");
    EXPECT_NE(0u, list);
    EXPECT_EQ(list, registerLocaleList("en-US,ja-JP"));
    EXPECT_EQ(list, registerLocaleList(" EN-us , !! , ja"));
    EXPECT_NE(list, registerLocaleList("ja-JP,en-US"));
    EXPECT_NE(list, registerLocaleList("en-US"));
    // The last: a script is no guess at a language.
    for (const auto& [a, b] : {std::pair("zh-Hans", "zh-Hant"), std::pair("und-Cyrl", "und-Arab"),
                               std::pair("und-Zsye", "und-Zsym"), std::pair("und-Cyrl", "ru")}) {
        EXPECT_NE(registerLocaleList(a), registerLocaleList(b)) << a;
    }
    EXPECT_TRUE(host::localeListOf(0xFFFFFFF0).empty());
}

TEST(LocaleList, ScoresLanguageBeforeScriptBeforeNothing) {
    const auto score = [](const char* wanted, const char* offered) {
        return host::localeScore(host::localeListOf(minikin::registerLocaleList(wanted)),
                                 host::localeListOf(minikin::registerLocaleList(offered)));
    };
    const std::tuple<uint32_t, const char*, const char*> cases[] = {
        {0, "", "ja"},
        {0, "ja", ""},
        {0, "ja", "und-Arab"},
        {3, "ja", "ja-JP"},
        {1, "fr", "en"},
        {1, "ar", "und-Arab"},
        {0, "zh-Hans", "zh-Hant"},
        {3, "zh-Hani", "zh-Hant"},          // any Han will do
        {3, "zh-Hanb", "zh-Hant,zh-Bopo"},  // the parts of a script one by one
        {4, "und-Zsye", "und-Zsye"},
        {2, "en-u-em-emoji", "und-Zsye"},
        {3 * 5 + 0, "ja,en", "ja"},
        {0 * 5 + 3, "en,ja", "ja"}};
    for (const auto& [expected, wanted, offered] : cases) {
        EXPECT_EQ(expected, score(wanted, offered)) << wanted << " and " << offered;
    }
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
