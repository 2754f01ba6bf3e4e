// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINUTILS_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINUTILS_H_

#include <hwui/MinikinSkia.h>
#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>

#include <cstddef>
#include <cstdint>

namespace minikin {
class MeasuredText;
}

namespace android {

// Lays out lines of text, and walks the result font by font. No state.
class MinikinUtils {
public:
    // Lays out [start, start + count) of the UTF-16 text `buf`, `bufSize` units long, as one line; the rest
    // of the text is context (direction). A range beyond bufSize is cut off. The line is cut into runs of one
    // direction, put in visual order, then into words, then into runs of one font, then of one script. A word
    // begins before and after each blank (U+0020, U+2000 to U+200A, U+3000) and directional control (U+200E,
    // U+200F, U+202A to U+202E, U+2066 to U+2069) and before each of U+3400 to U+9FFF. Each is shaped by
    // itself, with the rest of it as context where a run or range cuts it, and starts at x cut to a whole
    // pixel. Language: the first locale of the paint's list whose script fits the run's, else the first of
    // all. Words are kept, so the next layout with them is cheap.
    //
    // In the phone's rendering (host::Rendering) the size is cut to a whole number, unless the linear-text
    // flag (0x40) is set. A text size, scale X or skew that is not a number, or too large to draw, counts as
    // size 0. Without the linear-text flag each advance is rounded to a whole pixel.
    //
    // Letter spacing x size x scale X, rounded to a whole pixel without the linear-text flag, is added to
    // each cluster: half of it (rounded down without that flag) before and the rest after. Scripts whose
    // letters join or hang from a line get none. Beyond 0.03 em either way the ligature features liga and
    // clig are off. Of the paint's feature settings the last of each tag holds; tags after 1024 are left out.
    //
    // A null paint, typeface or text, or a typeface without fonts, gives a layout without glyphs. The
    // measured text is not used and may be null. Any number of threads may lay text out at once.
    static minikin::Layout doLayout(const Paint* paint, minikin::Bidi bidiFlags, const Typeface* typeface,
                                    const uint16_t* buf, size_t start, size_t count, size_t bufSize,
                                    minikin::MeasuredText* mt);

    // Calls f(start, end) for each maximal run [start, end) of glyphs in one font, with the paint set up to
    // draw that font. Afterwards the paint's skew and fake bold are restored; its typeface is the last run's.
    template <typename F>
    static void forFontRun(const minikin::Layout& layout, Paint* paint, F& f) {
        const float skewX = paint->getTextSkewX();
        const bool fakeBold = paint->isFakeBoldText();
        const size_t end = layout.nGlyphs();
        for (size_t runStart = 0; runStart < end;) {
            const minikin::MinikinFont* font = layout.getFont(static_cast<int>(runStart));
            size_t runEnd = runStart + 1;
            while (runEnd < end && layout.getFont(static_cast<int>(runEnd)) == font) runEnd++;
            MinikinFontSkia::populateSkPaint(paint, font, layout.getFakery(static_cast<int>(runStart)));
            f(runStart, runEnd);
            paint->setTextSkewX(skewX);
            paint->setFakeBoldText(fakeBold);
            runStart = runEnd;
        }
    }
};

}  // namespace android

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_HWUI_MINIKINUTILS_H_
