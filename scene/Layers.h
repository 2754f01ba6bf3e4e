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
    // For each kind of effect, by its index: the text size that it is designed for. Kinds without one are
    // used unchanged.
    std::map<size_t, double> designedFor;

    // Adds an effect, or replaces the one of its kind: look.add(StrokeSettings{6, 0xFF202020}).
    Look& add(EffectSettings settings);
};

// One of several layers of a text, each with its own effects.
struct LayerSettings : Look {
    std::optional<uint32_t> color;  // of the text; else the style's colour
    double opacity = 1;
    double spread = 0;  // pixels by which the glyphs are first widened, or narrowed if negative
    Offset offset;      // of the layer, in pixels
    LayerBlend blend = LayerBlend::Normal;  // how it mixes with what is behind it
    bool clip = false;  // shows only where the nearest layer behind it that is not clipped shows
    // Emoji in their own colours; unset: the front layer's, unless another layer has them.
    std::optional<bool> colorGlyphs;
    bool knockout = false;  // hidden within the glyphs, before spread and offset
};
Fields fieldsOf(LayerSettings& layer);

constexpr size_t kMaxLayers = 32;

// The background of a whole picture: a colour, or one of the effects that canvasKinds names.
struct Canvas {
    std::variant<uint32_t, EffectSettings> fill;
};

// "linear-gradient, radial-gradient, pattern"; and the one with that name, or null.
std::string canvasKinds();
const EffectKind* findCanvasKind(const std::string& name);

constexpr char kWantedCanvas[] = "a canvas; write a colour, or KIND:KEY=VALUE,... with one of the kinds ";

// COLOR or KIND:KEY=VALUE,KEY=VALUE. Throws UsageError, its message opening with `where`.
Canvas parseCanvas(const std::string& where, const std::string& text, const FilePlaces& places = {});
std::string formatCanvas(const Canvas& canvas);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_LAYERS_H_
