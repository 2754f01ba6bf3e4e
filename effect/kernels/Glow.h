// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_GLOW_H_
#define ZVEX_EFFECT_KERNELS_GLOW_H_

#include <cstdint>

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// What both glows share: they widen the coverage, blur it, and map it through a table of colours.

// Fills a table of kColorTableSize straight colours, from the strongest glow to none. They come from the
// property's stops, the first segment starting at 0 whatever the first stop's position; without stops they
// are the property's colour. From `fadeStart`, a fraction of the table, alpha falls to 0; values from 1 on
// count as 0.99, values up to 0 as 0.01. `curve` is a ZvTableCurve. A size of 0 clears the table. Does
// nothing if table or property is null.
void makeGlowTable(uint32_t* table, const ZvGlowProperty* property, float fadeStart, int curve);

// Widens the bright parts of an 8-bit plane in place, by about one pixel a pass: each pixel becomes the sum
// of its 3 x 3 neighbourhood divided by four, at most 255. Rows are packed. The first and the last row do not
// change; in the other rows the first and the last pixel become 0. Does nothing if image is null, if passes
// or width is below 1, or if height is below 3. False, with the plane unchanged, if memory is short.
bool widenByBoxFilter(uint8_t* image, int passes, int width, int height);

enum class GlowSide { Outside, Inside };

// Draws the glow onto the target, destination-over. Outside: around the glyphs, strongest within them.
// Inside: everywhere except deep within the glyphs. It reaches 2 * ((int)size + 1) pixels beyond the text
// box; the outermost 0.9 * ((int)size + 1) of them are transparent (Outside) or opaque white (Inside). Draws
// nothing if a part is missing, if the size is -1 or less or not finite, or if memory is short.
void drawGlow(const ZvECore::ParamPostProcessing* param, const ZvGlowProperty* property, GlowSide side);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_GLOW_H_
