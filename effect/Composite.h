// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_COMPOSITE_H_
#define ZVEX_EFFECT_COMPOSITE_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;

// The last steps of a rendering, on colour pictures of 4 bytes a pixel, in place and without allocations.

// Makes the target transparent wherever the mask, which counts as 0 beyond its edges, has no coverage. Both
// have pixels, 4 and 1 bytes each.
void clearOutsideGlyphs(ZvBitmap* target, const ZvBitmap* mask);

// In the two below, bitmaps of another depth or without pixels leave `picture` as it is.

// Cross-fades every byte of `picture` (premultiplied) with `back` (premultiplied) by the coverage in mask:
// full coverage keeps picture, none takes back. Works on the area common to the three, from the top-left.
void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask);

// Scales the alpha of a premultiplied picture by textAlpha and makes its colours straight. A pixel whose
// alpha becomes 0 loses its colour.
void finishPicture(ZvBitmap* picture, uint8_t textAlpha);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COMPOSITE_H_
