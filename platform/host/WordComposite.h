// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_WORDCOMPOSITE_H_
#define ZVEX_PLATFORM_HOST_WORDCOMPOSITE_H_

#include <cstddef>
#include <cstdint>

namespace host {

// How the pictures of a painted glyph are joined, with the fonts' numbers for the modes: the operators of
// Porter and Duff (1984), the sum, and the blend modes of the W3C's "Compositing and Blending Level 1".
enum class Composite : uint8_t {
    Clear,
    Source,
    Backdrop,
    SourceOver,
    BackdropOver,
    SourceIn,
    BackdropIn,
    SourceOut,
    BackdropOut,
    SourceAtop,
    BackdropAtop,
    Xor,
    Plus,
    Screen,
    Overlay,
    Darken,
    Lighten,
    ColorDodge,
    ColorBurn,
    HardLight,
    SoftLight,
    Difference,
    Exclusion,
    Multiply,
    Hue,
    Saturation,
    Color,
    Luminosity,
};
constexpr int kComposites = 28;

constexpr uint32_t withAlpha(uint32_t color, uint32_t alpha) {
    return alpha == 0 ? 0 : (color & 0xFFFFFF) | alpha << 24;
}

// Joins rows of straight 0xAARRGGBB words, which must not overlap. Colours and alphas are rounded to the
// nearest once, half up. A word is 0 where its alpha is 0.
void compositeWords(uint32_t* backdrop, const uint32_t* source, size_t count, Composite mode);

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_WORDCOMPOSITE_H_
