// SPDX-License-Identifier: Apache-2.0
// Eight threads, each with a text object of its own, side by side. Built with the thread sanitizer this
// program must stay silent.
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

#include "TextScene.h"
#include "text/FontManager.h"
#include "text/ZvTextInstanceManager.h"

using namespace Zvex;
using namespace text_test;

namespace {

constexpr int kThreads = 8;

class Barrier {
public:
    void wait() {
        std::unique_lock<std::mutex> lock(mMutex);
        if (++mArrived == kThreads) mChanged.notify_all();
        mChanged.wait(lock, [this] { return mArrived >= kThreads; });
    }

private:
    std::mutex mMutex;
    std::condition_variable mChanged;
    int mArrived = 0;
};

Picture renderStyled(ZvTextObject& object) {
    ZvView& view = *object.GetView();
    ZvEffect& effect = *object.GetEffect();
    Picture picture;
    picture.width = view.GetWidth() + effect.getLeftOffset() + effect.getRightOffset();
    picture.height = view.GetHeight() + effect.getTopOffset() + effect.getBottomOffset();
    view.SetBitmapWidth(picture.width);
    view.SetBitmapHeight(picture.height);
    const uint32_t* pixels = object.RenderTextEffect(picture.width, picture.height);
    if (pixels != nullptr) {
        picture.pixels.assign(pixels, pixels + static_cast<size_t>(picture.width) * picture.height);
    }
    return picture;
}

ZvFontFamily* loadFamily(const char* path) {
    ZvFontFamily* family = makeFamily("", {path});
    family->loaded = FontManager::GetInstance()->BuildMinikinFamily(family) ? 1 : 0;
    return family;
}

}  // namespace

TEST(TextThreads, ObjectsRenderSideBySide) {
    List* families = makeFamilies({loadFamily(kBold), loadFamily(kEmoji)});
    ASSERT_TRUE(FontManager::GetInstance()->SetSystemFontFamilies(families));

    std::mutex fontManagerMutex;
    Barrier configured, rendered;
    std::vector<Picture> pictures(kThreads * 2);
    const auto work = [&](int number) {
        auto* object = new ZvTextObject;
        ASSERT_TRUE(object->Construct());
        ZvTextInstanceManager::Bind(object);
        const int handle = object->GetRuntimeHandle();
        ASSERT_EQ(ZvTextObject::FindZvTextObject(handle), object);
        {
            // SetFont and SetText change the process's font manager, which has no lock.
            std::lock_guard<std::mutex> lock(fontManagerMutex);
            ASSERT_TRUE(object->SetFont(kSans));
            ASSERT_TRUE(object->SetText(L"Side \u0416 \U0001F600"));
        }
        android::Paint paint;
        paint.setTextSize(28);
        paint.setAntiAlias(true);
        object->SetPaint(paint);
        object->GetView()->SetSize(180, 50);
        object->GetEffect()->addStrokeText(3, 0xFFFFFFFF, 0.9f, 0, 1);
        List list;
        list.Construct();
        list.Add(new ZvLineInfo(TextScene::makeLine(5, 36, 0, 9)));
        ASSERT_TRUE(object->SetLineInfo(&list));

        configured.wait();
        pictures[static_cast<size_t>(number)] = renderStyled(*object);
        pictures[static_cast<size_t>(number + kThreads)] = renderStyled(*object);
        rendered.wait();
        EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
        EXPECT_EQ(ZvTextObject::FindZvTextObject(handle), nullptr);
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
    for (std::thread& thread : threads) thread.join();

    EXPECT_GT(pictures[0].countVisible(), 200);
    for (size_t i = 1; i < pictures.size(); ++i) EXPECT_TRUE(pictures[i] == pictures[0]) << i;
}

TEST(TextThreads, RegistryCountsAcrossThreads) {
    auto* object = new ZvTextObject;
    ASSERT_TRUE(object->Construct());
    const int handle = object->GetRuntimeHandle();
    ZvTextInstanceManager::Bind(object);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([handle] {
            for (int round = 0; round < 200; ++round) {
                ZvTextObject* found = ZvTextInstanceManager::FindZvTextObject(handle);
                ZvTextInstanceManager::Bind(found);
                EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), object);
    EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), nullptr);
}
