// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "tests/tool/Program.h"

namespace {

using InspectStyle = Program;
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
    EXPECT_NE(words.find("\n  stroke width=6px color=#6b4206 position=outside opacity=1\n"),
              std::string::npos)
        << words;
    EXPECT_EQ(run({"inspect", "style", "golden"}).status, 1);
    EXPECT_EQ(run({"inspect", "style", "gold", "--size", "0"}).err,
              "zvtext: --size: '0' is not a number above 0 and up to 10000 (px)\n");
}

}  // namespace
