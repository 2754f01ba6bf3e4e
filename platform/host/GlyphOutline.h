// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_GLYPHOUTLINE_H_
#define ZVEX_PLATFORM_HOST_GLYPHOUTLINE_H_

#include <cstdint>

#include "platform/host/FontFace.h"
#include "platform/host/FreeTypeFace.h"

namespace host {

// A box computed in 64 bits (right and bottom exclusive); empty if it is further from the pen than any glyph.
GlyphBox nearBox(int64_t left, int64_t top, int64_t right, int64_t bottom);
// Empty if the box is larger than an image may be.
GlyphBox limitedBox(const GlyphBox& box);
// Not limited to the largest image, which the union of many boxes may exceed.
GlyphBox unionOf(const GlyphBox& a, const GlyphBox& b);
// An image of zeros; without pixels if the box is larger than an image may be.
GlyphImage blankImage(const GlyphBox& box);
ColorImage blankPicture(const GlyphBox& box);

// How the phone sizes a style: FreeType's size, then a matrix (y downwards) for what FreeType cannot scale.
struct PhoneScale {
    float width = 0, height = 0;  // pixels per em
    float xx = 1, xy = 0, yy = 1;
};
PhoneScale phoneScale(const GlyphStyle& style);
bool setPhoneMatrix(FreeTypeFace& font, const PhoneScale& scale);
// Whether glyphs of the style are hinted.
bool isHinted(const GlyphStyle& style);

// Loads the glyph's outline, which may be empty, into the face's slot: scaled, slanted, widened. False if it
// has none.
bool loadGlyph(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style);
// The advance of the slot's glyph, as the phone measures it.
float slotAdvance(const FreeTypeFace& font, const GlyphStyle& style);
// The same for a pen at quarterX. False if there is nothing to draw.
bool loadOutline(FreeTypeFace& font, uint32_t glyph, const GlyphStyle& style, int quarterX);
// The box of the slot's control points, y downwards.
GlyphBox outlineBox(const FreeTypeFace& font);
// Maps each level of a style's coverage: the phone's gamma, or the identity.
using Levels = uint8_t[256];
const Levels& exactLevels();
const Levels& levelsOf(const GlyphStyle& style);
// The coverage of the slot's outline; moves the outline. False if it could not be rasterised.
bool rasterise(FreeTypeFace& font, const GlyphStyle& style, const Levels& levels, GlyphImage& image);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_GLYPHOUTLINE_H_
