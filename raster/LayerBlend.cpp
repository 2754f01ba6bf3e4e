// SPDX-License-Identifier: Apache-2.0
#include "raster/LayerBlend.h"

#include "raster/CpuTarget.h"

namespace Zvex::JoinRows {

namespace {

#define ZVEX_KERNELS "raster/LayerBlendKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool joinWords(uint32_t* backdrop, const uint32_t* source, bool replaces) {
    return ZVEX_ON_TARGET(joinWords(backdrop, source, replaces));
}

bool isTransparent(const uint32_t* words) {
    return ZVEX_ON_TARGET(isTransparent(words));
}

void takeAlpha(float* alpha, const uint32_t* words, float opacity) {
    ZVEX_ON_TARGET(takeAlpha(alpha, words, opacity));
}

void knockOut(float* alpha, const uint8_t* coverage) {
    ZVEX_ON_TARGET(knockOut(alpha, coverage));
}

void clip(float* alpha, const float* base) {
    ZVEX_ON_TARGET(clip(alpha, base));
}

void takeWords(Piece* piece, const uint32_t* words) {
    ZVEX_ON_TARGET(takeWords(piece, words));
}

void join(Piece* backdrop, const uint32_t* source, const float* alpha, LayerBlend blend) {
    ZVEX_ON_TARGET(join(backdrop, source, alpha, blend));
}

void giveWords(uint32_t* words, const Piece& piece, float opacity) {
    ZVEX_ON_TARGET(giveWords(words, piece, opacity));
}

}  // namespace Zvex::JoinRows
