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

// The effect stack of one text. It owns its effect layers and turns the coverage of a laid-out text into a
// picture.
//
// A rendering calls, in this order:
//     addText                  the text's own colour
//     initEffect               order of the layers, working bitmaps
//     setDstBitmap             the caller's picture, 4 bytes a pixel, transparent
//     renderEffectLayer        once for each line of glyphs
//     doEffectPostProcessing   every layer draws
//     compositeLayers          from premultiplied layers to one straight picture; frees the working bitmaps
// Effects stay until removed. The working bitmaps live from initEffect to compositeLayers.
//
// Layers draw destination-over: pixels that are already in the target stay in front, so the first layer of
// `layers` is the topmost. There is one picture (layerMode 0) or two (layerMode 1): dst in front, visible
// within the glyphs, and back behind it, visible around them, cross-faded by the coverage. Two are needed
// when the text as a whole is translucent, and by embosses and centred strokes, which draw on both sides of
// the glyph edge.
//
// Invariants: at most one layer of each type; every layer in `layers` is in `effects` and alive; `back`
// exists only in layerMode 1.
//
// Errors are not reported: null bitmaps and failed allocations draw nothing. Used by one thread at a time.
class ZvEffect {
public:
    std::vector<ZvECore*> effects;    // owned, in order of creation
    std::vector<ZvECore*> layers;     // not owned, topmost first; rebuilt by initEffect
    ZvBitmap* mask = nullptr;         // owned, 8-bit coverage
    ZvBitmap* dst = nullptr;          // the caller's, premultiplied colour until compositeLayers
    ZvBitmap* back = nullptr;         // owned, premultiplied colour
    ZvRect textRect;                  // box of the glyphs in the mask
    bool textRectReset = true;        // the next line of glyphs starts a new box
    int layerMode = 0;                // 0 or 1, see above; chosen by initEffect
    float textOpacity = 1.0f;         // of the text as a whole, 0 to 1
    uint32_t textColor = 0xFF000000;  // 0xAARRGGBB, the last one passed to getMapKey
    int nextEffectId = 0;             // returned by the next getNewEffectId
    uint8_t textAlpha = 255;  // alpha byte of the last colour passed to addText, applied by compositeLayers

    ZvEffect();
    // The same without the log line; the argument is ignored.
    explicit ZvEffect(void*);
    // Makes new layers with the same ids and copies of the settings; no bitmaps, no box.
    ZvEffect(const ZvEffect& other);
    ZvEffect& operator=(const ZvEffect&) = delete;
    ~ZvEffect();

    // --- Layers

    // Makes a layer of a ZvEffectType that has a class; null for others. A negative id asks for the next free
    // one. The caller owns the layer; it is not added to `effects`.
    ZvECore* createEffect(int id, int type);

    // Ids count up from 0. An id chosen by the caller does not move the counter.
    int getNewEffectId();

    // Gives the layer of that type a copy of *property, and creates the layer if there is none. An existing
    // layer keeps its place and id. property is the type's record; null leaves the settings unchanged.
    // Returns the layer's id, or -1, with nothing changed, if the type has no class or if there is no memory
    // for a new layer.
    int addEffect(int id, int type, ZvProperty* property);
    int addEffect(int type, ZvProperty* property);

    // The layer of that type; the stack still owns it. Null if there is none.
    ZvECore* getEffect(int type);
    bool hasEffect(int type);
    bool hasEffects();  // any layer, or a text opacity below 1

    // Deletes the first layer with that id; false if there is none.
    bool removeEffect(int id);

    // Deletes one layer and removes it from both lists if it is there. Null is ignored.
    void releaseEffect(ZvECore* effect);
    // Deletes all layers; ids start at 0 again.
    void releaseEffect();
    void cleanAllEffect();

    // --- Adders: one for each type
    //
    // Each limits its arguments, builds the type's record and returns addEffect's result. effect/ZvProperty.h
    // explains each argument at the field of its record. Any argument is safe. Opacities are clamped to 0..1,
    // a gradient's scale to 0..2, a pattern's to 0..10. An angle becomes a whole number of degrees in 0..359,
    // an altitude one in 0..89. Distance, size and stroke width are whole pixels clamped to 0..100; only the
    // size of a bevel or emboss is not clamped, and costs time and memory as its margins grow. Stops beyond
    // the first 256 are dropped. NaN counts as the lower end of its range, and as 0 for an angle.
    //
    // Colours are given straight, 0xAARRGGBB, and the opacities replace their alpha. Text, stroke and shadow
    // colours are stored premultiplied; glow, bevel, emboss and stop colours keep red, green and blue. A
    // stop's position is cut to hundredths. Stops and a pattern's bitmap are copied. A null array counts as
    // no stops.
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
    // Fills the glyphs with the colour at that opacity, premultiplied. The colour's own alpha is kept apart
    // in textAlpha and applies to the whole picture.
    int addText(unsigned int color, float opacity);
    // The same with an opaque fill.
    int addText(unsigned int color);

    // --- Text colour and opacity

    // The opacity of the text as a whole, clamped to 0..1; 1 at the start and when cleared.
    void setTextOpacity(float opacity);
    float getTextOpacity();
    void clearTextOpacity();

    // The layer key: the settings of every layer, in order of creation, as a string without inner NULs
    // (effect/ZvProperty.h describes the bytes); "" without layers. The caller frees it with delete[]. Null
    // if memory is short.
    char* getMapKey();
    // The same after addText(color, text opacity).
    char* getMapKey(unsigned int color);

    // --- Margins

    // Pixels that the picture needs beside the text on each side, for the layer that needs most; never
    // negative. A layer's margin on a side is the larger of its side offset and its getOffset.
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

    // Merges a line of glyphs into the mask with its top-left at (x, y); the larger coverage wins. Grows the
    // text box; parts outside the mask are clipped. Then calls render of every layer, even if glyph is null.
    // Returns 0.
    int renderEffectLayer(int x, int y, ZvGlyph* glyph);

    // Clips textRect to the mask and lets every layer draw. Without a line of glyphs since initEffect the box
    // is empty. If the box is empty or there is no mask, no layer runs.
    void doEffectPostProcessing();

    // With two pictures, cross-fades `out`, normally dst, with back by the mask: pixel i of each, counted row
    // by row whatever their widths, for as many pixels as all three have. Then applies textAlpha to all of
    // `out` and makes its colours straight; frees the working bitmaps and ends the rendering (layerMode 0).
    void compositeLayers(ZvBitmap* out);
    // Deletes mask and back; forgets dst.
    void releaseBitmap();

    ZvRect* getTextRect();                // the field above, owned by the stack
    ZvBitmap* getSrcBitmap();             // the mask, all of it zeroed or drawn
    void setSrcBitmap(ZvBitmap* bitmap);  // takes ownership; the old one is not freed
    ZvBitmap* getDstBitmap();             // null outside a rendering
    void setDstBitmap(ZvBitmap* bitmap);  // stays the caller's

    // --- Rendering onto a transparent picture
    //
    // Makes the same picture with less memory and fewer passes over it: initPicture, renderEffectLayer for
    // each line, drawPicture. Neither a back picture nor a finished layer is in memory as a whole: a few rows
    // at a time are cleared, drawn on by all layers and finished. A layer of a class other than the library's
    // own, or a call of the setters and getters above, turns it into a rendering of whole pictures, as if
    // begun with initEffect on a transparent picture.

    // Replaces initEffect and setDstBitmap. The caller keeps `out`; drawPicture overwrites its content.
    void initPicture(ZvBitmap* out);

    // Replaces doEffectPostProcessing and compositeLayers. Writes all pixels of the picture in that byte
    // order, transparent where no layer reaches. Returns a box outside of which the picture is transparent;
    // an empty one outside a rendering.
    ZvRect drawPicture(PixelOrder order);

private:
    enum class MaskPixels { Zeroed, Unset };

    void beginRendering(int width, int height, MaskPixels maskPixels);
    void clearMask(int top, int bottom);
    bool isMaskPartial() const;
    void clearMaskRows();  // the rows of textRect and the one below, in a partial mask
    void leaveStrips();    // changes to whole pictures, with a whole mask
    void clearUnsetPicture();
    bool clipTextRect();
    bool drawsInStrips() const;
    ZvRect drawInStrips(PixelOrder order);
    ZvRect drawWhole(PixelOrder order);

    bool mInStrips = false;                  // from initPicture on, until something asks for whole pictures
    bool mPictureIsUnset = false;            // dst has undefined content and must be cleared
    const ZvBitmap* mPartialMask = nullptr;  // if it is the mask, only its rows below are zeroed or drawn
    int mMaskTop = 0, mMaskBottom = 0;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVEFFECT_H_
