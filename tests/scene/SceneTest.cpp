// SPDX-License-Identifier: Apache-2.0
#include "scene/Scene.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "scene/Failure.h"
#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr char kCjk[] = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";

Scene sceneOf(const std::string& text, Font font = kFont) {
    Scene scene;
    scene.text = text;
    scene.font = std::move(font);
    readPreset("style", "gold", scene.style);
    fitEffects(scene.style);
    return scene;
}

TEST(Render, TheFallbackFontsOfOneSceneAreNotThoseOfTheNext) {
    Scene scene = sceneOf("世");
    const std::vector<uint32_t> before = render(scene).picture.pixels;
    scene.fallbacks = {kCjk};
    EXPECT_NE(render(scene).picture.pixels, before);
    scene.fallbacks.clear();
    EXPECT_EQ(render(scene).picture.pixels, before);
}

TEST(Render, AFontsBytesDrawAsItsFile) {
    std::stringstream bytes;
    bytes << std::ifstream(kFont, std::ios::binary).rdbuf();
    EXPECT_EQ(render(sceneOf("Bytes", Font::fromBytes(bytes.str()))).picture.pixels,
              render(sceneOf("Bytes")).picture.pixels);
    EXPECT_EQ(
        refusal([] { render(sceneOf("x", Font::fromBytes("none"))); }).rfind("--font: 'bytes' is no font", 0),
        0u);
}

TEST(Render, MeasuresAndDrawsIntoTheCallersMemory) {
    const Scene scene = sceneOf("Two\nlines");
    const Rendering whole = render(scene), measured = measure(scene);
    const int width = measured.picture.width, height = measured.picture.height;
    EXPECT_TRUE(measured.picture.pixels.empty());
    EXPECT_EQ(writeMetrics(measured.metrics), writeMetrics(whole.metrics));
    const size_t stride = static_cast<size_t>(width) + 3;
    std::vector<uint32_t> memory(stride * static_cast<size_t>(height), 7);
    renderInto(scene, memory.data(), width, height, stride);
    for (size_t i = 0; i < memory.size(); ++i) {
        const size_t x = i % stride, y = i / stride;
        ASSERT_EQ(memory[i], x < stride - 3 ? whole.picture.pixels[y * (stride - 3) + x] : 7) << i;
    }
    EXPECT_NE(refusal([&] { renderInto(scene, memory.data(), width - 1, height, stride); }), "");
}

TEST(Render, ErrorsSayPlaceAndCauseAndWarningsComeWithThePicture) {
    Scene scene = sceneOf("x");
    scene.limits.pixels = 100;
    try {
        render(scene);
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.place(), "--size");
        EXPECT_EQ(error.cause().rfind("the picture would be ", 0), 0u) << error.cause();
    }
    scene = sceneOf("\uE123");
    scene.systemFallback = false;
    testing::internal::CaptureStderr();
    ASSERT_EQ(render(scene).warnings.size(), 1u);
    EXPECT_EQ(render(scene).warnings[0].rfind("no font has U+E123", 0), 0u);
    std::istringstream lines(testing::internal::GetCapturedStderr());
    for (std::string line; std::getline(lines, line);) EXPECT_EQ(line.rfind("D/", 0), 0u) << line;
}

TEST(Render, ThreadsWithDifferentFontsAndFallbacksDrawAsOne) {
    const auto scenes = [](int i) {
        Scene scene = sceneOf("Ag世" + std::to_string(i), i % 2 == 0 ? kFont : kCjk);
        scene.fallbacks = {i % 3 == 0 ? kCjk : kFont};
        scene.systemFallback = false;
        return scene;
    };
    std::vector<std::vector<uint32_t>> alone(6), together(6);
    for (int i = 0; i < 6; ++i) alone[static_cast<size_t>(i)] = render(scenes(i)).picture.pixels;
    std::vector<std::thread> threads;
    for (size_t i = 0; i < 6; ++i) {
        threads.emplace_back([&, i] { together[i] = render(scenes(static_cast<int>(i))).picture.pixels; });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(alone, together);
}

}  // namespace
}  // namespace Zvex::scene
