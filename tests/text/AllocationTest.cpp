// SPDX-License-Identifier: Apache-2.0
// Makes a whole picture, from the font's file to the pixels, once for each of its allocations with that one
// failing.
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <set>
#include <string>

#include "foundation/OutOfMemory.h"
#include "platform/host/GlyphCache.h"
#include "platform/host/LogCapture.h"
#include "tests/FailingAllocations.h"
#include "tests/effect/LayerSettings.h"
#include "tests/text/TextScene.h"

namespace Zvex {
namespace {

using text_test::Picture;
using text_test::TextScene;

using Style = void (*)(ZvEffect&);
void plain(ZvEffect&) {}

// The steps of a caller who makes a picture. If memory is short, an operation says so and the object stays
// usable.
class Caller {
public:
    explicit Caller(Style style) : mStyle(style) {}

    // False where an operation failed.
    bool render(Picture& picture) {
        if (mObject == nullptr) mObject = construct();
        if (mObject == nullptr || !setFamilies()) return false;
        if (!mObject->SetFont(text_test::kSans) || !mObject->SetText(L"Ag\u0e01")) return false;
        mObject->SetPaint(mPaint);
        mObject->SetBackgroundColor(0xFF204060, mStyle == plain);
        ZvEffect* effect = mObject->GetEffect();
        ZvView* view = mObject->GetView();
        if (view == nullptr || effect == nullptr || !setLine()) {
            mObject.reset();  // a part had no memory when the object was made
            return false;
        }
        mStyle(*effect);
        view->gravity = 0x33;
        view->SetSize(50, 24);
        picture.width = 50 + effect->getLeftOffset() + effect->getRightOffset();
        picture.height = 24 + effect->getTopOffset() + effect->getBottomOffset();
        view->SetBitmapWidth(picture.width);
        view->SetBitmapHeight(picture.height);
        const uint32_t* pixels = mObject->RenderTextEffect(picture.width, picture.height);
        if (pixels == nullptr) return false;
        const FailingAllocations::Pause pause;
        picture.pixels.assign(pixels, pixels + static_cast<size_t>(picture.width) * picture.height);
        return true;
    }

private:
    static std::unique_ptr<ZvTextObject> construct() {
        std::unique_ptr<ZvTextObject> object(new (std::nothrow) ZvTextObject);
        return object != nullptr && object->Construct() ? std::move(object) : nullptr;
    }

    static bool setFamilies() {
        FontManager* manager = FontManager::GetInstance();
        if (manager->IsSystemFontFamiliesAlreadySet()) return true;
        List* families = nullptr;
        {
            const FailingAllocations::Pause pause;
            families = text_test::makeFamilies(
                {text_test::makeFamily("und-Thai", {fonts::path(fonts::Role::kThai)})});
        }
        return manager->SetSystemFontFamilies(families);
    }

    bool setLine() {
        List lines;
        std::unique_ptr<ZvLineInfo> line(new (std::nothrow) ZvLineInfo(TextScene::makeLine(2, 18, 0, 3)));
        if (line == nullptr || lines.Construct() == 0 || lines.Add(line.get()) == 0) return false;
        if (!mObject->SetLineInfo(&lines)) return false;
        line.release();
        return true;
    }

    const Style mStyle;
    android::Paint mPaint = [] {
        const FailingAllocations::Pause pause;
        android::Paint paint;
        paint.setTextSize(14);
        paint.setAntiAlias(true);
        paint.setFontFeatureSettings("kern, liga, and more than a short string holds");
        return paint;
    }();
    std::unique_ptr<ZvTextObject> mObject;
};

void forget() {
    FontManager::GetInstance()->ClearFontFamilies();
    FontManager::GetInstance()->ClearFontMaps();
    host::clearGlyphCache();
}

// Adds every filter, with settings that take its costlier paths.
void everything(ZvEffect& effect) {
    static LayerSettings* const settings = [] {
        const FailingAllocations::Pause pause;
        auto* made = new LayerSettings(2);
        made->opacity = 0.6f, made->soften = 1, made->distance = 2, made->position = ZV_STROKE_INSIDE;
        return made;
    }();
    effect.releaseEffect();
    for (const int type : kLayerTypes) {
        settings->technique = type == ZV_EFFECT_BEVEL ? 1 : 0;
        settings->style = type == ZV_EFFECT_BEVEL ? 1 : 3;
        if (type != ZV_EFFECT_TEXT) settings->addTo(effect, type);
    }
}

class Allocations : public testing::TestWithParam<Style> {};

TEST_P(Allocations, APictureThatFindsNoMemoryCanBeRenderedAfterwards) {
    { const host::LogCapture once; }  // allocates the log
    Picture expected;
    ASSERT_TRUE(Caller(GetParam()).render(expected));
    ASSERT_GT(expected.countVisible(), 0);
    forget();
    forEachFailingAllocation(
        [&](bool) {
            Picture first, second;
            {
                Caller caller(GetParam());
                takeOutOfMemoryMark();
                const bool said = !caller.render(first) || takeOutOfMemoryMark();
                const FailingAllocations::Pause pause;
                EXPECT_TRUE(said || first == expected);
                EXPECT_TRUE(caller.render(second));
                EXPECT_TRUE(second == expected);
            }
            forget();
        },
        FailingAllocations::Throwing::Fails);
}
// A list whose registration failed half-way must not share its id with the next.
TEST(LocaleLists, KeepTheirOwnIds) {
    std::set<uint32_t> ids;
    for (int i = 0; i < 1500; ++i) {
        const std::string region = std::to_string(100 + i % 900);
        const std::string tried = (i < 900 ? "fr-" : "it-") + region,
                          next = (i < 900 ? "de-" : "es-") + region;
        try {
            const FailingAllocations one(i % 25, FailingAllocations::Throwing::Fails);
            minikin::registerLocaleList(tried);
        } catch (const std::bad_alloc&) {
        }
        ids.insert(minikin::registerLocaleList(tried));
        ids.insert(minikin::registerLocaleList(next));
    }
    EXPECT_EQ(ids.size(), 3000u);

    // The number of lists is limited; existing lists keep their ids.
    const uint32_t known = minikin::registerLocaleList("fr-100");
    uint32_t last = known;
    for (int i = 0; i < 8000 && last != 0; ++i) {
        last = minikin::registerLocaleList("pt-" + std::to_string(100 + i % 900) + ",nl-" +
                                           std::to_string(100 + i / 900));
    }
    EXPECT_EQ(last, 0u);
    EXPECT_EQ(minikin::registerLocaleList("fr-100"), known);
}

INSTANTIATE_TEST_SUITE_P(Styles, Allocations, testing::Values(plain, everything));

}  // namespace
}  // namespace Zvex
