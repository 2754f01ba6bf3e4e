// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENEPLACEMENT_H_
#define ZVEX_SCENE_SCENEPLACEMENT_H_

#include <cstddef>
#include <vector>

#include "scene/ColorRun.h"
#include "scene/Metrics.h"
#include "scene/Scene.h"
#include "scene/SceneLayout.h"
#include "text/ZvLineInfo.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

// A scene's lines in its view, and the size of the picture: the view plus margins.
struct PlacedScene {
    int width = 0, height = 0;
    Margins margins;                      // those of the effects, and room for ink beyond the view
    Point origin;                         // of the lines' coordinates in the picture
    size_t first = 0;                     // the first line of the text that shows
    std::vector<Zvex::ZvLineInfo> lines;  // the lines that show
};

// Sets up the object's view; its effects must have been added. Throws UsageError if the picture is too large.
PlacedScene placeScene(Zvex::ZvTextObject& object, const Scene& scene, const LaidOutText& text);

// The glyphs with colours of the lines that show, in the picture.
std::vector<PlacedRun> placeRuns(const LaidOutText& laidOut, const PlacedScene& placed);

void setLines(Zvex::ZvTextObject& object, const std::vector<Zvex::ZvLineInfo>& placed);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENEPLACEMENT_H_
