// SPDX-License-Identifier: Apache-2.0
// Eight threads side by side, each with its own text object. Built with the thread sanitizer, this program
// must report nothing. ZVEX_TEST_SECONDS sets how long the threads run; the default is one second.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <thread>
#include <vector>

#include "TextScene.h"
#include "platform/host/GlyphCache.h"
#include "tests/effect/RandomLayer.h"
#include "text/ZvTextInstanceManager.h"

using namespace Zvex;
using namespace text_test;

namespace {

constexpr int kThreads = 8;

// Tells the threads when to stop.
class Duration {
public:
    bool passes() const { return std::chrono::steady_clock::now() < mEnd; }

private:
    static int seconds() {
        const char* const asked = std::getenv("ZVEX_TEST_SECONDS");
        return asked != nullptr ? std::atoi(asked) : 1;
    }
    std::chrono::steady_clock::time_point mEnd =
        std::chrono::steady_clock::now() + std::chrono::seconds(seconds());
};

// A thread's text, and the pictures of it that one thread alone makes, one for each style.
struct Job {
    std::unique_ptr<TextScene> scene;
    std::vector<Picture> expected;

    explicit Job(unsigned number) {
        static const wchar_t* const kTexts[] = {L"Side \u0416 \U0001F600", L"Hamburgefonst",
                                                L"fi\u0301n \u05D0\u05D1"};
        const float size = static_cast<float>(14 + 2 * number);
        scene =
            std::make_unique<TextScene>(number % 2 == 0 ? kSans : kBold, kTexts[number % 3], size, 180, 50);
        for (int style = 0; style < kLayerKinds; ++style) expected.push_back(render(style));
    }

    // With three effects.
    Picture render(int style) {
        Random random(static_cast<unsigned>(style));
        scene->effect().releaseEffect();
        scene->object.SetTextColor(random.color() | 0xFF000000);
        for (int i = 0; i < 3; ++i) addLayer(scene->effect(), (style + 4 * i) % kLayerKinds, random);
        scene->setLines({TextScene::makeLine(5, 36, 0, 13)});
        return scene->render();
    }
};

ZvFontFamily* loadFamily(const char* path) {
    ZvFontFamily* family = makeFamily("", {path});
    family->loaded = FontManager::GetInstance()->BuildMinikinFamily(family) ? 1 : 0;
    return family;
}

TEST(TextThreads, MixedEffectsGiveThePicturesOfOneThread) {
    std::vector<Job> jobs;
    for (unsigned number = 0; number < kThreads; ++number) jobs.emplace_back(number);
    std::atomic<int> renders{0};
    host::setGlyphCacheLimit(10000);
    const Duration duration;
    std::vector<std::thread> threads;
    for (Job& job : jobs) {
        threads.emplace_back([&] {
            for (int style = 0; duration.passes() && !testing::Test::HasFailure();
                 style = (style + 1) % kLayerKinds) {
                EXPECT_TRUE(job.render(style) == job.expected[static_cast<size_t>(style)]) << style;
                if (++renders % 20 == 0) host::clearGlyphCache();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GE(renders, kThreads);
    std::printf("%d renders\n", renders.load());
    host::setGlyphCacheLimit(host::kDefaultGlyphCacheLimit);
}

// Exit handlers run while other threads make texts and render. In a process of its own.
TEST(TextThreadsDeathTest, TheProcessMayEndMeanwhile) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    const auto endMeanwhile = [] {
        std::atexit([] { std::this_thread::sleep_for(std::chrono::milliseconds(100)); });
        FontManager& manager = *FontManager::GetInstance();
        manager.SetSystemFontFamilies(makeFamilies({loadFamily(kBold), loadFamily(kEmoji)}));
        manager.AddMinikinFont(kSans, nullptr, 0, 0, true);
        manager.GetGeneration();
        std::atomic<int> rendered{0};
        for (int i = 0; i < 4; ++i) {
            std::thread([&rendered] {
                for (;;) {
                    OneLine scene(L"End", 20, 80, 30, 5, 25);
                    rendered += scene.render().countVisible() > 0;
                }
            }).detach();
        }
        while (rendered < 8) std::this_thread::yield();
        std::exit(0);
    };
    EXPECT_EXIT(endMeanwhile(), ::testing::ExitedWithCode(0), "");
}

// After its other threads have ended, a process may fork, before and after it has rendered: the child finds
// no lock held and has its own caches and fonts.
TEST(TextThreads, AForkedChildRendersOn) {
    const auto render = [] {
        OneLine scene(L"Fork \u0416", 28, 180, 50, 5, 36);
        scene.effect().addStrokeText(3, 0xFFFFFFFF, 0.9f, 0, 1);
        return scene.render();
    };
    const Picture expected = render();
    EXPECT_GT(expected.countVisible(), 200);
    const pid_t child = fork();
    if (child == 0) std::_Exit(render() == expected && render() == expected ? 0 : 1);
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(render() == expected);
}

TEST(TextThreads, RegistryCountsAcrossThreads) {
    auto* object = new ZvTextObject;
    ASSERT_TRUE(object->Construct());
    const int handle = object->GetRuntimeHandle();
    ZvTextInstanceManager::Bind(object);
    const Duration duration;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([=] {
            for (int round = 0; round < 50 || duration.passes(); ++round) {
                if (round % 5 == i % 5) ZvTextInstanceManager::Lock();
                ZvTextInstanceManager::Bind(ZvTextInstanceManager::FindZvTextObject(handle));
                EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
                auto* own = new ZvTextObject;
                EXPECT_TRUE(own->Construct());
                ZvTextInstanceManager::Bind(own);
                EXPECT_TRUE(ZvTextInstanceManager::Release(own, true));
                if (round % 5 == i % 5) ZvTextInstanceManager::Unlock();
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), object);
    EXPECT_TRUE(ZvTextInstanceManager::Release(handle));
    EXPECT_EQ(ZvTextInstanceManager::FindZvTextObject(handle), nullptr);
}

}  // namespace
