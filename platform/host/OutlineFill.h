// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_OUTLINEFILL_H_
#define ZVEX_PLATFORM_HOST_OUTLINEFILL_H_

#include <ft2build.h>

#include "platform/host/FontFace.h"
#include FT_OUTLINE_H

namespace host {

// Whether an outline has cubic curves, which FreeType has come to flatten in another way than the platform's.
bool hasCubics(const FT_Outline& outline);

// The coverage of an outline (26.6, y upwards, from the pen) as the platform's FreeType has it, each level
// replaced by that of a table.
void fillGlyph(const FT_Outline& outline, const uint8_t (&levels)[256], GlyphImage& image);

// The coverage of an outline times `scale`, moved by (x, y), y downwards, as the platform's canvas fills a
// path.
void fillPath(const FT_Outline& outline, float scale, float x, float y, bool antiAlias, GlyphImage& image);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_OUTLINEFILL_H_
