// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_GLYPHPEN_H_
#define ZVEX_PLATFORM_HOST_GLYPHPEN_H_

#include <SkPaint.h>

#include "platform/host/FontFace.h"

namespace host {

// How the canvas draws text with that paint.
GlyphStyle glyphStyleOf(const SkPaint& font);

// The position of a glyph's image: the pixel of the pen and the quarter of that pixel. The phone takes the
// nearest quarter, Plain the one below.
struct GlyphPen {
    int x = 0, y = 0, quarterX = 0;
};
// False if the pen is too far away or NaN.
bool placePen(float x, float y, const GlyphStyle& style, GlyphPen* pen);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_GLYPHPEN_H_
