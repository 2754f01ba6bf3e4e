// SPDX-License-Identifier: Apache-2.0
#include "scene/Style.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace Zvex::scene {
namespace {

namespace fs = std::filesystem;

TEST(Style, EverySettingSurvivesWritingAndReading) {
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
    Style again;
    readStyleText("--style", written, again);
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

}  // namespace
}  // namespace Zvex::scene
