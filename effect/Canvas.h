// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_CANVAS_H_
#define ZVEX_EFFECT_CANVAS_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;
class ZvEffect;

// Fills the background of a whole picture of 4 bytes a pixel; a picture of another depth is left unchanged.
// Writes every pixel: straight words 0xAARRGGBB.

void fillCanvas(ZvBitmap* picture, uint32_t color);

// Fills with the layers of `fill`: a linear or radial gradient or a pattern, drawn as if the picture were one
// full glyph. The stack must not be rendering. If memory is short the picture stays unchanged, or becomes
// transparent if a layer runs out of memory.
void fillCanvas(ZvBitmap* picture, ZvEffect* fill);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_CANVAS_H_
