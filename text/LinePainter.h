// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_LINEPAINTER_H_
#define ZVEX_TEXT_LINEPAINTER_H_

#include "text/DrawnLines.h"

namespace Zvex {

// Draws the lines of a text in place of ZvFontDrawing, for callers whose lines are more than one layout of
// the platform's: spaces of their own width, tab stops, ink beyond the advance.
class LinePainter {
public:
    virtual ~LinePainter() = default;

    // The coverage image of a line, with `left` and `baseline` set, and its advance in pixels. The image may
    // be kept and drawn again, so it must depend on the range alone as long as the text and the paint stay.
    // Null leaves the line out.
    virtual DrawnLines::Image paint(const DrawnLines::Range& range, float* advance) const = 0;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_LINEPAINTER_H_
