// SPDX-License-Identifier: Apache-2.0
#include "scene/Renderer.h"

#include <gtest/gtest.h>

#include "platform/host/GlyphCache.h"
#include "platform/host/WordCache.h"
#include "scene/Failure.h"
#include "scene/LayeredScene.h"
#include "tests/FailingAllocations.h"
#include "tests/host/Fonts.h"

namespace {
int shaped = 0, rasterised = 0;
}  // namespace

// The linker sends the library's calls here.
extern "C" {
struct FT_FaceRec_;
void __real_hb_shape_full(void*, void*, const void*, unsigned, const char* const*);
__attribute__((visibility("default"))) void __wrap_hb_shape_full(void* font, void* buffer,
                                                                 const void* features, unsigned count,
                                                                 const char* const* shapers) {
    ++shaped;
    __real_hb_shape_full(font, buffer, features, count, shapers);
}
int __real_FT_Load_Glyph(FT_FaceRec_*, unsigned, int);
__attribute__((visibility("default"))) int __wrap_FT_Load_Glyph(FT_FaceRec_* face, unsigned glyph,
                                                                int flags) {
    ++rasterised;
    return __real_FT_Load_Glyph(face, glyph, flags);
}
}

namespace Zvex::scene {
namespace {

Scene sceneOf(const std::string& text, const char* preset, double size = 24) {
    Scene scene;
    scene.text = text;
    scene.font = fonts::path(fonts::Role::kLatinBold);
    readPreset("style", preset, scene.style);
    scene.style.size = size;
    fitEffects(scene.style);
    return scene;
}

TEST(Renderer, DrawsWhateverTheLastSceneWasAsIfItWereTheFirst) {
    std::vector<Scene> scenes = {sceneOf("One\ntwo", "gold")};
    const auto next = [&]() -> Scene& { return scenes.emplace_back(scenes.back()); };
    next().style = sceneOf("", "neon").style;
    next().style.background = 0x80204060;
    next();  // the same again
    next().style = sceneOf("", "duotone").style;
    next().style.canvas = Canvas{uint32_t{0xFF203040}};
    next().padding = {3, 4, 5, 6};
    next().align = Scene::Align::Right;
    next().maxLines = 1;
    next().gravity = Scene::Gravity::Bottom;
    next().style = sceneOf("", "ice").style;
    next().rendering = host::Rendering::Plain;
    next().text = "Another \u4E16";
    next().fallbacks = {fonts::path(fonts::Role::kCollection)};
    next().systemFallback = false;
    next().fallbacks.clear();  // a warning
    next().width = 60;
    next().style.letterSpacing = 0.2;
    next().style.features = "smcp";
    next().style.size = 40;
    next().style.lineHeight = 2;
    next().style.wordSpacing = 1;
    next().style.upperCase = true;
    next().language = "tr";
    next().direction = Scene::Direction::RightToLeft;
    next().align = Scene::Align::Justify;
    next().ellipsis = true;
    next().maxLines = 2;
    next().height = 90;
    next().fit = 9;
    next().text = "Ano\ther \u4E16 istanbul";
    next().tabStops = {70};
    next().font.axes = "wght=1";  // refused
    next().font = fonts::path(fonts::Role::kVariable);
    next().font.axes = "wght=800";
    next().limits.pixels = 5;  // refused
    next().limits = Limits();

    Renderer renderer;
    const auto resultOf = [](const auto& draw, const Scene& scene) {
        try {
            const Rendering made = draw(scene);
            std::string words = writeMetrics(made.metrics);
            for (const std::string& warning : made.warnings) words += warning;
            return std::make_pair(made.picture.pixels, words);
        } catch (const Error& error) {
            return std::make_pair(std::vector<uint32_t>(), std::string(error.what()));
        }
    };
    for (size_t i = 0; i < scenes.size(); ++i) {
        if (i % 3 == 0) resultOf([&](const Scene& scene) { return renderer.measure(scene); }, scenes[i]);
        EXPECT_EQ(resultOf([&](const Scene& scene) { return renderer.render(scene); }, scenes[i]),
                  resultOf([](const Scene& scene) { return render(scene); }, scenes[i]))
            << i;
    }
}

TEST(Renderer, AnotherStyleNeitherShapesNorRasterises) {
    const Scene scene = sceneOf("Nothing of this is made again", "gold");
    Renderer renderer;
    renderer.render(scene);
    EXPECT_GT(shaped, 0);
    EXPECT_GT(rasterised, 0);
    // What the process keeps of words and glyphs is no help from here on.
    Scene flood = sceneOf("", "gold", 4);
    flood.style.effects.clear();
    for (size_t i = 0; i < 4 * host::kKeptWords; ++i)
        flood.text += std::to_string(i) + (i % 100 == 0 ? "\n" : " ");
    render(flood);
    host::clearGlyphCache();
    shaped = rasterised = 0;
    for (const char* preset : {"chrome", "neon", "triple"}) {
        Scene restyled = scene;
        restyled.style = sceneOf("", preset).style;
        restyled.style.letterSpacing = scene.style.letterSpacing;
        renderer.render(restyled);
    }
    EXPECT_EQ(shaped, 0);
    EXPECT_EQ(rasterised, 0);
    render(scene);
    EXPECT_GT(shaped, 0) << "the flood did nothing";
    EXPECT_GT(rasterised, 0);
}

TEST(LayerStacks, EqualLayersShareOne) {
    Style style = sceneOf("", "longshadow").style;
    EXPECT_EQ(LayerStacks(style).stacks.size(), 2u) << "the face and its shadow's steps";
    std::get<OuterGlowSettings>(style.layers[5].effects[0]).opacity += 0.001;
    style.layers[6].color = 0xFF000001;
    style.layers[7].effects.emplace_back(StrokeSettings());
    EXPECT_EQ(LayerStacks(style).stacks.size(), 5u);
}

class Animation : public testing::TestWithParam<const char*> {};

TEST_P(Animation, KeepsItsBuffers) {
    constexpr int kPictures = 16;
    Scene scene = sceneOf("A title of some length", GetParam(), 96);
    scene.width = 1280;
    scene.height = 200;
    const Style start = scene.style;
    Renderer renderer;
    std::vector<uint32_t> memory(1800 * 700);
    for (int i = 0; i < kPictures; ++i) {
        scene.style = start;
        scene.style.color = 0xFF804000u + static_cast<uint32_t>(i);
        scene.style.size = 96 + i;  // for the effects
        fitEffects(scene.style);
        for (LayerSettings& layer : scene.style.layers) layer.spread = std::min(layer.spread + i / 4, 100.0);
        for (const EffectSettings* effect : allEffects(scene.style)) {
            auto* grown = const_cast<EffectSettings*>(effect);
            if (auto* glow = std::get_if<OuterGlowSettings>(grown)) glow->size += i;
            if (auto* stroke = std::get_if<StrokeSettings>(grown)) stroke->width += i / 2;
            if (auto* shadow = std::get_if<OuterShadowSettings>(grown))
                shadow->size += i, shadow->distance += i;
            if (auto* bevel = std::get_if<BevelSettings>(grown)) bevel->size += i / 4;
        }
        scene.style.size = 96;
        const FailingAllocations allocations;
        const Picture size = renderer.measure(scene).picture;
        ASSERT_LE(size.width, 1800);
        ASSERT_LE(size.height, 700);
        renderer.renderInto(scene, memory.data(), size.width, size.height, 1800);
        const size_t allowed = i < 2 ? SIZE_MAX : size_t{64} << 10;
        EXPECT_LE(allocations.largest(), allowed) << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Presets, Animation,
                         testing::Values("gold", "neon", "chrome", "sticker", "triple", "longshadow",
                                         "glass"));

}  // namespace
}  // namespace Zvex::scene
