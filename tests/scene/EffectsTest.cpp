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

// Every key and value of the settings, as a command line would say them.
std::string spelled(EffectSettings settings) {
    std::string text;
    for (const Field& field : fieldsOf(settings)) {
        text += (text.empty() ? "" : ",") + std::string(field.name) + "=" + formatValue(field);
    }
    return text;
}

TEST(Effects, ReadUnitsShortFormsAndDefaults) {
    const std::string cases[][3] = {
        {"outer-shadow", "angle=-405.5deg,distance=8px,size=20,color=#f80,opacity=60%",
         "angle=-405.5deg,distance=8px,size=20px,color=#ff8800,opacity=0.6"},
        {"inner-shadow", "size=0", "angle=135deg,distance=4px,size=0px,color=#000000,opacity=0.6"},
        {"outer-glow", "stops=#fff@0:#80ff0000@50.5%@25%:#000@100@0.5,size=100",
         "size=100px,color=#ffd860,opacity=0.8,stops=#ffffff@0:#80ff0000@50.5@0.25:#000000@100@0.5"},
        {"linear-gradient", "stops=#fff@50:#000@50,scale=2",
         "angle=90deg,scale=2,opacity=1,stops=#ffffff@50:#000000@50"},
        {"stroke", "8.5", "width=8.5px,color=#000000,position=outside,opacity=1"},
        {"stroke", "8:#40202020:center", "width=8px,color=#40202020,position=center,opacity=1"},
        {"stroke", "position=inside,opacity=0.5", "width=4px,color=#000000,position=inside,opacity=0.5"},
        {"pattern", "a b.png,scale=10", "file=a b.png,scale=10,opacity=1"},
        {"pattern", "opacity=0,file=x=y.png", "file=x=y.png,scale=1,opacity=0"},
        {"bevel", "style=outer,technique=hard,direction=down,soften=16,highlight=#f00,shadow=#00f@5%",
         "style=outer,technique=hard,direction=down,size=8px,depth=1,angle=135deg,altitude=30deg,"
         "soften=16px,highlight=#ff0000@0.5,shadow=#0000ff@0.05,opacity=1"},
        {"emboss", "style=double,altitude=89deg,depth=10",
         "style=double,technique=soft,direction=up,size=8px,depth=10,angle=135deg,altitude=89deg,"
         "soften=0px,highlight=#ffffff@0.5,shadow=#000000@0.5,opacity=1"},
    };
    for (const auto& [kind, text, expected] : cases) {
        EXPECT_EQ(spelled(parse(kind, text)), expected) << kind << " " << text;
        EXPECT_EQ(spelled(parse(kind, expected)), expected) << "what is spelled reads back";
    }
}

// The key of a stack to which `add` added one effect; the pattern's without its bitmap's address.
std::string keyAfter(const std::function<void(Zvex::ZvEffect&)>& add) {
    Zvex::ZvEffect stack;
    add(stack);
    const std::unique_ptr<char[]> key(stack.getMapKey());
    std::string text = key.get();
    if (text.rfind('P', 0) == 0) text.erase(1, 8);
    return text;
}

// Each setting reaches its argument of the adder: the layer key holds all of them, opacities as alpha.
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
    EXPECT_EQ(spelled(effects[1]), "size=1px,color=#ffd860,opacity=0.8,stops=");
}

}  // namespace
}  // namespace Zvex::scene
