// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_RENDERING_H_
#define ZVEX_SCENE_RENDERING_H_

#include <string>
#include <vector>

#include "scene/Metrics.h"
#include "scene/Picture.h"

namespace Zvex::scene {

// A picture and where its parts lie.
struct Rendering {
    Picture picture;
    Metrics metrics;
    std::vector<std::string> warnings;  // each a line: characters without a glyph
};

// Cuts off the rows and columns around the picture in which every pixel is transparent. Of a picture that is
// transparent throughout, the top left pixel stays.
void trimRendering(Rendering& rendering);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_RENDERING_H_
