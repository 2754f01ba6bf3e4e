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
    fs::create_symlink(kFont, file("named#2"));
    EXPECT_EQ(render("A", {"--font", file("named#2")}), render("A", {"--font", kFont})) << "the file wins";
}

TEST_F(Fonts, ByName) {
    for (const char* name :
         {"DejaVu Sans:bold", "dejavu sans:style=Bold", "No Such Family,DejaVu Sans:bold"}) {
        EXPECT_EQ(inspect({"font", name})["file"], kFont) << name;
    }
    EXPECT_EQ(render("Name", {"--font", "DejaVu Sans:bold"}), render("Name", {"--font", kFont}));
    const Json chinese = inspect({"font", "Noto Sans CJK SC"});
    EXPECT_EQ(chinese["file"], kCjk);
    EXPECT_EQ(chinese["index"], 2);
    const Json bold = inspect({"font", "Inter:bold"});  // a named instance of a variable font
    EXPECT_EQ(bold["weight"], 700);
    EXPECT_EQ(bold["style"], "Bold");
    EXPECT_NE(inspect({"font", "sans-serif"})["family"], "") << "any font serves a generic name";

    expectRefused({"font", "No Such Family"}, 1,
                  "FONT: 'No Such Family' is no file, and no font has that name; fontconfig would take '");
    expectRefused({"font", "DejaVu-Bold"}, 1, "FONT: 'DejaVu-Bold' is no file, and no font has that name");
    for (const char* name : {"Noto Sans:weight=0", "Noto Sans Arabic:italic", "DejaVu Sans:style=Fat"}) {
        expectRefused({"font", name}, 1, std::string("FONT: '") + name + "' is a style that the font lacks");
    }
    expectRefused({"font", "DejaVu Sans:blod"}, 2, "FONT: 'blod' in 'DejaVu Sans:blod' is no style");
    expectRefused({"font", std::string(100000, ':')}, 2, "FONT: '");
    expectRefused({"font", "\xFF\xFE"}, 2, "FONT: '");
    setenv("FONTCONFIG_FILE", write("empty.conf", "<fontconfig/>").c_str(), 1);
    expectRefused({"font", "DejaVu Sans"}, 1,
                  "FONT: 'DejaVu Sans' is no file, and fontconfig knows no font at all");
    unsetenv("FONTCONFIG_FILE");
}

TEST_F(Fonts, TheSystemsFontsServeWhatTheGivenOnesLack) {
    const std::string text = "Aé世界 สวัสดี e\u0301";
    const std::string served = render(text, {"--font", kFont});
    const Result quiet = run({"render", text, "--font", kFont, "-o", file("x.png")});
    EXPECT_EQ(quiet.err, "");
    for (const char* language : {"ja_JP.UTF-8", "ko_KR.UTF-8"}) {
        setenv("LANG", language, 1);
        EXPECT_EQ(render(text, {"--font", kFont}), served) << "whatever the user's language is";
    }
    unsetenv("LANG");
    EXPECT_NE(render("骨", {"--font", kFont}), render("骨 か", {"--font", kFont}));
    const Image chinese = (render("骨", {"--font", kFont}), readPng(file("out.png")));
    render("骨", {"--font", kFont, "--fallback", "Noto Sans CJK SC:bold"});
    EXPECT_EQ(readPng(file("out.png")).rgba, chinese.rgba) << "the bold Chinese font beside a bold one";

    // No font has this letter with this mark, but some have the letter.
    const Result marked = run({"render", "世\u0E31", "--font", kFont, "-o", file("x.png")});
    EXPECT_EQ(marked.err, "zvtext: warning: no font has U+0E31; add one with --fallback\n");

    const auto warningOf = [&](std::vector<std::string> more) {
        more.insert(more.begin(), {"render", "世 界世 \uFDD0", "--font", kFont, "-o", file("x.png")});
        const Result result = run(more);
        EXPECT_EQ(result.status, 0);
        EXPECT_GT(readPng(file("x.png")).ink(), 0u);
        return result.err;
    };
    EXPECT_EQ(warningOf({}), "zvtext: warning: no font has U+FDD0; add one with --fallback\n");
    EXPECT_EQ(warningOf({"--no-fallback"}),
              "zvtext: warning: no font has U+4E16, U+754C, U+FDD0; add one with --fallback, or leave "
              "--no-fallback out\n");
    EXPECT_EQ(warningOf({"--no-fallback", "--fallback", kCjk}),
              "zvtext: warning: no font has U+FDD0; add one with --fallback, or leave --no-fallback out\n");
    setenv("FONTCONFIG_FILE", write("empty.conf", "<fontconfig/>").c_str(), 1);
    EXPECT_EQ(warningOf({}),
              "zvtext: warning: no font has U+4E16, U+754C, U+FDD0; add one with --fallback\n");
    unsetenv("FONTCONFIG_FILE");
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
