// SPDX-License-Identifier: Apache-2.0
//
// The plain forms are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <cstddef>

#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex {

namespace {

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

// words[i] = table[coverage[i]]; eight pixels at a time if they are equal. Pixels without coverage do not
// change. (Uses the compiler's memcpy: the C library's checked one prevents vectors.)
void takeWords(uint8_t* __restrict pixels, const uint8_t* __restrict coverage, size_t count,
               const uint32_t (&table)[256]) {
    const auto paint = [&](size_t i) { __builtin_memcpy(pixels + 4 * i, &table[coverage[i]], 4); };
    size_t x = 0;
    for (; x + 8 <= count; x += 8) {
        uint64_t eight;
        __builtin_memcpy(&eight, coverage + x, 8);
        if (eight == 0) continue;
        if (eight == ~uint64_t{0}) {
            for (size_t i = 0; i < 8; ++i) __builtin_memcpy(pixels + 4 * (x + i), &table[255], 4);
        } else {
            for (size_t i = 0; i < 8; ++i) paint(x + i);
        }
    }
    for (; x < count; ++x) paint(x);
}

#define ZVEX_KERNELS "effect/CompositeKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

void mergeBackLayer(ZvBitmap* picture, const ZvBitmap* back, const ZvBitmap* mask) {
    if (!isColor(picture) || !isColor(back) || mask == nullptr || mask->pixels == nullptr) return;
    if (mask->bytesPerPixel != 1) return;
    const auto pixelsOf = [](const ZvBitmap& bitmap) { return size_t{bitmap.width} * bitmap.height; };
    mergeBackRow(picture->pixels, back->pixels, mask->pixels,
                 std::min({pixelsOf(*picture), pixelsOf(*back), pixelsOf(*mask)}));
}

void finishPicture(ZvBitmap* picture, uint8_t textAlpha) {
    if (!isColor(picture)) return;
    finishRow(picture->pixels, size_t{picture->width} * picture->height, textAlpha, PixelOrder::RedFirst);
}

void mergeBackRow(uint8_t* pixels, const uint8_t* back, const uint8_t* coverage, size_t count) {
    ZVEX_ON_TARGET(mergeRow(pixels, back, coverage, count));
}

void finishRow(uint8_t* pixels, size_t count, uint8_t textAlpha, PixelOrder order) {
    ZVEX_ON_TARGET(finishRow(pixels, count, textAlpha, order == PixelOrder::BlueFirst));
}

void cutRowToGlyphs(uint8_t* pixels, const uint8_t* coverage, size_t count, uint32_t color) {
    ZVEX_ON_TARGET(cutToCoverage(pixels, coverage, count, color));
}

TextColors::TextColors(uint32_t color, uint8_t textAlpha, PixelOrder order) : mWords() {
    uint8_t ramp[256];
    for (size_t i = 0; i < 256; ++i) ramp[i] = static_cast<uint8_t>(i);
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(mWords);
    cutRowToGlyphs(bytes, ramp, 256, color);
    finishRow(bytes, 256, textAlpha, order);
}

void TextColors::paintRow(uint8_t* pixels, const uint8_t* coverage, size_t count) const {
    takeWords(pixels, coverage, count, mWords);
}

}  // namespace Zvex
