// SPDX-License-Identifier: Apache-2.0
//
// Draws one picture of benchmarks/Scenes.h for scripts/instructions, which counts the instructions of
// countedPicture.
//
//     one_picture SCENE small|large baseline|avx2
//     one_picture --compiler
//
// The picture is drawn twice, and the second time is counted: by then the process has loaded everything that
// it loads once. As in scripts/compare, it is the picture of a new text object with a new glyph cache. The
// exit status is 3 if the machine lacks the instruction set.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "benchmarks/Scenes.h"
#include "platform/host/GlyphCache.h"
#include "raster/CpuTarget.h"
#include "text/ZvTextObject.h"

#if defined(__clang__)
constexpr char kCompiler[] = "clang++ " __clang_version__;
#else
constexpr char kCompiler[] = "g++ " __VERSION__;
#endif

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

// A separate function with a C name, for callgrind's --toggle-collect.
extern "C" __attribute__((noinline, visibility("default"))) const uint32_t* countedPicture(
    Zvex::ZvTextObject* object, const char* scene, const bench::Canvas* canvas) {
    return draw(*object, scene, *canvas);
}

int main(int argc, char** argv) {
    if (argc == 2 && std::strcmp(argv[1], "--compiler") == 0) return std::puts(kCompiler) < 0 ? 1 : 0;
    if (argc != 4) return fail("give a scene, a size and an instruction set");
    bench::Canvas canvas;
    canvas.scale = std::strcmp(argv[2], "large") == 0 ? 4 : 1;
    const CpuTarget target = std::strcmp(argv[3], "avx2") == 0 ? CpuTarget::Avx2 : CpuTarget::Baseline;
    Zvex::limitCpuTarget(target);
    if (Zvex::cpuTarget() != target) return 3;

    Zvex::ZvTextObject first, second;  // the first keeps the font loaded
    if (draw(first, argv[1], canvas) == nullptr) return fail("the scene cannot be drawn");
    host::clearGlyphCache();
    const uint32_t* argb = countedPicture(&second, argv[1], &canvas);
    if (argb == nullptr) return fail("the scene cannot be drawn again");
    uint64_t ink = 0;
    for (int i = 0; i < canvas.width() * canvas.height(); ++i) ink += argb[i] >> 24;
    const auto em = static_cast<uint64_t>(canvas.glyphSize());
    return ink < em * em * 255 ? fail("hardly any ink") : 0;
}
