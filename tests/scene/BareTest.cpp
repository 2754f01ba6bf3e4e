// SPDX-License-Identifier: Apache-2.0
// The scene without files, fontconfig, PNG and WebP, as a browser has it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

#include "scene/Failure.h"
#include "scene/Png.h"
#include "scene/Scene.h"

namespace Zvex::scene {
namespace {

TEST(Bare, DrawsWithTheBytesOfAFontAndTheTextOfAStyle) {
    std::ifstream font("/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf", std::ios::binary);
    Scene scene;
    scene.text = "Bare \uE123";
    scene.font = Font::fromBytes(std::string(std::istreambuf_iterator<char>(font), {}));
    scene.style = styleFromText(R"({"color": "#ff8800", "effects": [{"type": "stroke", "width": 3}]})");
    const Rendering made = render(scene);
    const std::vector<uint32_t>& pixels = made.picture.pixels;
    EXPECT_GT(std::count(pixels.begin(), pixels.end(), 0xFFFF8800u), 1000);
    EXPECT_GT(std::count(pixels.begin(), pixels.end(), 0xFF000000u), 300);
    EXPECT_EQ(made.warnings.size(), 1u);
    EXPECT_THROW(encodePng(made.picture), Failure);
    for (const char* name : {"DejaVu Sans", "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf"}) {
        scene.font = name;
        EXPECT_THROW(render(scene), Failure);
    }
    EXPECT_THROW(styleFromFile("/dev/null"), Failure);
}

}  // namespace
}  // namespace Zvex::scene
