// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENE_H_
#define ZVEX_SCENE_SCENE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/host/Rendering.h"
#include "scene/Rendering.h"
#include "scene/Style.h"
#include "scene/Values.h"

namespace Zvex::scene {

// A font: a name for chooseFont of FontChoice.h (a file, FILE#N, a name of the system's), or the bytes of a
// font.
struct Font {
    std::string name;
    std::string axes;                          // "wght=650,opsz=20"; empty: as it stands
    std::shared_ptr<const Source> source;      // of the file; null: see orDefault
    std::shared_ptr<const std::string> bytes;  // in place of a file; fonts stay loaded as long as the process

    Font() = default;
    Font(std::string fontName) : name(std::move(fontName)) {}
    Font(const char* fontName) : name(fontName) {}
    static Font fromBytes(std::string bytes) {
        Font font;
        font.bytes = std::make_shared<const std::string>(std::move(bytes));
        return font;
    }

    bool operator==(const Font& other) const {
        return name == other.name && axes == other.axes && source == other.source && bytes == other.bytes;
    }
};

// The largest picture, effect margins included: the limit of each side, and of all pixels (about 1.5 GB of
// working memory).
constexpr int kMaxSide = 32767;
constexpr int64_t kMaxPixels = 100'000'000;
constexpr NumberRange kViewSide = {1, kMaxSide, "px", false, true};
struct Limits {
    int side = kMaxSide;  // no more than kMaxSide
    int64_t pixels = kMaxPixels;
};

// One picture to make, with everything that the command line can set. Sizes are pixels, colours 0xAARRGGBB.
struct Scene {
    // Start and End are the sides where a line's paragraph begins and ends. Justify fills `width` with the
    // lines that wrap, and the others stand at their start.
    enum class Align { Left, Center, Right, Start, End, Justify };
    enum class Gravity { Top, Center, Bottom };
    // Of each paragraph. Auto: that of its first letter which has one.
    enum class Direction { Auto, LeftToRight, RightToLeft };

    std::string text;  // UTF-8, not empty
    // "tr", "zh-Hant": a BCP-47 tag, for line breaks, upper case, letter forms and the choice of fonts.
    // Empty: by the rules that hold for most languages.
    std::string language;
    Direction direction = Direction::Auto;
    Font font;
    std::vector<Font> fallbacks;  // the fonts searched next, in order
    bool systemFallback = true;   // then the system's fonts
    Style style;
    int width = 0;   // of the view, padding included; 0: as wide as the widest line
    int height = 0;  // of the view, padding included; 0: as high as the lines shown
    Align align = Align::Left;
    Gravity gravity = Gravity::Top;
    int maxLines = 0;       // 0: all
    bool ellipsis = false;  // at the end of the last line, if maxLines or height leave text out
    // The least size, in pixels, to which the text shrinks until it fits width, height and maxLines with all
    // its words whole; 0: it does not shrink.
    double fit = 0;
    // Pixels from a line's start, rising. Beyond the last stop, the distance between the last two (or of the
    // only one) repeats. Empty: a tab is a space.
    std::vector<double> tabStops;
    Padding padding;
    host::Rendering rendering = host::Rendering::Phone;
    Limits limits;
    bool trim = false;  // removes the picture's transparent border
};

// Renders the scene; a Renderer (Renderer.h) does it faster for one like the last. Any thread, any number of
// them at once: only the reading of fonts is one thread's at a time. Nothing is written to standard error.
// Throws Error, and std::bad_alloc.
//
//     Scene scene;
//     scene.text = "Gold";
//     scene.font = "DejaVu Serif:bold";
//     scene.style = styleFromPreset("gold");
//     const Rendering gold = render(scene);  // gold.picture, gold.metrics, gold.warnings
Rendering render(const Scene& scene);

// The same without pixels: nothing is drawn, and the scene's trim has no effect.
Rendering measure(const Scene& scene);

// Renders into the caller's memory: rows of four bytes a pixel, `stride` pixels apart. `width` and `height`
// must be those of measure(). The result has no pixels.
Rendering renderInto(const Scene& scene, uint32_t* pixels, int width, int height, size_t stride,
                     PixelFormat format = PixelFormat::Argb);

// The layer key of the style's effects and text colour (see ZvEffect::getMapKey), two hex digits a byte; of a
// style with layers a line for each, front to back.
// Throws Failure.
std::string layerKeyInHex(const Style& style);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENE_H_
