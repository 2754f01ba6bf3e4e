// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENELAYOUT_H_
#define ZVEX_SCENE_SCENELAYOUT_H_

#include <cstdint>
#include <vector>

#include "scene/ColorRun.h"
#include "scene/LineShaper.h"
#include "scene/Metrics.h"
#include "scene/Scene.h"
#include "scene/SceneFonts.h"
#include "scene/SceneText.h"
#include "text/LinePainter.h"
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
    double size = 0;   // of the text, after it was fitted
    bool fits = true;  // whether the least size of the scene's `fit` was small enough
    std::vector<Zvex::LaidOutLine> lines;
    std::vector<LineForm> forms;                 // of each line
    std::vector<std::vector<LineGlyph>> glyphs;  // of each line, from left to right
    std::vector<ColorRun> colors;                // of each line
    std::vector<Box> inks;                       // of each line, from its left end and baseline
};

// The width at which the scene's lines wrap, without the padding; 0 if they do not wrap. Throws UsageError if
// the padding leaves no width.
int wrapWidthOf(const Scene& scene);

// The paint of a scene's text, but for its size.
android::Paint paintOf(const Scene& scene);

// A scene's text broken into lines, and what draws them. With an ellipsis, lines that do not show are left
// out. A line's height comes from the style's line height, else from the first font's metrics, or from its
// ink if a fallback font's glyphs extend further, so that no line covers another's marks.
class SceneLayout : public Zvex::LinePainter {
public:
    // The size is the scene's. Throws UsageError if a line is wider than the library allows, or if all lines
    // together are too high. The text must outlive it.
    SceneLayout(const Scene& scene, const SceneFonts& fonts, const SceneText& text,
                const android::Paint& paint);

    const LaidOutText& lines() const { return mLines; }

    // Passes text, fonts and paint to the object, which must be constructed, and draws its lines from then
    // on. Throws Failure.
    void setUp(Zvex::ZvTextObject& object, const SceneFonts& fonts) const;

    Zvex::DrawnLines::Image paint(const Zvex::DrawnLines::Range& range, float* advance) const override;

private:
    const SceneText& mText;
    LaidOutText mLines;
    const LineShaper mShaper;
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENELAYOUT_H_
