// SPDX-License-Identifier: Apache-2.0
#include "text/FontManager.h"

#include <gtest/gtest.h>
#include <minikin/LocaleList.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "TextScene.h"
#include "foundation/Error.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "text/ZvFontManagerImpl.h"

using namespace Zvex;
using namespace text_test;

namespace {

// A folder of its own for each test, gone with it.
class FontFiles : public ::testing::Test {
protected:
    void SetUp() override {
        char pattern[] = "/tmp/zvex-fonts-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        mFolder = pattern;
    }
    void TearDown() override {
        for (const std::string& path : mPaths) std::remove(path.c_str());
        rmdir(mFolder.c_str());
    }

    std::string pathOf(const std::string& name) {
        mPaths.push_back(mFolder + "/" + name);
        return mPaths.back();
    }
    std::string write(const std::string& name, const std::string& bytes) {
        const std::string path = pathOf(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }

    std::string mFolder;
    std::vector<std::string> mPaths;
};

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

std::vector<std::string> keysOf(const FontManager& manager) {
    std::vector<std::string> keys;
    for (const auto& entry : manager.mImpl->fontMap) keys.push_back(entry.first);
    return keys;
}

}  // namespace

using FontManagerFiles = FontFiles;

TEST(FontManager, ReadsAFileOnceAndKeepsTheFirstFont) {
    FontManager manager;
    ASSERT_TRUE(manager.AddMinikinFont(kSans, nullptr, 0, 0, true));
    const double readOnce = manager.mImpl->totalSize;
    EXPECT_NEAR(readOnce, readFile(kSans).size() / 1024000.0, 1e-6);
    const std::weak_ptr<minikin::MinikinFont> first = manager.mImpl->fontMap.begin()->second;

    EXPECT_TRUE(manager.AddMinikinFont(kSans, nullptr, 0, 0, true));
    EXPECT_TRUE(manager.AddMinikinFont(kSans, nullptr, 0, 0, false));
    EXPECT_EQ(manager.mImpl->totalSize, readOnce);
    EXPECT_EQ(manager.mImpl->fontMap.begin()->second, first.lock());
    EXPECT_EQ(manager.mImpl->fontMap.size(), 1u);
}

TEST(FontManager, KeysHoldTheIndexAsOneCharacterAndANul) {
    FontManager manager;
    const std::string bytes = readFile(kSans);
    ASSERT_TRUE(manager.AddMinikinFont("name", newBuffer(bytes), bytes.size(), 0, true));
    EXPECT_EQ(keysOf(manager), std::vector<std::string>({std::string("name0\0", 6)}));
    EXPECT_TRUE(manager.mImpl->dataMap.empty());  // a buffer belongs to its font alone
    EXPECT_EQ(manager.mImpl->totalSize, 0);

    EXPECT_EQ(ZvFontManagerImpl::fontKey("p", 9), std::string("p9\0", 3));
    EXPECT_EQ(ZvFontManagerImpl::fontKey("p", 10), std::string("p:\0", 3));
    EXPECT_EQ(ZvFontManagerImpl::fontKey("p", 10 + 256), std::string("p:\0", 3));
    EXPECT_EQ(ZvFontManagerImpl::dataKey("p"), std::string("p\0", 2));
    EXPECT_TRUE(manager.IsExisting("name", 0));
    EXPECT_FALSE(manager.IsExisting("name", 1));
    EXPECT_FALSE(manager.IsExisting("", 0));
    EXPECT_FALSE(manager.IsExisting(nullptr, 0));
}

// The address sanitizer is the judge here: each buffer is freed exactly once.
TEST(FontManager, OwnsHandedOverBuffersOnEveryPath) {
    FontManager manager;
    const std::string bytes = readFile(kSans);
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    const auto name = makeString("name");
    EXPECT_TRUE(manager.AddMinikinFont("name", newBuffer(bytes), size, 0, true));
    EXPECT_TRUE(manager.AddMinikinFont("name", newBuffer(bytes), size, 0, true));
    EXPECT_TRUE(manager.AddMinikinFont("name", newBuffer(bytes), size, 0, false));
    EXPECT_TRUE(manager.AddMinikinFont(name.get(), newBuffer(bytes), size, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont("", newBuffer(bytes), size, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont(static_cast<const char*>(nullptr), newBuffer(bytes), size, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont(static_cast<ZvString*>(nullptr), newBuffer(bytes), size, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont("empty", newBuffer(bytes), 0, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont("garbage", newBuffer("no font at all"), 14, 0, true));
    EXPECT_FALSE(manager.AddMinikinFont("index", newBuffer(bytes), size, 7, true));
    EXPECT_FALSE(manager.AddMinikinFont("index", newBuffer(bytes), size, -1, true));
    EXPECT_EQ(manager.mImpl->fontMap.size(), 1u);
}

TEST_F(FontManagerFiles, BadFilesFailWithALineAndLeaveNothingBehind) {
    const std::string fontBytes = readFile(kSans);
    const std::string fifo = pathOf("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    const struct {
        std::string path;
        const char* line;
    } cases[] = {
        {mFolder + "/missing.ttf", "ZvFontManager: AddMinikinFont() - Fail to get font"},
        {mFolder, "ZvFontManager: AddMinikinFont() - Fail to get font"},
        {fifo, "ZvFontManager: AddMinikinFont() - Fail to get font"},
        {write("empty.ttf", ""), "ZvFontManager: AddMinikinFont() - Fail to get font"},
        {write("garbage.ttf", std::string(5000, 'x')),
         "ZvFontManager: AddMinikinFont() - Fail to create typeface"},
        {write("cut.ttf", fontBytes.substr(0, 100)),
         "ZvFontManager: AddMinikinFont() - Fail to create typeface"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        FontManager manager;
        Error::SetError(0);
        host::LogCapture log;
        EXPECT_FALSE(manager.AddMinikinFont(c.path.c_str(), nullptr, 0, 0, true));
        EXPECT_EQ(errorLines(log), std::vector<std::string>({c.line}));
        EXPECT_EQ(Error::GetError(), 0u);
        EXPECT_TRUE(manager.mImpl->fontMap.empty());
        EXPECT_TRUE(manager.mImpl->dataMap.empty());
    }
}

TEST_F(FontManagerFiles, AFileThatBecomesAFontIsReadAfresh) {
    FontManager manager;
    const std::string path = write("late.ttf", "not yet");
    EXPECT_FALSE(manager.AddMinikinFont(path.c_str(), nullptr, 0, 0, true));
    write("late.ttf", readFile(kSans));
    EXPECT_TRUE(manager.AddMinikinFont(path.c_str(), nullptr, 0, 0, true));
}

TEST(FontManager, ARefusedIndexKeepsTheBytesOfTheOthers) {
    FontManager manager;
    ASSERT_TRUE(manager.AddMinikinFont(kCjk, nullptr, 0, 1, true));
    EXPECT_FALSE(manager.AddMinikinFont(kCjk, nullptr, 0, 200, true));
    EXPECT_EQ(manager.mImpl->dataMap.size(), 1u);
    EXPECT_TRUE(manager.AddMinikinFont(kCjk, nullptr, 0, 0, true));
    EXPECT_EQ(manager.mImpl->fontMap.size(), 2u);
    EXPECT_EQ(manager.mImpl->dataMap.size(), 1u);
}

TEST_F(FontManagerFiles, GetFontDataReadsWholeFilesOnly) {
    unsigned int size = 77;
    EXPECT_EQ(getFontData(nullptr, size), nullptr);
    EXPECT_EQ(getFontData("/dev/null", size), nullptr);
    // A hole of 4 GiB: longer than the size can say.
    const std::string hole = write("hole", "");
    ASSERT_EQ(truncate(hole.c_str(), off_t{1} << 32), 0);
    EXPECT_EQ(getFontData(hole.c_str(), size), nullptr);
    EXPECT_EQ(size, 77u);

    const std::string path = write("bytes", std::string("a\0b", 3));
    const std::unique_ptr<char[]> data(getFontData(path.c_str(), size));
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(std::string(data.get(), size), std::string("a\0b", 3));
}

TEST(FontManager, FileNameTellsTheWeight) {
    const struct {
        const char* path;
        int weight;
    } cases[] = {
        {"/fonts/Roboto-BoldItalic.ttf", 700},
        {"/fonts/NotoSans-Black.ttf", 900},
        {"/fonts/NotoSans-Thin.ttf", 100},
        {"/fonts/NotoSans-ExtraLight.ttf", 300},
        {"/fonts/NotoSans-MediumBlack.ttf", 500},
        {"/fonts/Name-Bold", 700},  // at the very end too
        {"/fonts-Light/NotoSans-Bold.ttf", 300},
        {"/fonts/MyBoldFont.ttf", 350},
        {"-Bold.ttf", 350},
        {"/fonts/NotoSans-Regular.ttf", 350},
    };
    FontManager manager;
    for (const auto& c : cases) {
        std::vector<std::shared_ptr<minikin::FontFamily>> families;
        int weight = 350;
        EXPECT_TRUE(manager.GetMinikinFontFamilies(families, makeString(c.path).get(), weight));
        EXPECT_EQ(weight, c.weight) << c.path;
        EXPECT_TRUE(families.empty());
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
    const uint32_t japanese = minikin::registerLocaleList("ja");
    EXPECT_FALSE(manager.LoadMinikinFontFamily(japanese));
    ZvFontFamily* first = makeFamily("ja", {kSans});
    ZvFontFamily* broken = makeFamily("ja", {kBold, "/missing.ttf"});
    ZvFontFamily* empty = makeFamily("ko", {});
    ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({first, broken, empty})));
    EXPECT_TRUE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_EQ(familyCount(manager, nullptr), 0);

    EXPECT_TRUE(manager.LoadMinikinFontFamily(japanese));
    EXPECT_NE(first->loaded, 0);
    EXPECT_EQ(broken->loaded, 0);
    EXPECT_EQ(familyCount(manager, nullptr), 1);
    // Found, but it cannot be built: true all the same, and again the next time.
    EXPECT_TRUE(manager.LoadMinikinFontFamily(japanese));
    EXPECT_EQ(broken->loaded, 0);
    EXPECT_TRUE(manager.LoadMinikinFontFamily(minikin::registerLocaleList("ko")));
    EXPECT_EQ(empty->loaded, 0);
    EXPECT_FALSE(manager.LoadMinikinFontFamily(minikin::registerLocaleList("und-Cyrl")));
    EXPECT_EQ(familyCount(manager, nullptr), 1);
    EXPECT_EQ(familyCount(manager, kBold), 2);  // its own first, held since the broken family's first font
}

TEST(FontManager, TakesOneFamilyListUntilItIsCleared) {
    FontManager manager;
    ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({})));
    List* second = makeFamilies({makeFamily("ja", {kSans})});
    EXPECT_TRUE(manager.SetSystemFontFamilies(second));
    EXPECT_FALSE(manager.LoadMinikinFontFamily(minikin::registerLocaleList("ja")));
    manager.ClearFontFamilies();
    EXPECT_FALSE(manager.IsSystemFontFamiliesAlreadySet());
    EXPECT_TRUE(manager.SetSystemFontFamilies(second));
    EXPECT_TRUE(manager.LoadMinikinFontFamily(minikin::registerLocaleList("ja")));
}

TEST(FontManager, FontsInUseOutliveClearing) {
    FontManager manager;
    ASSERT_TRUE(manager.AddMinikinFont(kSans, nullptr, 0, 0, true));
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
    EXPECT_TRUE(manager.AddMinikinFont(kSans, nullptr, 0, 0, true));
}

TEST(FontManager, WithoutAnImplementationEverythingReportsEight) {
    FontManager manager;
    delete manager.mImpl;
    manager.mImpl = nullptr;
    std::shared_ptr<minikin::MinikinFont> font;
    std::vector<std::shared_ptr<minikin::FontFamily>> families;
    int weight = 400;
    ZvFontFamily family;
    host::LogCapture log;
    size_t reports = 0;
    const auto failsWithEight = [&](bool result) {
        const bool reported = Error::GetError() == 8 && errorLines(log).size() == ++reports;
        Error::SetError(0);
        return !result && reported;
    };
    Error::SetError(0);
    EXPECT_TRUE(failsWithEight(manager.IsExisting("p", 0)));
    EXPECT_TRUE(failsWithEight(manager.AddMinikinFont("p", newBuffer("x"), 1, 0, true)));
    EXPECT_TRUE(failsWithEight(manager.BuildMinikinFamily(&family)));
    EXPECT_TRUE(failsWithEight(manager.LoadMinikinFontFamily(1)));
    EXPECT_TRUE(failsWithEight(manager.SetSystemFontFamilies(nullptr)));
    EXPECT_TRUE(failsWithEight(manager.IsSystemFontFamiliesAlreadySet()));
    EXPECT_TRUE(failsWithEight(manager.GetMinikinFont(font, nullptr, 0)));
    EXPECT_TRUE(failsWithEight(manager.GetMinikinFontFamilies(families, nullptr, weight)));
}
