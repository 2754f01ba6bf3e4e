// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

const std::string kInter = "/usr/share/fonts/truetype/inter-vf/Inter.var.ttf";
const std::string kCjk = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";

class Fonts : public Program {
protected:
    // The picture's bytes.
    std::string render(const std::string& text, const std::vector<std::string>& more) const {
        std::vector<std::string> arguments = {"render", text, "--size", "64", "-o", file("out.png")};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return slurp(file("out.png"));
    }

    Json inspect(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "inspect");
        arguments.push_back("--json");
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.err;
        return Json::parse(result.out, nullptr, false);
    }

    void expectRefused(std::vector<std::string> arguments, int status, const std::string& message) const {
        arguments.insert(arguments.begin(), "inspect");
        const Result result = run(arguments);
        EXPECT_EQ(result.status, status) << result.err;
        EXPECT_EQ(result.err.substr(0, 8 + message.size()), "zvtext: " + message);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(result.out, "");
    }
};

TEST_F(Fonts, AxesMoveOutlinesAndAdvances) {
    const std::string plain = render("Axes", {"--font", kInter});
    EXPECT_EQ(render("Axes", {"--font", kInter, "--axes", "wght=400"}), plain) << "where the font stands";
    render("Axes", {"--font", kInter, "--axes", "wght=900"});
    const Image black = readPng(file("out.png"));
    render("Axes", {"--font", kInter, "--axes", "wght=100"});
    const Image thin = readPng(file("out.png"));
    EXPECT_GT(black.width, thin.width);
    EXPECT_GT(black.ink(), 2 * thin.ink());
    const std::string slanted = render("Axes", {"--font", kInter, "--axes", "slnt=-10,wght=100"});
    EXPECT_EQ(slanted, render("Axes", {"--font", kInter, "--axes", "wght=100,slnt=-10"}));
    EXPECT_NE(readPng(file("out.png")).rgba, thin.rgba);
}

TEST_F(Fonts, AFontOfACollection) {
    const std::string first = render("骨直", {"--font", kCjk});
    EXPECT_EQ(render("骨直", {"--font", kCjk + "#0"}), first);
    const std::string chinese = render("骨直", {"--font", kCjk + "#2"});
    EXPECT_NE(chinese, first) << "drawn as in China";
    EXPECT_EQ(render("骨直", {"--font", kFont, "--fallback", kCjk + "#2"}).size() > 0, true);
    fs::create_symlink(kFont, file("named#2"));
    EXPECT_EQ(render("A", {"--font", file("named#2")}), render("A", {"--font", kFont})) << "the file wins";
}

TEST_F(Fonts, InspectionSaysWhatAFontIs) {
    const Json inter = inspect({"font", kInter, "--axes", "wght=650"});
    EXPECT_EQ(inter["family"], "Inter");
    EXPECT_EQ(inter["weight"], 650);
    EXPECT_EQ(inter["fontsInFile"], 1);
    ASSERT_EQ(inter["axes"].size(), 2u);
    EXPECT_EQ(inter["axes"][0],
              Json::parse(R"({"tag": "wght", "name": "Weight", "minimum": 100, "default": 400,
        "maximum": 900, "value": 650, "hidden": false})"));
    EXPECT_EQ(inter["instances"].size(), 18u);
    EXPECT_EQ(inter["instances"][17],
              Json::parse(R"({"name": "Black Italic", "axes": {"wght": 900, "slnt": -10}})"));
    const Json cjk = inspect({"font", kCjk + "#2"});
    EXPECT_EQ(cjk["family"], "Noto Sans CJK SC");
    EXPECT_EQ(cjk["fontsInFile"], 10);
    EXPECT_EQ(cjk["scripts"][0]["script"], "Hani");
    EXPECT_GT(cjk["scripts"][0]["characters"], 20000);
    const Result report = run({"inspect", "font", kCjk + "#2"});
    EXPECT_NE(report.out.find("index       #2 of #0 to #9\n"), std::string::npos) << report.out;
}

TEST_F(Fonts, BadFontsAndAxesAreNamed) {
    const std::string whole = slurp(kInter);
    expectRefused({"font"}, 2, "font is required");
    expectRefused({"font", file("none.ttf")}, 1, "FONT: cannot read '");
    expectRefused({"font", mFolder}, 1, "FONT: '" + mFolder.string() + "' is a folder");
    expectRefused({"font", write("cut.ttf", whole.substr(0, 400))}, 1, "FONT: '");
    expectRefused({"font", kCjk + "#10"}, 2, "FONT: '" + kCjk + "' has no font #10; its last is #9");
    expectRefused({"font", kFont + "#1"}, 2, "FONT: '" + kFont + "' has no font #1; it is a single font");
    expectRefused({"font", kFont, "--axes", "wght=1"}, 2, "--axes: '" + kFont + "' has no axes");
    for (const char* axis : {"opsz=20", "wght", "=4", "wght=400,", "WGHT=400"}) {
        expectRefused({"font", kInter, "--axes", axis}, 2, "--axes: '");
    }
    expectRefused(
        {"font", kInter, "--axes", "opsz=20"}, 2,
        "--axes: 'opsz=20' is no AXIS=VALUE of '" + kInter + "', which has wght 100 to 900, slnt -10 to 0");
    expectRefused({"font", kInter, "--axes", "wght=901"}, 2,
                  "--axes wght: '901' is not a number from 100 to 900");
    expectRefused({"font", kInter, "--axes", "wght=400,wght=500"}, 2, "--axes: 'wght' is given twice");
}

}  // namespace
