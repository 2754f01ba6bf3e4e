// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_BENCHMARKS_SCENES_H_
#define ZVEX_BENCHMARKS_SCENES_H_

#include <string>

#include "text/ZvTextObject.h"

// The whole pictures for timing the library, alone and beside other renderers: one line of 13 glyphs in
// orange, DejaVu Sans Bold, on a transparent canvas.
//
//     S1  fill
//     S2  outside stroke of width 8
//     S3  opaque black shadow, moved by (8, 8), blur of size 30: the standard deviation is 10
//     S4  linear gradient, red to blue, from the left of the text to its right
//     S5  the stroke, the shadow and the gradient together
//     S6  blue outer glow of size 20
//     S7  soft inner bevel of size 10, lit from the upper left
//
// small is 1024x256 with glyphs of 120 pixels; in large every length is 4 times that. The line is slightly
// wider than the canvas, which cuts its last glyph.
namespace bench {

constexpr char kText[] = "Hamburgefonst";
constexpr char kFont[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr const char* kScenes[] = {"S1", "S2", "S3", "S4", "S5", "S6", "S7"};

struct Canvas {
    int scale = 1;  // 1 small, 4 large
    int width() const { return 1024 * scale; }
    int height() const { return 256 * scale; }
    int glyphSize() const { return 120 * scale; }
    int penX() const { return 10 * scale; }
    int inkX() const { return 21 * scale; }  // the H stands 0.09 em right of the pen
    int baseline() const { return 192 * scale; }
};

// Prepares a text object, not yet constructed, for `RenderTextEffect(canvas.width(), canvas.height())`. The
// effects' margins are part of the canvas, so the glyphs are at the same position in every scene. False for
// an unknown scene or a font that cannot be loaded.
bool prepareScene(Zvex::ZvTextObject& object, const std::string& scene, Canvas canvas,
                  const char* font = kFont);

}  // namespace bench

#endif  // ZVEX_BENCHMARKS_SCENES_H_
