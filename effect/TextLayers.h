// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_TEXTLAYERS_H_
#define ZVEX_EFFECT_TEXTLAYERS_H_

#include <cstddef>

#include "effect/ZvECoreBase.h"
#include "raster/LayerBlend.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

class ZvEffect;

// A text drawn several times, each time with its own effect stack, and joined: for several strokes, shadows
// and fills.
//
//     TextCoverage goes into the text object's own stack; rendering fills it
//     marginsOf gives the room that the layers need; TextCoverage asks for it
//     drawTextLayers makes the picture

// The glyphs of a layer that have their own colours instead of the stack's fill.
struct ColorGlyphLayer {
    ZvBitmap picture;  // straight words 0xAARRGGBB
    int x = 0, y = 0;  // its top-left in the picture, before the layer moves
    // A stack without text colour: the effects that show around these glyphs. Its opacity is not used. Not
    // owned; null if there are none.
    ZvEffect* around = nullptr;
};

// One of the layers.
struct TextLayer {
    // The stack, its text colour added; not owned, used only by drawTextLayers. Layers may share one.
    ZvEffect* effect = nullptr;
    int spread = 0;    // pixels by which the coverage is widened for the stack (Spread)
    int x = 0, y = 0;  // pixels by which the layer's picture moves right and down
    LayerBlend blend = LayerBlend::Normal;
    float opacity = 1;
    bool clipped = false;   // to the nearest layer behind it that is not clipped (JoinedLayer)
    bool knockout = false;  // hides the layer within the glyphs, as they are before any spread and move
    const ColorGlyphLayer* colorGlyphs = nullptr;  // glyphs with colours of their own; not owned
};

// How far the layers reach beyond the text, in pixels: for each layer its stack's margins plus a positive
// spread, moved by its offset. left, top, right and bottom are distances, none negative.
ZvRect marginsOf(const TextLayer* layers, size_t count);

// A layer that draws nothing and keeps the coverage for the other layers. It goes into a text object's stack,
// which then owns it: stack.effects.push_back(coverage).
class TextCoverage : public ZvECoreBase {
public:
    ZvRect margins;  // what the picture has beside the text, from marginsOf
    // Filled by a rendering: the glyphs' box in the picture and their coverage within it, 1 byte a pixel. If
    // there are no glyphs, or memory is short, the box is empty and there are no pixels.
    ZvRect box;
    ZvBitmap mask;

    int doPostProcessing(ParamPostProcessing* param) override;
    void setProperty(ZvProperty*) override {}
    ZvProperty* getProperty() override { return nullptr; }  // none, so the layer key does not contain it
    int getLeftOffset() override { return margins.left; }
    int getTopOffset() override { return margins.top; }
    int getRightOffset() override { return margins.right; }
    int getBottomOffset() override { return margins.bottom; }
};

// Draws `count` layers of the text, the backmost first, and joins them onto `picture`, which holds straight
// words 0xAARRGGBB: on entry the background, afterwards the result, its alpha multiplied by `opacity`. Layers
// show only within `clip`. Layers of the same spread share their coverage; with the same stack and colour
// glyphs too they share their picture, unless the clip cuts it.
//
// Colour glyphs lie over the layer's own picture, at the opacity of its text colour. Where the coverage is no
// more than their alpha, only the effects around them lie below, so that no edge of the fill shows.
//
// False, with the picture unchanged, if memory is short (4 bytes a pixel for each layer, more if layers that
// share a picture move apart; one more layer with colour glyphs; plus what a stack needs), or if a side of
// the text's box, spread included, has 2^16 pixels or more. An effect that finds no memory is left out and
// sets the flag of foundation/OutOfMemory.h.
bool drawTextLayers(ZvBitmap* picture, const TextCoverage& text, const TextLayer* layers, size_t count,
                    const ZvRect& clip, float opacity = 1);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_TEXTLAYERS_H_
