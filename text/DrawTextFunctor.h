// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_DRAWTEXTFUNCTOR_H_
#define ZVEX_TEXT_DRAWTEXTFUNCTOR_H_

#include <hwui/Paint.h>
#include <minikin/Layout.h>

#include <cstddef>

class SkCanvas;

namespace Zvex {

// Draws one run of a line's glyphs, all of one font; MinikinUtils::forFontRun calls it for each run after
// setting `paint` to the run's font. The image's origin is the top left corner of the line's bounds. All
// members belong to the caller and outlive the functor.
class DrawTextFunctor {
public:
    DrawTextFunctor(const minikin::Layout& lineLayout, SkCanvas* lineCanvas, android::Paint* layoutPaint,
                    const minikin::MinikinRect& lineBounds)
        : layout(lineLayout), canvas(lineCanvas), paint(layoutPaint), bounds(lineBounds) {}

    // Glyphs [start, end) of the layout.
    void operator()(size_t start, size_t end);

    const minikin::Layout& layout;
    SkCanvas* canvas;       // on the line's coverage image
    android::Paint* paint;  // the paint the line was laid out with
    minikin::MinikinRect bounds;
};

}  // namespace Zvex

#endif  // ZVEX_TEXT_DRAWTEXTFUNCTOR_H_
