// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_COMPOSITE_H_
#define ZVEX_EFFECT_COMPOSITE_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;
class ZvRect;

// The order of a pixel's bytes in memory; the alpha comes last.
enum class PixelOrder { RedFirst, BlueFirst };

// The last steps of a rendering, on colour pictures of 4 bytes a pixel, in place and without allocations.

// Blends the colour, 0xAARRGGBB, under the target through the mask, scales each pixel by its coverage
// (ZVE_BLEND_DST_OVER_SA), and makes the target transparent where the mask, which counts as 0 beyond its
// edges, has none. Both have pixels, 4 and 1 bytes each. Only within `area`; null is all of the target.
void cutToGlyphs(ZvBitmap* target, const ZvBitmap* mask, uint32_t color, const ZvRect* area);

// The debug line that ZvBlender writes for that blend: one for the text of each rendering in a single
// picture, whichever of the functions here draws it.
void logTextBlend();

// In the two below, bitmaps of another depth or without pixels leave `picture` as it is.

// Cross-fades every byte of `picture` (premultiplied) with `back` (premultiplied) by the coverage in mask:
// full coverage keeps picture, none takes back. Works on the area common to the three, from the top-left.
void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask);

// Scales the alpha of a premultiplied picture by textAlpha and makes its colours straight. A pixel whose
// alpha becomes 0 loses its colour.
void finishPicture(ZvBitmap* picture, uint8_t textAlpha);
// The same within `area`, which is cut to the picture, and in that order of bytes.
void finishPicture(ZvBitmap* picture, const ZvRect& area, uint8_t textAlpha, PixelOrder order);

// cutToGlyphs onto a target that is transparent in `area`, finished as above: a pixel depends on nothing but
// its coverage then. Where the mask ends the target stays transparent.
void paintText(ZvBitmap* target, const ZvBitmap* mask, uint32_t color, const ZvRect& area, uint8_t textAlpha,
               PixelOrder order);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COMPOSITE_H_
