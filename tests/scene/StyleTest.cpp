// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

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
    const std::vector<std::pair<std::string, std::string>> values = {
        {"size", "33.3"},           {"color", "#80ff8800"},           {"background", "#123"},
        {"letter-spacing", "-0.1"}, {"features", "smcp, \"ss01\"=1"}, {"opacity", "0.1"}};
    for (const auto& [name, text] : values) {
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

// At twice the size, lengths double: whole pixels, at least one if there was one, at most what an effect
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
        const double scale = std::get<PatternSettings>(style.effects[3]).scale;
        return std::vector<double>{std::get<StrokeSettings>(style.effects[0]).width,
                                   bevel.size,
                                   bevel.soften,
                                   bevel.depth,
                                   shadow.distance,
                                   shadow.size,
                                   shadow.angle,
                                   scale};
    };
    const std::string design = ", \"designed-for\": 100";
    EXPECT_EQ(fitted("", 200), (std::vector<double>{3.4, 60, 9, 3, 0.2, 1, 30, 2.5}));
    EXPECT_EQ(fitted(design, 200), (std::vector<double>{7, 100, 16, 3, 0, 2, 30, 5}));
    EXPECT_EQ(fitted(design, 10), (std::vector<double>{1, 6, 1, 3, 0, 1, 30, 0.25}));
}

}  // namespace
}  // namespace Zvex::scene
