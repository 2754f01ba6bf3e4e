// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_LAYERBLEND_H_
#define ZVEX_RASTER_LAYERBLEND_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

// How a layer's colours mix with those behind it: the modes of the W3C's "Compositing and Blending Level 1",
// and plus-lighter, which adds premultiplied colours and alphas and limits the sums to 1.
enum class LayerBlend : int {
    Normal,
    Multiply,
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
    Hue,
    Saturation,
    Color,
    Luminosity,
    PlusLighter,
};
// The number of modes.
constexpr int kLayerBlends = 17;

// Joins layers, kPiece pixels of a row at a time. With backdrop b, source s and their alphas a:
//
//     alpha  = a_s + a_b (1 - a_s)
//     colour = ((1 - a_s) a_b C_b + a_s ((1 - a_b) C_s + a_b B(C_b, C_s))) / alpha
//
// Between layers nothing is rounded to bytes: a piece holds single-precision numbers, so the result of any
// number of layers is within one level of the exact one. The modes hue, saturation, color and luminosity take
// a colour whose channels differ by no more than 2^-20 as grey. The plain form,
// tests/reference/LayerJoinReference.h, states the order of operations. Built for several instruction sets
// (raster/ForEachTarget.h). Always kPiece pixels; addresses need no alignment; nothing is allocated. Pixels
// given as words are straight 0xAARRGGBB.
namespace JoinRows {

// Pixels of a piece.
constexpr size_t kPiece = 64;

// Premultiplied, 0 to 1; no colour exceeds its alpha.
struct Piece {
    float channels[3][kPiece];  // blue, green, red
    float alpha[kPiece];        // 0 to 1
};

// Joins the source if that needs no arithmetic: if each of its translucent pixels lies over a transparent
// one. Otherwise returns false and changes nothing. `replaces`: opaque source pixels hide what is behind them
// (the normal mode).
bool joinWords(uint32_t* backdrop, const uint32_t* source, bool replaces);

// Whether the alpha of all pixels is 0.
bool isTransparent(const uint32_t* words);

// alpha[i] = the pixel's alpha times `opacity`.
void takeAlpha(float* alpha, const uint32_t* words, float opacity);
// alpha[i] *= 1 - coverage / 255.
void knockOut(float* alpha, const uint8_t* coverage);
// alpha[i] *= base[i].
void clip(float* alpha, const float* base);

// Multiplies the colours by their alphas.
void takeWords(Piece* piece, const uint32_t* words);
// Joins the colours of `source` with these alphas. The alphas in the words are ignored.
void join(Piece* backdrop, const uint32_t* source, const float* alpha, LayerBlend blend);
// Multiplies the alpha by `opacity` and rounds bytes half up. A word is 0 where its alpha becomes 0.
void giveWords(uint32_t* words, const Piece& piece, float opacity);

}  // namespace JoinRows

}  // namespace Zvex

#endif  // ZVEX_RASTER_LAYERBLEND_H_
