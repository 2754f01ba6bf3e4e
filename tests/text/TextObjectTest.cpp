// SPDX-License-Identifier: Apache-2.0
#include "text/ZvTextObject.h"

#include <gtest/gtest.h>
#include <minikin/LocaleList.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "TextScene.h"
#include "foundation/Error.h"
#include "foundation/ZvString.h"
#include "raster/ZvBitmap.h"
#include "text/FontManager.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvTextObjectImpl.h"

using namespace Zvex;
using namespace text_test;

TEST(TextObject, WithoutConstructNothingIsDone) {
    ZvTextObject object;
    android::Paint paint;
    const std::function<bool()> failures[] = {
        [&] { return object.GetRuntimeHandle() == -1; },
        [&] { return object.GetEffect() == nullptr && object.GetView() == nullptr; },
        [&] { return !object.SetText(L"a") && object.GetText() == nullptr; },
        [&] { return !object.SetFont(kSans) && object.GetFont() == nullptr; },
        [&] { return !object.SetFont("name", newBuffer("x"), 1); },
        [&] { return !object.SetLineInfo(nullptr) && object.GetLineInfo() == nullptr; },
        [&] { return !object.SetTextStyle(true, true) && !object.isBoldTextStyle(); },
        [&] { return object.SetPaint(paint), true; },
        [&] { return object.SetBackgroundColor(1, true), true; },
        [&] { return object.SetTextColor(1), object.GetTextColor() == 0xFF000000u; },
        [&] { return object.RenderTextEffect(10, 10) == nullptr; },
    };
    for (const auto& fails : failures) {
        Error::SetError(0);
        host::LogCapture log;
        EXPECT_TRUE(fails()) << &fails - failures;
        EXPECT_EQ(Error::GetError(), 8u) << &fails - failures;
        EXPECT_EQ(errorLines(log).at(0).rfind("ZvTextObject: @ Native Error 8 : ", 0), 0u);
    }
}

TEST(TextObject, ConstructsOnceAndStyleBitsLeaveOthersAlone) {
    ZvTextObject object;
    ASSERT_TRUE(object.Construct());
    Error::SetError(0);
    EXPECT_FALSE(object.Construct());
    EXPECT_EQ(Error::GetError(), 4u);
    object.mImpl->style = 0x10;
    EXPECT_TRUE(object.SetTextStyle(true, false));
    EXPECT_TRUE(object.isBoldTextStyle() && !object.isItalicTextStyle());
    EXPECT_TRUE(object.SetTextStyle(false, true));
    EXPECT_EQ(object.mImpl->style, 0x12u);
}

TEST(TextObject, CopiesTheText) {
    ZvTextObject object;
    object.Construct();
    ZvString string;
    string.Construct("Grüße");
    EXPECT_TRUE(object.SetText(&string));
    string.Set("other");
    EXPECT_TRUE(object.SetText(object.GetText()));
    ASSERT_NE(object.GetText(), nullptr);
    EXPECT_EQ(std::wstring(object.GetText()->GetPointer()), L"Gr\u00fc\u00dfe");
    EXPECT_TRUE(object.SetText(static_cast<const ZvString*>(nullptr)));
    EXPECT_EQ(object.GetText(), nullptr);
    EXPECT_TRUE(object.SetText(static_cast<const wchar_t*>(nullptr)));
}

TEST(TextObject, AFontThatFailsLeavesTheOldOneChosen) {
    ZvTextObject object;
    object.Construct();
    ASSERT_TRUE(object.SetFont(kSans));
    const std::string bytes = readFile(kBold);
    Error::SetError(0);
    EXPECT_FALSE(object.SetFont("/missing.ttf"));
    EXPECT_FALSE(object.SetFont(""));
    EXPECT_FALSE(object.SetFont("TextObject.garbage", newBuffer("garbage"), 7));
    for (const char* name : {"TextObject.\xFF", "\xC3", "TextObject.\xC0\xAF", "a\xED\xA0\xBD\xED\xB8\x80"})
        EXPECT_FALSE(object.SetFont(name, newBuffer(bytes), static_cast<unsigned>(bytes.size()))) << name;
    EXPECT_EQ(Error::GetError(), 0u);
    EXPECT_FALSE(object.SetFont(nullptr));
    EXPECT_EQ(Error::GetError(), 7u);
    EXPECT_FALSE(object.SetFont(nullptr, newBuffer(bytes), static_cast<unsigned>(bytes.size())));
    EXPECT_EQ(object.GetFont()->fontPath->CompareTo(kSans), 0);

    EXPECT_TRUE(object.SetFont("TextObject.bold", newBuffer(bytes), static_cast<unsigned>(bytes.size())));
    EXPECT_EQ(object.GetFont()->fontPath->CompareTo("TextObject.bold"), 0);
    EXPECT_TRUE(object.SetFont("TextObject.bold"));  // a name, not a file; already held
}

TEST(TextObject, TakesLineRecordsOver) {
    TextScene scene(nullptr, L"ab", 20, 100, 100);
    scene.setLines({TextScene::makeLine(1, 20, 0, 1), TextScene::makeLine(2, 40, 1, 2)});
    EXPECT_TRUE(scene.object.SetLineInfo(scene.object.GetLineInfo()));
    ASSERT_EQ(scene.object.GetLineInfo()->GetCount(), 2);
    EXPECT_EQ(scene.line(1).x, 2);
    scene.setLines({TextScene::makeLine(3, 20, 0, 1)});
    ASSERT_EQ(scene.object.GetLineInfo()->GetCount(), 1);
    EXPECT_EQ(scene.line(0).x, 3);

    host::LogCapture log;
    EXPECT_FALSE(scene.object.SetLineInfo(nullptr));
    EXPECT_EQ(Error::GetError(), 7u);
    scene.setLines({});  // the object no longer frees the records of a list that is gone
    delete std::exchange(scene.object.mImpl->lineInfo, nullptr);
    List list;
    list.Construct();
    EXPECT_FALSE(scene.object.SetLineInfo(&list));
    EXPECT_EQ(Error::GetError(), 8u);
    EXPECT_EQ(errorLines(log).at(0), "ZvTextObject: SetLineInfo - lineInfo is NULL");
    EXPECT_EQ(errorLines(log).at(2), "ZvTextObject: SetLineInfo - M->lineInfo is NULL");
}

TEST(TextObject, TextLoadsTheFamiliesOfItsScripts) {
    const std::pair<const wchar_t*, std::vector<std::string>> cases[] = {
        {L"Latin 123, e\u0301!", {}},
        {L"\u0416", {"und-Cyrl"}},
        {L"a \u3042", {"ja"}},
        {L"\u30AB", {"ja"}},
        {L"\uD55C", {"ko"}},
        {L"\u6F22", {"zh-Hans"}},
        {L"\u0E01\u0416", {"und-Cyrl", "und-Thai"}}};
    static const char* const kLocales[] = {"ja", "ko", "und-Cyrl", "und-Thai", "zh-Hans", "zh-Hant"};
    FontManager& manager = *FontManager::GetInstance();
    for (const bool familiesFirst : {true, false}) {
        for (const auto& [text, expected] : cases) {
            std::vector<ZvFontFamily*> families;
            for (const char* locale : kLocales) families.push_back(makeFamily(locale, {kSans}));
            manager.ClearFontFamilies();
            ZvTextObject object;
            object.Construct();
            object.SetTextLocaleListId();  // no text, nothing to load
            if (!familiesFirst) object.SetText(text);
            ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies(families)));
            familiesFirst ? void(object.SetText(text)) : object.SetTextLocaleListId();
            std::vector<std::string> loaded;
            for (size_t i = 0; i < families.size(); ++i) {
                if (families[i]->loaded != 0) loaded.push_back(kLocales[i]);
            }
            EXPECT_EQ(loaded, expected);
        }
    }
    manager.ClearFontFamilies();
}

TEST(TextObject, TheViewRefusesNegativeSizes) {
    ZvView view;
    ASSERT_TRUE(view.SetSize(30, 20) && view.SetBitmapWidth(40) && view.SetBitmapHeight(50) &&
                view.SetSize(0, 0));
    host::LogCapture log;
    EXPECT_FALSE(view.SetSize(-1, 10) || view.SetSize(10, -1) || view.SetBitmapWidth(-2) ||
                 view.SetBitmapHeight(-3));
    EXPECT_EQ(errorLines(log).size(), 4u);
    int size[2] = {0, 0};
    view.GetDrawingBitmapSize(size);
    EXPECT_EQ((std::vector<int>{size[0], size[1], view.GetWidth(), view.GetHeight(), view.gravity}),
              (std::vector<int>{40, 50, 0, 0, 3}));
}

TEST(TextObject, SizesThatCannotBeGiveNoPicture) {
    OneLine scene(L"ab", 20, 60, 30, 0, 20);
    const int sizes[][2] = {{0, 0}, {60, 0}, {-1, -1}, {-60, 30}, {2147483647, 2147483647}};
    for (const auto& size : sizes) {
        scene.effect().cleanAllEffect();
        const int top = scene.line(0).rect.top = 5;
        scene.effect().addStrokeText(4, 0xFFFFFFFF, 1, 0, 1);
        for (const bool background : {false, true}) {
            scene.object.SetBackgroundColor(0xFF00FF00, background);
            EXPECT_EQ(scene.object.RenderTextEffect(size[0], size[1]), nullptr) << size[0] << "x" << size[1];
        }
        // The drawing steps run: the text is a layer, the line is placed.
        EXPECT_TRUE(scene.effect().hasEffect(ZV_EFFECT_TEXT));
        EXPECT_EQ(scene.line(0).rect.top, top + 2 * scene.effect().getTopOffset());
        EXPECT_EQ(scene.effect().getSrcBitmap(), nullptr);
    }
}

TEST(TextObject, WithoutAFontDrawerTheLastPictureStays) {
    OneLine scene(L"ab", 20, 60, 30, 0, 20);
    scene.render();
    uint32_t* const last = reinterpret_cast<uint32_t*>(scene.object.mImpl->result->pixels);
    const std::vector<uint32_t> before(last, last + 60 * 30);
    delete std::exchange(scene.object.mImpl->fontDrawing, nullptr);
    Error::SetError(0);
    EXPECT_EQ(scene.object.RenderTextEffect(10, 10), last);
    EXPECT_EQ(Error::GetError(), 8u);
    EXPECT_EQ(std::vector<uint32_t>(last, last + 60 * 30), before);
    EXPECT_TRUE(scene.object.SetFont(kSans));  // makes a new object
    EXPECT_GT(scene.render().countVisible(), 0);
}
