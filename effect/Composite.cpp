// SPDX-License-Identifier: Apache-2.0
//
// The definitions, pixel by pixel, are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex {

namespace {

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

#define ZVEX_KERNELS "effect/CompositeKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

void clearOutsideGlyphs(ZvBitmap* target, const ZvBitmap* mask) {
    const size_t width = target->width;
    const size_t covered = std::min<size_t>(width, mask->width);
    for (size_t y = 0; y < target->height; ++y) {
        uint8_t* pixels = target->pixels + y * width * 4;
        if (y >= mask->height) {
            std::memset(pixels, 0, width * 4);
            continue;
        }
        const uint8_t* coverage = mask->pixels + y * mask->width;
        ZVEX_ON_TARGET(clearOutside(pixels, coverage, covered));
        std::memset(pixels + covered * 4, 0, (width - covered) * 4);
    }
}

void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask) {
    if (!isColor(picture) || !isColor(back) || mask == nullptr || mask->pixels == nullptr) return;
    if (mask->bytesPerPixel != 1) return;
    const size_t width = std::min({picture->width, back->width, mask->width});
    const size_t height = std::min({picture->height, back->height, mask->height});
    for (size_t y = 0; y < height; ++y) {
        uint8_t* front = picture->pixels + y * picture->width * 4;
        const uint8_t* behind = back->pixels + y * back->width * 4;
        const uint8_t* coverage = mask->pixels + y * mask->width;
        ZVEX_ON_TARGET(mergeRow(front, behind, coverage, width));
    }
}

void finishPicture(ZvBitmap* picture, uint8_t textAlpha) {
    if (!isColor(picture)) return;
    const size_t count = size_t{picture->width} * picture->height;
    ZVEX_ON_TARGET(finishRow(picture->pixels, count, textAlpha));
}

}  // namespace Zvex
