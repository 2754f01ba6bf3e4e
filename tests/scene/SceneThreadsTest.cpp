// SPDX-License-Identifier: Apache-2.0
// Eight threads with a scene each, side by side. Built with the thread sanitizer this program must stay
// silent.
#include <gtest/gtest.h>

#include <thread>

#include "platform/host/GlyphCache.h"
#include "scene/Scene.h"
#include "tests/host/Fonts.h"

namespace Zvex::scene {
namespace {

using fonts::path;
using fonts::Role;
using Pixels = std::vector<uint32_t>;

constexpr int kThreads = 8;

// Fonts, fallbacks (the system's too), renderings and styles (half of them with layers) mixed.
Scene sceneOf(int i) {
    struct Job {
        const char *font, *fallback, *text, *preset;
    };
    static const Job kJobs[kThreads] = {
        {path(Role::kLatin), path(Role::kHebrew), "Side \u05D0\u05D1", "gold"},
        {path(Role::kLatinBold), path(Role::kCollection), "Ag\u4E16", "triple"},
        {path(Role::kLatinSmall), path(Role::kThai), "Wo \u0E01\u0E34", "neon"},
        {path(Role::kLatinBoldItalic), nullptr, "lean \u4E16", "longshadow"},
        {path(Role::kVariable), path(Role::kSymbols), "Var \u2654", "chrome"},
        {path(Role::kCollection), path(Role::kLatin), "\u4E16\u754C", "duotone"},
        {path(Role::kLatin), path(Role::kEmoji), "\U0001F600!", "ice"},
        {path(Role::kLatinBold), nullptr, "\u05D0\u0E01 ab", "sticker"},
    };
    const Job& job = kJobs[i];
    Scene scene;
    scene.text = job.text;
    scene.font = job.font;
    if (job.fallback != nullptr) scene.fallbacks = {job.fallback};
    scene.systemFallback = job.fallback == nullptr;
    if (job.font == path(Role::kVariable)) scene.font.axes = "wght=750";
    readPreset("style", job.preset, scene.style);
    scene.style.size = 18 + i;
    fitEffects(scene.style);
    if (i % 2 != 0) scene.rendering = host::Rendering::Plain;
    return scene;
}

TEST(SceneThreads, DrawEightScenesAsOneThreadDoes) {
    constexpr int kRounds = 12;
    std::vector<Pixels> expected;
    for (int i = 0; i < kThreads; ++i) expected.push_back(render(sceneOf(i)).picture.pixels);
    Scene other = sceneOf(0);
    other.rendering = host::Rendering::Plain;
    ASSERT_NE(render(other).picture.pixels, expected[0]) << "the renderings differ";

    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            for (int round = 0; round < kRounds; ++round) {
                if (round % 4 == i % 4) host::clearGlyphCache();
                const int job = (i + round) % kThreads;  // each font's face is another thread's next
                EXPECT_EQ(render(sceneOf(job)).picture.pixels, expected[static_cast<size_t>(job)]) << job;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// Fonts that no thread has read yet, the same for all of them.
TEST(SceneThreads, ReadAFontOnceForAll) {
    std::vector<Pixels> drawn(kThreads);
    std::vector<std::thread> threads;
    for (Pixels& pixels : drawn) {
        threads.emplace_back([&pixels] {
            Scene scene;
            scene.text = "First \u0905\u0628";
            scene.font = "DejaVu Serif:bold";
            pixels = render(scene).picture.pixels;
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const Pixels& pixels : drawn) EXPECT_EQ(pixels, drawn[0]);
}

}  // namespace
}  // namespace Zvex::scene
