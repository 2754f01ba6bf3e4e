// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/host/FreeTypeOracle.h"
#include "tests/tool/Program.h"
#include FT_MULTIPLE_MASTERS_H

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
    // Behind a bold font, one that is not is widened; two fonts that are files of their own are two fonts.
    const auto inkBehind = [&](const char* axes) {
        render("骨", {"--font", kInter, "--axes", axes, "--fallback", kCjk + "#2"});
        return readPng(file("out.png")).ink();
    };
    EXPECT_GT(inkBehind("wght=700"), inkBehind("wght=500") * 11 / 10);
    const std::string bold = "Noto Sans CJK SC:bold";
    EXPECT_EQ(render("骨", {"--font", kInter, "--axes", "wght=700", "--fallback", bold, "--trim"}),
              render("骨", {"--font", bold, "--trim"}));
}

// A worker renders many lines: each has its own fonts, as if it were rendered alone.
TEST_F(Fonts, LinesOfABatchShareFontsAndKeepThemApart) {
    fs::create_directories(file("system/fonts"));
    const std::string roboto = file("system/fonts/Roboto-Bold.ttf");  // the library has another use for it
    fs::create_symlink(kFont, roboto);
    const std::vector<std::vector<std::string>> lines = {
        {"H世", "Inter:bold"},
        {"H世", "Inter:light"},
        {"H世", "Inter:variable=true:fontvariations=wght=333"},
        {"H世", "Inter:variable=true:fontvariations=wght=555"},
        {"H世", kInter, "axes", "wght=900"},
        {"H世", kInter, "axes", "wght=200"},
        {"H世", kFont, "fallback", "Noto Sans CJK SC:bold"},
        {"H世", kFont, "fallback", kCjk},
        {"骨", kFont},
        {"か骨", kFont},  // the same font's first choice for another language
        {"H", roboto},
        {"H世", roboto}};
    std::string input;
    for (const std::vector<std::string>& line : lines) {
        Json json = {{"text", line[0]}, {"font", line[1]}};
        if (line.size() > 2) json[line[2]] = line[3];
        input += json.dump() + "\n";
    }
    ASSERT_EQ(run({"batch", "--size", "64", "--output-dir", file("batch")}, input).status, 0);
    for (size_t i = 0; i < lines.size(); ++i) {
        std::vector<std::string> more = {"--font", lines[i][1]};
        if (lines[i].size() > 2) more.insert(more.end(), {"--" + lines[i][2], lines[i][3]});
        const std::string alone = render(lines[i][0], more);
        EXPECT_TRUE(slurp(file("batch") / (std::to_string(i + 1) + ".png")) == alone) << i;
    }
}

TEST_F(Fonts, OutlinesAreFreeTypesAtThoseCoordinates) {
    const std::string content = slurp(kInter);
    const std::vector<uint8_t> bytes(content.begin(), content.end());
    const FreeTypeOracle oracle(bytes, 0);
    const auto places = {std::pair("slnt=-10,wght=100", std::array<FT_Fixed, 2>{100 << 16, -10 * 65536}),
                         {"wght=633.25,slnt=-3.5", {41500672, -229376}}};
    for (auto [axes, coordinates] : places) {
        ASSERT_EQ(FT_Set_Var_Design_Coordinates(oracle.face(), 2, coordinates.data()), 0);
        const host::GlyphImage glyph = oracle.outline(oracle.glyph('H'), 200, 0);
        render("H",
               {"--font", kInter, "--axes", axes, "--size", "200", "--trim", "--text-rendering", "plain"});
        const Image picture = readPng(file("out.png"));
        std::vector<uint8_t> alpha;
        for (size_t i = 3; i < picture.rgba.size(); i += 4) alpha.push_back(picture.rgba[i]);
        EXPECT_EQ(picture.width, static_cast<unsigned>(glyph.width));
        EXPECT_TRUE(alpha == glyph.coverage) << axes;
    }
}

TEST_F(Fonts, AFontOfACollection) {
    const std::string first = render("骨直", {"--font", kCjk});
    EXPECT_EQ(render("骨直", {"--font", kCjk + "#0"}), first);
    const std::string chinese = render("骨直", {"--font", kCjk + "#2"});
    EXPECT_NE(chinese, first) << "drawn as in China";
    fs::create_symlink(kFont, file("a-Bold#2"));
    fs::create_symlink(kCjk, file("a-Bold"));
    EXPECT_EQ(render("A", {"--font", file("a-Bold#2")}), render("A", {"--font", kFont})) << "the file wins";
    EXPECT_EQ(render("骨直", {"--font", file("a-Bold#2"), "--fallback", file("a-Bold#02"), "--no-fallback"}),
              render("骨直", {"--font", kFont, "--fallback", kCjk + "#2"}));
    EXPECT_EQ(render("A", {"--font", file("a-Bold#2#0")}), render("A", {"--font", kFont}));
    EXPECT_EQ(render("骨直", {"--font", kFont, "--fallback", kCjk + "#2", "--fallback", kCjk}),
              render("骨直", {"--font", kFont, "--fallback", kCjk + "#2"}))
        << "asked in their order";
    expectRefused({"font", file("a-Bold#x")}, 2, "FONT: 'x' after '" + file("a-Bold").string());
}

TEST_F(Fonts, OddFilesThatAreFonts) {
    const std::string picture = render("A", {"--font", kFont});
    // The library leaves fonts of such paths to the phone's own families.
    fs::create_directories(file("system/fonts"));
    fs::create_symlink(kFont, file("system/fonts/Roboto-Bold.ttf"));
    EXPECT_EQ(render("A", {"--font", file("system/fonts/Roboto-Bold.ttf")}), picture);
    fs::create_symlink(kFont, file("\xFF-Bold.ttf"));
    EXPECT_EQ(render("A", {"--font", file("\xFF-Bold.ttf")}), picture) << "no UTF-8";
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(file("pipe"), std::ios::binary) << slurp(kFont); });
    EXPECT_EQ(render("A", {"--font", file("pipe")}), picture) << "read once";
    writer.join();
    std::string odd = slurp(kFont);
    const auto number = [&](size_t at, size_t bytes) {
        size_t value = 0;
        for (; bytes > 0; --bytes) value = value << 8 | static_cast<unsigned char>(odd[at++]);
        return value;
    };
    // A character map that goes beyond Unicode: format 10, U+10FFF0 and 32 characters.
    const std::string map("\0\0\0\1\0\3\0\12\0\0\0\14\0\12\0\0\0\0\0\124\0\0\0\0\0\20\xFF\xF0\0\0\0\40", 32);
    odd.replace(number(odd.find("cmap") + 8, 4), 96, map + std::string(64, '\5'));
    // Names in Japanese alone: its numbers on the Macintosh and on Windows.
    const size_t names = number(odd.find("name") + 8, 4);
    for (size_t at = names + 6, last = at + 12 * number(names + 2, 2); at < last; at += 12) {
        odd.replace(at + 4, 2, number(at, 2) == 1 ? std::string("\0\13", 2) : "\4\21");
    }
    odd.replace(number(odd.find("hhea") + 8, 4) + 8, 2, std::string("\10\0", 2));  // a line gap of one em
    odd.replace(odd.find("OS/2"), 4, "OS/3");                                      // not there
    const Json facts = inspect({"font", write("odd.ttf", odd)});
    EXPECT_EQ(facts["metrics"]["lineHeight"], 2.164);
    EXPECT_EQ(facts["characters"], 16);
    EXPECT_EQ(facts["family"], "DejaVu Sans");
}

TEST_F(Fonts, ByName) {
    for (const char* name :
         {"DejaVu Sans:bold", "dejavuSANS:style=Bold", "No Such Family,DejaVu Sans:bold"}) {
        EXPECT_EQ(inspect({"font", name})["file"], kFont) << name;
    }
    EXPECT_EQ(render("Name", {"--font", "DejaVu Sans:bold"}), render("Name", {"--font", kFont}));
    const Json chinese = inspect({"font", "Noto Sans CJK SC"});
    EXPECT_EQ(chinese["file"], kCjk);
    EXPECT_EQ(chinese["index"], 2);
    const Json bold = inspect({"font", "Inter:bold"});  // a named instance of a variable font
    EXPECT_EQ(bold["weight"], 700);
    EXPECT_EQ(bold["style"], "Bold");
    EXPECT_EQ(inspect({"font", "Inter:bold", "--axes", "wght=400"})["weight"], 400);
    EXPECT_EQ(inspect({"font", "Inter:variable=true:fontvariations=wght=333"})["weight"], 333);
    EXPECT_NE(inspect({"font", "Sans-Serif"})["family"], "") << "any font serves a generic name";
    EXPECT_EQ(inspect({"font", "DejaVu Sans:medium"})["style"], "Book") << "near enough";
    EXPECT_EQ(inspect({"font", "Noto Sans:italic"})["italic"], true);

    expectRefused({"font", "No Such Family"}, 1,
                  "FONT: 'No Such Family' is no file, and no font has that name; fontconfig would take '");
    for (const char* name : {"DejaVu-Bold", "DejaVu Sans-12", "No\\:Family"}) {
        expectRefused({"font", name}, 1,
                      std::string("FONT: '") + name + "' is no file, and no font has that name; ");
    }
    for (const char* name : {"No Such", "none.ttf"}) {
        const Result result = run({"render", "A", "--font", kFont, "--fallback", name, "-o", file("x.png")});
        EXPECT_EQ(result.err.substr(0, 20), "zvtext: --fallback: ") << result.err;
    }
    for (const char* name : {"Noto Sans:weight=0", "Noto Music:bold", "Noto Sans Arabic:italic",
                             "Noto Music:condensed", "DejaVu Sans:style=Fat"}) {
        expectRefused({"font", name}, 1, std::string("FONT: '") + name + "' is a style that the font lacks");
    }
    expectRefused({"font", "DejaVu Sans:lang=ja"}, 1, "FONT: 'DejaVu Sans:lang=ja' is a language");
    for (const char* style : {"blod", "slant=x", "weight", "no=1", ""}) {
        const std::string name = std::string("DejaVu Sans:") + style;
        expectRefused({"font", name}, 2, std::string("FONT: '") + style + "' in '" + name + "' is no style");
    }
    expectRefused({"font", "DejaVu Sans:bold:weight=80"}, 2,
                  "FONT: 'DejaVu Sans:bold:weight=80' says the weight twice");
    for (const char* name : {" ", ",:bold", "DejaVu Sans:weight=blod"}) {
        expectRefused({"font", name}, 2, std::string("FONT: '") + name + "' is neither a file nor a name");
    }
    fs::create_directory(file("DejaVu Sans:bold"));
    fs::create_symlink(kFont, file("-"));
    const fs::path here = fs::current_path();
    fs::current_path(mFolder);
    EXPECT_EQ(inspect({"font", "DejaVu Sans:bold"})["file"], kFont) << "a folder of that name";
    EXPECT_EQ(inspect({"font", "-"})["fullName"], "DejaVu Sans Bold") << "a font is no standard input";
    fs::current_path(here);
    expectRefused({"font", std::string(100000, ':')}, 2,
                  "FONT: '" + std::string(40, ':') + "...' is neither a file nor a name");
    expectRefused({"font", "\xFF\xFE"}, 2, "FONT: '");
    setenv("FONTCONFIG_FILE", write("empty.conf", "<fontconfig/>").c_str(), 1);
    expectRefused({"font", "DejaVu Sans"}, 1,
                  "FONT: 'DejaVu Sans' is no file, and fontconfig knows no font at all");
    unsetenv("FONTCONFIG_FILE");
}

TEST_F(Fonts, TheSystemsFontsServeWhatTheGivenOnesLack) {
    // Whatever else is installed.
    std::string accepted;
    for (const char* name :
         {"truetype/dejavu/DejaVuSans.ttf", "truetype/dejavu/DejaVuSerif.ttf", "truetype/noto/NotoSans-*.ttf",
          "truetype/noto/NotoSansThai-*.ttf", "truetype/noto/NotoSansDevanagari-Regular.ttf",
          "truetype/noto/NotoColorEmoji.ttf", "truetype/inter-vf/InterDisplay.var.ttf",
          "opentype/noto/Noto*CJK-*.ttc"}) {
        accepted += std::string("<glob>/usr/share/fonts/") + name + "</glob>";
    }
    const std::string few =
        write("few.conf",
              "<fontconfig><include>/etc/fonts/fonts.conf</include><selectfont><rejectfont>"
              "<glob>*.?t?</glob></rejectfont><acceptfont>" +
                  accepted + "</acceptfont></selectfont></fontconfig>");
    setenv("FONTCONFIG_FILE", few.c_str(), 1);
    const std::string text = "Aé世界 สวัสดี e\u0301";
    const std::string served = render(text, {"--font", kFont});
    const Result quiet = run({"render", text, "--font", kFont, "-o", file("x.png")});
    EXPECT_EQ(quiet.err, "");
    for (const char* language : {"ja_JP.UTF-8", "ko_KR.UTF-8"}) {
        setenv("LANG", language, 1);
        EXPECT_EQ(render(text, {"--font", kFont}), served) << "whatever the user's language is";
    }
    unsetenv("LANG");
    // The bold font that stands behind a bold one is not widened.
    EXPECT_EQ(render("骨", {"--font", kFont, "--trim"}),
              render("骨", {"--font", "Noto Sans CJK SC:bold", "--trim"}));

    // The fonts that serve a text beside --font; those that two share are taken once.
    const auto servers = [&](const std::string& text, const std::string& font) {
        std::string list;
        const Json facts = inspect({"text", text, "--font", font});
        for (const Json& one : facts["fonts"]) {
            if (one["from"] != "system") continue;
            list += (list.empty() ? "" : ", ") + one["family"].get<std::string>() + " " +
                    one["style"].get<std::string>();
        }
        return list + (facts["missing"].empty() ? "" : " and missing ones");
    };
    EXPECT_EQ(servers("骨", kFont), "Noto Sans CJK SC Bold");
    EXPECT_EQ(servers("骨 か", kFont), "Noto Sans CJK JP Bold") << "a Japanese text";
    EXPECT_EQ(servers("骨 한", kFont), "Noto Sans CJK KR Bold");
    EXPECT_EQ(servers("か", kFont), "Noto Sans CJK JP Bold");
    const std::string noto = "/usr/share/fonts/truetype/noto/";
    EXPECT_EQ(servers("骨", "DejaVu Serif"), "Noto Serif CJK SC Regular") << "the configuration's knowledge";
    EXPECT_EQ(servers("骨", noto + "NotoSerif-Regular.ttf"), "Noto Serif CJK SC Regular") << "the font's";
    EXPECT_EQ(servers("\uA7B4", "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Italic.ttf"),
              "Noto Sans Italic");
    EXPECT_EQ(servers("❤️", "Noto Sans"), "Noto Color Emoji Regular") << "what is meant as an emoji";
    EXPECT_EQ(servers("😀", "Noto Sans"), "Noto Color Emoji Regular");
    EXPECT_EQ(servers("❤", "Noto Sans"), "DejaVu Sans Book");
    EXPECT_EQ(
        servers("สวัสดี नमस्ते 한 გ", "Noto Sans"),
        "Noto Sans Thai Regular, Noto Sans Devanagari Regular, Noto Sans CJK KR Regular, DejaVu Sans Book");
    EXPECT_EQ(servers("a\u20E3", noto + "NotoSansThai-Bold.ttf"), "Inter Display Bold")
        << "a letter and a mark that few fonts have";
    EXPECT_EQ(servers("e\u0301 \u00AD\u2060", kFont), "") << "what shows nothing needs no font";
    EXPECT_EQ(servers("\u212A\u037E", kCjk), "") << "other spellings of what the font has";

    // No font has this letter with this mark, but some have the letter.
    const Result marked = run({"render", "世\u0E31", "--font", kFont, "-o", file("x.png")});
    EXPECT_EQ(marked.err, "zvtext: warning: no font has U+0E31; add one with --fallback\n");

    const auto warningOf = [&](std::vector<std::string> more) {
        more.insert(more.begin(),
                    {"render", "世 界世 世\u0301 \uFDD0", "--font", kFont, "-o", file("x.png")});
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
    EXPECT_EQ(inter["italic"], false);
    EXPECT_EQ(inter["metrics"]["descent"], 0.241);
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
    EXPECT_NE(report.out.find("index: 2\nfontsInFile: 10\n"), std::string::npos) << report.out;
}

TEST_F(Fonts, BadFontsAndAxesAreNamed) {
    const std::string whole = slurp(kInter);
    expectRefused({"font"}, 2, "font is required");
    expectRefused({"font", ""}, 2, "FONT: the path is empty");
    for (const std::string name : {"none.ttf", "none.TTF", "none.otf", "none.ttc", "none.otc"}) {
        expectRefused({"font", name}, 1, "FONT: cannot read '" + name + "'");
        expectRefused({"font", name + "#x"}, 2, "FONT: 'x' after '" + name + "'");
    }
    expectRefused({"font", mFolder}, 1, "FONT: '" + mFolder.string() + "' is a folder");
    expectRefused({"font", write("cut.ttf", whole.substr(0, 400))}, 1, "FONT: '");
    expectRefused({"font", kCjk + "#10"}, 2, "FONT: '" + kCjk + "' has no font #10; its last is #9");
    for (const char* number : {"", "x", "-1", "1e0"}) {
        expectRefused({"font", kCjk + "#" + number}, 2, std::string("FONT: '") + number + "' after '" + kCjk);
    }
    expectRefused({"font", kCjk + "#4294967295"}, 2, "FONT: '4294967295' is not a whole number from 0 to");
    expectRefused({"font", file("a#b")}, 1, "FONT: cannot read '" + file("a#b").string());
    expectRefused({"font", file("a#1")}, 1, "FONT: cannot read '" + file("a").string() + "'");
    expectRefused({"font", write("x.woff2", "wOF2....")}, 1,
                  "FONT: '" + file("x.woff2").string() + "' is a compr");
    expectRefused({"font", write("empty.ttf", "")}, 1, "FONT: '" + file("empty.ttf").string() + "' is empty");
    fs::resize_file(write("huge.ttf", ""), uintmax_t{2} << 30);
    expectRefused({"font", file("huge.ttf")}, 1, "FONT: '" + file("huge.ttf").string() + "' is larger than");
    expectRefused({"font", kFont + "#1"}, 2, "FONT: '" + kFont + "' has no font #1; it is a single font");
    expectRefused({"font", kFont, "--axes", "wght=1"}, 2, "--axes: '" + kFont + "' has no axes");
    expectRefused({"font", "DejaVu Sans:fontvariations=wght=4"}, 2, "FONT: '");
    for (const char* axis : {"opsz=20", "wght", "=4", "wght=400,", "WGHT=400"}) {
        expectRefused({"font", kInter, "--axes", axis}, 2, "--axes: '");
    }
    expectRefused(
        {"font", kInter, "--axes", "opsz=20"}, 2,
        "--axes: 'opsz=20' is no AXIS=VALUE of '" + kInter + "', which has wght 100 to 900, slnt -10 to 0");
    for (const char* value : {"901", "nan", "650px", ""}) {
        expectRefused({"font", kInter, "--axes", std::string("wght=") + value}, 2,
                      std::string("--axes wght: '") + value + "' is not a number from 100 to 900");
    }
    expectRefused({"font", kInter, "--axes", "wght=400,wght=500"}, 2, "--axes: 'wght' is given twice");
}

}  // namespace
