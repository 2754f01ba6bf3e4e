// SPDX-License-Identifier: Apache-2.0
#include "tests/limits/TimeLimit.h"
#include "tests/tool/Program.h"

namespace {

const std::string kCjkFont = "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc";
const std::string kCjkBold = "/usr/share/fonts/opentype/noto/NotoSansCJK-Bold.ttc";
const std::string kArabicFont = "/usr/share/fonts/truetype/noto/NotoSansArabic-Regular.ttf";

class RenderCommand : public Program {
protected:
    // Renders `text` with more arguments and reads the picture back.
    Image render(const std::string& text, std::vector<std::string> more = {},
                 const std::string& input = "") const {
        std::vector<std::string> arguments = {"render", "-o", file("out.png"), "--size", "48"};
        if (!text.empty()) arguments.insert(arguments.begin() + 1, text);
        if (std::find(more.begin(), more.end(), "--font") == more.end()) {
            arguments.insert(arguments.end(), {"--font", kFont});
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Result result = run(arguments, input);
        EXPECT_EQ(result.status, 0) << result.err;
        return result.status == 0 ? readPng(file("out.png")) : Image();
    }

    // The run fails with `status`, says `message` on one line, and leaves the output as it was.
    void expectRefused(std::vector<std::string> arguments, int status, const std::string& message) const {
        for (const bool present : {false, true}) {
            fs::remove(file("out.png"));
            if (present) write("out.png", "an older picture");
            std::vector<std::string> all = {"render", "-o", file("out.png")};
            all.insert(all.end(), arguments.begin(), arguments.end());
            const Result result = run(all);
            EXPECT_EQ(result.status, status) << result.err;
            EXPECT_EQ(result.err.substr(0, 8 + message.size()), "zvtext: " + message);
            EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
            EXPECT_EQ(result.out, "");
            EXPECT_EQ(fs::exists(file("out.png")), present);
            if (present) {
                EXPECT_EQ(slurp(file("out.png")), "an older picture");
            }
            for (const auto& entry : fs::directory_iterator(mFolder)) {
                EXPECT_EQ(entry.path().filename().string().rfind("out.png.", 0), std::string::npos)
                    << entry.path();
            }
        }
    }
};

TEST_F(RenderCommand, DrawsTextInItsColourAndNamesTheFile) {
    const Result result =
        run({"render", "Grüße", "--font", kFont, "--color", "#ff8800", "-o", file("out.png")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const Image image = readPng(file("out.png"));
    EXPECT_EQ(result.out, file("out.png").string() + ": " + std::to_string(image.width) + " x " +
                              std::to_string(image.height) + " pixels\n");
    size_t opaque = 0;
    for (size_t i = 0; i < image.rgba.size(); i += 4) {
        if (image.rgba[i + 3] == 0) continue;
        EXPECT_EQ(image.rgba[i], 0xFF);
        // Straight colour whatever the coverage, as far as a byte of premultiplied colour could hold it.
        EXPECT_NEAR(image.rgba[i + 1], 0x88, 1 + 256 / image.rgba[i + 3]);
        EXPECT_EQ(image.rgba[i + 2], 0);
        opaque += image.rgba[i + 3] == 255;
    }
    EXPECT_GT(opaque, 1000u);
}

TEST_F(RenderCommand, TwoProcessesWriteTheSameBytes) {
    const std::vector<std::string> scene = {"--fallback", kCjkFont, "--stroke", "5:#20c0ff:center"};
    render("Twice 世界", scene);
    const std::string first = slurp(file("out.png"));
    render("Twice 世界", scene);
    EXPECT_EQ(first, slurp(file("out.png")));
}

TEST_F(RenderCommand, TextComesFromArgumentFileOrStandardInput) {
    const Image argument = render("Two\nlines");
    const Image file = render("", {"--text-file", write("text", "Two\r\nlines\n")});
    const Image piped = render("-", {}, "Two\nlines\n");
    EXPECT_EQ(argument.rgba, file.rgba);
    EXPECT_EQ(argument.rgba, piped.rgba);
}

TEST_F(RenderCommand, StrokeWidensThePictureByItsMargin) {
    const Image plain = render("Edge");
    const Image outside = render("Edge", {"--stroke", "8:#202020"});
    const Image center = render("Edge", {"--stroke", "8:#202020:center"});
    const Image inside = render("Edge", {"--stroke", "8:#202020:inside"});
    EXPECT_EQ(outside.width, plain.width + 16);
    EXPECT_EQ(outside.height, plain.height + 16);
    EXPECT_EQ(center.width, plain.width + 8);
    EXPECT_EQ(inside.width, plain.width);
    EXPECT_GT(outside.ink(), center.ink());
    EXPECT_GT(center.ink(), plain.ink());
    EXPECT_EQ(inside.ink(), plain.ink());
}

TEST_F(RenderCommand, AlignmentGravityAndLimitsPlaceTheLines) {
    const std::string text = "one two three";
    const Image left = render(text, {"--width", "500"}),
                right = render(text, {"--width", "500", "--align", "right"});
    EXPECT_EQ(left.width, 500u);
    EXPECT_GT(left.ink(0, 50), 0u);
    EXPECT_EQ(right.ink(0, 20), 0u);
    EXPECT_GT(right.ink(450, 500), 0u);
    EXPECT_EQ(left.ink(), right.ink());

    const Image wrapped = render(text, {"--width", "200"});
    EXPECT_GT(wrapped.height, left.height) << "the words wrap";
    const Image limited = render(text, {"--width", "200", "--max-lines", "1"});
    EXPECT_EQ(limited.height, left.height);
    EXPECT_LT(limited.ink(), wrapped.ink());

    const Image bottom = render(text, {"--width", "500", "--height", "300", "--gravity", "bottom"});
    EXPECT_EQ(bottom.height, 300u);
    const size_t upperHalf = size_t{500} * 150 * 4;
    EXPECT_TRUE(std::all_of(bottom.rgba.begin(), bottom.rgba.begin() + upperHalf,
                            [](uint8_t byte) { return byte == 0; }));
    EXPECT_EQ(bottom.ink(), left.ink());
}

TEST_F(RenderCommand, SpacingFeaturesOpacityAndBackgroundReachThePicture) {
    const Image plain = render("office");
    EXPECT_GT(render("office", {"--letter-spacing", "0.5"}).width, plain.width + 100);
    EXPECT_NE(render("AVAVA", {"--features", "-kern"}).width, render("AVAVA").width);
    const Image half = render("office", {"--opacity", "50%"});
    EXPECT_NEAR(static_cast<double>(half.ink()), static_cast<double>(plain.ink()) / 2,
                static_cast<double>(plain.ink()) / 100);
    const Image boxed = render("office", {"--background", "#0000ff"});
    EXPECT_EQ(boxed.rgba[(size_t{boxed.width} * boxed.height / 2) * 4 + 3], 255);
    EXPECT_GT(boxed.ink(), plain.ink());
    EXPECT_EQ(render("office", {"--padding", "10,20,30,40"}).width, plain.width + 40);
}

TEST_F(RenderCommand, TextIsRenderedAsOnThePhoneOrPlain) {
    const Image phone = render("Hamburg", {"--size", "17"});
    EXPECT_EQ(render("Hamburg", {"--size", "17", "--text-rendering", "phone"}).rgba, phone.rgba);
    const Image plain = render("Hamburg", {"--size", "17", "--text-rendering", "plain"});
    EXPECT_NE(plain.rgba, phone.rgba);
    // One worker draws both, each line as it says.
    EXPECT_EQ(run({"batch", "--font", kFont, "--size", "17", "--output-dir", mFolder},
                  "{\"text\":\"Hamburg\",\"text-rendering\":\"plain\"}\n{\"text\":\"Hamburg\"}\n")
                  .status,
              0);
    EXPECT_EQ(readPng(file("1.png")).rgba, plain.rgba);
    EXPECT_EQ(readPng(file("2.png")).rgba, phone.rgba);
    expectRefused({"x", "--font", kFont, "--text-rendering", "web"}, 2,
                  "--text-rendering: 'web' is not one of");
}

TEST_F(RenderCommand, FallbackFontsServeWhatTheFirstFontLacks) {
    const Image missing = render("世界", {"--no-fallback"});
    const Image found = render("世界", {"--fallback", kCjkFont});
    EXPECT_NE(missing.rgba, found.rgba);
    // One file for each --fallback, so that the text may follow it.
    const std::string path = file("after.png");
    const Result after = run({"render", "--font", kFont, "--fallback", kArabicFont, "--fallback", kCjkFont,
                              "世界", "--size", "48", "-o", path});
    EXPECT_EQ(after.err, "");
    EXPECT_EQ(readPng(path).rgba, found.rgba);
    // A bold font behind a bold one is drawn as it is, not widened once more.
    EXPECT_EQ(render("世界", {"--fallback", kCjkBold}).ink(), render("世界", {"--font", kCjkBold}).ink());
    const Image arabic = render("سلام", {"--font", kArabicFont});
    EXPECT_GT(arabic.ink(), 0u);
}

TEST_F(RenderCommand, LinesAreHighEnoughForTheirMarks) {
    const Image plain = render("u");
    for (const char* marks : {"\u0302\u0302\u0302\u0302", "\u0323\u0323\u0323\u0323\u0323"}) {
        const Image stacked = render(std::string("u") + marks),
                    cut = render(std::string("u") + marks + "\nu");
        EXPECT_GT(stacked.height, plain.height + 10);
        EXPECT_EQ(stacked.ink() + plain.ink(), cut.ink()) << "no line is drawn over another";
    }
}

TEST_F(RenderCommand, WritesToStandardOutputAndThroughALink) {
    const Result piped = run({"render", "Pipe", "--font", kFont, "-o", "-"});
    EXPECT_EQ(piped.status, 0) << piped.err;
    write("piped.png", piped.out);
    EXPECT_GT(readPng(file("piped.png")).ink(), 0u);
    render("Mode");
    EXPECT_EQ(fs::status(file("out.png")).permissions(), fs::status(file("piped.png")).permissions());
    fs::remove(file("out.png"));

    write("target.png", "old");
    fs::create_symlink(file("target.png"), file("out.png"));
    render("Link");
    EXPECT_TRUE(fs::is_symlink(file("out.png")));
    EXPECT_GT(readPng(file("target.png")).ink(), 0u);
}

TEST_F(RenderCommand, BadFontsAreNamedAndLeaveTheOutputAlone) {
    const std::string whole = slurp(kFont);
    expectRefused({"x"}, 2, "--font");
    expectRefused({"x", "--font", file("none.ttf")}, 1, "--font: cannot read '");
    expectRefused({"x", "--font", mFolder}, 1, "--font: '" + mFolder.string() + "' is a folder");
    expectRefused({"x", "--font", write("empty.ttf", "")}, 1,
                  "--font: '" + file("empty.ttf").string() + "' is empty");
    expectRefused({"x", "--font", write("garbage.ttf", std::string(5000, 'z'))}, 1, "--font: '");
    expectRefused({"x", "--font", write("cut.ttf", whole.substr(0, 200))}, 1, "--font: '");
    expectRefused({"x", "--font", ""}, 2, "--font: is required");
    expectRefused({"x", "--font", kFont, "--fallback", file("none.ttf")}, 1, "--fallback: cannot read '");
}

TEST_F(RenderCommand, BadValuesAreNamedAndLeaveTheOutputAlone) {
    const auto refuse = [&](std::vector<std::string> more, const std::string& message) {
        more.insert(more.begin(), {"x", "--font", kFont});
        expectRefused(more, 2, message);
    };
    for (const char* size : {"0", "-1", "nan", "1e9", "inf", "", "big"}) refuse({"--size", size}, "--size: ");
    for (const char* width : {"0", "2147483648", "-5", "32768"}) refuse({"--width", width}, "--width: ");
    refuse({"--width", "32767", "--height", "32767"}, "--width: the picture would be");
    refuse({"--height", "2147483648"}, "--height: ");
    refuse({"--color", "orange"}, "--color: ");
    refuse({"--color", "a\nb"}, "--color: 'a?b'");
    refuse({"--outer-glow", "size=8,spread=2"},
           "--outer-glow: 'spread' is not one of its keys: size, color, opacity, stops");
    refuse({"--align", "middle"}, "--align: 'middle' is not one of center, left, right");
    refuse({"--width", "20", "--padding", "10"}, "--width: the padding");
    refuse({"--stroke", "8:#000:under"}, "--stroke position: ");
    refuse({"--sizes"}, "The following argument was not expected: --sizes");
    expectRefused({"", "--font", kFont}, 2, "TEXT: the text is empty");
    expectRefused({"a\xFF", "--font", kFont}, 2, "TEXT: the text is not UTF-8 (byte 1)");
    expectRefused({"--font", kFont, "--text-file", write("nul", std::string("a\0b", 3))}, 1,
                  "--text-file: the text holds a NUL");
    expectRefused({"--font", kFont, "--text-file", file("none.txt")}, 1, "--text-file: cannot read");
    expectRefused({std::string(800, 'W'), "--font", kFont}, 2, "--size: a line of the text is wider");
    expectRefused({std::string(12000, '\n'), "--font", kFont, "--size", "10000"}, 2,
                  "--size: the lines of the text are higher than 100000000 pixels");
}

TEST_F(RenderCommand, AMillionCharacters) {
    const auto render = [&](int characters, std::vector<std::string> more) {
        std::string text;
        while (static_cast<int>(text.size()) < characters) text += "lorem ipsum ";
        more.insert(more.begin(), {"render", "--text-file", write("text", text), "--font", kFont, "--size",
                                   "10", "-o", file("out.png")});
        const Result result = run(more);
        EXPECT_LT(result.seconds, 25 * TimeLimit::SLOWNESS);
        return result;
    };
    EXPECT_EQ(render(1'000'000, {}).err,
              "zvtext: --size: a line of the text is wider than 65535 pixels; lower --size or set --width\n");
    EXPECT_FALSE(fs::exists(file("out.png")));
    const std::vector<std::string> wrapped = {"--width", "1000", "--max-lines", "30"};
    EXPECT_EQ(render(10'000, wrapped).status, 0);
    const std::string expected = slurp(file("out.png"));
    EXPECT_EQ(render(1'000'000, wrapped).status, 0);
    EXPECT_EQ(slurp(file("out.png")), expected);
}

// Styles print without a text or a font, and read back to the same picture and the same file.
TEST_F(RenderCommand, APrintedStyleReadsBackToTheSamePicture) {
    const std::vector<std::string> scene = {"render", "AVAVA", "--font", kFont, "-o", file("out.png")};
    const auto renderWith = [&](std::vector<std::string> more) {
        more.insert(more.begin(), scene.begin(), scene.end());
        const Result result = run(more);
        EXPECT_EQ(result.status, 0) << result.err;
        return slurp(file("out.png"));
    };
    const std::vector<std::string> look = {"--size",           "33.3",
                                           "--color",          "#80ff8800",
                                           "--background",     "#eee",
                                           "--features",       "-kern",
                                           "--opacity",        "60%",
                                           "--letter-spacing", "0.05",
                                           "--stroke",         "3:#40001020:center"};
    std::vector<std::string> print = {"render", "--print-style"};
    print.insert(print.end(), look.begin(), look.end());
    const Result printed = run(print);
    ASSERT_EQ(printed.status, 0) << printed.err;
    const std::string style = write("style.json", printed.out);
    EXPECT_EQ(run({"render", "--print-style", "--style", style}).out, printed.out);
    EXPECT_EQ(run({"render", "--print-style", "--style", "-"}, printed.out).out, printed.out);
    EXPECT_EQ(renderWith({"--style", style}), renderWith(look));
    // Other options win over the style wherever they stand; with --output, printing renders as well.
    const std::string larger = renderWith({"--size", "50", "--style", style, "--print-style"});
    EXPECT_EQ(slurp(file("stdout")).find("\"size\": 50,") == std::string::npos, false);
    EXPECT_EQ(renderWith({"--style", style, "--size", "50"}), larger);
}

TEST_F(RenderCommand, EffectsStackInTheOrderGiven) {
    const auto key = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"render", "--print-key"});
        const Result result = run(options);
        EXPECT_EQ(result.status, 0) << result.err;
        return result.out;
    };
    const std::string style = write("style.json", R"({"effects": [{"type": "stroke", "width": 3}]})");
    const std::string stroke = "4b838f8f8080808080808081", shadow = "53818786888f8f808080808080";
    const std::string text = "548f8f818283848586\n";
    const auto keyOf = [&](std::vector<std::string> options) {
        options.insert(options.end(), {"--color", "#123456"});
        return key(options);
    };
    EXPECT_EQ(keyOf({"--stroke", "3"}), stroke + text);
    EXPECT_EQ(keyOf({"--stroke", "3", "--outer-shadow", "opacity=1"}), stroke + shadow + text);
    EXPECT_EQ(keyOf({"--outer-shadow", "opacity=1", "--style", style}), shadow + stroke + text);
    EXPECT_EQ(keyOf({"--style", style, "--outer-shadow", "opacity=1"}), stroke + shadow + text);
    EXPECT_EQ(keyOf({"--stroke", "9", "--outer-shadow", "opacity=1", "--style", style}),
              stroke + shadow + text);
}

TEST_F(RenderCommand, PresetsAreTheExampleStyles) {
    const fs::path styles = fs::path(ZVTEXT_SOURCE) / "examples/styles";
    std::stringstream list(run({"presets"}).out);
    size_t count = 0;
    for (std::string line; std::getline(list, line); ++count) {
        const std::string name = line.substr(0, line.find(' '));
        EXPECT_GT(line.size(), name.size() + 10) << "no description: " << line;
        std::string printed[2];
        for (const char* size : {"48", "300"}) {
            const Result preset = run({"render", "--preset", name, "--size", size, "--print-style"});
            EXPECT_EQ(preset.status, 0) << preset.err;
            const std::string file = styles / (name + ".json");
            EXPECT_EQ(preset.out, run({"render", "--style", file, "--size", size, "--print-style"}).out);
            printed[*size == '3'] = preset.out.substr(preset.out.find("effects"));
        }
        EXPECT_NE(printed[0], printed[1]) << name << " stays the same at every size";
    }
    EXPECT_EQ(count, static_cast<size_t>(std::distance(fs::directory_iterator(styles), {})));
    EXPECT_GE(count, 12u);
    // In the order of the options: the stroke of sticker is replaced, and stays 40 pixels wide at any size.
    const std::string mixed =
        run({"render", "--preset", "sticker", "--stroke", "40", "--size", "192", "--print-style"}).out;
    EXPECT_NE(mixed.find("\"width\": 40"), std::string::npos) << mixed;
    const Result unknown = run({"render", "--preset", "list", "--print-style"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_EQ(unknown.err.find("zvtext: --preset: 'list' is not one of aurora, blocks, "), 0u) << unknown.err;
}

TEST_F(RenderCommand, AnOutputThatCannotBeWrittenFails) {
    EXPECT_EQ(run({"render", "x", "--font", kFont, "-o", ""}).err, "zvtext: --output: the path is empty\n");
    EXPECT_EQ(run({"render", "--print-key", "-o", "-"}).status, 2);
    // A pipe stays one, which has to hold before the device below is put at stake.
    ASSERT_EQ(mkfifo(file("pipe").c_str(), 0600), 0);
    const int end = open(file("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(run({"render", "x", "--font", kFont, "-o", file("pipe")}).status, 0);
    char signature[5] = "";
    EXPECT_EQ(read(end, signature, 4), 4);
    EXPECT_STREQ(signature, "\x89PNG");
    close(end);
    ASSERT_TRUE(fs::is_fifo(file("pipe")));
    for (const fs::path& path : {file("no/such/folder.png"), mFolder, fs::path("/dev/full")}) {
        const Result result = run({"render", "x", "--font", kFont, "-o", path});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.err.rfind("zvtext: --output: ", 0), 0u) << result.err;
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    }
}

TEST_F(RenderCommand, HelpHelps) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--help"}, {"render", "--help"}}) {
        const Result result = run(arguments);
        EXPECT_EQ(result.status, 0);
        EXPECT_NE(result.out.find("render"), std::string::npos);
    }
    EXPECT_NE(run({"render", "--help"}).out.find("--letter-spacing"), std::string::npos);
    EXPECT_EQ(run({}).status, 2);
}

TEST_F(RenderCommand, MistakesAreNamed) {
    EXPECT_EQ(run({"rneder", "x"}).err, "zvtext: 'rneder' is no command (see zvtext --help)\n");
    EXPECT_EQ(run({"inspect", "foo"}).err, "zvtext: 'foo' is no command (see zvtext --help)\n");
    for (const char* option : {"--width", "--height", "--max-lines", "--axes", "--text-file", "--metrics"}) {
        const Result result = run({"render", "x", "--font", kFont, "-o", file("x.png"), option, ""});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.err.find(std::string("zvtext: ") + option + ": "), 0u) << result.err;
    }
}

// A file opened while a standard stream is closed must not take its number.
TEST_F(RenderCommand, ClosedStreamsLeaveFilesAlone) {
    const std::string path = file("x.png").string();
    const std::string line = ZVTEXT_BINARY " render x --font " + std::string(kFont) + " -o " + path;
    ASSERT_EQ(std::system((line + " >/dev/null").c_str()), 0);
    const std::string whole = slurp(path);
    EXPECT_NE(std::system((line + " --metrics - <&- >&- 2>/dev/null").c_str()), 0);
    EXPECT_EQ(slurp(path), whole);
}

TEST_F(RenderCommand, ATabIsABlank) {
    const Result result = run({"render", "a\tb", "--font", kFont, "-o", file("tab.png")});
    EXPECT_EQ(result.err, "");
    run({"render", "a b", "--font", kFont, "-o", file("blank.png")});
    EXPECT_EQ(slurp(file("tab.png")), slurp(file("blank.png")));
}

TEST_F(RenderCommand, WhatCannotBePrintedIsAnError) {
    const std::string font = kFont, folder = mFolder.string();
    for (const std::string& command :
         {std::string("--help"), std::string("--version"), std::string("version"), std::string("presets"),
          std::string("completion"), "inspect font " + font,
          "render x --font " + font + " -o " + folder + "/a.png",
          "gallery --only pattern " + folder + "/gallery"}) {
        for (const char* stream : {" >/dev/full", " >&-"}) {
            const std::string line = ZVTEXT_BINARY " " + command + stream + " 2>" + folder + "/errors";
            EXPECT_EQ(WEXITSTATUS(std::system(line.c_str())), 1) << line;
            EXPECT_FALSE(fs::exists(file("a.png")));
            EXPECT_NE(slurp(file("errors")).find("zvtext: cannot write to standard output"),
                      std::string::npos)
                << line;
        }
    }
}

}  // namespace
