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

// A text drawn several times, each time with a stack of its own, and joined: several strokes, shadows and
// fills.
//
//     TextCoverage goes into the text object's own stack; rendering fills it
//     marginsOf gives the room that the layers need, which TextCoverage asks for
//     drawTextLayers makes the picture

// One of the layers.
struct TextLayer {
    ZvEffect* effect = nullptr;  // the stack, its text colour added; not owned, used by drawTextLayers alone
    int spread = 0;              // pixels by which the coverage is widened before the stack sees it (Spread)
    int x = 0, y = 0;            // pixels by which the layer's picture is moved right and down
    LayerBlend blend = LayerBlend::Normal;
    float opacity = 1;
    bool clipped = false;   // to the nearest layer behind that is not (JoinedLayer)
    bool knockout = false;  // the layer does not show within the glyphs, before any spread and unmoved
};

// Pixels beside the text that the layers reach: for each of them its stack's margins and a positive spread,
// moved by its offset. left, top, right and bottom are that much, none of them negative.
ZvRect marginsOf(const TextLayer* layers, size_t count);

// A layer that draws nothing and keeps what the others would draw from, for a text object's stack, which owns
// it from then on: stack.effects.push_back(coverage).
class TextCoverage : public ZvECoreBase {
public:
    ZvRect margins;  // what the picture has beside the text, as marginsOf
    // Filled by a rendering: the glyphs' box in the picture and their coverage within it, 1 byte a pixel.
    // Without glyphs, or memory, the box is empty and there are no pixels.
    ZvRect box;
    ZvBitmap mask;

    int doPostProcessing(ParamPostProcessing* param) override;
    void setProperty(ZvProperty*) override {}
    ZvProperty* getProperty() override { return nullptr; }  // none, so that no layer key has a trace of it
    int getLeftOffset() override { return margins.left; }
    int getTopOffset() override { return margins.top; }
    int getRightOffset() override { return margins.right; }
    int getBottomOffset() override { return margins.bottom; }
};

// Draws `count` layers of the text, the backmost first, and joins them onto `picture`: straight words
// 0xAARRGGBB, what lies behind the text on entry, and afterwards its alpha multiplied by `opacity`. Of the
// layers only what lies within `clip` shows. Coverage of the same spread is made once.
//
// False, with the picture untouched, when memory is short (4 bytes a pixel for each layer, beside what a
// stack takes), and when a side of the text's box, spread included, has 2^16 pixels or more. An effect that
// finds no memory is left out, with the mark of foundation/OutOfMemory.h.
bool drawTextLayers(ZvBitmap* picture, const TextCoverage& text, const TextLayer* layers, size_t count,
                    const ZvRect& clip, float opacity = 1);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_TEXTLAYERS_H_
