// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/scene/Refusal.h"

namespace Zvex::scene {
namespace {

namespace fs = std::filesystem;

class StyleFile : public testing::Test {
protected:
    StyleFile() { fs::create_directories(mFolder); }
    ~StyleFile() override { fs::remove_all(mFolder); }

    Style read(const std::string& json) const {
        std::ofstream(path(), std::ios::binary) << json;
        Style style;
        readStyle("--style", path(), style);
        return style;
    }
    std::string path() const { return mFolder / "style.json"; }

    const fs::path mFolder = fs::path(testing::TempDir()) / ("style-test-" + std::to_string(getpid()));
};

TEST_F(StyleFile, EverySettingSurvivesWritingAndReading) {
    Style style;
    for (const auto& [name, text] :
         std::vector<std::pair<std::string, std::string>>{{"size", "33.3"},
                                                          {"color", "#80ff8800"},
                                                          {"background", "#123"},
                                                          {"letter-spacing", "-0.1"},
                                                          {"features", "smcp, \"ss01\"=1"},
                                                          {"opacity", "0.1"}}) {
        for (const Field& field : fieldsOf(style)) {
            if (name == field.name) readValue(name, field, text);
        }
    }
    const std::vector<std::pair<std::string, std::string>> effects = {
        {"stroke", "8.25:#40202020:center"},
        {"pattern", "folder/../a.png,scale=0.1"},
        {"radial-gradient", "stops=#fff@0:#000@33.3@10%"},
        {"bevel", "style=outer,technique=hard,direction=down,highlight=#80ff0000@30%"},
        {"emboss", "style=double,altitude=89,depth=0.07"},
        {"outer-shadow", "angle=-1e17,distance=0.1"}};
    for (const auto& [kind, text] : effects) {
        style.effects.push_back(parseEffect("--" + kind, *findEffectKind(kind), text));
    }
    const std::string written = writeStyle(style);
    const Style again = read(written);
    EXPECT_EQ(writeStyle(again), written);
    std::get<PatternSettings>(style.effects[1]).file = fs::absolute("a.png");
    const auto spelled = [](Style s) {
        std::string text;
        for (const Field& field : fieldsOf(s)) text += formatValue(field) + "\n";
        for (EffectSettings& settings : s.effects) {
            text += kindOf(settings).name;
            for (const Field& field : fieldsOf(settings)) text += " " + formatValue(field);
            text += "\n";
        }
        return text;
    };
    EXPECT_EQ(spelled(again), spelled(style));
}

TEST_F(StyleFile, LeavesOutWhatItDoesNotSayAndFindsPatternsBesideItself) {
    const Style style = read(R"({"effects": [{"file": "dots.png", "type": "pattern"}]})");
    EXPECT_EQ(style.size, 96);
    EXPECT_FALSE(style.background.has_value());
    EXPECT_EQ(std::get<PatternSettings>(style.effects.at(0)).file, mFolder / "dots.png");
}

TEST_F(StyleFile, TakesCommentsAndNotes) {
    const Style style =
        read("// a look\n{\"$schema\": \"s.json\", /* 40 */ \"size\": 41 // , \"size\": 42\n}");
    EXPECT_EQ(style.size, 41);
}

// Twice the size: twice the pixels, whole ones, at least one where there was one, at most what an effect
// takes.
TEST_F(StyleFile, EffectsFitTheSizeTheyAreDesignedFor) {
    const std::string effects =
        R"(, "effects": [{"type": "stroke", "width": 3.4}, {"type": "bevel", "size": 60,
        "soften": 9, "depth": 3}, {"type": "outer-shadow", "distance": 0.2, "size": 1, "angle": 30},
        {"type": "pattern", "file": "a.png", "scale": 2.5}]})";
    const auto fitted = [&](const std::string& design, double size) {
        Style style = read("{\"color\": \"#fff\"" + design + effects);
        style.size = size;
        fitEffects(style);
        const auto& bevel = std::get<BevelSettings>(style.effects[1]);
        const auto& shadow = std::get<OuterShadowSettings>(style.effects[2]);
        return std::vector<double>{std::get<StrokeSettings>(style.effects[0]).width,
                                   bevel.size,
                                   bevel.soften,
                                   bevel.depth,
                                   shadow.distance,
                                   shadow.size,
                                   shadow.angle,
                                   std::get<PatternSettings>(style.effects[3]).scale};
    };
    const std::string design = ", \"designed-for\": 100";
    EXPECT_EQ(fitted("", 200), (std::vector<double>{3.4, 60, 9, 3, 0.2, 1, 30, 2.5}));
    EXPECT_EQ(fitted(design, 200), (std::vector<double>{7, 100, 16, 3, 0, 2, 30, 5}));
    EXPECT_EQ(fitted(design, 10), (std::vector<double>{1, 6, 1, 3, 0, 1, 30, 0.25}));
}

TEST_F(StyleFile, RefusalsNameThePlaceAndWhatIsAccepted) {
    const std::string gradient = R"({"effects": [{"type": "stroke"}, {"type": "linear-gradient", "stops": )";
    const std::string stop = R"({"color": "#fff", "position": 50})";
    const std::string kinds =
        "outer-shadow, inner-shadow, outer-glow, inner-glow, linear-gradient, radial-gradient, stroke, "
        "pattern, bevel, emboss";
    const std::string keys =
        "effects, layers, size, color, background, canvas, letter-spacing, features, opacity, $schema, "
        "description, "
        "designed-for";
    std::string manyStops = "[" + stop;
    for (size_t i = 1; i <= kMaxStops; ++i) manyStops += "," + stop;
    const std::string stopsWanted =
        "an array of 1 to 256 stops, objects with the keys color, position, opacity";
    const std::string cases[][2] = {
        {"", "it is no JSON: parse error at line 1"},
        {R"({"size": 1,})", "it is no JSON: parse error at line 1, column 12"},
        {"{\"features\": \"\xFF\"}", "it is no JSON: parse error"},
        {R"({"size": 1e999})", "it is no JSON: number overflow"},
        {std::string(100'000, '['), "it is nested too deeply"},
        {"[1]", "[1] is not an object with the keys " + keys},
        {R"({"text": "a"})", "text: is not one of the keys here: " + keys},
        {R"({"size": 1, "size": 1})", "size: is given twice"},
        {R"({"size": "1"})", "size: \"1\" is not a number above 0 and up to 10000 (px)"},
        {R"({"size": 0})", "size: 0 is not a number above 0 and up to 10000 (px)"},
        {R"({"opacity": true})", "opacity: true is not a number from 0 to 1"},
        {R"({"color": 255})", "color: 255 is not a colour; write #rgb, #rrggbb or #aarrggbb"},
        {R"({"color": "red"})", "color: 'red' is not a colour; write #rgb, #rrggbb or #aarrggbb"},
        {R"({"features": "a\u0000b"})", "features: it holds a NUL character"},
        {R"({"effects": {}})", "effects: {} is not an array of effects"},
        {R"({"effects": [3]})", "effects[0]: it is not an object with a type, one of " + kinds},
        {R"({"effects": [{"type": "blur"}]})", "effects[0].type: \"blur\" is not one of " + kinds},
        {R"({"effects": [{"type": "stroke"}, {"type": "stroke"}]})",
         "effects[1].type: stroke is there already, as effects[0]"},
        {R"({"effects": [{"type": "stroke", "size": 1}]})",
         "effects[0].size: is not one of the keys here: type, width, color, position, opacity"},
        {R"({"effects": [{"type": "stroke", "": 1}]})",
         "effects[0].: is not one of the keys here: type, width, color, position, opacity"},
        {R"({"effects": [{"type": "bevel", "style": 1}]})", "effects[0].style: 1 is not one of inner, outer"},
        {R"({"effects": [{"type": "bevel", "shadow": "#fff"}]})",
         "effects[0].shadow: \"#fff\" is not an object with the keys color, opacity"},
        {R"({"effects": [{"type": "bevel", "shadow": {"color": "#fff", "color": "#fff"}}]})",
         "effects[0].shadow.color: is given twice"},
        {R"({"effects": [{"type": "pattern", "file": ""}]})",
         "effects[0].file: \"\" is not the path of a file"},
        {R"({"effects": [{"type": "linear-gradient"}]})",
         "effects[0].stops: is missing; it takes " + stopsWanted},
        {R"({"layers": 1})", "layers: 1 is not an array of 1 to 32 layers"},
        {R"({"layers": [{}], "effects": []})", "effects: belong into the layers where there are some"},
        {R"({"layers": [{}, {"clip": true}, {"clip": true}]})",
         "layers[2].clip: there is no layer behind it to clip it to"},
        {R"({"layers": [{"spread": 1.5}]})",
         "layers[0].spread: 1.5 is not a whole number from -100 to 100 (px)"},
        {R"({"layers": [{"offset": 3}]})", "layers[0].offset: 3 is not an array [X, Y] of whole pixels"},
        {R"({"layers": [{"offset": [0, 1e4]}]})",
         "layers[0].offset[1]: 10000.0 is not a whole number from -1000 to 1000 (px)"},
        {R"({"layers": [{}, {"effects": [{"type": "stroke"}, {"type": "stroke"}]}]})",
         "layers[1].effects[1].type: stroke is there already, as layers[1].effects[0]"},
        {R"({"canvas": "white"})",
         "canvas: 'white' is not a canvas; write a colour, or KIND:KEY=VALUE,... with one of the kinds "
         "linear-gradient, radial-gradient, pattern"},
        {R"({"canvas": {"type": "bevel"}})",
         "canvas.type: \"bevel\" is not one of linear-gradient, radial-gradient, pattern"},
        {gradient + "[]}]}", "effects[1].stops: [] is not " + stopsWanted},
        {gradient + manyStops + "]}]}", "effects[1].stops: this array is not " + stopsWanted},
        {gradient + "[" + stop + R"(, {"color": "#fff", "position": 101}]}]})",
         "effects[1].stops[1].position: 101 is not a number from 0 to 100 (%)"},
        {gradient + "[" + stop + R"(, {"color": "#fff", "position": 49}]}]})",
         "effects[1].stops[1].position: positions must not fall"},
        {gradient + "[" + stop + R"(, {"color": "#fff", "position": 9, "position": 9}]}]})",
         "effects[1].stops[1].position: is given twice"},
    };
    for (const auto& [json, message] : cases) {
        const std::string whole = "--style: '" + path() + "': " + message;
        const std::string found = refusal([&, &json = json] { read(json); });
        EXPECT_EQ(found.substr(0, whole.size()), whole) << json.substr(0, 200);
        if (message.find("JSON") == std::string::npos) {
            EXPECT_EQ(found.size(), whole.size()) << found;
        }
    }
    EXPECT_EQ(refusal([] {
                  Style style;
                  style.features = "\xFF";
                  writeStyle(style);
              }),
              "--print-style: a path or a feature list is not UTF-8");
}

}  // namespace
}  // namespace Zvex::scene
