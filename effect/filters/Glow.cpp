// SPDX-License-Identifier: Apache-2.0
//
// Box sums spread the coverage, a Gaussian smooths it, and a table of colours makes the picture. The inner
// glow does the same to the coverage of everything but the text. With r = (int)size + 1:
//
//     |<- 0.9 r ->|<- 1.1 r ->|<- text box ->|<- 1.1 r ->|<- 0.9 r ->|
//     ^ border: not blurred    ^ spread: 0.475 r by the box sums, 0.9 r by the Gaussian
//
// Each pass of the box sums costs nine additions a pixel, and there is one for every second pixel of the
// size. The definition is tests/reference/GlowReference.h.

#include "effect/filters/Glow.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "effect/filters/Buffer.h"
#include "effect/filters/ColorTable.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/Gaussian.h"
#include "foundation/SafeConvert.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

constexpr int LAST_ENTRY = COLOR_TABLE_SIZE - 1;

constexpr float FADE_START = 0.3f;
constexpr float MOST_FADE_START = 0.99f, LEAST_FADE_START = 0.01f;

constexpr double PASSES_OF_REACH = 0.475;
constexpr float BLUR_OF_REACH = 0.9f;
constexpr int GAUSSIAN_SCALE = 128;

// What the border around the blurred pixels shows.
constexpr uint32_t BORDER_OUTSIDE = 0, BORDER_INSIDE = 0xFFFFFFFF;

// Scales the alpha of the entries: unchanged up to the start, then falling in a straight line.
void fade(uint32_t* table, float start) {
    if (start >= 1.0f) start = MOST_FADE_START;
    if (!(start > 0.0f)) start = LEAST_FADE_START;
    const int first = truncateToInt(start * 256.0);
    for (int i = first; i <= LAST_ENTRY; ++i) {
        const uint32_t weight = static_cast<uint32_t>((LAST_ENTRY - i) * 256 / (LAST_ENTRY - first));
        table[i] = (weight * (table[i] >> 24) >> 8) << 24 | (table[i] & 0x00FFFFFF);
    }
}

// One row of the box filter: widened[x] of the rows above, at and below x, for all x but the ends.
void widenRow(uint8_t* widened, const uint8_t* above, const uint8_t* row, const uint8_t* below, int width) {
    for (int x = 1; x < width - 1; ++x) {
        const auto three = [x](const uint8_t* pixels) { return pixels[x - 1] + pixels[x] + pixels[x + 1]; };
        const int sum = three(above) + three(row) + three(below);
        widened[x] = static_cast<uint8_t>(std::min(sum >> 2, 255));
    }
}

}  // namespace

void makeGlowTable(uint32_t* table, const ZvGlowProperty* property, float fadeStart, int curve) {
    if (table == nullptr || property == nullptr) return;
    if (property->size == 0.0f) {
        std::fill_n(table, COLOR_TABLE_SIZE, 0);
        return;
    }
    if (property->stops == nullptr || property->count < 1) {
        std::fill_n(table, COLOR_TABLE_SIZE, property->color);
    } else {
        fillColorTable(table, property->stops, property->count, 0.0f, curve);
    }
    fade(table, fadeStart);
    table[LAST_ENTRY] = 0;
}

bool widenByBoxFilter(uint8_t* image, int passes, int width, int height) {
    if (image == nullptr || passes < 1 || width < 1 || height < 3) return true;
    const size_t bytes = static_cast<size_t>(width);
    Buffer<uint8_t> above;    // a row as it was before the pass
    Buffer<uint8_t> widened;  // 0 at both ends
    if (!above.allocate(width) || !widened.allocateZeroed(width)) return false;
    for (int pass = 0; pass < passes; ++pass) {
        std::memcpy(above.get(), image, bytes);
        uint8_t* row = image + bytes;
        for (int y = 1; y < height - 1; ++y, row += bytes) {
            widenRow(widened.get(), above.get(), row, row + bytes, width);
            std::memcpy(above.get(), row, bytes);
            std::memcpy(row, widened.get(), bytes);
        }
    }
    return true;
}

void drawGlow(const ZvECore::ParamPostProcessing* param, const ZvGlowProperty* property, GlowSide side) {
    if (property == nullptr || !isDrawable(param)) return;
    if (!(property->size > -1.0f)) return;  // not-a-number too

    // From 1 on; a size beyond the ints makes an area that is refused.
    const int64_t reach = int64_t{truncateToInt(property->size)} + 1;
    const ZvRect& box = *param->textRect;
    WorkingArea area;
    if (!area.grow(box, 2 * reach)) return;
    Buffer<uint8_t> source;
    if (!source.allocateZeroed(area.height, area.width)) return;
    copyCoverage(*param->mask, box, source.get() + area.row(area.margin) + area.margin, area.width);
    const bool inside = side == GlowSide::Inside;
    if (inside) {
        for (size_t i = 0; i < area.pixels(); ++i) source[i] = static_cast<uint8_t>(255 - source[i]);
    }

    const int passes = std::max(truncateToInt(static_cast<double>(reach) * PASSES_OF_REACH), 1);
    const int radius = truncateToInt(static_cast<float>(reach) * BLUR_OF_REACH);
    Gaussian kernel;
    Buffer<uint8_t> blurred;
    Buffer<uint32_t> image;
    if (!widenByBoxFilter(source.get(), passes, area.width, area.height) ||
        !kernel.make(radius, GAUSSIAN_SCALE, GaussianConstant::Single) ||
        !blurred.allocate(area.height, area.width) || !image.allocate(area.height, area.width)) {
        return;
    }
    const int xEnd = area.width - radius, yEnd = area.height - radius;
    if (!blurPlane({source.get(), blurred.get(), area.width, &kernel, inside, radius, xEnd, radius, yEnd}))
        return;

    uint32_t colors[COLOR_TABLE_SIZE];
    makeGlowTable(colors, property, FADE_START, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors) color = premultiplied(color);
    std::fill_n(image.get(), area.pixels(), inside ? BORDER_INSIDE : BORDER_OUTSIDE);
    for (int y = radius; y < yEnd; ++y) {
        const uint8_t* values = blurred.get() + area.row(y);
        uint32_t* row = image.get() + area.row(y);
        for (int x = radius; x < xEnd; ++x) row[x] = colors[LAST_ENTRY - values[x]];
    }
    ZvBlender::drawBitmapBlend32(area.x, area.y, param->target, image.get(), area.width, area.height,
                                 area.width, ZVE_BLEND_DST_OVER);
}

}  // namespace Zvex
