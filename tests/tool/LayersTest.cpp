// SPDX-License-Identifier: Apache-2.0
#include <nlohmann/json.hpp>

#include "tests/tool/Program.h"

namespace {

using Json = nlohmann::json;

class Layers : public Program {
protected:
    Image render(const std::string& style, const std::vector<std::string>& more = {}) const {
        std::vector<std::string> words = {"render", "Hxg", "--font",          kFont,     "--size",
                                          "60",     "-o",  file("layer.png"), "--style", style};
        words.insert(words.end(), more.begin(), more.end());
        const Result result = run(words);
        EXPECT_EQ(result.status, 0) << result.err << style;
        return result.status == 0 ? readPng(file("layer.png")) : Image();
    }
};

uint32_t argbAt(const Image& image, size_t x, size_t y) {
    const uint8_t* p = image.rgba.data() + (y * image.width + x) * 4;
    return uint32_t{p[3]} << 24 | p[0] << 16 | p[1] << 8 | p[2];
}

// The bytes do not depend on the view's position of the text, and an invisible canvas changes nothing.
TEST_F(Layers, ALayerAloneIsTheStyleItself) {
    const std::vector<std::string> views[] = {
        {}, {"--width", "300", "--height", "120", "--padding", "9,5", "--align", "center"}};
    for (const auto& entry : fs::directory_iterator(fs::path(ZVTEXT_SOURCE) / "examples/styles")) {
        Json style = Json::parse(slurp(entry.path()));
        if (style.contains("layers") || style.contains("opacity")) continue;
        Json layered = style, empty = style;
        layered["layers"] = {{{"effects", style["effects"]}}};
        layered.erase("effects");
        empty["canvas"] = "#00000000";
        for (const auto& view : views) {
            const Image plain = render(style.dump(), view);
            EXPECT_EQ(render(layered.dump(), view).rgba, plain.rgba) << entry.path();
            EXPECT_EQ(render(empty.dump(), view).rgba, plain.rgba) << entry.path();
        }
    }
}

// Three outlines on a canvas: the margins fit the widest, each shows where it should, and the moved one in
// front is clipped to the next.
TEST_F(Layers, StandInTheirOrderWithinTheirMargins) {
    const Image plain = render(R"({"color": "#fff"})");
    const Image image =
        render(R"({"canvas": "#0000ff", "background": "#00ff00", "color": "#ffffff", "layers": [
        {"color": "#123456", "offset": [30, 4], "clip": true}, {},
        {"spread": 4, "color": "#ff0000"}, {"spread": 10, "color": "#000000"}]})");
    ASSERT_EQ(image.width, plain.width + 10 + 30);
    ASSERT_EQ(image.height, plain.height + 2 * 10);
    EXPECT_EQ(argbAt(image, 0, 0), 0xFF0000FFu);
    EXPECT_EQ(argbAt(image, image.width - 1, image.height - 1), 0xFF0000FFu);
    size_t fill = 0, clipped = 0, red = 0, black = 0;
    for (size_t y = 0; y < plain.height; ++y) {
        for (size_t x = 0; x < plain.width; ++x) {
            const uint32_t argb = argbAt(image, x + 10, y + 10);
            const bool inside = argbAt(plain, x, y) >> 24 == 255;
            fill += argb == 0xFFFFFFFF;
            clipped += argb == 0xFF123456;
            red += argb == 0xFFFF0000;
            black += argb == 0xFF000000;
            EXPECT_TRUE(inside || (argb != 0xFFFFFFFF && argb != 0xFF123456)) << x << ", " << y;
        }
    }
    EXPECT_GT(std::min({fill, clipped, red, black}), 50u);
}

}  // namespace
