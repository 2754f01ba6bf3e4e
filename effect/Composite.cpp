// SPDX-License-Identifier: Apache-2.0
//
// The definitions, pixel by pixel, are tests/reference/CompositeReference.h.

#include "effect/Composite.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "foundation/ZvLog.h"
#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "the kernels take pixels as little-endian words");

namespace Zvex {

namespace {

bool isColor(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr && bitmap->bytesPerPixel == 4;
}

// left <= right, top <= bottom
struct PixelArea {
    size_t left, top, right, bottom;
};

PixelArea wholeOf(const ZvBitmap& bitmap) {
    return {0, 0, bitmap.width, bitmap.height};
}

PixelArea areaOn(const ZvBitmap& bitmap, const ZvRect& area) {
    const auto within = [](int32_t at, size_t first, size_t size) {
        return at < 0 ? first : std::clamp<size_t>(static_cast<size_t>(at), first, size);
    };
    const size_t left = within(area.left, 0, bitmap.width), top = within(area.top, 0, bitmap.height);
    return {left, top, within(area.right, left, bitmap.width), within(area.bottom, top, bitmap.height)};
}

// words[i] = table[coverage[i]]; eight pixels at a time where they are alike. Empty ones are left alone.
void paintRow(uint8_t* __restrict pixels, const uint8_t* __restrict coverage, size_t count,
              const uint32_t (&table)[256]) {
    const auto paint = [&](size_t i) { std::memcpy(pixels + 4 * i, &table[coverage[i]], 4); };
    size_t x = 0;
    for (; x + 8 <= count; x += 8) {
        uint64_t eight;
        std::memcpy(&eight, coverage + x, 8);
        if (eight == 0) continue;
        if (eight == ~uint64_t{0}) {
            for (size_t i = 0; i < 8; ++i) std::memcpy(pixels + 4 * (x + i), &table[255], 4);
        } else {
            for (size_t i = 0; i < 8; ++i) paint(x + i);
        }
    }
    for (; x < count; ++x) paint(x);
}

#define ZVEX_KERNELS "effect/CompositeKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

void cutToGlyphs(ZvBitmap* target, const ZvBitmap* mask, uint32_t color, const ZvRect* area) {
    const PixelArea part = area != nullptr ? areaOn(*target, *area) : wholeOf(*target);
    const size_t covered = std::clamp<size_t>(mask->width, part.left, part.right);
    for (size_t y = part.top; y < part.bottom; ++y) {
        uint8_t* row = target->pixels + y * target->width * 4;
        const size_t begin = y < mask->height ? covered : part.left;
        if (y < mask->height) {
            const uint8_t* coverage = mask->pixels + y * mask->width;
            ZVEX_ON_TARGET(
                cutToCoverage(row + part.left * 4, coverage + part.left, covered - part.left, color));
        }
        std::memset(row + begin * 4, 0, (part.right - begin) * 4);
    }
}

void logTextBlend() {
    ZV_DEBUG_LOG("Blender", "Blender - ZVE_BLEND_OTHER");
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
    ZVEX_ON_TARGET(finishRow(picture->pixels, count, textAlpha, false));
}

void finishPicture(ZvBitmap* picture, const ZvRect& area, uint8_t textAlpha, PixelOrder order) {
    if (!isColor(picture)) return;
    const PixelArea part = areaOn(*picture, area);
    for (size_t y = part.top; y < part.bottom; ++y) {
        uint8_t* pixels = picture->pixels + (y * picture->width + part.left) * 4;
        ZVEX_ON_TARGET(finishRow(pixels, part.right - part.left, textAlpha, order == PixelOrder::BlueFirst));
    }
}

void paintText(ZvBitmap* target, const ZvBitmap* mask, uint32_t color, const ZvRect& area, uint8_t textAlpha,
               PixelOrder order) {
    if (!isColor(target) || mask == nullptr || mask->pixels == nullptr || mask->bytesPerPixel != 1) return;
    uint8_t ramp[256];
    for (size_t i = 0; i < 256; ++i) ramp[i] = static_cast<uint8_t>(i);
    uint32_t table[256] = {};
    uint8_t* const bytes = reinterpret_cast<uint8_t*>(table);
    ZVEX_ON_TARGET(cutToCoverage(bytes, ramp, 256, color));
    ZVEX_ON_TARGET(finishRow(bytes, 256, textAlpha, order == PixelOrder::BlueFirst));

    PixelArea part = areaOn(*target, area);
    part.right = std::min<size_t>(part.right, mask->width);
    part.bottom = std::min<size_t>(part.bottom, mask->height);
    if (part.left >= part.right) return;
    for (size_t y = part.top; y < part.bottom; ++y) {
        paintRow(target->pixels + (y * target->width + part.left) * 4,
                 mask->pixels + y * mask->width + part.left, part.right - part.left, table);
    }
}

}  // namespace Zvex
