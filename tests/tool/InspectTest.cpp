// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>

#include "tests/tool/Program.h"

namespace {

using InspectStyle = Program;
using InspectText = Program;
using Json = nlohmann::json;

TEST_F(InspectStyle, SaysMarginsAndLayersFromTheTopmost) {
    write("s.json", R"({"size": 100, "designed-for": 50, "effects": [
        {"type": "bevel", "size": 4}, {"type": "outer-shadow", "angle": 0, "distance": 20, "size": 0},
        {"type": "stroke", "width": 3, "color": "#123456"}, {"type": "inner-glow"}]})");
    const Json report = this->report("inspect style $DIR/s.json --width 100 --height 50");
    std::string types;
    for (const Json& layer : report["layers"]) types += layer["type"].get<std::string>() + " ";
    EXPECT_EQ(types, "inner-glow bevel text stroke outer-shadow ");
    EXPECT_EQ(report["layers"][3]["width"], "6px") << "3 pixels at half the size";
    // The picture of a text of that size has the same margins.
    const Image without = render("x -f $FONT -s 100");
    const Image with = render("x -f $FONT -s 100 --style $DIR/s.json");
    const Json& margins = report["margins"];
    EXPECT_EQ(int(with.width - without.width), margins["left"].get<int>() + margins["right"].get<int>());
    EXPECT_EQ(int(with.height - without.height), margins["top"].get<int>() + margins["bottom"].get<int>());
    const std::string words = zvtext("inspect style gold --size 280").out;
    EXPECT_NE(words.find("\n  type stroke, width 6px, color #6b4206, position outside, opacity 1\n"),
              std::string::npos)
        << words;
}

// The estimate is for text that fills the picture, and rather too high than too low.
TEST_F(InspectStyle, EstimatesTheMemoryThatARenderTakes) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers' own memory is counted too";
    malloc_trim(0);  // a child's peak begins with what this process holds
    size_t pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    const double program = zvtext("render x -f $FONT -o $DIR/x.rgba").peakMegabytes;
    ASSERT_LT(static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6, program);
    std::string text;
    for (int i = 0; i < 20; ++i) text += "HEMP ";
    const std::string view = " --size 200 --width 2000 --height 2000";
    for (const std::string preset : {"gold", "neon", "glass"}) {
        const double estimate = report("inspect style " + preset + view)["memory"]["megabytes"];
        const std::string line = "render '" + text + "' -f $FONT -o $DIR/x.rgba --preset " + preset + view;
        const double measured = zvtext(line).peakMegabytes - program;
        EXPECT_LT(measured, estimate) << preset;
        EXPECT_GT(measured, estimate / 2) << preset;
    }
}

TEST_F(InspectText, SaysScriptDirectionAndFontOfEachRun) {
    const Json report = this->report(
        "inspect text '\u0627\u0644 (1)\nGu\u0308\u4e16\ufe00\U0001f9ff\U00010000 x' -f $FONT --no-fallback "
        "--fallback 'Noto Sans CJK SC:bold'");
    const auto runs = [&](size_t line) {
        std::string list;
        for (const Json& run : report["lines"][line]["runs"]) {
            list += run["text"].get<std::string>() + "|" + run["script"].get<std::string>() + "|" +
                    run["direction"].get<std::string>() + "|" + run["font"].dump() + "|" +
                    run["start"].dump() + "-" + run["end"].dump() + " ";
        }
        return list;
    };
    EXPECT_EQ(runs(0), "\u0627\u0644 (|Arab|rtl|0|0-6 1|Zyyy|ltr|0|6-7 )|Zyyy|rtl|0|7-8 ");
    EXPECT_EQ(runs(1),
              "Gu\u0308|Latn|ltr|0|9-13 \u4e16\ufe00|Hani|ltr|1|13-19 \U0001f9ff\U00010000 |Linb|ltr|0|19-28 "
              "x|Latn|ltr|0|28-29 ");
    EXPECT_EQ(report["missing"], Json::parse(R"(["U+1F9FF", "U+10000"])"));
    EXPECT_EQ(report["characters"], 15);
    EXPECT_EQ(report["scripts"][0], Json::parse(R"({"script": "Zyyy", "name": "Common", "characters": 6})"));
    ASSERT_EQ(report["fonts"].size(), 2u);
    EXPECT_EQ(report["fonts"][0]["from"], "--font");
    EXPECT_EQ(report["fonts"][0]["characters"], 13);
    EXPECT_EQ(report["fonts"][1]["from"], "--fallback");
    EXPECT_EQ(report["fonts"][1]["family"], "Noto Sans CJK SC");
    EXPECT_EQ(report["fonts"][1]["characters"], 2) << "a selector goes with its letter";
}

// The lines are those of the picture, and the system's fonts serve what is left, as they do there.
TEST_F(InspectText, TakesACommandLineOfRender) {
    const std::string scene =
        "'one two three four five six seven eight nine ten eleven twelve \u4e16 three' -f $FONT --width 220 "
        "-s 40 --preset gold --scale 2";
    const std::string words = zvtext("inspect text " + scene).out;
    const Json report = this->report("inspect text " + scene);
    render(scene + " --metrics $DIR/x.json");
    const Json lines = Json::parse(slurp(file("x.json")))["lines"];
    ASSERT_EQ(report["lines"].size(), lines.size());
    EXPECT_GT(lines.size(), 1u);
    for (size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(report["lines"][i]["start"], lines[i]["start"]);
        EXPECT_EQ(report["lines"][i]["end"], lines[i]["end"]);
        const double width = lines[i]["box"]["right"].get<double>() - lines[i]["box"]["left"].get<double>();
        EXPECT_EQ(report["lines"][i]["width"], width);
    }
    EXPECT_EQ(report["fonts"][1]["from"], "system");
    EXPECT_EQ(report["fonts"][1]["characters"], 1);
    const std::string family = report["fonts"][1]["family"], style = report["fonts"][1]["style"];
    EXPECT_NE(words.find("family " + family + ", style " + style), std::string::npos) << words;
    EXPECT_EQ(zvtext("inspect text '\U00020000 \U00020001' -f $FONT --no-fallback").err,
              "zvtext: warning: characters above U+1FFFF are not supported and come out wrong: U+20000, "
              "U+20001\n");
}

}  // namespace
