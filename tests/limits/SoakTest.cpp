// SPDX-License-Identifier: Apache-2.0
// Many renders in one process: new objects and kept ones, changes of everything, failures among them. Memory
// does not grow with them. ZVEX_TEST_RENDERS says how many, 3000 if it does not.
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "platform/host/GlyphCache.h"
#include "tests/effect/RandomLayer.h"
#include "tests/text/TextScene.h"

using namespace Zvex;
using namespace text_test;

namespace {

// After the first quarter of the renders, in kilobytes: several times what it comes to, and less than half a
// kilobyte of 3000 renders' each.
constexpr long kMostGrowth = 1024;

// Of the process, in kilobytes, without what the allocator keeps for the next one who asks.
long residentKilobytes() {
    malloc_trim(0);
    long pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

const wchar_t* const kTexts[] = {L"Hamburgefonst", L"Gr\u00FC\u00DFe, \u4E16\u754C", L"",
                                 L"\u0645\u0631\u062D\u0628\u0627 \U0001F600",
                                 L"\u0e01\u0e33 fi\u0301n\u0300al"};

// What is asked for cannot be had; the object stays as it is.
void fail(TextScene& scene) {
    EXPECT_FALSE(scene.object.SetFont("/nowhere/missing.ttf"));
    EXPECT_FALSE(scene.object.SetFont("no font.ttf", newBuffer(std::string(500, 'x')), 500));
    EXPECT_EQ(scene.object.RenderTextEffect(2147483647, 2147483647), nullptr);
    EXPECT_FALSE(scene.object.Construct());
    EXPECT_FALSE(scene.object.SetLineInfo(nullptr));
    EXPECT_LT(scene.effect().addEffect(99, nullptr), 0);
}

// Objects that are kept for a while, each changed before it is drawn again.
class Texts {
public:
    explicit Texts(unsigned seed) : mRandom(seed), mKept(8) {}

    void renderOne() {
        static const char* const kFonts[] = {kSans, kBold, kCjk, kEmoji};
        std::unique_ptr<TextScene>& scene = mKept[static_cast<size_t>(mRandom.below(8))];
        const float size = static_cast<float>(mRandom.between(6, 40));
        if (scene == nullptr || mRandom.below(4) == 0)
            scene = std::make_unique<TextScene>(kFonts[mRandom.below(4)], kTexts[mRandom.below(5)], size, 200,
                                                60);
        android::Paint paint;
        paint.setTextSize(size);
        paint.setAntiAlias(mRandom.below(4) != 0);
        if (mRandom.below(2) != 0) paint.setFontFeatureSettings("smcp, -kern");
        scene->object.SetPaint(paint);
        if (mRandom.below(2) == 0) scene->object.SetText(kTexts[mRandom.below(5)]);
        scene->object.SetBackgroundColor(mRandom.color(), mRandom.below(3) == 0);
        scene->object.SetTextStyle(mRandom.below(2) == 0, mRandom.below(2) == 0);
        scene->view().SetSize(mRandom.below(300), mRandom.below(90));
        scene->effect().setTextOpacity(static_cast<float>(mRandom.below(5)) * 0.25f);
        scene->effect().removeEffect(mRandom.below(6));
        if (mRandom.below(8) == 0) scene->effect().cleanAllEffect();
        addLayer(scene->effect(), mRandom.below(kLayerKinds), mRandom);
        if (mRandom.below(6) == 0) fail(*scene);
        const int start = mRandom.between(-1, 6);
        scene->setLines(
            {TextScene::makeLine(-5, 30, 0, 30), TextScene::makeLine(40, 60, start, start + 9, -1)});
        const Picture picture = scene->render();
        ASSERT_EQ(picture.pixels.empty(), picture.width < 1 || picture.height < 1);
        if (picture.countVisible() > 50) ++visible;
    }

    long visible = 0;  // pictures with more than a few pixels

private:
    Random mRandom;
    std::vector<std::unique_ptr<TextScene>> mKept;
};

}  // namespace

TEST(Soak, MemoryStaysAsItIs) {
    const char* const asked = std::getenv("ZVEX_TEST_RENDERS");
    const long renders = asked != nullptr ? std::max(1000L, std::atol(asked)) : 3000;
    FontManager::GetInstance()->SetSystemFontFamilies(
        makeFamilies({makeFamily("", {kEmoji}), makeFamily("zh-Hans", {kCjk})}));
    ASSERT_NE(std::freopen("/dev/null", "w", stderr), nullptr);  // what fails is in the log
    host::setGlyphCacheLimit(1 << 20);                           // full before the memory is looked at
    Texts texts(7);
    long before = 0;
    for (long i = 1; i <= renders; ++i) {
        texts.renderOne();
        if (i == renders / 4) before = residentKilobytes();
        if (i == 1000 || i == renders / 10 || i == renders / 4 || i == renders / 2 || i == renders)
            std::printf("%8ld renders: %ld kB\n", i, residentKilobytes());
        ASSERT_FALSE(HasFailure()) << "render " << i;
    }
    EXPECT_LE(residentKilobytes() - before, kMostGrowth) << renders << " renders";
    EXPECT_GT(texts.visible, renders / 3);
}
