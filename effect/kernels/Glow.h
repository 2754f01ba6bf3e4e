// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_GLOW_H_
#define ZVEX_EFFECT_KERNELS_GLOW_H_

#include <cstdint>

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// What both glows share: the coverage widened, blurred, and mapped through a table of colours.

// Fills a table of kColorTableSize straight colours, from the strongest glow to none. They are the
// property's stops, the first segment starting at 0 whatever the first stop's position, or without stops the
// property's colour; alpha falls to 0 along the table from `fadeStart` on, a fraction of the table, which is
// taken as 0.99 from 1 on and as 0.01 up to 0. `curve` is a ZvTableCurve. A size of 0 clears the table. Does
// nothing when table or property is null.
void makeGlowTable(uint32_t* table, const ZvGlowProperty* property, float fadeStart, int curve);

// Widens what is bright in an 8-bit plane with packed rows, in place, by about a pixel a pass: each pixel
// becomes the sum of its 3 x 3 neighbourhood over four, at most 255. The first and the last row stay as they
// are; in the other rows the first and the last pixel become 0. Nothing happens when image is null, when
// passes or width is below 1, or when height is below 3. False when memory is short, with the plane
// untouched.
bool widenByBoxFilter(uint8_t* image, int passes, int width, int height);

enum class GlowSide { Outside, Inside };

// Draws the glow onto the target, destination-over: around the glyphs, strongest within them, or everywhere
// but deep within the glyphs. Reaches 2 * ((int)size + 1) pixels beyond the text box; the outermost 0.9 *
// ((int)size + 1) of them are transparent (Outside) or opaque white (Inside). Draws nothing when a part is
// missing, at a size of -1 or less or not finite, and when memory is short.
void drawGlow(const ZvECore::ParamPostProcessing* param, const ZvGlowProperty* property, GlowSide side);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_GLOW_H_
