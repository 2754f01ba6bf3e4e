// SPDX-License-Identifier: Apache-2.0
#include <thread>
#include <tuple>

#include "tests/host/FreeTypeOracle.h"
#include "tests/tool/Program.h"
#include FT_MULTIPLE_MASTERS_H

namespace {

using Json = nlohmann::json;

class Fonts : public Program {
protected:
    // The picture's bytes with this font.
    std::string drawn(const std::string& text, const std::string& font) const {
        return bytes("'" + text + "' -s 64 -f " + font);
    }

    // fontconfig knows what this says, until the end.
    void configure(const std::string& content) const {
        write("fonts.conf", "<fontconfig>" + content + "</fontconfig>");
        setenv("FONTCONFIG_FILE", file("fonts.conf").c_str(), 1);
    }
    ~Fonts() override { unsetenv("FONTCONFIG_FILE"); }
};

TEST_F(Fonts, AxesMoveOutlinesAndAdvances) {
    const std::string plain = drawn("Axes", "$INTER");
    EXPECT_EQ(drawn("Axes", "$INTER --axes wght=400"), plain) << "where the font stands";
    const Image black = render("Axes -f $INTER --axes wght=900"),
                thin = render("Axes -f $INTER --axes wght=100");
    EXPECT_GT(black.width, thin.width);
    EXPECT_GT(black.ink(), 2 * thin.ink());
    const std::string slanted = drawn("Axes", "$INTER --axes slnt=-10,wght=100");
    EXPECT_EQ(slanted, drawn("Axes", "$INTER --axes wght=100,slnt=-10"));
    EXPECT_NE(slanted, drawn("Axes", "$INTER --axes wght=100"));
    // Behind a bold font, one that is not is widened; two fonts that are files of their own are two fonts.
    const std::string fallback = " -s 64 --fallback $CJK#2";
    EXPECT_GT(render("骨 -f $INTER --axes wght=700" + fallback).ink(),
              render("骨 -f $INTER --axes wght=500" + fallback).ink() * 11 / 10);
    const std::string bold = "'Noto Sans CJK SC:bold' --trim";
    EXPECT_EQ(drawn("骨", "$INTER --axes wght=700 --fallback " + bold), drawn("骨", bold));
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
    ASSERT_EQ(zvtext("batch -s 64 --output-dir $DIR/batch", input).status, 0);
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::string more = lines[i].size() > 2 ? " --" + lines[i][2] + " '" + lines[i][3] + "'" : "";
        EXPECT_TRUE(slurp(file("batch") / (std::to_string(i + 1) + ".png")) ==
                    drawn(lines[i][0], "'" + lines[i][1] + "'" + more))
            << i;
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
        const Image picture =
            render(std::string("H -f $INTER -s 200 --trim --text-rendering plain --axes ") + axes);
        std::vector<uint8_t> alpha;
        for (size_t i = 3; i < picture.rgba.size(); i += 4) alpha.push_back(picture.rgba[i]);
        EXPECT_EQ(picture.width, static_cast<unsigned>(glyph.width));
        EXPECT_TRUE(alpha == glyph.coverage) << axes;
    }
}

TEST_F(Fonts, AFontOfACollection) {
    EXPECT_EQ(drawn("骨直", "$CJK#0"), drawn("骨直", "$CJK"));
    EXPECT_NE(drawn("骨直", "$CJK#2"), drawn("骨直", "$CJK")) << "drawn as in China";
    fs::create_symlink(kFont, file("a-Bold#2"));
    fs::create_symlink(kCjk, file("a-Bold"));
    const std::string chinese = drawn("骨直", "$FONT --fallback $CJK#2");
    EXPECT_EQ(drawn("A", "$DIR/a-Bold#2"), drawn("A", "$FONT")) << "the file wins";
    EXPECT_EQ(drawn("A", "$DIR/a-Bold#2#0"), drawn("A", "$FONT"));
    EXPECT_EQ(drawn("骨直", "$DIR/a-Bold#2 --fallback $DIR/a-Bold#02 --no-fallback"), chinese);
    EXPECT_EQ(drawn("骨直", "$FONT --fallback $CJK#2 --fallback $CJK"), chinese) << "asked in their order";
    expectRefused("inspect font $DIR/a-Bold#x", 2, "FONT: 'x' after '$DIR/a-Bold");
}

TEST_F(Fonts, OddFilesThatAreFonts) {
    const std::string picture = drawn("A", "$FONT");
    // The library leaves fonts of such paths to the phone's own families.
    fs::create_directories(file("system/fonts"));
    fs::create_symlink(kFont, file("system/fonts/Roboto-Bold.ttf"));
    EXPECT_EQ(drawn("A", "$DIR/system/fonts/Roboto-Bold.ttf"), picture);
    fs::create_symlink(kFont, file("\xFF-Bold.ttf"));
    EXPECT_EQ(drawn("A", "$DIR/\xFF-Bold.ttf"), picture) << "no UTF-8";
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(file("pipe"), std::ios::binary) << slurp(kFont); });
    EXPECT_EQ(drawn("A", "$DIR/pipe"), picture) << "read once";
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
    write("odd.ttf", odd);
    const Json facts = report("inspect font $DIR/odd.ttf");
    EXPECT_EQ(facts["metrics"]["lineHeight"], 2.164);
    EXPECT_EQ(facts["characters"], 16);
    EXPECT_EQ(facts["family"], "DejaVu Sans");
}

TEST_F(Fonts, ByName) {
    const std::tuple<const char*, const char*, Json> cases[] = {
        {"'DejaVu Sans:bold'", "file", kFont},
        {"dejavuSANS:style=Bold", "file", kFont},
        {"'No Such Family,DejaVu Sans:bold'", "file", kFont},
        {"'Noto Sans CJK SC'", "file", kCjk},
        {"'Noto Sans CJK SC'", "index", 2},
        {"Inter:bold", "weight", 700},  // a named instance of a variable font
        {"Inter:bold", "style", "Bold"},
        {"Inter:bold --axes wght=400", "weight", 400},
        {"Inter:variable=true:fontvariations=wght=333", "weight", 333},
        {"'DejaVu Sans:medium'", "style", "Book"},  // near enough
        {"'Noto Sans:italic'", "italic", true}};
    for (const auto& [name, key, value] : cases) {
        EXPECT_EQ(report(std::string("inspect font ") + name)[key], value) << name;
    }
    EXPECT_NE(report("inspect font Sans-Serif")["family"], "") << "any font serves a generic name";
    EXPECT_EQ(drawn("Name", "'DejaVu Sans:bold'"), drawn("Name", "$FONT"));
    fs::create_directory(file("DejaVu Sans:bold"));
    fs::create_symlink(kFont, file("-"));
    const fs::path here = fs::current_path();
    fs::current_path(mFolder);
    EXPECT_EQ(report("inspect font 'DejaVu Sans:bold'")["file"], kFont) << "a folder of that name";
    EXPECT_EQ(report("inspect font -")["fullName"], "DejaVu Sans Bold") << "a font is no standard input";
    fs::current_path(here);
    configure("");
    expectRefused("inspect font 'DejaVu Sans'", 1,
                  "FONT: 'DejaVu Sans' is no file, and fontconfig knows no font at all");
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
    configure(
        "<include>/etc/fonts/fonts.conf</include><selectfont><rejectfont><glob>*.?t?</glob></rejectfont>"
        "<acceptfont>" +
        accepted + "</acceptfont></selectfont>");
    const std::string line = "render 'Aé世界 สวัสดี e\u0301' -f $FONT -o $DIR/";
    EXPECT_EQ(zvtext(line + "served.png").err, "");
    for (const char* language : {"ja_JP.UTF-8", "ko_KR.UTF-8"}) {
        setenv("LANG", language, 1);
        zvtext(line + "x.png");
        EXPECT_EQ(slurp(file("x.png")), slurp(file("served.png"))) << "whatever the user's language is";
    }
    unsetenv("LANG");
    // The bold font that stands behind a bold one is not widened.
    EXPECT_EQ(drawn("骨", "$FONT --trim"), drawn("骨", "'Noto Sans CJK SC:bold' --trim"));

    // The fonts that serve a text beside --font; those that two share are taken once.
    const std::string noto = "/usr/share/fonts/truetype/noto/Noto";
    const std::string cases[][3] = {
        {"骨", kFont, "Noto Sans CJK SC Bold"},
        {"骨 か", kFont, "Noto Sans CJK JP Bold"},
        {"骨 한", kFont, "Noto Sans CJK KR Bold"},
        {"か", kFont, "Noto Sans CJK JP Bold"},
        {"骨", "'DejaVu Serif'", "Noto Serif CJK SC Regular"},            // the configuration's knowledge
        {"骨", noto + "Serif-Regular.ttf", "Noto Serif CJK SC Regular"},  // the font's
        {"\uA7B4", "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Italic.ttf",
         "Noto Sans Italic"},
        {"❤️", "'Noto Sans'", "Noto Color Emoji Regular"},  // what is meant as an emoji
        {"😀", "'Noto Sans'", "Noto Color Emoji Regular"},
        {"❤", "'Noto Sans'", "DejaVu Sans Book"},
        {"สวัสดี नमस्ते 한 გ", "'Noto Sans'",
         "Noto Sans Thai Regular, Noto Sans Devanagari Regular, Noto Sans CJK KR Regular, DejaVu Sans Book"},
        {"a\u20E3", noto + "SansThai-Bold.ttf", "Inter Display Bold"},  // a letter and a mark that few have
        {"e\u0301 \u00AD\u2060", kFont, ""},                            // what shows nothing needs no font
        {"\u212A\u037E", kCjk, ""}};  // other spellings of what the font has
    for (const auto& [text, font, expected] : cases) {
        std::string list;
        const Json facts = report("inspect text '" + text + "' -f " + font);
        for (const Json& one : facts["fonts"]) {
            if (one["from"] != "system") continue;
            list += (list.empty() ? "" : ", ") + std::string(one["family"]) + " " + std::string(one["style"]);
        }
        EXPECT_EQ(list, expected) << text;
        EXPECT_TRUE(facts["missing"].empty()) << text;
    }

    // No font has this letter with this mark, but some have the letter.
    EXPECT_EQ(zvtext("render 世\u0E31 -f $FONT -o $DIR/x.png").err,
              "zvtext: warning: no font has U+0E31; add one with --fallback\n");
    const auto warningOf = [&](const std::string& more) {
        const Result result = zvtext("render '世 界世 世\u0301 \uFDD0' -f $FONT -o $DIR/x.png " + more);
        EXPECT_EQ(result.status, 0);
        EXPECT_GT(readPng(file("x.png")).ink(), 0u);
        return result.err;
    };
    const std::string none = "zvtext: warning: no font has ", add = "; add one with --fallback";
    EXPECT_EQ(warningOf(""), none + "U+FDD0" + add + "\n");
    EXPECT_EQ(warningOf("--no-fallback"),
              none + "U+4E16, U+754C, U+FDD0" + add + ", or leave --no-fallback out\n");
    EXPECT_EQ(warningOf("--no-fallback --fallback $CJK"),
              none + "U+FDD0" + add + ", or leave --no-fallback out\n");
    configure("");
    EXPECT_EQ(warningOf(""), none + "U+4E16, U+754C, U+FDD0" + add + "\n");
}

TEST_F(Fonts, InspectionSaysWhatAFontIs) {
    const Json inter = report("inspect font $INTER --axes wght=650");
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
    const Json cjk = report("inspect font $CJK#2");
    EXPECT_EQ(cjk["family"], "Noto Sans CJK SC");
    EXPECT_EQ(cjk["fontsInFile"], 10);
    EXPECT_EQ(cjk["scripts"][0]["script"], "Hani");
    EXPECT_GT(cjk["scripts"][0]["characters"], 20000);
    const Result printed = zvtext("inspect font $CJK#2");
    EXPECT_NE(printed.out.find("index: 2\nfontsInFile: 10\n"), std::string::npos) << printed.out;
}

}  // namespace
