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

// Effect type numbers: getStyle returns them and ZvEffect::createEffect takes them.
enum ZvEffectType : int {
    ZV_EFFECT_OUTER_SHADOW = 1,
    ZV_EFFECT_INNER_SHADOW = 2,
    ZV_EFFECT_OUTER_GLOW = 3,
    ZV_EFFECT_INNER_GLOW = 4,
    ZV_EFFECT_BEVEL = 5,
    ZV_EFFECT_EMBOSS = 6,
    ZV_EFFECT_LINEAR_GRADIENT = 7,
    ZV_EFFECT_RADIAL_GRADIENT = 8,
    ZV_EFFECT_STROKE_OLD = 9,  // has no class; treated as a stroke when layers are ordered
    ZV_EFFECT_STROKE = 10,
    ZV_EFFECT_PATTERN = 11,
    ZV_EFFECT_TEXT = 12,
    ZV_EFFECT_NONE = 13,  // initial value of ZvECoreBase::style; ordered under the text
};

// One effect layer of a text. ZvEffect creates the layers, orders them, and runs each over the text's
// coverage. A layer is used by one thread at a time.
class ZvECore {
public:
    // The start of a rendering.
    struct ParamInit {
        // The size of the working bitmaps, in pixels.
        int width = 0;
        int height = 0;
        int layerMode = 0;  // 0: all layers draw into one picture; 1: into a front and a back one
    };

    // A line of glyphs that has been merged into the mask. Owns nothing.
    struct ParamRender {
        // The position of its top-left in the mask.
        int x = 0;
        int y = 0;
        ZvGlyph* glyph = nullptr;    // may be null
        ZvBitmap* target = nullptr;  // null before ZvEffect::setDstBitmap
    };

    // Owns nothing, and nothing of it may be kept after the call.
    struct ParamPostProcessing {
        ZvBitmap* target = nullptr;      // colour, premultiplied: where the layer draws
        ZvBitmap* mask = nullptr;        // 8-bit coverage of the whole text
        ZvRect* textRect = nullptr;      // box of the glyphs within the mask
        int layerMode = 0;               // as in ParamInit
        ZvBitmap* otherLayer = nullptr;  // a second colour picture for effects that draw into both, else null
        // Whether other layers may have drawn before this one. They fill more than the glyphs; in a single
        // picture the text layer cuts that off.
        bool overLayers = false;
        // A box around textRect outside of which target is transparent; null if none is known. If it is set,
        // the mask has coverage only within textRect, and only the rows of textRect and the one below may be
        // read.
        const ZvRect* drawnArea = nullptr;
        // If not null, the layer stores its rows here, to be drawn later, instead of drawing now. It stays
        // null if there is nothing to draw.
        std::unique_ptr<LayerRows>* rows = nullptr;
    };

    virtual ~ZvECore() = default;

    // Called for each layer when a rendering begins. Returns 1.
    virtual int initEffect(ParamInit* param) = 0;

    // Called for each layer after a glyph run has been merged into the mask. Returns 1.
    virtual int render(ParamRender* param) = 0;

    // Draws the effect, or hands over its rows. If a part of the record is missing or an allocation fails, it
    // returns and leaves the pictures unchanged, without a message. Returns 0.
    virtual int doPostProcessing(ParamPostProcessing* param) = 0;

    // Keeps a copy of *property, which must be the record of this layer's own class; the caller keeps
    // property. Null is ignored. If the copy cannot be allocated, the old settings stay.
    virtual void setProperty(ZvProperty* property) = 0;
    // The layer's own copy, null before the first setProperty.
    virtual ZvProperty* getProperty() = 0;

    virtual float getOpacity() = 0;  // 1 for all built-in layers: opacities are multiplied into the colours
    virtual int getStyle() = 0;      // ZvEffectType

    // Pixels that the layer needs beside the text on each side. getOffset applies to every side; the margin
    // is the larger of the two.
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
