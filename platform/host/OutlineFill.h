// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_OUTLINEFILL_H_
#define ZVEX_PLATFORM_HOST_OUTLINEFILL_H_

#include <ft2build.h>

#include <cstdint>

#include "platform/host/FontFace.h"
#include FT_OUTLINE_H

namespace host {

// Whether an outline has cubic curves; newer versions of FreeType flatten these differently from the
// platform's.
bool hasCubics(const FT_Outline& outline);

// The coverage of an outline (26.6, y upwards, from the pen) as in the platform's FreeType, its levels mapped
// through a table.
void fillGlyph(const FT_Outline& outline, const uint8_t (&levels)[256], GlyphImage& image);

// The coverage of an outline scaled by `scale` and moved by (x, y), y downwards, as the platform's canvas
// fills a path.
void fillPath(const FT_Outline& outline, float scale, float x, float y, bool antiAlias, GlyphImage& image);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_OUTLINEFILL_H_
