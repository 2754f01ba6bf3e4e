// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_CANVAS_H_
#define ZVEX_EFFECT_CANVAS_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;
class ZvEffect;

// What lies behind everything, over a whole picture of 4 bytes a pixel; any other is left as it is. Writes
// every pixel: straight words 0xAARRGGBB.

void fillCanvas(ZvBitmap* picture, uint32_t color);

// With the layers of `fill`, a linear or radial gradient or a pattern: they are drawn as if the picture were
// one full glyph. The stack's own rendering must not be under way. Where memory is short the picture stays
// as it is, or becomes transparent where it is the layer that finds none.
void fillCanvas(ZvBitmap* picture, ZvEffect* fill);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_CANVAS_H_
