// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDERING_H_
#define ZVEX_TOOLS_ZVTEXT_RENDERING_H_

#include "tools/zvtext/Metrics.h"
#include "tools/zvtext/Picture.h"

namespace zvtext {

// A picture and where its parts lie.
struct Rendering {
    Picture picture;
    Metrics metrics;
};

// Cuts off the rows and columns around the picture in which every pixel is transparent. Of a picture that is
// transparent throughout, the top left pixel stays.
void trimRendering(Rendering& rendering);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDERING_H_
