// SPDX-License-Identifier: Apache-2.0
#include "scene/Effects.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <memory>

#include "raster/ZvBitmap.h"
#include "scene/Png.h"

namespace Zvex::scene {
namespace {

EffectSettings parse(const std::string& kind, const std::string& text) {
    return parseEffect("--" + kind, *findEffectKind(kind), text);
}

// The layer key of a stack to which `add` added one effect; for the pattern, without its bitmap's address.
std::string keyAfter(const std::function<void(Zvex::ZvEffect&)>& add) {
    Zvex::ZvEffect stack;
    add(stack);
    const std::unique_ptr<char[]> key(stack.getMapKey());
    std::string text = key.get();
    if (text.rfind('P', 0) == 0) text.erase(1, 8);
    return text;
}

// Each setting reaches its argument of the adder: the layer key contains all of them, opacities as alpha.
TEST(Effects, ReachTheLibraryArgumentByArgument) {
    using Zvex::ZvEffect;
    const std::string png = testing::TempDir() + "effects-test.png";
    std::ofstream(png, std::ios::binary) << encodePng({1, 1, {0x40102030}});
    // 53 hundredths after the adder's cut; 0.53f itself would be 52.
    const float position = std::nextafter(0.53f, 1.0f);
    Zvex::ZvGradient stops[] = {{0x80102030, 128 / 255.0f, 0}, {0xFF405060, 0.5f, position}};
    const std::string stopText = "stops=#80102030@0:#405060@53@50%";
    const struct {
        std::string kind, text;
        std::function<void(ZvEffect&)> add;
    } cases[] = {
        {"outer-shadow", "angle=-30.7,distance=8.9,size=20,color=#80102030,opacity=60%",
         [](ZvEffect& e) { e.addOuterShadowText(330, 8, 20, 0x102030, 0.6f * 128 / 255); }},
        {"inner-shadow", "angle=1e300,distance=8,size=20,color=#102030,opacity=1",
         [](ZvEffect& e) {
             e.addInnerShadowText(static_cast<float>(std::fmod(1e300, 360)), 8, 20, 0x102030, 1);
         }},
        {"outer-glow", "size=9,color=#102030,opacity=0.5," + stopText,
         [&](ZvEffect& e) { e.addOuterGlowText(9, 0x102030, 0.5f, 2, stops); }},
        {"inner-glow", "size=9,color=#102030,opacity=0.5",
         [](ZvEffect& e) { e.addInnerGlowText(9, 0x102030, 0.5f, 0, nullptr); }},
        {"linear-gradient", "angle=30,scale=1.5,opacity=0.5," + stopText,
         [&](ZvEffect& e) { e.addLinearGradientText(30, 1.5f, 0.5f, 2, stops); }},
        {"radial-gradient", "scale=1.5,opacity=0.5," + stopText,
         [&](ZvEffect& e) { e.addRadialGradientText(1.5f, 0.5f, 2, stops); }},
        {"stroke", "width=7.9,color=#80102030,position=inside,opacity=50%",
         [](ZvEffect& e) { e.addStrokeText(7, 0x102030, 0.5f * 128 / 255, 0, 2); }},
        {"pattern", png + ",scale=2.5,opacity=0.25",
         [](ZvEffect& e) {
             Zvex::ZvBitmap bitmap(1, 1, 4);
             e.addPatternText(&bitmap, 2.5f, 0.25f);
         }},
        {"bevel",
         "style=outer,technique=hard,direction=down,size=9,depth=2.5,angle=200,altitude=40,soften=3,"
         "highlight=#010203@75%,shadow=#040506@25%,opacity=0.5",
         [](ZvEffect& e) {
             e.addBevelText(0, 9, 2.5f, 0, 1, 3, 0.5f, 200, 40, 0x040506, 0.25f, 0x010203, 0.75f);
         }},
        {"emboss",
         "style=double,technique=soft,direction=up,size=9,depth=2.5,angle=200,altitude=40,soften=3,"
         "highlight=#80010203@100%,shadow=#040506@25%,opacity=0.5",
         [](ZvEffect& e) {
             e.addEmbossText(3, 9, 2.5f, 1, 0, 3, 0.5f, 200, 40, 0x040506, 0.25f, 0x010203, 128 / 255.0f);
         }},
    };
    ASSERT_EQ(std::size(cases), effectKinds().size());
    for (const auto& [kind, text, add] : cases) {
        const std::vector<EffectSettings> effects = {parse(kind, text)};
        EXPECT_EQ(keyAfter([&](ZvEffect& stack) { addEffects(stack, effects); }), keyAfter(add)) << kind;
    }
}

TEST(Effects, GivenAgainReplaceInPlace) {
    std::vector<EffectSettings> effects;
    for (const char* kind : {"stroke", "outer-glow", "bevel"})
        addOrReplace(effects, parse(kind, "opacity=1"));
    addOrReplace(effects, parse("outer-glow", "size=1"));
    ASSERT_EQ(effects.size(), 3u);
    EXPECT_EQ(std::get<OuterGlowSettings>(effects[1]).size, 1);
}

}  // namespace
}  // namespace Zvex::scene
