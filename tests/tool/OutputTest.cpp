// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

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
    expectRefused({"-o", picture, "--metrics", "/dev/full"}, 1, "--metrics: cannot write '/dev/full'");
    expectRefused({"-o", picture, "--metrics", mFolder}, 1,
                  "--metrics: '" + mFolder.string() + "' is a folder");
    expectRefused({"-o", "/dev/full", "--metrics", metrics}, 1, "--output: cannot write '/dev/full'");
    const Result piped = render({"-o", "-", "--metrics", metrics});
    EXPECT_EQ(piped.out.substr(1, 3), "PNG");
    EXPECT_EQ(Json::parse(slurp(metrics))["lines"].size(), 1u);
}

}  // namespace
