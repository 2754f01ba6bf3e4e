// SPDX-License-Identifier: Apache-2.0
//
// The plain forms are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "raster/BlendRows.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"
#include "raster/ZvBitmap.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex {

namespace {

// Pixels that are finished together: fewer than in other strips, because glyphs have many short opaque and
// empty runs, and a division is expensive.
constexpr size_t kPart = 32;

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

// The words of eight pixels by their coverage. Pixels without coverage do not change. (Uses the compiler's
// memcpy: the C library's checked one prevents vectors.)
inline void takeEight(uint8_t* __restrict pixels, const uint8_t* __restrict coverage,
                      const uint32_t* __restrict table) {
    const auto paint = [&](size_t i, uint32_t level) { __builtin_memcpy(pixels + 4 * i, &table[level], 4); };
    uint64_t eight;
    __builtin_memcpy(&eight, coverage, 8);
    if (eight == 0) return;
    if (eight == ~uint64_t{0}) {
        for (size_t i = 0; i < 8; ++i) paint(i, 255);
    } else {
        for (size_t i = 0; i < 8; ++i) paint(i, coverage[i]);
    }
}

// Of kPart pixels. Not inlined into the kernels, where the compiler would make vectors of the look-ups, which
// is slower.
__attribute__((noinline)) void takeWords(uint8_t* __restrict pixels, const uint8_t* __restrict coverage,
                                         const uint32_t* __restrict table) {
    for (size_t i = 0; i < kPart; i += 8) takeEight(pixels + 4 * i, coverage + i, table);
}

void takeRow(uint8_t* pixels, const uint8_t* coverage, size_t count, const uint32_t* table) {
    size_t i = 0;
    for (; i + 8 <= count; i += 8) takeEight(pixels + 4 * i, coverage + i, table);
    for (; i < count; ++i) __builtin_memcpy(pixels + 4 * i, &table[coverage[i]], 4);
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

PlainColors::PlainColors(const uint32_t* colors, size_t count, uint8_t textAlpha, PixelOrder order)
    : mResults() {
    uint8_t levels[256], full[256];
    std::iota(levels, levels + 256, uint8_t{0});
    std::fill_n(full, 256, uint8_t{255});
    mResults.count = count;
    mResults.textAlpha = textAlpha;
    std::copy_n(colors, count, mResults.colors);
    for (size_t i = 0; i < count; ++i) {
        for (const unsigned channel : {0u, 1u, 2u, 3u}) {
            const bool inPlace = order == PixelOrder::BlueFirst || channel == 3;
            const uint32_t level = colors[i] >> (inPlace ? 8 * channel : 16 - 8 * channel) & 0xFF;
            mResults.factors[i][channel] = (level + 1) * 0x10001;
        }
    }
    const auto bytesOf = [](uint32_t* words) { return reinterpret_cast<uint8_t*>(words); };
    cutRowToGlyphs(bytesOf(mResults.text), levels, 256, colors[0]);
    if (count > 1) BlendRows::dstOver8To32(bytesOf(mResults.text), full, 256, colors[1]);
    finishRow(bytesOf(mResults.text), 256, textAlpha, order);
    for (size_t i = 0; i < count; ++i)
        BlendRows::dstOver8To32(bytesOf(&mResults.full[i]), full, 1, colors[i]);
    finishRow(bytesOf(mResults.full), count, textAlpha, order);
}

void PlainColors::paintRow(uint8_t* pixels, int left, int right, const Coverage* coverages) const {
    if (mResults.count > 1) return ZVEX_ON_TARGET(paintColors(pixels, left, right, coverages, mResults));
    const int begin = std::max(left, coverages->left), end = std::min(right, coverages->right);
    if (begin >= end) return;
    takeRow(pixels + ptrdiff_t{begin - left} * 4, coverages->pixels + (begin - coverages->left),
            static_cast<size_t>(end - begin), mResults.text);
}

}  // namespace Zvex
