// SPDX-License-Identifier: Apache-2.0
#include <thread>

#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

class Fonts : public Program {
protected:
    // The picture's bytes with this font.
    std::string drawn(const std::string& text, const std::string& font) const {
        return bytes("'" + text + "' -s 64 -f " + font);
    }

    // Sets fontconfig's configuration until the end.
    void configure(const std::string& content) const {
        write("fonts.conf", "<fontconfig>" + content + "</fontconfig>");
        setenv("FONTCONFIG_FILE", file("fonts.conf").c_str(), 1);
    }
    ~Fonts() override { unsetenv("FONTCONFIG_FILE"); }
};

// A worker renders many lines; each has its own fonts, as if it were rendered alone.
TEST_F(Fonts, LinesOfABatchShareFontsAndKeepThemApart) {
    fs::create_directories(file("system/fonts"));
    const std::string roboto = file("system/fonts/Roboto-Bold.ttf");  // treated differently by the library
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

TEST_F(Fonts, ReportsOfThemAndOfTexts) {
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    std::thread writer([&] { std::ofstream(file("pipe"), std::ios::binary) << slurp(kFont); });
    EXPECT_EQ(drawn("A", "$DIR/pipe"), drawn("A", "$FONT")) << "read once";
    writer.join();
    std::string odd = slurp(kFont);
    const auto number = [&](size_t at, size_t bytes) {
        size_t value = 0;
        for (; bytes > 0; --bytes) value = value << 8 | static_cast<unsigned char>(odd[at++]);
        return value;
    };
    // A character map that extends beyond Unicode: format 10, U+10FFF0 and 32 characters.
    const std::string map("\0\0\0\1\0\3\0\12\0\0\0\14\0\12\0\0\0\0\0\124\0\0\0\0\0\20\xFF\xF0\0\0\0\40", 32);
    odd.replace(number(odd.find("cmap") + 8, 4), 96, map + std::string(64, '\5'));
    // Names only in Japanese: its numbers on the Macintosh and on Windows.
    const size_t names = number(odd.find("name") + 8, 4);
    for (size_t at = names + 6, last = at + 12 * number(names + 2, 2); at < last; at += 12) {
        odd.replace(at + 4, 2, number(at, 2) == 1 ? std::string("\0\13", 2) : "\4\21");
    }
    odd.replace(number(odd.find("hhea") + 8, 4) + 8, 2, std::string("\10\0", 2));  // a line gap of one em
    odd.replace(odd.find("OS/2"), 4, "OS/3");                                      // no such table
    write("odd.ttf", odd);
    for (const Row& row : rows("answers", "reports")) {
        const size_t at = row.input.rfind(" /");
        const Json found = report("inspect " + row.input.substr(0, at));
        EXPECT_EQ(found[Json::json_pointer(row.input.substr(at + 1))], Json::parse(expanded(row.answer)))
            << row.input;
    }
    const Result printed = zvtext("inspect font $CJK#2");
    EXPECT_NE(printed.out.find("index: 2\nfontsInFile: 10\n"), std::string::npos) << printed.out;
}

TEST_F(Fonts, NamesOfFilesWinAndTheSystemMayHaveNone) {
    fs::create_directory(file("DejaVu Sans:bold"));
    fs::create_symlink(kFont, file("-"));
    const fs::path here = fs::current_path();
    fs::current_path(mFolder);
    EXPECT_EQ(report("inspect font 'DejaVu Sans:bold'")["file"], kFont) << "a folder of that name";
    EXPECT_EQ(report("inspect font -")["fullName"], "DejaVu Sans Bold") << "a font is no standard input";
    fs::current_path(here);
    EXPECT_NE(report("inspect font Sans-Serif")["family"], "") << "any font serves a generic name";
    configure("");
    expectRefused("inspect font 'DejaVu Sans'", 1,
                  "FONT: 'DejaVu Sans' is not a file, and fontconfig knows no font at all");
}

TEST_F(Fonts, TheSystemsFontsServeWhatTheGivenOnesLack) {
    // Independent of the other installed fonts.
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
    // A bold fallback of a bold font is not widened.
    EXPECT_EQ(drawn("骨", "$FONT --trim"), drawn("骨", "'Noto Sans CJK SC:bold' --trim"));

    // The fonts chosen for a text besides --font; a font that two characters share is used once.
    for (const Row& row : rows("answers", "fonts")) {
        std::string list;
        const Json facts = report("inspect text -f " + row.input);
        for (const Json& one : facts["fonts"]) {
            if (one["from"] != "system") continue;
            list += (list.empty() ? "" : ", ") + std::string(one["family"]) + " " + std::string(one["style"]);
        }
        EXPECT_EQ(list, row.answer) << row.input;
        EXPECT_TRUE(facts["missing"].empty()) << row.input;
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

}  // namespace
