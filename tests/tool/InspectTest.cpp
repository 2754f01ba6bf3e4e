// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>

#include "tests/tool/Program.h"

namespace {

using InspectStyle = Program;
using InspectText = Program;
using Json = nlohmann::json;

TEST_F(InspectStyle, SaysMarginsAndLayersFromTheTopmost) {
    write("s.json", R"({"size": 100, "designed-for": 50, "effects": [
        {"type": "bevel", "size": 4}, {"type": "outer-shadow", "angle": 0.7, "distance": 20, "size": 0},
        {"type": "stroke", "width": 3, "color": "#123456"}, {"type": "inner-glow"}]})");
    const Json report = this->report("inspect style $DIR/s.json --width 100 --height 50");
    std::string types;
    for (const Json& layer : report["layers"]) types += layer["type"].get<std::string>() + " ";
    EXPECT_EQ(types, "inner-glow bevel text stroke outer-shadow ");
    EXPECT_EQ(report["layers"][3]["width"], "6px") << "3 pixels at half the size";
    EXPECT_EQ(report["layers"][4]["angle"], "0deg") << "as it is drawn, without fractions";
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

// The estimate is for text that fills the picture; it may be too high rather than too low.
TEST_F(InspectStyle, EstimatesTheMemoryThatARenderTakes) {
    if (kSanitized) GTEST_SKIP() << "the sanitizers' own memory is counted too";
    malloc_trim(0);  // a child's peak starts with what this process holds
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

// The lines are the picture's lines, and the system's fonts draw the remaining characters, as in the picture.
TEST_F(InspectText, TakesACommandLineOfRender) {
    const std::string scene =
        "'one two three four five six seven eight nine ten eleven twelve \u4e16 three' -f $FONT --width 220 "
        "-s 40 --preset gold --scale 2";
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
}

}  // namespace
