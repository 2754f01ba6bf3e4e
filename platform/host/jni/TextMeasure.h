// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_JNI_TEXTMEASURE_H_
#define ZVEX_PLATFORM_HOST_JNI_TEXTMEASURE_H_

#include <hwui/Paint.h>
#include <hwui/Typeface.h>
#include <minikin/Layout.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace hostjava {

// A line's part of the text, in UTF-16 offsets, and its size in pixels.
struct MeasuredLine {
    int start = 0, visibleEnd = 0, end = 0;
    int ascent = 0, descent = 0;  // from the baseline, never negative; cover the font's own and all ink
    float width = 0;              // advance up to visibleEnd
    float fullWidth = 0;          // advance up to end, without the line ending
};

// The extent of the font, in whole pixels from the baseline, never negative.
struct FontReach {
    int ascent = 0, descent = 0;  // line spacing of the font; the descent includes the line gap
    int top = 0, bottom = 0;      // box around all its glyphs
};

// A text, laid out with the families and settings with which the library would draw it: the font itself, then
// the system families that are loaded once the text is set. Measuring uses this process's font manager, which
// is not the renderer's.
//
// Immutable. Takes the fonts under its own lock, so any number of threads may make and use objects.
class TextMeasure {
public:
    // `utf8` and `units` are the same text, once as the library takes it and once as in Java; `units` is
    // copied. `font` may be null for the system families alone. Throws std::runtime_error, with a message for
    // the developer, if the font cannot be loaded or if there is no font at all. The style's slant is
    // ignored: it changes neither advances nor heights.
    TextMeasure(const char* utf8, std::vector<uint16_t> units, const char* font, const android::Paint& paint);

    // The advance of [start, end) as one line.
    float advance(int start, int end) const;

    // [start, end) cut into lines no wider than `width`, by the rules of platform/host/LineBreaker.h.
    std::vector<MeasuredLine> lines(int start, int end, float width) const;

    FontReach reach() const;

private:
    minikin::Layout layOut(int start, int end) const;

    std::vector<uint16_t> mText;
    android::Paint mPaint;
    std::unique_ptr<android::Typeface> mTypeface;
};

// The style of the file's first font, as bits: 1 bold (a weight of 600 or more), 2 italic; -1 if it is no
// font.
int styleOfFontFile(const char* path);

}  // namespace hostjava

#endif  // ZVEX_PLATFORM_HOST_JNI_TEXTMEASURE_H_
