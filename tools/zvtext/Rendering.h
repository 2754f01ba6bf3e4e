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

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDERING_H_
