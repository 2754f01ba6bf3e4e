// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVECORE_H_
#define ZVEX_EFFECT_ZVECORE_H_

#include <memory>

namespace Zvex {

class LayerRows;
class ZvBitmap;
class ZvProperty;
class ZvRect;
struct ZvGlyph;

// Effect type numbers: what getStyle returns and ZvEffect::createEffect takes.
enum ZvEffectType : int {
    ZV_EFFECT_OUTER_SHADOW = 1,
    ZV_EFFECT_INNER_SHADOW = 2,
    ZV_EFFECT_OUTER_GLOW = 3,
    ZV_EFFECT_INNER_GLOW = 4,
    ZV_EFFECT_BEVEL = 5,
    ZV_EFFECT_EMBOSS = 6,
    ZV_EFFECT_LINEAR_GRADIENT = 7,
    ZV_EFFECT_RADIAL_GRADIENT = 8,
    ZV_EFFECT_STROKE_OLD = 9,  // has no class; the layer rules treat it as a stroke
    ZV_EFFECT_STROKE = 10,
    ZV_EFFECT_PATTERN = 11,
    ZV_EFFECT_TEXT = 12,
    ZV_EFFECT_NONE = 13,  // start value of ZvECoreBase::style; the layer rules put it under the text
};

// One effect layer of a text. ZvEffect creates the layers, orders them, and runs each over the text's
// coverage. A layer is used by one thread at a time.
class ZvECore {
public:
    // How a rendering begins.
    struct ParamInit {
        // Of the working bitmaps, in pixels.
        int width = 0;
        int height = 0;
        int layerMode = 0;  // 0: all layers draw into one picture; 1: into a front and a back one
    };

    // A line of glyphs that has been merged into the mask. None of it is owned.
    struct ParamRender {
        // Where its top-left lies in the mask.
        int x = 0;
        int y = 0;
        ZvGlyph* glyph = nullptr;    // may be null
        ZvBitmap* target = nullptr;  // null before ZvEffect::setDstBitmap
    };

    // None of it is owned, and none of it may be kept after the call.
    struct ParamPostProcessing {
        ZvBitmap* target = nullptr;      // colour, premultiplied: where the layer draws
        ZvBitmap* mask = nullptr;        // 8-bit coverage of the whole text
        ZvRect* textRect = nullptr;      // box of the glyphs within the mask
        int layerMode = 0;               // as in ParamInit
        ZvBitmap* otherLayer = nullptr;  // a second colour picture for effects that draw into both, else null
        // Other layers may have drawn before this one; they fill more than the glyphs, and the text in a
        // single picture cuts that off.
        bool overLayers = false;
        // Holds textRect, and outside of it target is transparent; null when nothing is known. If it is
        // there, the mask has coverage within textRect only; the rows there and the one below are all of it
        // that may be read.
        const ZvRect* drawnArea = nullptr;
        // Where to put the rows that the layer would draw, for drawing them later; null: it draws now. It
        // stays null where there is nothing to draw.
        std::unique_ptr<LayerRows>* rows = nullptr;
    };

    virtual ~ZvECore() = default;

    // Called for each layer when a rendering begins. Returns 1.
    virtual int initEffect(ParamInit* param) = 0;

    // Called for each layer after a glyph run has been merged into the mask. Returns 1.
    virtual int render(ParamRender* param) = 0;

    // Draws the effect, or hands over its rows. A missing part of the record and a failed allocation end it
    // silently, the pictures untouched. Returns 0.
    virtual int doPostProcessing(ParamPostProcessing* param) = 0;

    // Keeps a copy of *property, which must be the record of this layer's own class; the caller keeps
    // property. Null is ignored. When the copy cannot be allocated the old settings stay.
    virtual void setProperty(ZvProperty* property) = 0;
    // The layer's own copy, null before the first setProperty.
    virtual ZvProperty* getProperty() = 0;

    virtual float getOpacity() = 0;  // 1 for every layer there is: opacities are folded into the colours
    virtual int getStyle() = 0;      // ZvEffectType

    // Pixels the layer needs beside the text on each side, and, with getOffset, on every side: the margin is
    // the larger of the two.
    virtual int getLeftOffset() = 0;
    virtual int getRightOffset() = 0;
    virtual int getTopOffset() = 0;
    virtual int getBottomOffset() = 0;

    // Tells the layers of a stack apart; -1 until set.
    virtual void setId(int id) = 0;
    virtual int getId() = 0;

    // Pixels needed on every side.
    virtual int getOffset() = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVECORE_H_
