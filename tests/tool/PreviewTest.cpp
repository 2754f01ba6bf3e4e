// SPDX-License-Identifier: Apache-2.0
#include <chrono>
#include <csignal>
#include <thread>

#include "tests/tool/Program.h"

namespace {

class PreviewCommand : public Program {
protected:
    static std::vector<std::string> all(const std::string& page, const std::string& before,
                                        const std::string& after) {
        std::vector<std::string> parts;
        for (size_t at = 0; (at = page.find(before, at)) != std::string::npos;) {
            at += before.size();
            parts.push_back(page.substr(at, page.find(after, at) - at));
        }
        return parts;
    }

    std::string decoded(const std::string& base64) const {
        write("base64", base64);
        const std::string line = expanded("base64 -d $DIR/base64 > $DIR/bytes");
        EXPECT_EQ(std::system(line.c_str()), 0);
        return slurp(file("bytes"));
    }

    // Until the program has printed as many lines.
    void awaitLines(const std::string& stream, long count) const {
        for (int tries = 0; tries < 1200; ++tries) {
            const std::string text = slurp(file(stream));
            if (std::count(text.begin(), text.end(), '\n') >= count) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
        }
        ADD_FAILURE() << count << " lines on " << stream << ": " << slurp(file(stream));
    }
};

TEST_F(PreviewCommand, PageHasThePicturesOfRenderOnEveryGround) {
    write("mine.json",
          R"({"description": "<soft> & red", "color": "#f00", "effects": [{"type": "stroke"}]})");
    const Result result = zvtext(
        "preview $DIR/mine.json gold --text A --text 'Bé \"<' --sizes 20,31.5 -f $FONT "
        "--letter-spacing 1 -o $DIR/page.html");
    EXPECT_EQ(result.status, 2) << "looks are the styles' own";
    const Result made = zvtext(
        "preview $DIR/mine.json gold --text A --text 'Bé \"<' --sizes 20,31.5 -f $FONT "
        "--grounds dark,transparent -o $DIR/page.html");
    EXPECT_EQ(made.out, file("page.html").string() + ": 2 styles, 8 pictures\n");
    const std::string page = slurp(file("page.html"));
    for (const char* elsewhere : {"http", "src=", "<link", "@import", "<script", "$"})
        EXPECT_EQ(page.find(elsewhere), std::string::npos) << elsewhere;
    EXPECT_NE(page.find("&lt;soft&gt; &amp; red"), std::string::npos);
    const std::vector<std::string> pictures = all(page, "url(data:image/png;base64,", ")");
    size_t at = 0;
    for (const char* style : {"--style $DIR/mine.json", "--preset gold"}) {
        for (const char* text : {"A", "'Bé \"<'"}) {
            for (const char* size : {"20", "31.5"}) {
                const std::string line = std::string(text) + " -f $FONT -s " + size + " " + style;
                ASSERT_LT(at, pictures.size());
                EXPECT_TRUE(decoded(pictures[at++]) == bytes(line)) << line;
            }
        }
    }
    EXPECT_EQ(at, pictures.size());
    EXPECT_EQ(all(page, "<div class=\"ground\"", ">").size(), 2 * at);
}

TEST_F(PreviewCommand, SheetHasThePicturesOverTheirGrounds) {
    write("mine.json", R"({"color": "#80ff0000", "effects": [{"type": "outer-glow", "size": 3}]})");
    const Result result =
        zvtext("preview $DIR/mine.json $DIR/mine.json --sizes 30 -f $FONT -o $DIR/sheet.png");
    ASSERT_EQ(result.status, 0) << result.err;
    const Image picture = render("Sample -s 30 -f $FONT --style $DIR/mine.json"),
                sheet = readPng(file("sheet.png"));
    const unsigned margin = 16, around = 12, panel = picture.width + 2 * around;
    const int grounds[3][2][3] = {{{255, 255, 255}, {255, 255, 255}},
                                  {{0x17, 0x18, 0x1C}, {0x17, 0x18, 0x1C}},
                                  {{255, 255, 255}, {0xCC, 0xCC, 0xCC}}};
    ASSERT_GE(sheet.width, 2 * (margin + 3 * panel)) << "side by side";
    double worst = 0;
    for (const unsigned left : {margin, 2 * margin + 3 * panel}) {
        for (unsigned ground = 0; ground < 3; ++ground) {
            for (unsigned y = 0; y < picture.height; ++y) {
                for (unsigned x = 0; x < picture.width; ++x) {
                    const uint8_t* from = &picture.rgba[(size_t{y} * picture.width + x) * 4];
                    const uint8_t* to = &sheet.rgba[(size_t{y + margin + around} * sheet.width + left +
                                                     ground * panel + around + x) *
                                                    4];
                    const bool odd = ((x + around) / 8 + (y + around) / 8) % 2 != 0;
                    for (int i = 0; i < 3; ++i) {
                        const double exact =
                            grounds[ground][odd][i] + (from[i] - grounds[ground][odd][i]) * (from[3] / 255.0);
                        worst = std::max(worst, std::abs(exact - to[i]));
                    }
                    ASSERT_EQ(to[3], 255);
                }
            }
        }
    }
    EXPECT_LE(worst, 0.5001);
    // The label below.
    std::set<uint8_t> shades;
    for (unsigned x = margin; x < margin + 3 * panel; ++x)
        shades.insert(sheet.rgba[(size_t{margin + picture.height + 2 * around + 12} * sheet.width + x) * 4]);
    EXPECT_GT(shades.size(), 3u);
}

TEST_F(PreviewCommand, WatchFollowsStylesPatternsAndFontsPastErrors) {
    const std::string style = R"({"effects": [{"type": "pattern", "file": "tile.png")", end = "}]}";
    write("tile.png", bytes("MW -f $FONT -s 20 --background #0f0 --trim"));
    write("new.png", bytes("MW -f $FONT -s 20 --background #f00 --trim"));
    fs::remove(file("out.png"));
    fs::remove(file("stdout"));
    fs::copy_file(kFont, file("own.ttf"));
    write("mine.json", style + end);
    write("stdin", "");
    const pid_t child = fork();
    if (child == 0) {
        std::signal(SIGINT, SIG_DFL);
        _exit(become(words("preview $DIR/mine.json --sizes 20 -f $DIR/own.ttf --watch -o $DIR/page.html")));
    }
    std::set<std::string> pages;
    const auto expectNew = [&](long lines) {
        awaitLines("stdout", lines);
        EXPECT_TRUE(pages.insert(slurp(file("page.html"))).second) << lines;
    };
    expectNew(1);
    write("mine.json", style + R"(, "scale": 2)" + end);
    expectNew(2);
    write("mine.json", style);  // cut short
    awaitLines("stderr", 1);
    EXPECT_FALSE(pages.insert(slurp(file("page.html"))).second) << "the page is kept";
    fs::rename(file("new.png"), file("tile.png"));  // of the style as it was
    awaitLines("stderr", 2);
    write("mine.json", style + end);
    expectNew(3);
    write("own.ttf", slurp("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
    expectNew(4);
    EXPECT_NE(slurp(file("page.html")).find("<script"), std::string::npos) << "reloads itself";
    kill(child, SIGINT);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    EXPECT_EQ(slurp(file("page.html")).find("<script"), std::string::npos);
    EXPECT_EQ(left(), (std::set<std::string>{"mine.json", "own.ttf", "page.html", "tile.png"}));
}

}  // namespace
