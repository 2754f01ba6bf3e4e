// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_RENDERING_H_
#define ZVEX_SCENE_RENDERING_H_

#include <string>
#include <vector>

#include "scene/Metrics.h"
#include "scene/Picture.h"

namespace Zvex::scene {

// A picture and the positions of its parts.
struct Rendering {
    Picture picture;
    Metrics metrics;
    std::vector<std::string> warnings;  // each a line: of the style's, characters without a glyph
};

// Removes the rows and columns at the picture's edges in which every pixel is transparent. If all pixels are,
// the top left one stays.
void trimRendering(Rendering& rendering);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_RENDERING_H_
