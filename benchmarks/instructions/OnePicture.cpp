// SPDX-License-Identifier: Apache-2.0
//
// Draws one picture for scripts/instructions, which counts the instructions of countedPicture
// and countedTitle.
//
//     one_picture SCENE small|large baseline|avx2     a scene of benchmarks/Scenes.h
//     one_picture NAME title baseline|avx2            a title of kTitles
//     one_picture --coverage                          writes the coverage of the small scenes, 1024x256 bytes
//     one_picture --compiler
//
// A scene is drawn twice, and the second time is counted: by then the process has loaded everything that it
// loads once. As in scripts/compare, it is the picture of a new text object with a new glyph cache. A title
// is the second of two with the same letters, drawn as zvtext batch draws its lines. The exit status is 3 if
// the machine lacks the instruction set.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "benchmarks/Scenes.h"
#include "benchmarks/instructions/Compiler.h"
#include "platform/host/GlyphCache.h"
#include "raster/CpuTarget.h"
#include "scene/Scene.h"
#include "text/ZvTextObject.h"

using Zvex::CpuTarget;

namespace {

const uint32_t* draw(Zvex::ZvTextObject& object, const char* scene, bench::Canvas canvas) {
    if (!bench::prepareScene(object, scene, canvas)) return nullptr;
    return object.RenderTextEffect(canvas.width(), canvas.height());
}

int fail(const char* what) {
    std::fprintf(stderr, "one_picture: %s\n", what);
    return 1;
}

}  // namespace

// Separate functions with C names, for callgrind's --toggle-collect=counted*.
extern "C" __attribute__((noinline, visibility("default"))) const uint32_t* countedPicture(
    Zvex::ZvTextObject* object, const char* scene, const bench::Canvas* canvas) {
    return draw(*object, scene, *canvas);
}

extern "C" __attribute__((noinline, visibility("default"))) void countedTitle(const Zvex::scene::Scene* title,
                                                                              Zvex::scene::Picture* picture) {
    *picture = Zvex::scene::render(*title).picture;
}

namespace {

constexpr struct {
    const char *name, *style;
} kTitles[] = {
    {"small-title", R"({"size": 32, "effects": [{"type": "stroke", "width": 2},
        {"type": "outer-shadow", "angle": 135, "distance": 3, "size": 6}]})"},
    {"gold", R"({"extends": "gold", "size": 96})"},
    {"hard-emboss", R"({"size": 96, "effects": [{"type": "emboss", "technique": "hard", "size": 100}]})"},
    {"many-effects",
     R"({"size": 96, "effects": [{"type": "outer-glow", "size": 20}, {"type": "stroke", "width": 4},
        {"type": "outer-shadow", "size": 10}, {"type": "inner-shadow", "size": 8}, {"type": "linear-gradient", "stops": [{"color": "red", "position": 0}, {"color": "blue", "position": 100}]},
        {"type": "bevel", "size": 10}]})"}};

int drawTitle(const char* style) {
    Zvex::scene::Scene title;
    title.font = bench::kFont;
    title.style = Zvex::scene::styleFromText(style);
    title.text = "A Title of Gold";
    Zvex::scene::Picture picture = Zvex::scene::render(title).picture;
    title.text = "Gold of A Title";
    countedTitle(&title, &picture);
    const auto ink =
        std::count_if(picture.pixels.begin(), picture.pixels.end(), [](uint32_t p) { return p != 0; });
    return ink < 1000 ? fail("hardly any ink") : 0;
}

int drawScene(const char* scene, bench::Canvas canvas) {
    Zvex::ZvTextObject first, second;  // the first keeps the font loaded
    if (draw(first, scene, canvas) == nullptr) return fail("the scene cannot be drawn");
    host::clearGlyphCache();
    const uint32_t* argb = countedPicture(&second, scene, &canvas);
    if (argb == nullptr) return fail("the scene cannot be drawn again");
    uint64_t ink = 0;
    for (int i = 0; i < canvas.width() * canvas.height(); ++i) ink += argb[i] >> 24;
    const auto em = static_cast<uint64_t>(canvas.glyphSize());
    return ink < em * em * 255 ? fail("hardly any ink") : 0;
}

// The text is opaque, so the alpha of the fill is the coverage.
int writeCoverage() {
    const bench::Canvas canvas;
    Zvex::ZvTextObject object;
    const uint32_t* argb = draw(object, "S1", canvas);
    if (argb == nullptr) return fail("the text cannot be drawn");
    for (int i = 0; i < canvas.width() * canvas.height(); ++i) std::putchar(static_cast<int>(argb[i] >> 24));
    return std::fflush(stdout) == 0 ? 0 : fail("the coverage cannot be written");
}

}  // namespace

int main(int argc, char** argv) {
    const std::string first = argc > 1 ? argv[1] : "";
    if (first == "--compiler") return std::puts(kCompiler) < 0 ? 1 : 0;
    if (first == "--coverage") return writeCoverage();
    if (argc != 4) return fail("give a scene, its size and an instruction set");
    const CpuTarget target = std::strcmp(argv[3], "avx2") == 0 ? CpuTarget::Avx2 : CpuTarget::Baseline;
    Zvex::limitCpuTarget(target);
    if (Zvex::cpuTarget() != target) return 3;
    if (std::strcmp(argv[2], "title") == 0) {
        for (const auto& title : kTitles) {
            if (first == title.name) return drawTitle(title.style);
        }
        return fail("there is no such title");
    }
    bench::Canvas canvas;
    canvas.scale = std::strcmp(argv[2], "large") == 0 ? 4 : 1;
    return drawScene(argv[1], canvas);
}
