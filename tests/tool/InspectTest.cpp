// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "tests/tool/Program.h"

namespace {

using InspectStyle = Program;
using InspectText = Program;
using Json = nlohmann::json;

TEST_F(InspectStyle, SaysMarginsAndLayersFromTheTopmost) {
    const std::string style = write("s.json", R"({"size": 100, "designed-for": 50, "effects": [
        {"type": "bevel", "size": 4}, {"type": "outer-shadow", "angle": 0, "distance": 20, "size": 0},
        {"type": "stroke", "width": 3, "color": "#123456"}, {"type": "inner-glow"}]})");
    const Json report =
        Json::parse(run({"inspect", "style", style, "--json", "--width", "100", "--height", "50"}).out);
    std::string types;
    for (const Json& layer : report["layers"]) types += layer["type"].get<std::string>() + " ";
    EXPECT_EQ(types, "inner-glow bevel text stroke outer-shadow ");
    EXPECT_EQ(report["layers"][3]["width"], "6px") << "3 pixels at half the size";
    // The picture of a text of that size has the same margins.
    const std::vector<std::string> scene = {"render", "x",   "--font", kFont,
                                            "--size", "100", "-o",     file("x.png")};
    std::vector<std::string> styled = scene;
    styled.insert(styled.end(), {"--style", style});
    EXPECT_EQ(run(scene).status + run(styled).status, 0);
    const Image with = readPng(file("x.png"));
    EXPECT_EQ(run(scene).status, 0);
    const Image without = readPng(file("x.png"));
    const Json& margins = report["margins"];
    EXPECT_EQ(int(with.width - without.width), margins["left"].get<int>() + margins["right"].get<int>());
    EXPECT_EQ(int(with.height - without.height), margins["top"].get<int>() + margins["bottom"].get<int>());
    const std::string words = run({"inspect", "style", "gold", "--size", "280"}).out;
    EXPECT_NE(words.find("\n  type stroke, width 6px, color #6b4206, position outside, opacity 1\n"),
              std::string::npos)
        << words;
    EXPECT_EQ(run({"inspect", "style", "golden"}).status, 1);
    EXPECT_EQ(run({"inspect", "style", "gold", "--size", "0"}).err,
              "zvtext: --size: '0' is not a number above 0 and up to 10000 (px)\n");
}

// The estimate is for text that fills the picture, and rather too high than too low.
TEST_F(InspectStyle, EstimatesTheMemoryThatARenderTakes) {
#ifdef ZVTEXT_SANITIZED
    GTEST_SKIP() << "the sanitizers' own memory is counted too";
#endif
    rusage own = {};
    getrusage(RUSAGE_SELF, &own);
    if (own.ru_maxrss > 40'000)
        GTEST_SKIP() << "a child's peak begins with its parent's; run this test alone";
    std::string text;
    for (int i = 0; i < 20; ++i) text += "HEMP ";
    const std::vector<std::string> view = {"--size", "200", "--width", "2000", "--height", "2000"};
    std::vector<std::string> render = {"render", text, "--font", kFont, "-o", file("x.rgba")};
    const double program = run({"render", "x", "--font", kFont, "-o", file("x.rgba")}).peakMegabytes;
    render.insert(render.end(), view.begin(), view.end());
    for (const char* preset : {"gold", "neon", "glass"}) {
        std::vector<std::string> inspect = {"inspect", "style", preset, "--json"}, styled = render;
        inspect.insert(inspect.end(), view.begin(), view.end());
        styled.insert(styled.end(), {"--preset", preset});
        const double estimate = Json::parse(run(inspect).out)["memory"]["megabytes"];
        const double measured = run(styled).peakMegabytes - program;
        EXPECT_LT(measured, estimate) << preset;
        EXPECT_GT(measured, estimate / 2) << preset;
    }
}

TEST_F(InspectText, SaysScriptDirectionAndFontOfEachRun) {
    const Result result =
        run({"inspect", "text", "\u0627\u0644 (1)\nGu\u0308\u4e16\ufe00\U0001f9ff\U00010000 x", "--font",
             kFont, "--no-fallback", "--fallback", "Noto Sans CJK SC:bold", "--json"});
    ASSERT_EQ(result.status, 0) << result.err;
    const Json report = Json::parse(result.out);
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
    const std::vector<std::string> scene = {
        "one two three four five six seven eight nine ten eleven twelve \u4e16 three",
        "--font",
        kFont,
        "--width",
        "220",
        "--size",
        "40",
        "--preset",
        "gold",
        "--scale",
        "2"};
    std::vector<std::string> inspect = {"inspect", "text"}, render = {"render"};
    inspect.insert(inspect.end(), scene.begin(), scene.end());
    const std::string words = run(inspect).out;
    inspect.push_back("--json");
    const Json report = Json::parse(run(inspect).out);
    render.insert(render.end(), scene.begin(), scene.end());
    render.insert(render.end(), {"-o", file("x.png"), "--metrics", file("x.json")});
    ASSERT_EQ(run(render).status, 0);
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
    EXPECT_EQ(run({"inspect", "text", "\U00020000 \U00020001", "--font", kFont, "--no-fallback"}).err,
              "zvtext: warning: characters above U+1FFFF are not supported and come out wrong: U+20000, "
              "U+20001\n");
    EXPECT_EQ(run({"inspect", "text", "x"}).err, "zvtext: --font: is required, a font file or a name\n");
}

}  // namespace
