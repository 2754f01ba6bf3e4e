// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_LAYEREDSCENE_H_
#define ZVEX_SCENE_LAYEREDSCENE_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "effect/TextLayers.h"
#include "effect/ZvEffect.h"
#include "raster/ZvBitmap.h"
#include "scene/ColorGlyphs.h"
#include "scene/Style.h"
#include "text/ZvTextObject.h"

namespace Zvex::scene {

// The effect stacks of a style's layers, or of its effects as the only layer. Throws Failure as addEffects
// does.
struct LayerStacks {
    explicit LayerStacks(const Style& style);

    std::vector<std::unique_ptr<Zvex::ZvEffect>> stacks;  // equal layers share one
    std::vector<Zvex::TextLayer> layers;                  // from the back, with these stacks

private:
    void add(const Look& look, uint32_t color);

    std::vector<std::string> mSettings;  // of each stack
};

// The colour, its alpha multiplied by the opacity.
uint32_t withOpacity(uint32_t color, double opacity);

// Draws a style with layers or with a canvas, and glyphs in their own colours.
class LayeredScene {
public:
    static bool isFor(const Style& style) { return !style.layers.empty() || style.canvas.has_value(); }

    // Sets up the object's colours and effects, which ask for the layers' margins. The object and the style
    // must outlive this. Throws Failure.
    LayeredScene(const Style& style, Zvex::ZvTextObject& object);

    // The object's lines and view must be set; `runs` belong to these lines. `picture` is transparent, 4
    // bytes a pixel, and becomes straight words 0xAARRGGBB. Throws Failure if memory is short.
    void render(Zvex::ZvBitmap& picture, const std::vector<PlacedRun>& runs);

private:
    // One layer's glyphs in their colours, and the effects around them.
    struct Colors {
        Zvex::ColorGlyphLayer glyphs;
        Zvex::ZvEffect around;
    };
    std::unique_ptr<Colors> colorsOf(const Look& look, uint32_t color, const Zvex::ZvBitmap& picture,
                                     const std::vector<PlacedRun>& runs) const;
    void setColors(std::vector<Zvex::TextLayer>& layers, std::vector<std::unique_ptr<Colors>>& colors,
                   const Zvex::ZvBitmap& picture, const std::vector<PlacedRun>& runs);

    const Style& mStyle;
    Zvex::ZvTextObject& mObject;
    const LayerStacks mStacks;
    Zvex::TextCoverage* mCoverage;  // the object's
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_LAYEREDSCENE_H_
