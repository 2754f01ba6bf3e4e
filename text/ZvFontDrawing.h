// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVFONTDRAWING_H_
#define ZVEX_TEXT_ZVFONTDRAWING_H_

#include "raster/ZvRect.h"
#include "text/DrawnLines.h"

namespace Zvex {

class List;
class ZvBitmap;
class ZvEffect;
class ZvString;
class ZvTextObject;
struct ZvGlyph;

// Turns a text object's text, paint, font and lines into a picture: lays each line out with the platform,
// draws its glyph runs into an 8-bit coverage image, hands that to the effect stack at the line's place, and
// lets the stack make the colour picture. Lines drawn again from the same text, paint and fonts keep their
// images, up to a byte for each pixel of the picture. Used by one thread at a time, together with its text
// object.
class ZvFontDrawing {
public:
    ZvFontDrawing();
    virtual ~ZvFontDrawing();
    ZvFontDrawing(const ZvFontDrawing&) = delete;
    ZvFontDrawing& operator=(const ZvFontDrawing&) = delete;

    // The path or name of the font, as the font manager knows it. Null changes nothing. False, and the path
    // stays, where memory is short.
    bool SetFontPath(const char* path);
    ZvString* GetFontPath() { return fontPath; }

    // Empties glyphList and frees what belongs to it.
    void ClearGlyphList();

    // Draws `text` with its effects into `out`: 4 bytes a pixel, straight colour, in memory red, green, blue,
    // alpha. The result is always 0. Nothing is drawn, and an error line says why, without text, effect
    // stack, line list (this one with error 8) or any font at all.
    //
    // Each line's rectangle is moved to output pixels on the way: left and right are set anew (right is left
    // + the advance), top and bottom grow by the stack's top margin, again at every call. Line offsets
    // outside the text are cut to it. A line image that cannot be allocated leaves its line out.
    int DrawTextEffect(ZvTextObject* text, ZvBitmap* out);

    // The same into an `out` that may hold anything: all of it is written, transparent where nothing is
    // drawn, the others as words 0xAARRGGBB. Returns a box outside which it is transparent.
    ZvRect DrawTextWords(ZvTextObject* text, ZvBitmap* out);

    // Hands the glyph images in `glyphs` (of ZvGlyph*) to `effect`, one beside the other from the pen
    // position (x, y) on, which is in 26.6 fixed point and wraps around; y is the baseline. Backwards through
    // the list when `direction` is negative.
    void _DoRender(int x, int y, List* glyphs, ZvEffect* effect, int direction);

    ZvString* fontPath;  // owned; null until set
    // Owned; of ZvGlyph*, the last line drawn: owned too unless it is one of `mDrawn`. Null where memory was
    // short: then nothing can be drawn.
    List* glyphList;

private:
    // Begins a rendering of the text's effect stack onto `out`, with initEffect or, for drawPicture, with
    // initPicture, and merges every line into its mask. False where nothing is to be drawn.
    enum class Drawing { InLayers, AsPicture };
    bool drawLines(ZvTextObject* text, ZvBitmap* out, Drawing drawing);
    // The text's typeface, kept or made; null, with its line in the log, without any family.
    const android::Typeface* typefaceOf(const ZvTextObject& text);
    // The line's coverage image in glyphList, kept or made; null when there is no memory for it.
    const ZvGlyph* lineImage(size_t index, const DrawnLines::Range& range,
                             const DrawnLines::LineSource& source, const android::Typeface& typeface,
                             size_t keptBytes, float* advance);

    DrawnLines mDrawn;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVFONTDRAWING_H_
