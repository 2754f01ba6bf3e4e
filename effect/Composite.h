// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_COMPOSITE_H_
#define ZVEX_EFFECT_COMPOSITE_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;

// The last two steps of a rendering, on colour pictures of 4 bytes a pixel. Bitmaps of another depth or
// without pixels leave `picture` as it is. No allocation; in place.

// Cross-fades every byte of `picture` (premultiplied) with `back` (premultiplied) by the coverage in mask:
// full coverage keeps picture, none takes back. Works on the area common to the three, from the top-left.
void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask);

// Scales the alpha of a premultiplied picture by textAlpha and makes its colours straight. A pixel whose
// alpha becomes 0 loses its colour.
void finishPicture(ZvBitmap* picture, uint8_t textAlpha);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COMPOSITE_H_
