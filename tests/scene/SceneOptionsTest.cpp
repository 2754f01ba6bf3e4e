// SPDX-License-Identifier: Apache-2.0
#include "scene/SceneOptions.h"

#include <gtest/gtest.h>

#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

const std::string kStart = R"({"font": "DejaVuSans-Bold.ttf", "text": "Ag", )";

// Each option set as text has its value in the table, and the table finds it again.
TEST(SceneOptions, OfAnObjectAreThoseOfTheTable) {
    const Scene scene =
        readScene(kStart + R"("style": {"color": "#123", "effects": [{"type": "stroke", "width": 3}]},
        "fallback": ["a.ttf", "b.ttf"], "no-fallback": true, "size": 50.0, "width": 300, "height": "200px",
        "align": "right", "gravity": "bottom", "max-lines": 2, "padding": "1,2,3,4", "opacity": "50%",
        "text-rendering": "plain", "trim": true, "axes": "wght=650", "background": null, "scale": 2,
        "canvas": {"type": "radial-gradient", "stops": [{"color": "#fff", "position": 0}]},
        "bevel": {"size": 4}, "outer-shadow": "size=9"})");
    Scene copy = scene;
    const Fields fields = fieldsOf(copy);
    const std::pair<const char*, const char*> expected[] = {
        {"size", "100px"},
        {"width", "600px"},
        {"height", "400px"},
        {"align", "right"},
        {"gravity", "bottom"},
        {"max-lines", "2"},
        {"padding", "2,4,6,8"},
        {"text-rendering", "plain"},
        {"trim", "true"},
        {"axes", "wght=650"},
        {"no-fallback", "true"},
        {"background", ""},
        {"color", "#112233"},
        {"opacity", "0.5"},
        {"canvas", "radial-gradient:scale=1,opacity=1,stops=#ffffff@0"}};
    for (const auto& [name, value] : expected)
        EXPECT_EQ(formatValue(*findField(fields, name)), value) << name;
    EXPECT_EQ(scene.fallbacks.size(), 2u);
    ASSERT_EQ(scene.style.effects.size(), 3u);
    EXPECT_EQ(std::get<StrokeSettings>(scene.style.effects[0]).width, 6);
    EXPECT_EQ(std::get<BevelSettings>(scene.style.effects[1]).size, 8);
    EXPECT_EQ(std::get<OuterShadowSettings>(scene.style.effects[2]).size, 18);
}

TEST(SceneOptions, AreRefusedWithPlaceAndCause) {
    const std::pair<const char*, const char*> cases[] = {
        {R"("size": true})", "--size: true is not a number above 0 and up to 10000 (px)"},
        {R"("width": 1.5})", "--width: '1.5' is not a whole number from 1 to 32767 (px)"},
        {R"("trim": "yes"})", "--trim: 'yes' is not true or false"},
        {R"("fallback": [3]})", "--fallback: 3 is not a font file or a name"},
        {R"("stroke": {"width": -1}})", "--stroke.width: -1 is not a number from 0 to 100 (px)"},
        {R"("preset": 5})", "--preset: 5 is not the name of a preset"},
        {R"("style": {"layers": [{}]}, "bevel": "size=1"})",
         "--bevel: the style has layers, and effects "
         "belong into one of them"},
        {R"("font": ""})", "font: is given twice"}};
    for (const auto& [options, message] : cases)
        EXPECT_EQ(refusal([&line = options] { readScene(kStart + line); }), message);
    EXPECT_EQ(refusal([] { readScene("[]"); }), "it is not a JSON object");
    try {
        readScene(kStart + R"("size": "9%"})");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.place(), "size");
    }
}

// What help, completions and other languages show is there for each option and each key of an effect.
TEST(SceneOptions, AllHaveHelp) {
    SceneOptions options;
    Fields fields = fieldsOf(options);
    std::vector<EffectSettings> effects;
    for (const EffectKind& kind : effectKinds()) effects.push_back(kind.defaults);
    for (EffectSettings& settings : effects) addFields(fields, fieldsOf(settings));
    LayerSettings layer;
    addFields(fields, fieldsOf(layer));
    for (const Field& field : fields) {
        EXPECT_GT(std::string(field.help).size(), 10u) << field.name;
        EXPECT_NE(std::string(field.help).back(), '.') << field.name;
    }
}

}  // namespace
}  // namespace Zvex::scene
