// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENELAYOUT_H_
#define ZVEX_SCENE_SCENELAYOUT_H_

#include <hwui/Paint.h>

#include <cstdint>
#include <string>
#include <vector>

#include "scene/Metrics.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "text/LinePlacement.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

struct LineGlyph {
    size_t cluster = 0;  // unit of the text at which the characters begin that it stands for
    const host::FontFace* face = nullptr;  // of one of the scene's fonts
    Box box;                               // of its outline, from the line's left end and baseline
};

// A text as lines one below the other from y = 0, each from x = 0.
struct LaidOutText {
    std::u16string text;  // what the lines' offsets count
    std::vector<Zvex::LaidOutLine> lines;
    std::vector<std::vector<LineGlyph>> glyphs;  // of each line, from left to right
};

// Hands the scene's text, its fonts and its paint to the object, which is constructed. Throws Failure.
void setText(Zvex::ZvTextObject& object, const Scene& scene, const SceneFonts& fonts);

// One line where the text has characters that the library cannot hold; else empty.
std::string farWarning(const std::string& text);

// The width in which the scene's lines wrap, without the padding; 0 where they do not. Throws UsageError
// where the padding leaves nothing.
int wrapWidthOf(const Scene& scene);

// Breaks the text of an object after setText into lines and lays them out the way the object will draw them:
// same paint, same fonts, same UTF-16 text. A line is as high as the first font's metrics say, or as its ink
// where a fallback font's glyphs reach further, so that no line cuts another's marks off. Throws UsageError
// where a line is wider than the library's lines can be, and where all of them are too high.
LaidOutText layOutText(Zvex::ZvTextObject& object, const Scene& scene, const SceneFonts& fonts);

// Offsets in UTF-8 of the units of the text's UTF-16 form, its end included; the text is well formed.
std::vector<uint32_t> byteOffsets(const std::string& text);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENELAYOUT_H_
