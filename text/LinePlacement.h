// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_LINEPLACEMENT_H_
#define ZVEX_TEXT_LINEPLACEMENT_H_

#include <cstdint>
#include <vector>

#include "raster/ZvRect.h"
#include "text/ZvLineInfo.h"
#include "text/ZvView.h"

namespace Zvex {

// One line as a line breaker reports it, before it is placed in a view. Vertical values are pixels from the
// top of the laid-out text, growing downwards; ascent and descent are distances from the baseline (ascent is
// negative).
struct LaidOutLine {
    // Vertical, see above.
    int32_t baseline = 0;
    int32_t top = 0;
    int32_t bottom = 0;
    int32_t ascent = 0;
    int32_t descent = 0;
    float left = 0;          // pixels from the left edge of the text's column
    float width = 0;         // pixels
    int32_t start = 0;       // UTF-16 offset of the first character
    int32_t visibleEnd = 0;  // UTF-16 offset past the last character that shows, without trailing blanks
};

// Where text may show in the view's picture: everywhere except in the paddings; the padding on the side of
// the gravity counts too. Paddings larger than the picture leave an empty rectangle, not an inverted one.
ZvRect textClip(const ZvView& view);

// The lines that a view shows, numbered from 0.
struct ShownLines {
    int first = 0;  // its number
    int count = 0;  // from there on
};

// Number: `view.lines` if it is 1 or more, else `view.maxLines` if that is 1 or more, at most `count`; none
// if neither is set. Choice: the first lines, or the last ones with bottom gravity.
ShownLines shownLines(const ZvView& view, int count);

// Places the lines that the view shows. Vertically: with gravity CENTER_VERTICAL or FILL_VERTICAL centred
// between the paddings, if they fit; with bottom gravity so that the last line of the whole text ends at the
// bottom padding; else below the top padding. Horizontally at the line's left (its fraction cut off) plus the
// left padding.
//
// Lines that are not shown do not matter: the shown ones alone give the same records, so a caller need not
// measure thousands of lines. A line's top is not read.
//
// The records come in line order with direction 1 and the rectangle x, y + ascent, x + width, y + descent.
// Sums are computed in 64 bits and clamped to 32; a left or width that is not a number counts as 0. `lines`
// may be null if `count` is 0 or less. Any thread.
std::vector<ZvLineInfo> placeLines(const ZvView& view, const LaidOutLine* lines, int count);

}  // namespace Zvex

#endif  // ZVEX_TEXT_LINEPLACEMENT_H_
