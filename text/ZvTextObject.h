// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_ZVTEXTOBJECT_H_
#define ZVEX_TEXT_ZVTEXTOBJECT_H_

#include <hwui/Paint.h>
#include <hwui/Typeface.h>

#include <cstdint>
#include <memory>

// Types that a text object returns, so that callers need only this header.
#include "effect/ZvEffect.h"
#include "foundation/List.h"
#include "foundation/ZvString.h"
#include "text/ZvFontDrawing.h"
#include "text/ZvLineInfo.h"
#include "text/ZvView.h"

namespace Zvex {

class ZvTextObjectImpl;

// One text with everything needed to render it: string, font, paint, view, lines, colours and effect stack.
//
// After Construct, in any order: SetText, SetFont, SetPaint, the effects, the lines (SetLineInfo, one record
// for each shown line) and the view's size. The picture is the view plus GetEffect()'s four offsets, so set
// its size next (the view's SetBitmapWidth and SetBitmapHeight), then call RenderTextEffect.
//
// Every operation but Construct fails with error 8 until Construct has succeeded: false, null, -1 or the
// value stated.
//
// Used by one thread at a time; different text objects may render on different threads. SetText and SetFont
// change the process's font manager, and RenderTextEffect reads it: callers must not run these in parallel
// (FontManager.h), unless their objects have a typeface of their own (SetTypeface).
class ZvTextObject {
public:
    // The first text object of the process sets the registry's callback, which deletes objects.
    ZvTextObject();
    virtual ~ZvTextObject();
    ZvTextObject(const ZvTextObject&) = delete;
    ZvTextObject& operator=(const ZvTextObject&) = delete;

    // Makes the parts and registers the object, which gives it its handle. Error 4 the second time.
    bool Construct();

    int GetRuntimeHandle() const;  // the number in the registry, 1 or more
    // The effect stack. The text object owns this and everything else it returns by pointer.
    ZvEffect* GetEffect();

    // Copies the text (null clears it) and has the font manager load the families that its scripts need.
    // False if memory is short: the text, or its families, may be missing then.
    bool SetText(const ZvString* text);
    bool SetText(const wchar_t* text);
    ZvString* GetText();

    // Chooses the font: a file, or a name the font manager already holds. Null path: error 7. False, with the
    // font unchanged, if the font manager cannot add it.
    bool SetFont(const char* path);
    // The same with the font file's bytes, under the name `path`. `buffer` comes from new char[]; the callee
    // takes ownership whatever the result.
    bool SetFont(const char* path, char* buffer, unsigned int size);
    ZvFontDrawing* GetFont();
    // The same with an existing typeface, which overrides the fonts above; then neither SetText nor
    // RenderTextEffect uses the font manager. Null: the fonts above again.
    bool SetTypeface(std::shared_ptr<const android::Typeface> typeface);

    // Replaces the lines by those of `list` (of ZvLineInfo* made with new) and takes ownership of them; the
    // caller keeps the list itself, and empties it without freeing them. Null: error 7.
    bool SetLineInfo(const List* list);
    List* GetLineInfo();

    // Italic asks the font manager's families for a slanted font. Bold has no effect: boldness comes from the
    // font, or from the paint's fake bold.
    bool SetTextStyle(bool bold, bool italic);
    bool isBoldTextStyle() const;
    bool isItalicTextStyle() const;

    // The view, to be filled in by the caller before a rendering.
    ZvView* GetView();

    // Copies the paint: size in pixels, anti-aliasing (without it coverage is only 0 or 255), spacing,
    // features. Its typeface is not read, and only the alpha of its colour, which scales the coverage.
    // GetPaint returns a default paint when not constructed. If memory is too short for a copy, GetPaint
    // returns a default paint and SetPaint changes nothing.
    android::Paint GetPaint() const;
    void SetPaint(android::Paint& paint);

    // Colours are straight 0xAARRGGBB. The background fills the lines' rectangles, not the whole picture.
    void SetBackgroundColor(unsigned int color, bool enabled);
    void SetTextColor(unsigned int color);
    unsigned int GetTextColor() const;  // 0xFF000000 when not constructed

    // Renders a picture of width x height pixels, straight 0xAARRGGBB words, and returns its first pixel.
    // `width` and `height` are the view's size plus the effects' margins; the view's bitmap size, which sets
    // the clip, must hold them by then. The picture belongs to the text object and lives until the next
    // rendering, which may reuse its memory. Null, and no picture, if a size is below 1 or cannot be
    // allocated, or if memory runs out while the text is laid out. An effect or a line that finds no memory
    // is left out of the picture and sets the flag of foundation/OutOfMemory.h. Without a font-drawing
    // object: error 8 and the picture of the last rendering, or null.
    //
    // The clip leaves out the paddings, except on the side of the gravity, where the text may use them.
    // Rendering again without new lines moves the background rectangles down once more by the top margin.
    uint32_t* RenderTextEffect(int width, int height);

    // The text object with that handle, or null.
    static ZvTextObject* FindZvTextObject(int handle);

    // Has the font manager load the families for the scripts of the held text.
    void SetTextLocaleListId();

    ZvTextObjectImpl* mImpl;  // owned; null until Construct succeeds

private:
    template <typename Source>
    bool assignText(const Source* source);
    bool createTextIfMissing();
    bool loadFamiliesOfText();
    bool tryLoadFamiliesOfText();
    bool addFont(const char* path, char* buffer, unsigned int size);
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_ZVTEXTOBJECT_H_
