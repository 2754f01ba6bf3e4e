// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVEFFECT_H_
#define ZVEX_EFFECT_ZVEFFECT_H_

#include <cstdint>
#include <vector>

#include "effect/PixelOrder.h"
#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "raster/ZvRect.h"

namespace Zvex {

class ZvBitmap;
struct ZvGlyph;

// The effect stack of one text: owns its effect layers and turns the coverage of a laid-out text into a
// picture.
//
// A rendering calls, in this order:
//     addText                  the text's own colour
//     initEffect               order of the layers, working bitmaps
//     setDstBitmap             the caller's picture, 4 bytes a pixel, transparent
//     renderEffectLayer        once for each line of glyphs
//     doEffectPostProcessing   every layer draws
//     compositeLayers          from premultiplied layers to one straight picture; frees the working bitmaps
// Effects stay until removed; the working bitmaps live from initEffect to compositeLayers.
//
// Layers draw destination-over: what is in the target already stays in front, so the first layer of `layers`
// is the topmost. There is one picture (layerMode 0), or two (layerMode 1): dst in front, seen within the
// glyphs, and back behind it, seen around them, cross-faded by the coverage. Two are needed when the text as
// a whole is translucent, and by embosses and centred strokes, which draw on both sides of the glyph edge.
//
// Invariants: at most one layer of each type; every layer in `layers` is one of `effects` and alive; `back`
// exists in layerMode 1 only.
//
// Nothing is reported as an error; null bitmaps and failed allocations draw nothing. Used by one thread at a
// time.
class ZvEffect {
public:
    std::vector<ZvECore*> effects;    // owned, in order of creation
    std::vector<ZvECore*> layers;     // not owned, topmost first; remade by initEffect
    ZvBitmap* mask = nullptr;         // owned, 8-bit coverage
    ZvBitmap* dst = nullptr;          // the caller's, premultiplied colour until compositeLayers
    ZvBitmap* back = nullptr;         // owned, premultiplied colour
    ZvRect textRect;                  // box of the glyphs in the mask
    bool textRectReset = true;        // the next line of glyphs starts a new box
    int layerMode = 0;                // 0 or 1, see above; chosen by initEffect
    float textOpacity = 1.0f;         // of the text as a whole, 0 to 1
    uint32_t textColor = 0xFF000000;  // 0xAARRGGBB, the last one given to getMapKey
    int nextEffectId = 0;             // the one that getNewEffectId gives
    uint8_t textAlpha = 255;  // alpha byte of the last colour given to addText, applied by compositeLayers

    ZvEffect();
    // As above without the log line; the argument is ignored.
    explicit ZvEffect(void*);
    // Fresh layers with the same ids and copies of the settings; no bitmaps, no box.
    ZvEffect(const ZvEffect& other);
    ZvEffect& operator=(const ZvEffect&) = delete;
    ~ZvEffect();

    // --- Layers

    // A new layer of a ZvEffectType that has a class, else null. A negative id asks for the next free one.
    // The caller owns the layer; it is not in `effects`.
    ZvECore* createEffect(int id, int type);

    // Ids count up from 0. An id chosen by a caller does not move the counter.
    int getNewEffectId();

    // Gives the layer of that type a copy of *property, creating the layer when there is none; a layer that
    // exists keeps its place and id. property is the type's record; null leaves the settings as they are.
    // Returns the layer's id; -1, with nothing changed, for a type without a class and when there is no
    // memory for a new layer.
    int addEffect(int id, int type, ZvProperty* property);
    int addEffect(int type, ZvProperty* property);

    // The layer of that type, still owned by the stack; null when there is none.
    ZvECore* getEffect(int type);
    bool hasEffect(int type);
    bool hasEffects();  // any layer, or a text opacity below 1

    // Deletes the first layer with that id; false when there is none.
    bool removeEffect(int id);

    // Deletes one layer and takes it out of both lists, if it is there. Null is ignored.
    void releaseEffect(ZvECore* effect);
    // Deletes all; ids start at 0 again.
    void releaseEffect();
    void cleanAllEffect();

    // --- Adders: one for each type
    //
    // Each limits its arguments, builds the type's record and returns addEffect's result. What an argument
    // means is said at the field of its record in effect/ZvProperty.h. Any argument is safe: opacities are
    // clamped to 0..1, a gradient's scale to 0..2, a pattern's to 0..10; an angle is a whole number of
    // degrees brought to 0..359, an altitude to 0..89; distance, size and stroke width are whole pixels
    // clamped to 0..100, the size of a bevel or emboss alone is as given and costs time and memory as its
    // margins grow; stops beyond the first 256 are dropped. NaN counts as the lower end of its range, as
    // an angle as 0.
    //
    // Colours are given straight, 0xAARRGGBB, and the opacities take the place of their alpha: text, stroke
    // and shadow colours are rebuilt premultiplied; glow, bevel, emboss and stop colours keep red, green and
    // blue. A stop's position is cut to hundredths. Stops and a pattern's bitmap are copied; a null array
    // counts as no stops.
    int addOuterShadowText(float angle, float distance, float size, unsigned int color, float opacity);
    int addInnerShadowText(float angle, float distance, float size, unsigned int color, float opacity);
    int addOuterGlowText(float size, unsigned int color, float opacity, int count, ZvGradient* stops);
    int addInnerGlowText(float size, unsigned int color, float opacity, int count, ZvGradient* stops);
    int addBevelText(int style, float size, float depth, int direction, int technique, int soften,
                     float opacity, float angle, float altitude, unsigned int shadowColor,
                     float shadowOpacity, unsigned int highlightColor, float highlightOpacity);
    int addEmbossText(int style, float size, float depth, int direction, int technique, int soften,
                      float opacity, float angle, float altitude, unsigned int shadowColor,
                      float shadowOpacity, unsigned int highlightColor, float highlightOpacity);
    int addLinearGradientText(float angle, float scale, float opacity, int count, ZvGradient* stops);
    int addRadialGradientText(float scale, float opacity, int count, ZvGradient* stops);
    int addStrokeText(float width, unsigned int color, float opacity, int kind, int position);
    int addPatternText(ZvBitmap* bitmap, float scale, float opacity);
    // Fills the glyphs with the colour at that opacity, premultiplied. The colour's own alpha is kept apart,
    // in textAlpha, for the picture as a whole.
    int addText(unsigned int color, float opacity);
    // The same with an opaque fill.
    int addText(unsigned int color);

    // --- Text colour and opacity

    // Of the text as a whole, clamped to 0..1; 1 at the start and when cleared.
    void setTextOpacity(float opacity);
    float getTextOpacity();
    void clearTextOpacity();

    // The layer key: the settings of every layer in order of creation as a string without inner NULs (the
    // bytes of each are described in effect/ZvProperty.h); "" without layers. Freed by the caller with
    // delete[]; null when memory is short.
    char* getMapKey();
    // The same after addText(color, text opacity).
    char* getMapKey(unsigned int color);

    // --- Margins

    // Pixels that the picture needs beside the text: the widest layer's, each side by itself; never negative.
    // A layer's margin on a side is the larger of its side offset and its getOffset.
    int getLeftOffset();
    int getRightOffset();
    int getTopOffset();
    int getBottomOffset();

    // --- Rendering

    // Chooses layerMode, orders the layers and allocates mask (and back) of width x height pixels, zeroed.
    // Negative sizes count as 0. Forgets dst.
    void initEffect(int width, int height);

    // Whether a layer lies below the text, in the current layerMode.
    bool isUnderEffect(ZvECore* effect);

    // Merges a line of glyphs into the mask with its top-left at (x, y), the larger coverage winning, and
    // grows the text box; parts outside the mask are clipped. Then calls render of every layer, glyph or not.
    // Returns 0.
    int renderEffectLayer(int x, int y, ZvGlyph* glyph);

    // Clips textRect to the mask and lets every layer draw. Without a line of glyphs since initEffect the box
    // is empty; with an empty box, or without a mask, no layer runs.
    void doEffectPostProcessing();

    // Two layers: cross-fades `out`, normally dst, with back by the mask: pixel i of each, counted row by row
    // whatever their widths, for as many as all three have. Then applies textAlpha to all of `out` and makes
    // its colours straight; frees the working bitmaps and ends the rendering (layerMode 0).
    void compositeLayers(ZvBitmap* out);
    // Deletes mask and back; forgets dst.
    void releaseBitmap();

    ZvRect* getTextRect();                // the field above, owned by the stack
    ZvBitmap* getSrcBitmap();             // the mask, all of it zeroed or drawn
    void setSrcBitmap(ZvBitmap* bitmap);  // taken over; the old one is not freed
    ZvBitmap* getDstBitmap();             // null outside a rendering
    void setDstBitmap(ZvBitmap* bitmap);  // stays the caller's

    // --- Rendering onto a transparent picture
    //
    // The same picture, made with less memory and fewer ways through it: initPicture, renderEffectLayer for
    // each line, drawPicture. No back picture and no finished layer is in memory as a whole; every few rows
    // are cleared, drawn on by all layers and finished before the next. Layers of classes other than the
    // library's own, and calls of the setters and getters above in between, make it a rendering of whole
    // pictures, as if begun with initEffect on a transparent picture.

    // In the place of initEffect and setDstBitmap. `out` stays the caller's; whatever it holds is overwritten
    // by drawPicture.
    void initPicture(ZvBitmap* out);

    // In the place of doEffectPostProcessing and compositeLayers: all pixels of the picture, those that no
    // layer reaches transparent, the others with their bytes in that order. Returns a box outside which it is
    // transparent, empty outside a rendering.
    ZvRect drawPicture(PixelOrder order);

private:
    enum class MaskPixels { Zeroed, Unset };

    void beginRendering(int width, int height, MaskPixels maskPixels);
    void clearMask(int top, int bottom);
    bool isMaskPartial() const;
    void clearMaskRows();  // those of textRect, and one below, in a partial mask
    void leaveStrips();    // to whole pictures, with a whole mask
    void clearUnsetPicture();
    bool clipTextRect();
    bool drawsInStrips() const;
    ZvRect drawInStrips(PixelOrder order);
    ZvRect drawWhole(PixelOrder order);

    bool mInStrips = false;        // from initPicture on, while nothing asks for whole pictures
    bool mPictureIsUnset = false;  // dst holds anything, and is to be cleared
    const ZvBitmap* mPartialMask =
        nullptr;  // while it is the mask, its rows below are zeroed or drawn, no others
    int mMaskTop = 0, mMaskBottom = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVEFFECT_H_
