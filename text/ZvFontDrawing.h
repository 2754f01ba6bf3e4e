// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVFONTDRAWING_H_
#define ZVEX_TEXT_ZVFONTDRAWING_H_

#include <hwui/Typeface.h>

#include <memory>

#include "raster/ZvRect.h"
#include "text/DrawnLines.h"

namespace Zvex {

class LinePainter;
class List;
class ZvBitmap;
class ZvEffect;
class ZvString;
class ZvTextObject;
struct ZvGlyph;

// Turns a text object's text, paint, font and lines into a picture: lays out each line with the platform,
// draws its glyph runs into an 8-bit coverage image, merges that into the effect stack's mask at the line's
// position, and has the stack draw the picture. Lines keep their images while text, paint and fonts stay the
// same, up to one byte per pixel of the picture. Used by one thread at a time, together with its text object.
class ZvFontDrawing {
public:
    ZvFontDrawing();
    virtual ~ZvFontDrawing();
    ZvFontDrawing(const ZvFontDrawing&) = delete;
    ZvFontDrawing& operator=(const ZvFontDrawing&) = delete;

    // The path or name of the font, as the font manager knows it. Null changes nothing. False, with the path
    // unchanged, if memory is short.
    bool SetFontPath(const char* path);
    ZvString* GetFontPath() { return fontPath; }

    // Draws with that typeface from then on, without using the path or the font manager. Null: as before.
    void SetTypeface(std::shared_ptr<const android::Typeface> typeface);
    bool HasTypeface() const { return mOwnTypeface != nullptr; }

    // Has `painter` draw the lines from then on. Null: as before.
    void SetLinePainter(std::shared_ptr<const LinePainter> painter);
    const LinePainter* GetLinePainter() const { return mPainter.get(); }

    // Empties glyphList and frees what belongs to it.
    void ClearGlyphList();

    // Draws `text` with its effects into `out`: 4 bytes per pixel, straight colour, red first in memory.
    // Always returns 0. Without a text, an effect stack, a line list (error 8) or any font, draws nothing and
    // logs an error line.
    //
    // Each line's rectangle is converted to output pixels: left and right are recomputed (right is left + the
    // advance), and top and bottom grow by the stack's top margin at every call. Line offsets outside the
    // text are clamped to it. A line image that cannot be allocated leaves its line out.
    int DrawTextEffect(ZvTextObject* text, ZvBitmap* out);

    // The same, but writes every pixel of `out`, transparent where nothing is drawn, as words 0xAARRGGBB.
    // Returns a box outside which all is transparent.
    ZvRect DrawTextWords(ZvTextObject* text, ZvBitmap* out);

    // Passes the glyph images in `glyphs` (of ZvGlyph*) to `effect`, side by side from the pen position (x,
    // y), which is 26.6 fixed point and wraps around; y is the baseline. Goes backwards through the list if
    // `direction` is negative.
    void _DoRender(int x, int y, List* glyphs, ZvEffect* effect, int direction);

    ZvString* fontPath;  // owned; null until set
    // Owned; of ZvGlyph*, the last line drawn, owned too unless `mDrawn` owns it. Null if memory was short;
    // then nothing can be drawn.
    List* glyphList;

private:
    // Begins a rendering of the text's effect stack onto `out`, with initEffect or, for drawPicture, with
    // initPicture, and merges every line into its mask. False if there is nothing to draw.
    enum class Drawing { InLayers, AsPicture };
    bool drawLines(ZvTextObject* text, ZvBitmap* out, Drawing drawing);
    void mergeLines(const List& lines, const DrawnLines::LineSource& source,
                    const android::Typeface& typeface, size_t keptBytes, ZvEffect* effect);
    // The text's typeface, kept or made. Null, with a line in the log, if there is no family.
    const android::Typeface* typefaceOf(const ZvTextObject& text);
    // The line's coverage image in glyphList, kept or made; null if memory is short.
    const ZvGlyph* lineImage(size_t index, const DrawnLines::Range& range,
                             const DrawnLines::LineSource& source, const android::Typeface& typeface,
                             size_t keptBytes, float* advance);

    DrawnLines mDrawn;
    std::shared_ptr<const LinePainter> mPainter;            // null: lines are laid out here
    std::shared_ptr<const android::Typeface> mOwnTypeface;  // null: from the font manager
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVFONTDRAWING_H_
