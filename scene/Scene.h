// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENE_H_
#define ZVEX_SCENE_SCENE_H_

#include <cstdint>
#include <string>
#include <vector>

#include "platform/host/Rendering.h"
#include "scene/Rendering.h"
#include "scene/Style.h"
#include "scene/Values.h"

namespace Zvex::scene {

// One picture to make: everything the command line can say of it. Sizes are pixels, colours 0xAARRGGBB.
struct Scene {
    enum class Align { Left, Center, Right };
    enum class Gravity { Top, Center, Bottom };

    std::string text;                    // UTF-8, not empty
    std::string font;                    // as chooseFont reads it
    std::string axes;                    // of that font, "wght=650,opsz=20"; empty: as it stands
    std::vector<std::string> fallbacks;  // the fonts asked next, in this order; as chooseFont reads them
    FolderScope fontScope, fallbackScope;
    bool systemFallback = true;  // the system's fonts behind these
    Style style;
    int width = 0;   // of the view, padding included; 0: as wide as the widest line
    int height = 0;  // of the view, padding included; 0: as high as the lines shown
    Align align = Align::Left;
    Gravity gravity = Gravity::Top;
    int maxLines = 0;  // 0: all
    Padding padding;
    host::Rendering rendering = host::Rendering::Phone;  // of the whole process from then on
    bool trim = false;                                   // the picture without its transparent border
};

// The largest picture made, effect margins included: each side, and the pixels in all (about 1.5 GB of
// working memory).
constexpr int kMaxSide = 32767;
constexpr int64_t kMaxPixels = 100'000'000;

// Renders the scene through a text object of the library. The fallback fonts become the process's system
// families in place of those of the scene before. Throws UsageError or Failure.
Rendering renderScene(const Scene& scene);

// The layer key of the style's effects and text colour (see ZvEffect::getMapKey), two hex digits a byte; of a
// style with layers a line for each, front to back.
// Throws Failure.
std::string layerKeyInHex(const Style& style);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENE_H_
