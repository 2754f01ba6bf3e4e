// SPDX-License-Identifier: Apache-2.0
#include "tests/limits/TimeLimit.h"
#include "tests/tool/Program.h"

namespace {

using RenderCommand = Program;
using Json = nlohmann::json;

const std::string kAt48 = "-s 48 -f $FONT ";

TEST_F(RenderCommand, DrawsTextInItsColorAndNamesTheFile) {
    const Result result = zvtext("render Grüße -f $FONT -c #ff8800 -o $DIR/out.png");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    const Image image = readPng(file("out.png"));
    EXPECT_EQ(result.out, file("out.png").string() + ": " + std::to_string(image.width) + " x " +
                              std::to_string(image.height) + " pixels\n");
    size_t opaque = 0;
    for (size_t i = 0; i < image.rgba.size(); i += 4) {
        if (image.rgba[i + 3] == 0) continue;
        EXPECT_EQ(image.rgba[i], 0xFF);
        // The straight colour, whatever the coverage, as exactly as a byte of premultiplied colour can hold
        // it.
        EXPECT_NEAR(image.rgba[i + 1], 0x88, 1 + 256 / image.rgba[i + 3]);
        EXPECT_EQ(image.rgba[i + 2], 0);
        opaque += image.rgba[i + 3] == 255;
    }
    EXPECT_GT(opaque, 1000u);
}

TEST_F(RenderCommand, OtherWaysToTheSamePicture) {
    write("text", "Two\r\nlines\n");
    fs::create_directories(file("system/fonts"));
    for (const char* name : {"a-Bold#2", "system/fonts/Roboto-Bold.ttf", "\xFF-Bold.ttf"})
        fs::create_symlink(kFont, file(name));
    fs::create_symlink(kCjk, file("a-Bold"));
    const auto picture = [&](const std::string& line) {
        const bool own =
            (" " + line).find(" -f ") != std::string::npos || line.find("--font ") != std::string::npos;
        return bytes("-s 48 " + line + (own ? "" : " -f $FONT"), "Two\nlines\n");
    };
    for (const Row& row : sampled(rows("answers", "pictures"))) {
        const bool other = row.input[0] == '!';
        EXPECT_EQ(picture(row.input.substr(other ? 1 : 0)) != picture(row.answer), other) << row.input;
    }
}

TEST_F(RenderCommand, AlignmentGravityAndLimitsPlaceTheLines) {
    const std::string text = kAt48 + "'one two three' ";
    const Image left = render(text + "--width 500"), right = render(text + "--width 500 --align right");
    EXPECT_TRUE(left.width == 500 && left.ink(0, 50) > 0);
    EXPECT_TRUE(right.ink(0, 20) == 0 && right.ink(450, 500) > 0);
    const Image wrapped = render(text + "--width 200"), limited = render(text + "--width 200 --max-lines 1");
    EXPECT_GT(wrapped.height, left.height) << "the words wrap";
    EXPECT_EQ(limited.height, left.height);
    EXPECT_LT(limited.ink(), wrapped.ink());
    const Image bottom = render(text + "--width 500 --height 300 --gravity bottom");
    EXPECT_EQ(bottom.height, 300u);
    const auto half = bottom.rgba.begin() + 500 * 150 * 4;
    EXPECT_EQ(std::count(bottom.rgba.begin(), half, 0), half - bottom.rgba.begin());
    EXPECT_EQ(bottom.ink(), left.ink());
    EXPECT_EQ(render(text + "--padding 1,2,3,40").height, left.height + 42);
}

TEST_F(RenderCommand, LinesAreHighEnoughForTheirMarks) {
    const Image plain = render(kAt48 + "u");
    for (const char* marks : {"\u0302\u0302\u0302\u0302", "\u0323\u0323\u0323\u0323\u0323"}) {
        const Image stacked = render(kAt48 + "u" + marks), cut = render(kAt48 + "'u" + marks + "\nu'");
        EXPECT_GT(stacked.height, plain.height + 10);
        EXPECT_EQ(stacked.ink() + plain.ink(), cut.ink()) << "no line is drawn over another";
    }
}

TEST_F(RenderCommand, WritesToStandardOutputAndThroughLinksAndPipes) {
    write("piped.png", zvtext("render Pipe -f $FONT -o -").out);
    EXPECT_GT(readPng(file("piped.png")).ink(), 0u);
    render("Mode -f $FONT");
    EXPECT_EQ(fs::status(file("out.png")).permissions(), fs::status(file("piped.png")).permissions());
    fs::remove(file("out.png"));
    write("target.png", "old");
    fs::create_symlink(file("target.png"), file("out.png"));
    render("Link -f $FONT");
    EXPECT_TRUE(fs::is_symlink(file("out.png")));
    EXPECT_GT(readPng(file("target.png")).ink(), 0u);
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    const int end = open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(zvtext("render x -f $FONT -o $DIR/pipe").status, 0);
    char signature[5] = "";
    EXPECT_EQ(read(end, signature, 4), 4);
    EXPECT_STREQ(signature, "\x89PNG");
    close(end);
    EXPECT_TRUE(fs::is_fifo(file("pipe")));
}

TEST_F(RenderCommand, AMillionCharacters) {
    const auto render = [&](int characters, const std::string& more) {
        std::string text;
        while (static_cast<int>(text.size()) < characters) text += "lorem ipsum ";
        write("text", text);
        const Result result = zvtext("render --text-file $DIR/text -s 10 -f $FONT -o $DIR/out.png " + more);
        EXPECT_LT(result.seconds, 25 * TimeLimit::kSlowness);
        return result;
    };
    EXPECT_EQ(render(1'000'000, "").err,
              "zvtext: --size: a line of the text is wider than 65535 pixels; lower --size or set --width\n");
    EXPECT_FALSE(fs::exists(file("out.png")));
    EXPECT_EQ(render(10'000, "--width 1000 --max-lines 30").status, 0);
    const std::string expected = slurp(file("out.png"));
    EXPECT_EQ(render(1'000'000, "--width 1000 --max-lines 30").status, 0);
    EXPECT_EQ(slurp(file("out.png")), expected);
}

TEST_F(RenderCommand, APrintedStyleReadsBackToTheSamePicture) {
    const std::string look =
        "-s 33.3 -c #80ff8800 --background #eee --features -kern --opacity 60% --letter-spacing 0.05 "
        "--stroke 3:#40001020:center";
    const std::string scene = "AVAVA -f $FONT ", style = "--style $DIR/style.json ";
    const std::string printed = zvtext("render --print-style " + look).out;
    write("style.json", printed);
    EXPECT_EQ(zvtext("render --print-style --style -", printed).out, printed);
    EXPECT_EQ(bytes(scene + style), bytes(scene + look));
    // Other options override the style, whatever their order; with --output, printing also renders.
    const std::string larger = bytes(scene + "-s 50 --print-style " + style);
    EXPECT_NE(slurp(file("stdout")).find("\"size\": 50,"), std::string::npos);
    EXPECT_EQ(bytes(scene + style + "-s 50"), larger);
}

TEST_F(RenderCommand, EffectsStackInTheOrderGiven) {
    write("style.json", R"({"effects": [{"type": "stroke", "width": 3}]})");
    for (const Row& row : rows("answers", "keys")) {
        EXPECT_EQ(zvtext("render --print-key --color #123456 " + row.input).out, row.answer + "\n");
    }
}

TEST_F(RenderCommand, PresetsAreTheExampleStyles) {
    std::stringstream list(zvtext("presets").out);
    ptrdiff_t count = 0;
    for (std::string line; std::getline(list, line); ++count) {
        const std::string name = line.substr(0, line.find(' '));
        EXPECT_GT(line.size(), name.size() + 10) << "no description: " << line;
        const std::string printed = zvtext("render --print-style --preset " + name).out;
        EXPECT_EQ(printed,
                  zvtext("render --print-style --style $SOURCE/examples/styles/" + name + ".json").out);
        EXPECT_NE(printed.find("\"designed-for\""), std::string::npos)
            << name << " stays the same at every size";
    }
    EXPECT_EQ(count, std::distance(fs::directory_iterator(fs::path(ZVTEXT_SOURCE) / "examples/styles"), {}));
}

TEST_F(RenderCommand, StylesArePrintedAsTheyAreDrawn) {
    for (const Row& row : rows("answers", "styles")) {
        const size_t at = row.input.rfind(" /");
        const std::string printed = zvtext("render --print-style " + row.input.substr(0, at)).out;
        const Json style = Json::parse(printed, nullptr, false);
        EXPECT_EQ(style[Json::json_pointer(row.input.substr(at + 1))], Json::parse(row.answer)) << row.input;
        EXPECT_EQ(zvtext("render --print-style --style -", printed).out, printed) << "it reads back";
    }
}

// A file opened while a standard stream is closed must not take its number.
TEST_F(RenderCommand, ClosedStreamsLeaveFilesAlone) {
    const std::string line = expanded(ZVTEXT_BINARY " render x --font $FONT -o $DIR/x.png");
    ASSERT_EQ(std::system((line + " >/dev/null").c_str()), 0);
    const std::string whole = slurp(file("x.png"));
    EXPECT_NE(std::system((line + " --metrics - <&- >&- 2>/dev/null").c_str()), 0);
    EXPECT_EQ(slurp(file("x.png")), whole);
}

TEST_F(RenderCommand, WhatCannotBePrintedIsAnError) {
    for (const char* command :
         {"--help", "--version", "version", "presets", "completion", "inspect font $FONT",
          "render x -f $FONT -o $DIR/a.png", "gallery --only pattern $DIR/gallery"}) {
        for (const char* stream : {" >/dev/full", " >&-"}) {
            const std::string line =
                expanded(std::string(ZVTEXT_BINARY " ") + command + stream + " 2>$DIR/errors");
            EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 1) << line;
            EXPECT_FALSE(fs::exists(file("a.png")));
            const std::string errors = slurp(file("errors"));
            EXPECT_NE(errors.find("zvtext: cannot write to standard output"), std::string::npos) << line;
        }
    }
}

}  // namespace
