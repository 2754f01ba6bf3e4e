// SPDX-License-Identifier: Apache-2.0
//
// The plain forms are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "raster/BlendRows.h"
#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex {

namespace {

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

// words[i] = table[coverage[i]]; eight pixels at a time if they are equal. Pixels without coverage do not
// change. (Uses the compiler's memcpy: the C library's checked one prevents vectors. Not inlined into the
// kernels, where the compiler would make vectors of the look-ups, which is slower.)
__attribute__((noinline)) void takeWords(uint8_t* __restrict pixels, const uint8_t* __restrict coverage,
                                         size_t count, const uint32_t* __restrict table) {
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

// All levels of coverage.
struct Ramp {
    uint8_t levels[256];
    Ramp() : levels() { std::iota(levels, levels + 256, uint8_t{0}); }
};

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
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(mWords);
    cutRowToGlyphs(bytes, Ramp().levels, 256, color);
    finishRow(bytes, 256, textAlpha, order);
}

void TextColors::paintRow(uint8_t* pixels, const uint8_t* coverage, size_t count) const {
    takeWords(pixels, coverage, count, mWords);
}

TextOverColor::TextOverColor(uint32_t text, uint32_t under, uint8_t textAlpha, PixelOrder order)
    : mText(text), mUnder(under), mTextAlpha(textAlpha), mOrder(order), mWords() {
    uint8_t full[256];
    std::fill_n(full, 256, uint8_t{255});
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(mWords);
    cutRowToGlyphs(bytes, Ramp().levels, 256, text);
    BlendRows::dstOver8To32(bytes, full, 256, under);
    finishRow(bytes, 256, textAlpha, order);
}

void TextOverColor::paintUnder(uint8_t* pixels, const uint8_t* under, size_t count) const {
    ZVEX_ON_TARGET(
        paintColor(pixels, under, count, mUnder, mWords[0], mTextAlpha, mOrder == PixelOrder::BlueFirst));
}

void TextOverColor::paintBoth(uint8_t* pixels, const uint8_t* text, const uint8_t* under,
                              size_t count) const {
    ZVEX_ON_TARGET(paintTextOver(pixels, text, under, count, mWords, mText, mUnder, mTextAlpha,
                                 mOrder == PixelOrder::BlueFirst));
}

}  // namespace Zvex
