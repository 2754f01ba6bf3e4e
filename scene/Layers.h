// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_LAYERS_H_
#define ZVEX_SCENE_LAYERS_H_

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "raster/LayerBlend.h"
#include "scene/Effects.h"
#include "scene/Fields.h"

namespace Zvex::scene {

// A set of effects, at most one of each kind, in the order in which they are added.
struct Look {
    std::vector<EffectSettings> effects;
    // The text size that the effects of a kind, by its index, are drawn for; none: they are used as they are.
    std::map<size_t, double> designedFor;

    // Adds an effect, or replaces the one of its kind: look.add(StrokeSettings{6, 0xFF202020}).
    Look& add(EffectSettings settings);
};

// One of several layers of a text, each drawn with effects of its own.
struct LayerSettings : Look {
    std::optional<uint32_t> color;  // of the text; else the style's
    double opacity = 1;
    double spread = 0;  // pixels by which the glyphs are widened first; negative: narrowed
    Offset offset;      // of the layer, in pixels
    LayerBlend blend = LayerBlend::Normal;  // with what is behind it
    bool clip = false;  // shows only where the nearest layer behind it does that is not clipped itself
    // Emoji in their own colours; unset: the front layer's, unless another layer has them.
    std::optional<bool> colorGlyphs;
    bool knockout = false;  // does not show within the glyphs, spread and offset left aside
};
Fields fieldsOf(LayerSettings& layer);

constexpr size_t kMaxLayers = 32;

// The ground of a whole picture: a colour, or one of the effects that canvasKinds names.
struct Canvas {
    std::variant<uint32_t, EffectSettings> fill;
};

// "linear-gradient, radial-gradient, pattern", and which of them has that name; null: none.
std::string canvasKinds();
const EffectKind* findCanvasKind(const std::string& name);

constexpr char kWantedCanvas[] = "a canvas; write a colour, or KIND:KEY=VALUE,... with one of the kinds ";

// COLOR or KIND:KEY=VALUE,KEY=VALUE. Throws UsageError, its message opening with `where`.
Canvas parseCanvas(const std::string& where, const std::string& text, const FilePlaces& places = {});
std::string formatCanvas(const Canvas& canvas);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_LAYERS_H_
