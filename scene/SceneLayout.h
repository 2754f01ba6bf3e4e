// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENELAYOUT_H_
#define ZVEX_SCENE_SCENELAYOUT_H_

#include <cstdint>
#include <string>
#include <vector>

#include "scene/ColourGlyphs.h"
#include "scene/LineShaper.h"
#include "scene/Metrics.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "text/LinePlacement.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

// A scene's text as lines are made of it: UTF-16.
struct SceneText {
    explicit SceneText(const Scene& scene);

    std::vector<uint32_t> offsets;  // of each unit in the scene's UTF-8, its end included
    std::u16string units;
    ParagraphDirections directions;

    uint32_t offsetOf(size_t unit) const {
        return offsets[unit < offsets.size() ? unit : offsets.size() - 1];
    }
};

struct LineGlyph {
    size_t cluster = 0;                    // first unit of the characters that it stands for
    const host::FontFace* face = nullptr;  // one of the scene's fonts
    Box box;                               // box of its outline, from the line's left end and baseline
};

// The lines of a text, one below the other from y = 0, each from x = 0.
struct LaidOutText {
    std::vector<Zvex::LaidOutLine> lines;
    std::vector<std::vector<LineGlyph>> glyphs;  // of each line, from left to right
    std::vector<ColourRun> colours;              // of each line
    std::vector<Box> inks;                       // of each line, from its left end and baseline
};

LineShaper shaperOf(const Scene& scene, const SceneFonts& fonts, const SceneText& text);

// Passes text, fonts and paint to the object, which must be constructed; `shaper` draws its lines, and must
// outlive it. Throws Failure.
void setText(Zvex::ZvTextObject& object, const SceneFonts& fonts, const SceneText& text,
             const LineShaper& shaper);

// The width at which the scene's lines wrap, without the padding; 0 if they do not wrap. Throws UsageError if
// the padding leaves no width.
int wrapWidthOf(const Scene& scene);

// Breaks the text into lines and lays them out. A line's height comes from the first font's metrics, or from
// its ink if a fallback font's glyphs extend further, so that no line covers another's marks. Throws
// UsageError if a line is wider than the library allows, or if all lines together are too high.
LaidOutText layOutText(const LineShaper& shaper, const Scene& scene, const SceneFonts& fonts,
                       const SceneText& text);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENELAYOUT_H_
