// SPDX-License-Identifier: Apache-2.0
//
// For scenes.mjs: times the pictures of benchmarks/Scenes.h, as a program of this machine with the
// kernels that every x86-64 has, and as WebAssembly.
//
//     scene_times SIZE     of the font, whose bytes standard input begins with: WebAssembly has no files
//
// Then a line of input for each picture, "S5 1": a scene and its scale. It is answered with the milliseconds
// and a digest of the pixels. As in scripts/compare, each picture is one of a new text object and a new glyph
// cache.
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "benchmarks/Scenes.h"
#include "platform/host/GlyphCache.h"
#include "raster/CpuTarget.h"
#include "text/FontManager.h"

namespace {

using Clock = std::chrono::steady_clock;

uint64_t digestOf(const uint32_t* pixels, int count) {
    uint64_t digest = 0xCBF29CE484222325;
    for (int i = 0; i < count; ++i) digest = (digest ^ pixels[i]) * 0x100000001B3;
    return digest;
}

bool readFont(unsigned int size) {
    char* const bytes = new char[size];
    return std::fread(bytes, 1, size, stdin) == size &&
           Zvex::FontManager::GetInstance()->AddMinikinFont(bench::kFont, bytes, size, 0, true);
}

bool answer(const char* scene, int scale) {
    bench::Canvas canvas;
    canvas.scale = scale;
    host::clearGlyphCache();
    const auto begin = Clock::now();
    Zvex::ZvTextObject object;
    if (!bench::prepareScene(object, scene, canvas)) return false;
    const uint32_t* argb = object.RenderTextEffect(canvas.width(), canvas.height());
    const std::chrono::duration<double, std::milli> elapsed = Clock::now() - begin;
    if (argb == nullptr) return false;
    std::printf("%.4f %016llx\n", elapsed.count(),
                static_cast<unsigned long long>(digestOf(argb, canvas.width() * canvas.height())));
    return std::fflush(stdout) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    Zvex::limitCpuTarget(Zvex::CpuTarget::Baseline);
    Zvex::ZvTextObject first;  // keeps the font loaded
    if (argc != 2 || !readFont(static_cast<unsigned int>(std::atoi(argv[1]))) ||
        !bench::prepareScene(first, "S1", bench::Canvas())) {
        std::fputs("scene_times: there is no font on standard input\n", stderr);
        return 1;
    }
    char scene[8];
    int scale = 1;
    while (std::scanf("%7s %d", scene, &scale) == 2) {
        if (!answer(scene, scale)) return 1;
    }
    return 0;
}
