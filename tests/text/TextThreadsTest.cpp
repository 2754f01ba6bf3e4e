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
        // SetFont and SetText change the process's font manager, which has no lock.
        std::unique_lock<std::mutex> lock(fontManagerMutex);
        TextScene scene(kSans, L"Side \u0416 \U0001F600", 28, 180, 50);
        lock.unlock();
        const int handle = scene.object.GetRuntimeHandle();
        EXPECT_EQ(ZvTextObject::FindZvTextObject(handle), &scene.object);
        ZvTextInstanceManager::Bind(&scene.object);
        scene.effect().addStrokeText(3, 0xFFFFFFFF, 0.9f, 0, 1);
        scene.setLines({TextScene::makeLine(5, 36, 0, 9)});

        configured.wait();
        pictures[static_cast<size_t>(number)] = scene.render();
        pictures[static_cast<size_t>(number + kThreads)] = scene.render();
        rendered.wait();
        EXPECT_TRUE(ZvTextInstanceManager::Release(&scene.object, false));
        EXPECT_EQ(ZvTextObject::FindZvTextObject(handle), &scene.object);
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
            for (int round = 0; round < 50; ++round) {
                ZvTextObject* found = ZvTextInstanceManager::FindZvTextObject(handle);
                ZvTextInstanceManager::Bind(found);
                EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
                auto* own = new ZvTextObject;
                EXPECT_TRUE(own->Construct());
                ZvTextInstanceManager::Bind(own);
                EXPECT_TRUE(ZvTextInstanceManager::Release(own, true));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), object);
    EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), nullptr);
}
