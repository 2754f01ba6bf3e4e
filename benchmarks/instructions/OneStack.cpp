// SPDX-License-Identifier: Apache-2.0
//
// Draws one small picture of benchmarks/Scenes.h from its coverage, for scripts/instructions on machines for
// which only foundation, raster and effect are built.
//
//     one_stack SCENE <coverage     coverage as `one_picture --coverage` writes it
//     one_stack --compiler
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include "benchmarks/SceneEffects.h"
#include "benchmarks/instructions/Compiler.h"
#include "effect/ZvGlyph.h"
#include "raster/ZvBitmap.h"

namespace {

constexpr int kWidth = 1024, kHeight = 256;

// The box of the ink as a glyph; its pixels move to the start of `coverage`. x and y are its place.
Zvex::ZvGlyph cropped(std::vector<uint8_t>& coverage, int& x, int& y) {
    int left = kWidth, top = kHeight, right = 0, bottom = 0;
    for (int i = 0; i < kWidth * kHeight; ++i) {
        if (coverage[static_cast<size_t>(i)] == 0) continue;
        left = std::min(left, i % kWidth);
        right = std::max(right, i % kWidth + 1);
        top = std::min(top, i / kWidth);
        bottom = i / kWidth + 1;
    }
    const int width = std::max(right - left, 0);
    for (int row = top; row < bottom; ++row) {
        std::memmove(&coverage[static_cast<size_t>((row - top) * width)],
                     &coverage[static_cast<size_t>(row * kWidth + left)], static_cast<size_t>(width));
    }
    x = left;
    y = top;
    Zvex::ZvGlyph glyph;
    glyph.pixels = coverage.data();
    glyph.width = static_cast<uint16_t>(width);
    glyph.height = static_cast<uint16_t>(std::max(bottom - top, 0));
    return glyph;
}

int fail(const char* what) {
    std::fprintf(stderr, "one_stack: %s\n", what);
    return 1;
}

}  // namespace

// A separate function with a C name, which scripts/instructions finds among the blocks that ran.
extern "C" __attribute__((noinline, visibility("default"))) void countedPicture(Zvex::ZvEffect* stack,
                                                                                Zvex::ZvGlyph* text, int x,
                                                                                int y,
                                                                                Zvex::ZvBitmap* picture) {
    stack->addText(bench::kOrange);
    stack->initPicture(picture);
    stack->renderEffectLayer(x, y, text);
    stack->drawPicture(Zvex::PixelOrder::BlueFirst);
}

int main(int argc, char** argv) {
    if (argc != 2) return fail("give a scene");
    if (std::strcmp(argv[1], "--compiler") == 0) return std::puts(kCompiler) < 0 ? 1 : 0;
    std::vector<uint8_t> coverage(kWidth * kHeight);
    if (std::fread(coverage.data(), 1, coverage.size(), stdin) != coverage.size()) {
        return fail("the coverage is cut short");
    }
    int x = 0, y = 0;
    Zvex::ZvGlyph text = cropped(coverage, x, y);
    Zvex::ZvBitmap picture(kWidth, kHeight, 4);
    Zvex::ZvEffect stack;
    if (!bench::addEffects(stack, argv[1], 1)) return fail("there is no such scene");
    countedPicture(&stack, &text, x, y, &picture);
    uint64_t ink = 0;
    for (size_t i = 3; i < picture.byteCount(); i += 4) ink += picture.pixels[i];
    return ink < 120 * 120 * 255 ? fail("hardly any ink") : 0;
}
