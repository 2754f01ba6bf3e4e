// SPDX-License-Identifier: Apache-2.0
// A text drawn again keeps the images of its lines, but the pictures must not depend on that: whatever
// changes between two renders, the picture equals that of a new object. What did not change is neither laid
// out nor rasterised again: the port's glyph cache, cleared before, stays empty.
#include <gtest/gtest.h>

#include <cwchar>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TextScene.h"
#include "effect/ZvGlyph.h"
#include "platform/host/GlyphCache.h"
#include "text/ZvFontDrawing.h"

using namespace Zvex;
using namespace text_test;

namespace {

// The first line has no letter, so its direction is that of its record.
constexpr wchar_t kText[] = L"1 (2\nWave fi\x0301 \x0531";
constexpr int kFirst = 4, kSecond = 5;  // the end of the first line and the start of the second

struct Change {
    const char* name;
    std::function<void(TextScene&)> apply;
};

Change onPaint(const char* name, const std::function<void(android::Paint&)>& set) {
    return {name, [set](TextScene& scene) { scene.changePaint(set); }};
}

Change onLine(const char* name, const ZvLineInfo& first) {
    return {name, [first](TextScene& scene) {
                scene.setLines({first, TextScene::makeLine(100, 80, kSecond, 100)});
            }};
}

std::unique_ptr<TextScene> makeScene() {
    auto scene = std::make_unique<TextScene>(fonts::path(fonts::Role::kLatinSmall), kText, 30.0f, 300, 100);
    onLine("", TextScene::makeLine(10, 40, 0, kFirst)).apply(*scene);
    return scene;
}

// Only the system's fonts have the Armenian letter: one font for Japanese, one compact and for Korean.
class KeptLines : public ::testing::Test {
protected:
    void SetUp() override {
        manager.ClearFontFamilies();
        japanese = makeFamily("ja", {kSans});
        korean = makeFamily("ko", {kBold});
        japanese->variant = 1;
        for (ZvFontFamily* family : {japanese, korean}) ASSERT_TRUE(manager.BuildMinikinFamily(family));
        japanese->loaded = korean->loaded = 1;
        ASSERT_TRUE(manager.SetSystemFontFamilies(makeFamilies({japanese, korean})));
    }
    void TearDown() override { manager.ClearFontFamilies(); }

    static bool drawsFromNothing(TextScene& scene) {
        host::clearGlyphCache();
        scene.render();
        return host::glyphCacheBytes() > 0;
    }

    FontManager& manager = *FontManager::GetInstance();
    ZvFontFamily *japanese = nullptr, *korean = nullptr;
};

TEST_F(KeptLines, EveryInputOfALineShows) {
    using Paint = android::Paint;
    const auto flags = [](const char* name, uint32_t set, uint32_t clear) {
        return onPaint(name, [=](Paint& p) { p.setFlags((p.getFlags() | set) & ~clear); });
    };
    const Change changes[] = {
        {"text", [](TextScene& s) { s.object.SetText(L"1 (3\nWave fi\x0301 \x0531"); }},
        {"longer text", [](TextScene& s) { s.object.SetText(L"1 (2\nWave fi\x0301 \x0531 more"); }},
        {"shorter text", [](TextScene& s) { s.object.SetText(L"1 (2\nWave"); }},
        {"font", [](TextScene& s) { s.object.SetFont(kSans); }},
        {"italic style", [](TextScene& s) { s.object.SetTextStyle(false, true); }},
        {"system family", [this](TextScene&) { japanese->loaded = 0; }},
        onLine("start", TextScene::makeLine(10, 40, 1, kFirst)),
        onLine("end", TextScene::makeLine(10, 40, 0, kFirst - 1)),
        onLine("direction", TextScene::makeLine(10, 40, 0, kFirst, -1)),
        onPaint("size", [](Paint& p) { p.setTextSize(30.5f); }),
        onPaint("scale", [](Paint& p) { p.setTextScaleX(1.25f); }),
        onPaint("skew", [](Paint& p) { p.setTextSkewX(-0.5f); }),
        onPaint("alpha", [](Paint& p) { p.setColor(0x80000000); }),
        onPaint("letter spacing", [](Paint& p) { p.setLetterSpacing(0.1f); }),
        onPaint("features", [](Paint& p) { p.setFontFeatureSettings("smcp, kern=0"); }),
        onPaint("locale", [](Paint& p) { p.setMinikinLocaleListId(minikin::registerLocaleList("ko")); }),
        onPaint("variant", [](Paint& p) { p.setFamilyVariant(minikin::FontFamily::Variant::ELEGANT); }),
        flags("fake bold", SkPaint::kFakeBoldText_Flag, 0),
        flags("no anti-alias", 0, SkPaint::kAntiAlias_Flag),
        flags("linear, subpixel", SkPaint::kLinearText_Flag | SkPaint::kSubpixelText_Flag, 0),
    };
    for (const Change& change : changes) {
        SCOPED_TRACE(change.name);
        japanese->loaded = 1;
        const auto kept = makeScene(), fresh = makeScene();
        const Picture before = kept->render();
        change.apply(*kept);
        change.apply(*fresh);
        const Picture after = kept->render();
        EXPECT_TRUE(after == fresh->render());
        EXPECT_FALSE(after == before);
        EXPECT_TRUE(kept->render() == after);
        EXPECT_FALSE(drawsFromNothing(*kept));
    }
}

// The same name may stand for another font later.
TEST_F(KeptLines, AFontThatIsReplacedShows) {
    const auto add = [](TextScene& scene, const char* path) {
        const std::string bytes = readFile(path);
        return scene.object.SetFont("replaced", newBuffer(bytes), static_cast<unsigned>(bytes.size()));
    };
    const auto scene = makeScene();
    ASSERT_TRUE(add(*scene, kSans));
    const Picture sans = scene->render();
    manager.ClearFontMaps();
    ASSERT_TRUE(add(*scene, kBold));
    const Picture bold = scene->render();
    EXPECT_FALSE(bold == sans);
    manager.ClearFontMaps();
    manager.ClearFontFamilies();
    EXPECT_EQ(scene->render().countVisible(), 0);  // without any font
}

TEST_F(KeptLines, EffectsColorsAndPlacesDrawNoLineAnew) {
    const Change changes[] = {
        {"nothing", [](TextScene&) {}},
        {"stroke", [](TextScene& s) { s.effect().addStrokeText(3, 0xFF0000FF, 0.8f, 0, 1); }},
        {"colour", [](TextScene& s) { s.object.SetTextColor(0x60FF8040); }},
        {"background", [](TextScene& s) { s.object.SetBackgroundColor(0x00FFFFFF, true); }},
        {"view", [](TextScene& s) { s.view().SetSize(280, 90); }},
        onLine("place", TextScene::makeLine(-7, 35, 0, kFirst)),
        {"moved lines and an empty one",
         [](TextScene& s) {
             s.setLines({TextScene::makeLine(0, 90, 0, kFirst), TextScene::makeLine(100, 80, kSecond, 100),
                         TextScene::makeLine(50, 30, 3, 3)});
         }},
        {"fewer lines", [](TextScene& s) { s.setLines({TextScene::makeLine(10, 40, 0, kFirst)}); }},
    };
    const auto kept = makeScene(), fresh = makeScene();
    kept->render();
    for (const Change& change : changes) {
        SCOPED_TRACE(change.name);
        change.apply(*kept);
        change.apply(*fresh);
        EXPECT_FALSE(drawsFromNothing(*kept));
        fresh->object.SetTextStyle(false, true);  // drops the kept lines
        fresh->render();
        fresh->object.SetTextStyle(false, false);
        EXPECT_TRUE(kept->render() == fresh->render());
    }
}

// Overlapping lines may need more than the picture's size; lines that are not kept are drawn again.
TEST_F(KeptLines, ImagesBeyondTheSizeOfThePictureAreNotKept) {
    const auto scene = makeScene();
    scene->view().SetSize(40, 30);
    const Picture first = scene->render();
    EXPECT_TRUE(drawsFromNothing(*scene));
    EXPECT_TRUE(scene->render() == first);
    scene->view().SetSize(300, 100);
    const Picture larger = scene->render();
    EXPECT_FALSE(drawsFromNothing(*scene));
    EXPECT_TRUE(larger == makeScene()->render());
    for (float size = 20; size < 40; ++size) {  // they are not counted forever either
        scene->changePaint([size](android::Paint& p) { p.setTextSize(size); });
        scene->render();
    }
    EXPECT_FALSE(drawsFromNothing(*scene));
}

}  // namespace
