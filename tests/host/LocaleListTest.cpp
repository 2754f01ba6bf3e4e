// SPDX-License-Identifier: Apache-2.0
#include "platform/host/LocaleLists.h"

#include <gtest/gtest.h>

#include <tuple>

#include "Fonts.h"
#include "Lines.h"

using minikin::registerLocaleList;

TEST(LocaleList, SameListSameId) {
    for (const char* empty : {"", " , ,", "!!,12345678901234567890"})
        EXPECT_EQ(0u, registerLocaleList(empty));
    const uint32_t list = registerLocaleList("en-US,ja-JP");
    EXPECT_NE(0u, list);
    for (const char* same : {"en-US,ja-JP", " EN-us , !! , ja"}) EXPECT_EQ(list, registerLocaleList(same));
    // The last pair: a script alone does not imply a language.
    for (const auto& [a, b] : {std::pair("en-US,ja-JP", "ja-JP,en-US"),
                               {"en-US,ja-JP", "en-US"},
                               {"zh-Hans", "zh-Hant"},
                               {"und-Cyrl", "und-Arab"},
                               {"und-Zsye", "und-Zsym"},
                               {"und-Cyrl", "ru"}}) {
        EXPECT_NE(registerLocaleList(a), registerLocaleList(b)) << a;
    }
    EXPECT_TRUE(host::localeListOf(0xFFFFFFF0).empty());
}

TEST(LocaleList, ScoresLanguageBeforeScriptBeforeNothing) {
    const auto score = [](const char* wanted, const char* offered) {
        return host::localeScore(host::localeListOf(registerLocaleList(wanted)),
                                 host::localeListOf(registerLocaleList(offered)));
    };
    const std::tuple<uint32_t, const char*, const char*> cases[] = {
        {0, "", "ja"},
        {0, "ja", ""},
        {0, "ja", "und-Arab"},
        {3, "ja", "ja-JP"},
        {1, "fr", "en"},
        {1, "ar", "und-Arab"},
        {0, "zh-Hans", "zh-Hant"},
        {3, "zh-Hani", "zh-Hant"},          // any Han matches
        {3, "zh-Hanb", "zh-Hant,zh-Bopo"},  // a list of the script's parts
        {4, "und-Zsye", "und-Zsye"},
        {2, "en-u-em-emoji", "und-Zsye"},
        {3 * 5 + 0, "ja,en", "ja"},
        {0 * 5 + 3, "en,ja", "ja"}};
    for (const auto& [expected, wanted, offered] : cases) {
        EXPECT_EQ(expected, score(wanted, offered)) << wanted << " and " << offered;
    }
    EXPECT_LT(score("en,ja,ja", "ja"), score("ja,en,en", "ja")) << "one wanted earlier outweighs the rest";
}

TEST(FontStyle, IsTheFilesWhereItWasNotSet) {
    const minikin::Font bold =
        minikin::Font::Builder(hosttest::fontOf(fonts::bytes(fonts::Role::kLatinBoldItalic))).build();
    const minikin::Font plain = minikin::Font::Builder(hosttest::dejavu()).setWeight(250).build();
    EXPECT_EQ(std::pair(700, 250), std::pair(bold.style().weight() + 0, plain.style().weight() + 0));
    EXPECT_EQ(minikin::FontStyle::Slant::ITALIC, bold.style().slant());
    EXPECT_EQ(minikin::FontStyle::Slant::UPRIGHT, plain.style().slant());
}
