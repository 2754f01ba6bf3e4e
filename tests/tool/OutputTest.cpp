// SPDX-License-Identifier: Apache-2.0
#include <webp/decode.h>

#include <cmath>
#include <csignal>
#include <thread>

#include "scene/WebpWriter.h"
#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

using Output = Program;  // what render writes in addition to a plain PNG or instead of it

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

// A PNG's resolution, in pixels a metre both ways.
std::string physicalSize(const std::string& content) {
    const size_t at = content.find("pHYs");
    return at == std::string::npos ? "" : content.substr(at + 4, 9);
}

// Whether the box frames everything within its columns.
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
    const Result result = zvtext("render '" + text +
                                 "' -f $FONT -s 60 --padding 5,6,7,8 -o $DIR/a.png --metrics - --max-lines 1 "
                                 "--gravity bottom --width 300 --align right --inner-glow size=9");
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

TEST_F(Output, EveryFormatHoldsTheSamePixels) {
    const auto write = [&](const std::string& options, const std::string& name) {
        const Result result =
            zvtext("render Hi -f $FONT --outer-shadow size=12,color=#f80 --color #80204060 " + options +
                   " --metrics $DIR/m.json -o " + (name == "-" ? name : file(name).string()));
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(Json::parse(slurp(file("m.json")))["lines"].size(), 1u);
        return name == "-" ? result.out : slurp(file(name));
    };
    for (const std::string how : {"", "--premultiplied"}) {
        const std::string png = write(how, "a.PNG");
        const Image image = readPng(file("a.PNG"));
        EXPECT_EQ(physicalSize(png), std::string("\0\0\x0B\x13\0\0\x0B\x13\1", 9)) << "2835 pixels a metre";
        EXPECT_NE(png.find("sRGB"), std::string::npos);
        EXPECT_EQ(png, write(how, "noending"));
        EXPECT_EQ(bytesOf(write(how, "a.rgba")), image.rgba);
        const Image webp = readWebp(write(how, "a.webp"));
        EXPECT_EQ(webp.width, image.width);
        EXPECT_EQ(webp.rgba, image.rgba);
        EXPECT_EQ(bytesOf(write(how + " --format raw", "-")), image.rgba);
    }
    for (const char* name : {"a.png", "a.webp"}) {
        EXPECT_LT(write("--compression small", name).size(), write("--compression fast", name).size())
            << name;
    }
    const Image premultiplied = readPng(file("a.PNG"));
    EXPECT_EQ(physicalSize(write("--format png --dpi 300", "straight.bin")),
              std::string("\0\0\x2E\x23\0\0\x2E\x23\1", 9));
    const Image straight = readPng(file("straight.bin"));
    for (size_t i = 0; i < straight.rgba.size(); ++i) {
        const double share = i % 4 == 3 ? 1 : straight.rgba[i | 3] / 255.0;
        ASSERT_EQ(premultiplied.rgba[i], std::lround(straight.rgba[i] * share)) << i;
    }
}

TEST(Webp, KeepsTheColorsOfTransparentPixels) {
    const Image image = readWebp(Zvex::scene::encodeWebp({2, 1, {0x00123456, 0x40FFFE01}}));
    EXPECT_EQ(image.rgba, (std::vector<uint8_t>{0x12, 0x34, 0x56, 0, 0xFF, 0xFE, 1, 0x40}));
}

TEST_F(Output, AFileThatIsReplacedKeepsItsMode) {
    write("out.png", "before");
    for (const unsigned mode : {0640u, 0604u}) {
        fs::permissions(file("out.png"), fs::perms(mode));
        bytes("Hi -f $FONT");
        EXPECT_EQ(fs::status(file("out.png")).permissions(), fs::perms(mode));
        EXPECT_EQ(zvtext("batch -f $FONT --output-dir $DIR", R"({"text": "x", "output": "out.png"})").status,
                  0);
        EXPECT_EQ(fs::status(file("out.png")).permissions(), fs::perms(mode));
    }
}

// The metrics wait for a reader while the picture still has its temporary name.
TEST_F(Output, ASignalLeavesNoTemporaryFile) {
    mkfifo(file("metrics").c_str(), 0600);
    const std::set<std::string> before = left();
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            signal(number, SIG_DFL);
            _exit(become(words("render x -f $FONT -o $DIR/a.png --metrics $DIR/metrics")));
        }
        while (left() == before && kill(child, 0) == 0) std::this_thread::yield();
        int status = 0;
        kill(child, number);
        waitpid(child, &status, 0);
        EXPECT_EQ(status, number);
        EXPECT_EQ(left(), before);
    }
}

TEST_F(Output, NothingThatMovesTheCursorReachesATerminal) {
    const std::string bad = "\x1B[2J\u009Bx\x7F", shown = "?[2J?x?";
    EXPECT_EQ(zvtext("render x -f $FONT -o '$DIR/" + bad + ".png'").out.find(file(shown + ".png").string()),
              0u);
    EXPECT_EQ(zvtext("render x -f $FONT --color '" + bad + "\x9B'")
                  .err.find("zvtext: --color: '" + shown + "?' is not"),
              0u);
    const Result batch =
        zvtext("batch -f $FONT --output-dir $DIR", R"({"text": "x", "output": "\u001b\u009b\u007f.png"})");
    EXPECT_NE(batch.out.find("\\u001b\\u009b\\u007f.png"), std::string::npos) << batch.out;
}

TEST_F(Output, TrimmingCutsTheTransparentBorderAndNothingElse) {
    const auto write = [&](const std::string& name, const std::string& more) {
        const Result result =
            zvtext("render -f $FONT --padding 9,8,7,6 --metrics $DIR/json -o $DIR/" + name + more);
        EXPECT_EQ(result.status, 0) << result.err;
        return Json::parse(slurp(file("json")));
    };
    const Json whole = write("whole.png", " 'Tí\nj' --stroke 5:#f00");
    const Json cut = write("cut.png", " 'Tí\nj' --stroke 5:#f00 --trim");
    const Image from = readPng(file("whole.png")), image = readPng(file("cut.png"));
    const auto margin = [](const Json& metrics, const char* side) {
        return metrics["margins"][side].get<int>();
    };
    const int left = margin(whole, "left") - margin(cut, "left"),
              top = margin(whole, "top") - margin(cut, "top");
    EXPECT_EQ(from.ink(), image.ink());
    EXPECT_TRUE(image.ink(0, 1) > 0 && image.ink(image.width - 1, image.width) > 0);
    EXPECT_EQ(cut["width"], image.width);
    EXPECT_EQ(cut["height"], image.height);
    for (const unsigned y : {0u, image.height / 2, image.height - 1}) {
        const auto row = image.rgba.begin() + y * image.width * 4;
        const size_t at = ((y + static_cast<unsigned>(top)) * from.width + static_cast<unsigned>(left)) * 4;
        EXPECT_TRUE(std::equal(row, row + image.width * 4, from.rgba.begin() + static_cast<ptrdiff_t>(at)))
            << y;
        const bool empty = std::count(row, row + image.width * 4, 0) == image.width * 4;
        EXPECT_TRUE(y == image.height / 2 || !empty) << y;
    }
    EXPECT_EQ(from.width - image.width, left + margin(whole, "right") - margin(cut, "right"));
    EXPECT_EQ(from.height - image.height, top + margin(whole, "bottom") - margin(cut, "bottom"));
    const Json &before = whole["lines"][1], &after = cut["lines"][1];
    EXPECT_EQ(before["baseline"], after["baseline"].get<int>() + top);
    EXPECT_EQ(before["glyphs"][0]["box"]["right"], after["glyphs"][0]["box"]["right"].get<int>() + left);

    const Json blank = write("blank.png", " ' ' --trim");
    EXPECT_TRUE(blank["width"] == 1 && blank["height"] == 1);
    EXPECT_EQ(readPng(file("blank.png")).ink(), 0u);
}

// Lengths of every effect scale, and nothing else does, as with the numbers scaled by hand.
TEST_F(Output, ScaledIsWhatTheScaledNumbersMake) {
    bytes("Hi -f $FONT -s 10 --color #0a0");
    fs::rename(file("out.png"), file("tile.png"));
    const auto picture = [&](double factor, const std::string& scale) {
        // Lengths are written in [].
        std::string line =
            "'Scale it\ntwice' -f $FONT --letter-spacing 0.1 -s [40] --width [151] --height [131] "
            "--padding [3],[5],[7],[9] --outer-shadow angle=100,distance=[7],size=[5] "
            "--inner-shadow distance=[3],size=[2.9] --outer-glow size=[9] --inner-glow size=[3] "
            "--linear-gradient scale=1.5,stops=#f00@10:#00f@90 --stroke [2.5]:#000:center "
            "--pattern $DIR/tile.png,opacity=0.5,scale=[1.5] "
            "--bevel depth=2,altitude=40,size=[5],soften=[2.9] "
            "--emboss depth=2,altitude=40,size=[4],soften=[1.5] --scale " +
            scale;
        for (size_t at = 0; (at = line.find('[', at)) != std::string::npos;) {
            const size_t end = line.find(']', at);
            const double length = factor * std::stod(line.substr(at + 1, end - at - 1));
            const bool whole = at > line.find("--width") && at < line.find("--outer-shadow");
            line.replace(at, end + 1 - at, whole ? std::to_string(std::lround(length)) : Json(length).dump());
        }
        return render(line);
    };
    for (const char* scale : {"2", "0.5", "1.25"}) {
        const Image byHand = picture(std::stod(scale), "1"), scaled = picture(1, scale);
        EXPECT_EQ(byHand.width, scaled.width) << scale;
        EXPECT_TRUE(byHand.rgba == scaled.rgba) << scale;
    }
    EXPECT_GT(render("'a b' -f $FONT --scale 0.1 --width 4").height,
              render("'a b' -f $FONT --scale 0.1").height)
        << "a width stays one";
}

}  // namespace
