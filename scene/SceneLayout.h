// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENELAYOUT_H_
#define ZVEX_SCENE_SCENELAYOUT_H_

#include <hwui/Paint.h>

#include <cstdint>
#include <string>
#include <vector>

#include "scene/ColourGlyphs.h"
#include "scene/Metrics.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "text/LinePlacement.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

struct LineGlyph {
    size_t cluster = 0;                    // first unit of the characters that it stands for
    const host::FontFace* face = nullptr;  // one of the scene's fonts
    Box box;                               // box of its outline, from the line's left end and baseline
};

// The lines of a text, one below the other from y = 0, each from x = 0.
struct LaidOutText {
    std::u16string text;  // the lines' offsets refer to this
    std::vector<Zvex::LaidOutLine> lines;
    std::vector<std::vector<LineGlyph>> glyphs;  // of each line, from left to right
    std::vector<ColourRun> colours;              // of each line
};

// Passes the scene's text, fonts and paint to the object, which must be constructed. Throws Failure.
void setText(Zvex::ZvTextObject& object, const Scene& scene, const SceneFonts& fonts);

// The width at which the scene's lines wrap, without the padding; 0 if they do not wrap. Throws UsageError if
// the padding leaves no width.
int wrapWidthOf(const Scene& scene);

// Breaks the text of an object into lines, after setText, and lays them out as the object will draw them:
// same paint, same fonts, same UTF-16 text. A line's height comes from the first font's metrics, or from its
// ink if a fallback font's glyphs extend further, so that no line cuts off another's marks. Throws UsageError
// if a line is wider than the library allows, or if all lines together are too high.
LaidOutText layOutText(Zvex::ZvTextObject& object, const Scene& scene, const SceneFonts& fonts);

// The UTF-8 offset of each unit of the text's UTF-16 form, its end included; the text must be well formed.
std::vector<uint32_t> byteOffsets(const std::string& text);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENELAYOUT_H_
