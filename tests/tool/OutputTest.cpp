// SPDX-License-Identifier: Apache-2.0
#include <webp/decode.h>

#include <cmath>
#include <csignal>
#include <map>
#include <nlohmann/json.hpp>

#include "scene/WebpWriter.h"
#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

// What `zvtext render` writes besides and instead of a plain PNG.
class Output : public Program {
protected:
    Result render(std::vector<std::string> more, const std::string& text = "Hi") const {
        more.insert(more.begin(), {"render", text, "--font", kFont});
        return run(more);
    }

    // The files that the run leaves, besides those that the test's runs make for themselves.
    std::vector<std::string> left() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(mFolder)) {
            const std::string name = entry.path().filename();
            if (name.rfind("std", 0) != 0) names.push_back(name);
        }
        return names;
    }

    void expectRefused(std::vector<std::string> more, int status, const std::string& message) const {
        const Result result = render(std::move(more));
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.err.substr(0, 8 + message.size()), "zvtext: " + message);
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_EQ(left(), std::vector<std::string>()) << message;
    }
};

std::vector<uint8_t> bytesOf(const std::string& content) {
    return {content.begin(), content.end()};
}

// The pixels of a WebP file.
Image readWebp(const std::string& content) {
    Image image;
    int width = 0, height = 0;
    uint8_t* rgba =
        WebPDecodeRGBA(reinterpret_cast<const uint8_t*>(content.data()), content.size(), &width, &height);
    EXPECT_NE(rgba, nullptr);
    if (rgba == nullptr) return image;
    image.width = static_cast<unsigned>(width);
    image.height = static_cast<unsigned>(height);
    image.rgba.assign(rgba, rgba + size_t{image.width} * image.height * 4);
    WebPFree(rgba);
    return image;
}

// The resolution that a PNG says it has, in pixels a metre both ways.
std::string physicalSize(const std::string& content) {
    const size_t at = content.find("pHYs");
    return at == std::string::npos ? "" : content.substr(at + 4, 9);
}

// Whether the box frames all that lies within the columns that it spans.
bool frames(const Image& image, const Json& box) {
    const unsigned left = box["left"], right = box["right"];
    unsigned top = image.height, bottom = 0;
    for (unsigned y = 0; y < image.height; ++y) {
        for (unsigned x = left; x < right; ++x) {
            if (image.rgba[(size_t{y} * image.width + x) * 4 + 3] == 0) continue;
            top = std::min(top, y);
            bottom = y + 1;
        }
    }
    return box["top"] == top && box["bottom"] == bottom && image.ink(left, left + 1) > 0 &&
           image.ink(right - 1, right) > 0;
}

TEST_F(Output, MetricsTellWhereThePartsLie) {
    const std::string text = "é\U0001D49C\n HÉ";
    const Result result =
        render({"--size", "60", "--padding", "5,6,7,8", "-o", file("a.png"), "--metrics", "-", "--max-lines",
                "1", "--gravity", "bottom", "--width", "300", "--align", "right", "--inner-glow", "size=9"},
               text);
    ASSERT_EQ(result.status, 0) << result.err;
    const Json metrics = Json::parse(result.out);
    const Image image = readPng(file("a.png"));
    EXPECT_EQ(metrics["width"], image.width);
    EXPECT_EQ(metrics["height"], image.height);
    EXPECT_EQ(metrics["margins"], Json::parse(R"({"left": 9, "top": 9, "right": 9, "bottom": 9})"));
    ASSERT_EQ(metrics["lines"].size(), 1u);
    const Json& line = metrics["lines"][0];
    EXPECT_EQ(text.substr(line["start"], size_t{line["end"]} - size_t{line["start"]}), " HÉ");
    EXPECT_EQ(metrics["baseline"], line["baseline"]);
    EXPECT_EQ(line["box"]["right"], 9 + 293);
    EXPECT_EQ(line["box"]["top"], 9 + 6);
    EXPECT_EQ(line["box"]["bottom"], image.height - 8 - 9);
    ASSERT_EQ(line["glyphs"].size(), 3u);
    const size_t clusters[] = {7, 8, 9};
    for (size_t i = 0; i < 3; ++i) {
        const Json& glyph = line["glyphs"][i];
        EXPECT_EQ(text.substr(glyph["cluster"], 1), text.substr(clusters[i], 1)) << i;
        EXPECT_EQ(glyph["box"]["left"] == glyph["box"]["right"], i == 0) << "the blank";
        EXPECT_TRUE(i == 0 || frames(image, glyph["box"])) << glyph;
        EXPECT_EQ(glyph["box"]["bottom"], metrics["baseline"]);
    }
}

TEST_F(Output, ThePictureAndItsMetricsAppearTogetherOrNotAtAll) {
    const std::string picture = file("a.png"), metrics = file("a.json");
    expectRefused({"-o", picture, "--metrics", picture}, 2,
                  "--metrics: '" + picture + "' is where the picture goes");
    expectRefused({"-o", "-", "--metrics", "-"}, 2, "--metrics: standard output is where the picture goes");
    expectRefused({"--print-key", "-o", picture, "--metrics", "-"}, 2, "--metrics: - is standard output");
    expectRefused({"--print-key", "-o", "-"}, 2, "--output: - is standard output");
    expectRefused({"-o", picture, "--metrics", "/dev/full"}, 1, "--metrics: cannot write '/dev/full'");
    expectRefused({"-o", picture, "--metrics", mFolder}, 1,
                  "--metrics: '" + mFolder.string() + "' is a folder");
    expectRefused({"-o", "/dev/full", "--metrics", metrics}, 1, "--output: cannot write '/dev/full'");
    const Result piped = render({"-o", "-", "--metrics", metrics});
    EXPECT_EQ(piped.out.substr(1, 3), "PNG");
    EXPECT_EQ(Json::parse(slurp(metrics))["lines"].size(), 1u);
}

TEST_F(Output, EveryFormatHoldsTheSamePixels) {
    const std::vector<std::string> look = {"--outer-shadow", "size=12,color=#f80", "--color", "#80204060"};
    const auto write = [&](const std::string& name, std::vector<std::string> more) {
        more.insert(more.end(), look.begin(), look.end());
        more.insert(more.end(), {"-o", name == "-" ? name : file(name).string()});
        const Result result = render(more);
        EXPECT_EQ(result.status, 0) << result.err;
        return name == "-" ? result.out : slurp(file(name));
    };
    for (const bool premultiplied : {false, true}) {
        std::vector<std::string> how;
        if (premultiplied) how.push_back("--premultiplied");
        const std::string png = write("a.PNG", how);
        const Image image = readPng(file("a.PNG"));
        EXPECT_EQ(physicalSize(png), std::string("\0\0\x0B\x13\0\0\x0B\x13\1", 9)) << "2835 pixels a metre";
        EXPECT_NE(png.find("sRGB"), std::string::npos);
        EXPECT_EQ(png, write("noending", how));
        EXPECT_EQ(bytesOf(write("a.rgba", how)), image.rgba);
        const Image webp = readWebp(write("a.webp", how));
        EXPECT_EQ(webp.width, image.width);
        EXPECT_EQ(webp.rgba, image.rgba);
        how.insert(how.end(), {"--format", "raw"});
        EXPECT_EQ(bytesOf(write("-", how)), image.rgba);
    }
    const Image premultiplied = readPng(file("a.PNG"));
    write("straight.bin", {"--format", "png", "--dpi", "300"});
    EXPECT_EQ(physicalSize(slurp(file("straight.bin"))), std::string("\0\0\x2E\x23\0\0\x2E\x23\1", 9));
    const Image straight = readPng(file("straight.bin"));
    for (size_t i = 0; i < straight.rgba.size(); ++i) {
        const double share = i % 4 == 3 ? 1 : straight.rgba[i | 3] / 255.0;
        ASSERT_EQ(premultiplied.rgba[i], std::lround(straight.rgba[i] * share)) << i;
    }
}

TEST(Webp, KeepsTheColoursOfTransparentPixels) {
    const Image image = readWebp(Zvex::scene::encodeWebp({2, 1, {0x00123456, 0x40FFFE01}}));
    EXPECT_EQ(image.rgba, (std::vector<uint8_t>{0x12, 0x34, 0x56, 0, 0xFF, 0xFE, 1, 0x40}));
}

TEST_F(Output, WhatCannotBeWrittenIsRefusedFirst) {
    const std::string known = "' ends in '.gif', which is not one of .png, .webp, .rgba;";
    expectRefused({"-o", file("a.gif")}, 2, "--output: '" + file("a.gif").string() + known);
    expectRefused({"--format", "gif"}, 2, "--format: 'gif' is not one of png, webp, raw");
    expectRefused({"--dpi", "0.5"}, 2, "--dpi: '0.5' is not a number from 1 to 10000");
    expectRefused({"-o", file("a.webp"), "--width", "16384"}, 2,
                  "--output: the picture is 16384 x 113 pixels; WebP holds at most 16383 a side");
    const Result tall = render({"-o", file("a.webp"), "--width", "90", "--height", "16384"});
    EXPECT_EQ(tall.err,
              "zvtext: --output: the picture is 90 x 16384 pixels; WebP holds at most 16383 a side\n");
    write("a.png", "before");
    fs::create_hard_link(file("a.png"), file("other.png"));
    EXPECT_EQ(render({"-o", file("a.png"), "--metrics", file("other.png")}).err,
              "zvtext: --metrics: '" + file("a.png").string() + "' is where the picture goes\n");
    EXPECT_EQ(slurp(file("a.png")), "before");
}

TEST_F(Output, AFileThatIsReplacedKeepsItsMode) {
    write("a.png", "before");
    for (const unsigned mode : {0640u, 0604u}) {
        fs::permissions(file("a.png"), fs::perms(mode));
        EXPECT_EQ(render({"-o", file("a.png")}).status, 0);
        EXPECT_EQ(fs::status(file("a.png")).permissions(), fs::perms(mode));
        EXPECT_EQ(
            run({"batch", "--font", kFont, "--output-dir", mFolder}, R"({"text": "x", "output": "a.png"})")
                .status,
            0);
        EXPECT_EQ(fs::status(file("a.png")).permissions(), fs::perms(mode));
    }
}

// The metrics wait for a reader while the picture has its temporary name.
TEST_F(Output, ASignalLeavesNoTemporaryFile) {
    mkfifo(file("metrics").c_str(), 0600);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            signal(number, SIG_DFL);
            _exit(
                become({"render", "x", "--font", kFont, "-o", file("a.png"), "--metrics", file("metrics")}));
        }
        const auto temporary = [&] {
            for (const std::string& name : left()) {
                if (name.find(".zvtext-") != std::string::npos) return true;
            }
            return false;
        };
        while (!temporary() && kill(child, 0) == 0) usleep(1000);
        int status = 0;
        kill(child, number);
        waitpid(child, &status, 0);
        EXPECT_EQ(status, number);
        EXPECT_EQ(left(), std::vector<std::string>{"metrics"});
    }
}

TEST_F(Output, NothingThatMovesTheCursorReachesATerminal) {
    const std::string bad = "\x1B[2J\u009Bx\x7F", shown = "?[2J?x?";
    EXPECT_EQ(render({"-o", file(bad + ".png")}).out.find(file(shown + ".png").string() + ": "), 0u);
    EXPECT_EQ(render({"--color", bad + "\x9B"}).err.find("zvtext: --color: '" + shown + "?' is not"), 0u);
    const Result batch = run({"batch", "--font", kFont, "--output-dir", mFolder},
                             R"({"text": "x", "output": "\u001b\u009b\u007f.png"})");
    EXPECT_NE(batch.out.find("\\u001b\\u009b\\u007f.png"), std::string::npos) << batch.out;
}

TEST_F(Output, TrimmingCutsTheTransparentBorderAndNothingElse) {
    const auto write = [&](const std::string& name, std::vector<std::string> more, const std::string& text) {
        more.insert(more.end(),
                    {"-o", file(name), "--metrics", file(name + ".json"), "--padding", "9,8,7,6"});
        const Result result = render(more, text);
        EXPECT_EQ(result.status, 0) << result.err;
        return Json::parse(slurp(file(name + ".json")));
    };
    const Json whole = write("whole.png", {"--stroke", "5:#f00"}, "Tí\nj");
    const Json cut = write("cut.png", {"--stroke", "5:#f00", "--trim"}, "Tí\nj");
    const Image from = readPng(file("whole.png")), image = readPng(file("cut.png"));
    const int left = whole["margins"]["left"].get<int>() - cut["margins"]["left"].get<int>();
    const int top = whole["margins"]["top"].get<int>() - cut["margins"]["top"].get<int>();
    EXPECT_EQ(from.ink(), image.ink());
    EXPECT_GT(image.ink(0, 1), 0u);
    EXPECT_GT(image.ink(image.width - 1, image.width), 0u);
    EXPECT_EQ(cut["width"], image.width);
    EXPECT_EQ(cut["height"], image.height);
    for (const unsigned y : {0u, image.height / 2, image.height - 1}) {
        const auto row = image.rgba.begin() + y * image.width * 4;
        const size_t at = ((y + static_cast<unsigned>(top)) * from.width + static_cast<unsigned>(left)) * 4;
        EXPECT_TRUE(std::equal(row, row + image.width * 4, from.rgba.begin() + static_cast<ptrdiff_t>(at)))
            << y;
        EXPECT_TRUE(y == image.height / 2 ||
                    std::any_of(row, row + image.width * 4, [](uint8_t byte) { return byte != 0; }))
            << y;
    }
    const auto across = [](const Json& metrics) {
        return metrics["margins"]["left"].get<int>() + metrics["margins"]["right"].get<int>() -
               metrics["width"].get<int>();
    };
    const auto down = [](const Json& metrics) {
        return metrics["margins"]["top"].get<int>() + metrics["margins"]["bottom"].get<int>() -
               metrics["height"].get<int>();
    };
    EXPECT_EQ(across(whole), across(cut)) << "the view is as wide as before";
    EXPECT_EQ(down(whole), down(cut));
    EXPECT_EQ(whole["baseline"], cut["baseline"].get<int>() + top);
    const Json &before = whole["lines"][1], &after = cut["lines"][1];
    EXPECT_EQ(before["baseline"], after["baseline"].get<int>() + top);
    EXPECT_EQ(before["glyphs"][0]["box"]["right"], after["glyphs"][0]["box"]["right"].get<int>() + left);
    EXPECT_EQ(before["box"]["bottom"], after["box"]["bottom"].get<int>() + top);

    const Json blank = write("blank.png", {"--trim"}, " ");
    EXPECT_EQ(blank["width"], 1);
    EXPECT_EQ(blank["height"], 1);
    EXPECT_EQ(readPng(file("blank.png")).ink(), 0u);
}

// Every length of every effect, and nothing that is none, as the numbers given by hand.
TEST_F(Output, ScaledIsWhatTheScaledNumbersMake) {
    render({"-o", file("tile.png"), "--size", "10", "--color", "#0a0"});
    const auto picture = [&](double s, const std::string& scale) {
        const auto n = [&](double length) { return Json(length * s).dump(); };
        const auto whole = [&](double length) { return std::to_string(std::lround(length * s)); };
        std::vector<std::string> more = {"--size",
                                         n(40),
                                         "--letter-spacing",
                                         "0.1",
                                         "--width",
                                         whole(151),
                                         "--height",
                                         whole(131),
                                         "--padding",
                                         whole(3) + "," + whole(5) + "," + whole(7) + "," + whole(9),
                                         "--outer-shadow",
                                         "angle=100,distance=" + n(7) + ",size=" + n(5),
                                         "--inner-shadow",
                                         "distance=" + n(3) + ",size=" + n(2.9),
                                         "--outer-glow",
                                         "size=" + n(9),
                                         "--inner-glow",
                                         "size=" + n(3),
                                         "--linear-gradient",
                                         "scale=1.5,stops=#f00@10:#00f@90",
                                         "--stroke",
                                         n(2.5) + ":#000:center",
                                         "--pattern",
                                         file("tile.png").string() + ",opacity=0.5,scale=" + n(1.5),
                                         "--bevel",
                                         "depth=2,altitude=40,size=" + n(5) + ",soften=" + n(2.9),
                                         "--emboss",
                                         "depth=2,altitude=40,size=" + n(4) + ",soften=" + n(1.5),
                                         "-o",
                                         file("out.png")};
        more.insert(more.end(), {"--scale", scale});
        const Result result = render(more, "Scale it\ntwice");
        EXPECT_EQ(result.status, 0) << result.err;
        return readPng(file("out.png"));
    };
    for (const char* scale : {"2", "0.5", "1.25"}) {
        const Image byHand = picture(std::stod(scale), "1"), scaled = picture(1, scale);
        EXPECT_EQ(byHand.width, scaled.width) << scale;
        EXPECT_TRUE(byHand.rgba == scaled.rgba) << scale;
    }
    render({"-o", file("narrow.png"), "--width", "4", "--scale", "0.1"}, "a b");
    render({"-o", file("wide.png"), "--scale", "0.1"}, "a b");
    EXPECT_GT(readPng(file("narrow.png")).height, readPng(file("wide.png")).height) << "a width stays one";
    const std::string style = run({"render", "--print-style", "--stroke", "2.32", "--scale", "12.5"}).out;
    EXPECT_EQ(Json::parse(style)["effects"][0]["width"], 29) << "not the product, which is a little less";
}

TEST_F(Output, AScaledSettingBeyondItsLimitIsNamed) {
    for (const char* scale : {"0", "-1", "16.1", "two"}) {
        expectRefused({"--scale", scale}, 2, std::string("--scale: '") + scale + "' is not a number above 0");
    }
    const std::map<std::string, std::vector<std::string>> refused = {
        {"--size: 900 at --scale 12 is 10800, not a number above 0 and up to 10000 (px)", {"--size", "900"}},
        {"--stroke width: 8.5 at --scale 12 is 102, not a number from 0 to 100 (px)", {"--stroke", "8.5"}},
        {"--bevel soften: 2 at --scale 12 is 24, not a number from 0 to 16 (px)",
         {"--bevel", "size=1,soften=2"}},
        {"--pattern scale: 1 at --scale 12 is 12, not a number from 0 to 10", {"--pattern", "none.png"}},
        {"--width: 3000 at --scale 12 is 36000, not a number from 0 to 32767 (px)", {"--width", "3000"}},
        {"--padding: 3000 at --scale 12 is 36000", {"--padding", "0,0,3000,0"}}};
    for (const auto& [message, options] : refused) {
        std::vector<std::string> more = options;
        more.insert(more.end(), {"--scale", "12"});
        expectRefused(more, 2, message);
    }
    // The style that is printed is the scaled one.
    EXPECT_NE(run({"render", "--print-style", "--scale", "2", "--size", "40"}).out.find("\"size\": 80"),
              std::string::npos);
}

}  // namespace
