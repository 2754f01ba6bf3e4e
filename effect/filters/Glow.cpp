// SPDX-License-Identifier: Apache-2.0
//
// Box sums spread the coverage, a Gaussian smooths it, and a table of colours makes the picture. The inner
// glow does the same to the coverage of everything but the text. With r = (int)size + 1:
//
//     |<- 0.9 r ->|<- 1.1 r ->|<- text box ->|<- 1.1 r ->|<- 0.9 r ->|
//     ^ border: not blurred    ^ spread: 0.475 r by the box sums, 0.9 r by the Gaussian
//
// The box sums spread by a pixel a pass, and there is one pass for every second pixel of the size: the plane
// that they work on is the text box and that much around it. All passes are made of a few rows before
// the next ones are read, and of these only where something changes: along the outlines. The definition is
// tests/reference/GlowReference.h.

#include "effect/filters/Glow.h"

#include <algorithm>
#include <cstddef>

#include "effect/filters/Buffer.h"
#include "effect/filters/ColorTable.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/Gaussian.h"
#include "foundation/SafeConvert.h"
#include "raster/CpuTarget.h"
#include "raster/Intrinsics.h"
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

// The box filter on what 255 lacks of an image, for images that are nearly full: the sum of the nine inverses
// is n = 9 * 255 - sum, and 255 - min(sum >> 2, 255) is n - INVERSE_LOSS over four, cut off, or 0.
constexpr uint16_t INVERSE_LOSS = 9 * 255 - 4 * 255 - 3;

struct Widening {
    uint8_t* image;  // changed in place, but for its first and its last row
    ptrdiff_t stride;
    int width, height, passes;
    bool inverse;   // the image is the inverse of the one to widen
    uint16_t edge;  // what the other rows' first and last pixels become
};

// The kernels look at this many rows at a time, in blocks of 8 or 16 pixels, eight blocks at a time.
constexpr int WIDENING_GROUP = 8;

#define ZVEX_KERNELS "effect/filters/GlowKernels.inc"
#include "raster/ForEachTarget.h"

// False, with the image untouched, when memory is short.
bool widen(const Widening& w) {
    constexpr int64_t LARGEST_BLOCK = 16, SMALLEST_BLOCK = 8;
    const int64_t width = (w.width + 8 * LARGEST_BLOCK - 1) / (8 * LARGEST_BLOCK) * (8 * LARGEST_BLOCK);
    const int64_t stride = width + 2 * LARGEST_BLOCK, stateStride = width / SMALLEST_BLOCK + 16;
    Buffer<uint16_t> rows;  // two groups, and two rows for each pass
    Buffer<uint8_t> states;
    if (!rows.allocateZeroed(2 * int64_t{w.passes} + 2 * WIDENING_GROUP, stride)) return false;
    if (!states.allocate(int64_t{w.passes} + 4, stateStride)) return false;
    ZVEX_ON_TARGET(widenPlane(w, rows.get(), states.get(), stride, stateStride));
    return true;
}

// What a glow is made of, in pixels of its working area.
struct GlowShape {
    WorkingArea area;
    int passes, radius;
    int source;  // where the plane that the passes work on begins, on all sides: no pass leaves it

    bool make(const ZvRect& box, int64_t reach) {
        if (!area.grow(box, 2 * reach)) return false;
        passes = std::max(truncateToInt(static_cast<double>(reach) * PASSES_OF_REACH), 1);
        radius = truncateToInt(static_cast<float>(reach) * BLUR_OF_REACH);
        source = area.margin - passes - 1;
        return true;
    }
    int sourceWidth() const { return area.width - 2 * source; }
    int sourceHeight() const { return area.height - 2 * source; }
};

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
    return widen({image, width, width, height, passes, false, 0});
}

void drawGlow(const ZvECore::ParamPostProcessing* param, const ZvGlowProperty* property, GlowSide side) {
    if (property == nullptr || !isDrawable(param)) return;
    if (!(property->size > -1.0f)) return;  // not-a-number too

    // From 1 on; a size beyond the ints makes an area that is refused.
    const int64_t reach = int64_t{truncateToInt(property->size)} + 1;
    const ZvRect& box = *param->textRect;
    GlowShape shape;
    if (!shape.make(box, reach)) return;
    const WorkingArea& area = shape.area;
    const bool inside = side == GlowSide::Inside;
    const int radius = shape.radius, width = shape.sourceWidth(), height = shape.sourceHeight();

    // The part of the area that is seen.
    const int left = clampToInt(std::max<int64_t>(0, -int64_t{area.x}));
    const int top = clampToInt(std::max<int64_t>(0, -int64_t{area.y}));
    const int right = static_cast<int>(std::min<int64_t>(area.width, int64_t{param->target->width} - area.x));
    const int bottom =
        static_cast<int>(std::min<int64_t>(area.height, int64_t{param->target->height} - area.y));
    if (left >= right || top >= bottom) return;
    // The part of that which is blurred; the rest is border.
    const int xBegin = std::max(left, radius), xEnd = std::min(right, area.width - radius);
    const int yBegin = std::max(top, radius), yEnd = std::min(bottom, area.height - radius);
    const int count = std::max(xEnd - xBegin, 0), stride = std::max(count, width);

    Gaussian kernel;
    Blur blur;
    Buffer<uint8_t> source, blurred;
    Buffer<uint32_t> row;
    if (!kernel.make(radius, GAUSSIAN_SCALE, GaussianConstant::Single)) return;
    const int band = std::max(1, std::min(blurBandRows(kernel), yEnd - yBegin));
    if (!source.allocateZeroed(height, width) || !blurred.allocate(band, stride) ||
        !row.allocate(right - left) || !blur.prepare(kernel, stride, band))
        return;

    // The inner glow is that of the coverage's inverse. What 255 lacks of this is the coverage: next to
    // nothing is left of it after the passes, and what is empty costs nothing. Only where there is no blur do
    // the outermost columns count, which the passes make 0, and full in the inverse.
    const ptrdiff_t inset = ptrdiff_t{shape.passes} + 1;
    copyCoverage(*param->mask, box, source.get() + inset * width + inset, width);
    const uint16_t edge = inside && shape.source == 0 ? 255 : 0;
    if (!widen({source.get(), width, width, height, shape.passes, inside, edge})) return;

    uint32_t colors[COLOR_TABLE_SIZE];
    makeGlowTable(colors, property, FADE_START, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors) color = premultiplied(color);
    std::reverse(colors, colors + COLOR_TABLE_SIZE);

    const auto drawRow = [&](int y) {
        ZvBlender::drawBitmapBlend32(area.x + left, area.y + y, param->target, row.get(), right - left, 1,
                                     right - left, ZVE_BLEND_DST_OVER);
    };
    std::fill_n(row.get(), right - left, inside ? BORDER_INSIDE : BORDER_OUTSIDE);
    for (int y = top; y < bottom && inside; ++y) {
        if (count == 0 || y < yBegin || y >= yEnd) drawRow(y);
    }
    for (int y = yBegin; y < yEnd && count > 0; y += band) {
        const int rows = std::min(band, yEnd - y);
        blur.columns({source.get(), width, shape.source - y, shape.source - y + height, blurred.get(), stride,
                      width, rows, false, false});
        blur.rows({blurred.get(), stride, shape.source - xBegin, shape.source - xBegin + width, blurred.get(),
                   stride, count, rows, false, inside});
        for (int i = 0; i < rows; ++i) {
            const uint8_t* values = blurred.get() + ptrdiff_t{i} * stride;
            ZVEX_ON_TARGET(colorRow(row.get() + (xBegin - left), values, count, colors));
            drawRow(y + i);
        }
    }
}

}  // namespace Zvex
