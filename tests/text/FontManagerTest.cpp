// SPDX-License-Identifier: Apache-2.0
#include "text/FontManager.h"

#include <gtest/gtest.h>
#include <minikin/LocaleList.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TextScene.h"
#include "foundation/Error.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "text/FontPath.h"
#include "text/ZvFontManagerImpl.h"

using namespace Zvex;
using namespace text_test;

namespace {

std::unique_ptr<ZvString> makeString(const char* text) {
    auto string = std::make_unique<ZvString>();
    string->Construct(text);
    return string;
}

int familyCount(const FontManager& manager, const char* path) {
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    const auto string = path != nullptr ? makeString(path) : nullptr;
    EXPECT_TRUE(manager.GetMinikinFontFamilies(families, string.get(), weight));
    return static_cast<int>(families.size());
}

bool add(FontManager& manager, const char* path, int index = 0, bool checkExisting = true) {
    return manager.AddMinikinFont(path, nullptr, 0, index, checkExisting);
}

TEST(FontManager, ReadsAFileOnceAndKeepsTheFirstFont) {
    FontManager manager;
    ASSERT_TRUE(add(manager, kCjk, 1));
    const double readOnce = manager.mImpl->totalSize;
    EXPECT_NEAR(readOnce, readFile(kCjk).size() / 1024000.0, 1e-6);
    const std::weak_ptr<minikin::MinikinFont> first = manager.mImpl->fontMap.begin()->second;
    EXPECT_TRUE(add(manager, kCjk, 1));
    EXPECT_TRUE(add(manager, kCjk, 1, false));
    EXPECT_EQ(manager.mImpl->fontMap.begin()->second, first.lock());
    EXPECT_FALSE(add(manager, kCjk, 200));
    EXPECT_TRUE(add(manager, kCjk, 0));
    EXPECT_EQ(manager.mImpl->totalSize, readOnce);
    EXPECT_EQ(manager.mImpl->fontMap.size(), 2u);
    EXPECT_EQ(manager.mImpl->dataMap.size(), 1u);
}

TEST(FontManager, OwnsHandedOverBuffersUnderTheirNameAndIndex) {
    FontManager manager;
    const std::string bytes = readFile(kSans);
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    for (const bool checkExisting : {true, true, false}) {
        EXPECT_TRUE(manager.AddMinikinFont("name", newBuffer(bytes), size, 0, checkExisting));
    }
    EXPECT_TRUE(manager.AddMinikinFont(makeString("name").get(), newBuffer(bytes), size, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont(static_cast<ZvString*>(nullptr), newBuffer(bytes), size, 0, true));
    const std::tuple<const char*, unsigned, int> bad[] = {{"", size, 0},      {nullptr, size, 0},
                                                          {"empty", 0, 0},    {"cut", 14, 0},
                                                          {"index", size, 7}, {"index", size, -1}};
    for (const auto& [path, length, index] : bad) {
        EXPECT_FALSE(manager.AddMinikinFont(path, newBuffer(bytes), length, index, true)) << length << index;
    }
    // The key has the index as one character, and a NUL.
    ASSERT_EQ(manager.mImpl->fontMap.size(), 1u);
    EXPECT_EQ(manager.mImpl->fontMap.begin()->first, std::string("name0\0", 6));
    EXPECT_EQ(ZvFontManagerImpl::fontKey("p", 10 + 256), std::string("p:\0", 3));
    EXPECT_TRUE(manager.mImpl->dataMap.empty());  // a buffer belongs to its font alone
    EXPECT_TRUE(manager.IsExisting("name", 0) && !manager.IsExisting("name", 1));
    EXPECT_FALSE(manager.IsExisting("", 0) || manager.IsExisting(nullptr, 0));
}

TEST(FontManager, ReadsWholeFilesOnlyAndKeepsNothingOfOthers) {
    char pattern[] = "/tmp/zvex-fonts-XXXXXX";
    ASSERT_NE(mkdtemp(pattern), nullptr);
    const std::string folder = pattern, fifo = folder + "/fifo";
    const auto write = [&folder](const char* name, const std::string& bytes) {
        std::ofstream(folder + name, std::ios::binary) << bytes;
        return folder + name;
    };
    // A sparse file of 4 GiB, too long for the size's type.
    const std::string hole = write("/hole", "");
    ASSERT_TRUE(mkfifo(fifo.c_str(), 0600) == 0 && truncate(hole.c_str(), off_t{1} << 32) == 0);
    const std::pair<std::string, std::string> cases[] = {
        {folder + "/missing.ttf", "get font"},
        {folder, "get font"},
        {fifo, "get font"},
        {hole, "get font"},
        {write("/empty.ttf", ""), "get font"},
        {write("/garbage.ttf", std::string(5000, 'x')), "create typeface"},
        {write("/late.ttf", readFile(kSans).substr(0, 100)), "create typeface"},
    };
    FontManager manager;
    for (const auto& [path, failure] : cases) {
        SCOPED_TRACE(path);
        host::LogCapture log;
        EXPECT_FALSE(add(manager, path.c_str()));
        EXPECT_EQ(errorLines(log),
                  std::vector<std::string>({"ZvFontManager: AddMinikinFont() - Fail to " + failure}));
        EXPECT_TRUE(manager.mImpl->fontMap.empty() && manager.mImpl->dataMap.empty());
    }
    // A file that becomes a font is read afresh.
    EXPECT_TRUE(add(manager, write("/late.ttf", readFile(kSans)).c_str()));

    unsigned int size = 77;
    EXPECT_TRUE(getFontData(nullptr, size) == nullptr && getFontData(hole.c_str(), size) == nullptr);
    EXPECT_EQ(size, 77u);
    const std::unique_ptr<char[]> data(getFontData(write("/bytes", std::string("a\0b", 3)).c_str(), size));
    EXPECT_EQ(std::string(data.get(), size), std::string("a\0b", 3));
    std::filesystem::remove_all(folder);
}

TEST(FontManager, FileNameTellsTheStyle) {
    const std::tuple<const char*, int, bool> cases[] = {{"/fonts/Roboto-BoldItalic.ttf", 700, true},
                                                        {"/fonts/NotoSans-Black.ttf", 900, false},
                                                        {"/fonts/NotoSans-Thin.ttf", 100, false},
                                                        {"/fonts/NotoSans-MediumBlack.ttf", 500, false},
                                                        {"/fonts-Light/NotoSans-Bold.ttf", 300, false},
                                                        {"/fonts/MyBoldItalic.ttf", 350, false},
                                                        {"-Bold.ttf", 350, false},
                                                        {"/fonts/NotoSans-Regular.ttf", 350, false}};
    for (const auto& [path, expected, italic] : cases) {
        int weight = 350;
        bool isItalic = false;
        styleFromPath(path, weight, isItalic);
        EXPECT_EQ(std::pair(weight, isItalic), std::pair(expected, italic)) << path;
    }
}

TEST(FontManager, SystemRobotoMakesNoFamilyOfItsOwn) {
    FontManager manager;
    const std::string bytes = readFile(kSans);
    const std::string system = std::string(ZVEX_SYSTEM_FONT_DIR) + "/Roboto-Regular.ttf";
    const std::string sibling = std::string(ZVEX_SYSTEM_FONT_DIR) + "/RobotoCondensed-Regular.ttf";
    for (const std::string& path : {system, sibling}) {
        ASSERT_TRUE(manager.AddMinikinFont(path.c_str(), newBuffer(bytes), bytes.size(), 0, true));
    }
    EXPECT_EQ(familyCount(manager, system.c_str()), 0);
    EXPECT_EQ(familyCount(manager, sibling.c_str()), 1);
    EXPECT_EQ(familyCount(manager, "unknown"), 0);
    EXPECT_EQ(familyCount(manager, nullptr), 0);
}

TEST(FontManager, LoadsOneFamilyOfALocaleAtATime) {
    FontManager manager;
    const auto load = [&manager](const char* locale) {
        return manager.LoadMinikinFontFamily(minikin::registerLocaleList(locale));
    };
    EXPECT_FALSE(load("ja"));
    ZvFontFamily* first = makeFamily("ja", {kSans});
    ZvFontFamily* broken = makeFamily("ja", {kBold, "/missing.ttf"});
    ZvFontFamily* empty = makeFamily("ko", {});
    ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({first, broken, empty})));
    EXPECT_TRUE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_EQ(familyCount(manager, nullptr), 0);

    EXPECT_TRUE(load("ja"));
    EXPECT_NE(first->loaded, 0);
    EXPECT_EQ(familyCount(manager, nullptr), 1);
    // The family exists but cannot be built: true all the same, and again the next time.
    for (const char* locale : {"ja", "ja", "ko"}) EXPECT_TRUE(load(locale));
    EXPECT_EQ(broken->loaded, 0);
    EXPECT_EQ(empty->loaded, 0);
    EXPECT_FALSE(load("und-Cyrl"));
    EXPECT_EQ(familyCount(manager, nullptr), 1);
    EXPECT_EQ(familyCount(manager, kBold), 2);  // kBold came with the broken family

    // One family list is taken until it is cleared.
    List* second = makeFamilies({makeFamily("th", {kSans})});
    EXPECT_TRUE(manager.SetSystemFontFamilies(second));
    EXPECT_FALSE(load("th"));
    manager.ClearFontFamilies();
    EXPECT_FALSE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_TRUE(manager.SetSystemFontFamilies(second));
    EXPECT_TRUE(load("th"));
}

// Any change to the families is seen, even if their number stays the same.
TEST(FontManager, ChangesToTheFamiliesAreSeen) {
    FontManager manager;
    ZvFontFamily* families[] = {makeFamily("ja", {kSans}), makeFamily("ko", {kSans, kBold})};
    ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({families[0], families[1]})));
    for (ZvFontFamily* family : families) ASSERT_TRUE(manager.BuildMinikinFamily(family));
    const auto entry = [&](int i) { return static_cast<ZvFontEntry*>(families[1]->fonts->Get(i)); };
    families[0]->loaded = 1;
    const std::function<void()> changes[] = {
        [&] { std::swap(families[0]->loaded, families[1]->loaded); },
        [&] { freeFontEntry(entry(1)), families[1]->fonts->Remove(1); },
        [&] { entry(0)->path->Set(kBold); },
        [&] { entry(0)->italic = true; },
        [&] { entry(0)->weight = 700; },
        [&] { entry(0)->index = 1; },
        [&] { families[1]->variant = 2; },
        [&] { families[1]->localeListId = 0; },
        [&] { families[1]->fonts->Add(static_cast<void*>(nullptr)); },
        [&] { families[1]->loaded = 0; },
    };
    for (size_t i = 0; i < std::size(changes); ++i) {
        const uint64_t before = manager.GetGeneration();
        EXPECT_EQ(manager.GetGeneration(), before) << i;
        changes[i]();
        EXPECT_NE(manager.GetGeneration(), before) << i;
    }
}

TEST(FontManager, ASystemEntrysWeightAndSlantReachTheFamily) {
    FontManager manager;
    ZvFontFamily* family = makeFamily("", {kSans});
    auto* entry = static_cast<ZvFontEntry*>(family->fonts->Get(0));
    ASSERT_TRUE(manager.BuildMinikinFamily(family));
    family->loaded = 1;
    ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({family})));
    for (const bool italic : {false, true}) {
        entry->italic = italic;
        entry->weight = italic ? 800 : 300;
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        int weight = 400;
        ASSERT_TRUE(manager.GetMinikinFontFamilies(families, nullptr, weight));
        ASSERT_EQ(families.size(), 1u);
        // The entry lacks both parts of black italic.
        const minikin::FontFakery fakery =
            families[0]->getClosestMatch(minikin::FontStyle(900, minikin::FontStyle::Slant::ITALIC)).fakery;
        EXPECT_EQ(fakery.isFakeItalic(), !italic);
        EXPECT_EQ(fakery.isFakeBold(), !italic);
    }
}

TEST(FontManager, FontsInUseOutliveClearing) {
    FontManager manager;
    ASSERT_TRUE(add(manager, kSans));
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    const auto path = makeString(kSans);
    ASSERT_TRUE(manager.GetMinikinFontFamilies(families, path.get(), weight));
    const std::weak_ptr<minikin::MinikinFont> font = manager.mImpl->fontMap.begin()->second;
    const std::weak_ptr<ZvFontData> bytes = manager.mImpl->dataMap.begin()->second;

    manager.ClearFontMaps();
    EXPECT_FALSE(manager.IsExisting(kSans, 0));
    ASSERT_FALSE(font.expired());
    ASSERT_FALSE(bytes.expired());
    EXPECT_EQ(font.lock()->GetFontData(), bytes.lock()->data);
    families.clear();
    EXPECT_TRUE(font.expired());
    EXPECT_TRUE(bytes.expired());
    EXPECT_TRUE(add(manager, kSans));
}

}  // namespace
