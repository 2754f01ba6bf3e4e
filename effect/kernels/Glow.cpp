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

#include "effect/kernels/Glow.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <utility>

#include "effect/LayerRows.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/ColorTable.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Gaussian.h"
#include "foundation/OutOfMemory.h"
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

#define ZVEX_KERNELS "effect/kernels/GlowKernels.inc"
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
class GlowRows : public LayerRows {
public:
    // False when nothing of it is seen or memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvGlowProperty& property, GlowSide side);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override;

private:
    bool placeWithin(const ZvBitmap& target);
    bool widenCoverage(const ZvECore::ParamPostProcessing& param);
    void fillColors(const ZvGlowProperty& property);
    void blurBand(int y);

    int sourceWidth() const { return area_.width - 2 * source_; }
    int sourceHeight() const { return area_.height - 2 * source_; }
    int count() const { return std::max(xEnd_ - xBegin_, 0); }

    WorkingArea area_;
    bool inside_ = false;
    int passes_ = 0;
    int source_ = 0;  // where the plane that the passes work on begins, on all sides: no pass leaves it
    int left_ = 0, top_ = 0, right_ = 0, bottom_ = 0;    // the part of the area that is seen
    int xBegin_ = 0, xEnd_ = 0, yBegin_ = 0, yEnd_ = 0;  // the part of that which is blurred, not border
    Gaussian kernel_;
    Blur blur_;
    Buffer<uint8_t> widened_, blurred_;  // the plane; a band of rows
    int stride_ = 0, bandRows_ = 0;      // of blurred_
    int bandBegin_ = 0, bandEnd_ = 0;
    Buffer<uint32_t> row_;                    // of what is seen, the border in place
    uint32_t colors_[COLOR_TABLE_SIZE] = {};  // premultiplied, from none to the strongest
};

// The parts of the area on the target.
bool GlowRows::placeWithin(const ZvBitmap& target) {
    left_ = clampToInt(std::max<int64_t>(0, -int64_t{area_.x}));
    top_ = clampToInt(std::max<int64_t>(0, -int64_t{area_.y}));
    right_ = static_cast<int>(std::min<int64_t>(area_.width, int64_t{target.width} - area_.x));
    bottom_ = static_cast<int>(std::min<int64_t>(area_.height, int64_t{target.height} - area_.y));
    xBegin_ = std::max(left_, kernel_.radius);
    xEnd_ = std::min(right_, area_.width - kernel_.radius);
    yBegin_ = std::max(top_, kernel_.radius);
    yEnd_ = std::min(bottom_, area_.height - kernel_.radius);
    return left_ < right_ && top_ < bottom_;
}

bool GlowRows::make(const ZvECore::ParamPostProcessing& param, const ZvGlowProperty& property,
                    GlowSide side) {
    // From 1 on; a size beyond the ints makes an area that is refused.
    const int64_t reach = int64_t{truncateToInt(property.size)} + 1;
    if (!area_.grow(*param.textRect, 2 * reach)) return false;
    inside_ = side == GlowSide::Inside;
    passes_ = std::max(truncateToInt(static_cast<double>(reach) * PASSES_OF_REACH), 1);
    source_ = area_.margin - passes_ - 1;
    const int radius = truncateToInt(static_cast<float>(reach) * BLUR_OF_REACH);
    if (!kernel_.make(radius, GAUSSIAN_SCALE, GaussianConstant::Single)) return false;
    if (!placeWithin(*param.target)) return false;

    stride_ = std::max(count(), sourceWidth());
    bandRows_ = std::max(1, std::min(blurBandRows(kernel_), yEnd_ - yBegin_));
    if (!blurred_.allocate(bandRows_, stride_) || !row_.allocate(right_ - left_) ||
        !blur_.prepare(kernel_, stride_, bandRows_) || !widenCoverage(param))
        return false;
    fillColors(property);
    std::fill_n(row_.get(), right_ - left_, inside_ ? BORDER_INSIDE : BORDER_OUTSIDE);
    return true;
}

// The inner glow is that of the coverage's inverse. What 255 lacks of this is the coverage: next to nothing
// is left of it after the passes, and what is empty costs nothing. Only where there is no blur do the
// outermost columns count, which the passes make 0, and full in the inverse.
bool GlowRows::widenCoverage(const ZvECore::ParamPostProcessing& param) {
    const int width = sourceWidth(), height = sourceHeight();
    if (!widened_.allocateZeroed(height, width)) return false;
    const ptrdiff_t inset = ptrdiff_t{passes_} + 1;
    copyCoverage(*param.mask, *param.textRect, widened_.get() + inset * width + inset, width);
    const uint16_t edge = inside_ && source_ == 0 ? 255 : 0;
    return widen({widened_.get(), width, width, height, passes_, inside_, edge});
}

void GlowRows::fillColors(const ZvGlowProperty& property) {
    makeGlowTable(colors_, &property, FADE_START, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors_) color = premultiplied(color);
    std::reverse(colors_, colors_ + COLOR_TABLE_SIZE);
}

ZvRect GlowRows::reach() const {
    const int top = inside_ ? top_ : yBegin_, bottom = inside_ ? bottom_ : std::max(yBegin_, yEnd_);
    return ZvRect(area_.x + left_, area_.y + top, area_.x + right_, area_.y + bottom);
}

// The band that begins with row y.
void GlowRows::blurBand(int y) {
    const int width = sourceWidth(), height = sourceHeight(), rows = std::min(bandRows_, yEnd_ - y);
    blur_.columns({widened_.get(), width, source_ - y, source_ - y + height, blurred_.get(), stride_, width,
                   rows, false, false});
    blur_.rows({blurred_.get(), stride_, source_ - xBegin_, source_ - xBegin_ + width, blurred_.get(),
                stride_, count(), rows, false, inside_});
    bandBegin_ = y;
    bandEnd_ = y + rows;
}

void GlowRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip*) {
    const RowRange part = rows.within(area_.y, bottom_);
    for (int y = std::max(part.begin, top_); y < part.end; ++y) {
        const bool blurred = y >= yBegin_ && y < yEnd_ && count() > 0;
        if (!blurred && !inside_) continue;
        uint32_t* row = row_.get();
        if (blurred) {
            if (y >= bandEnd_) blurBand(y);
            const uint8_t* values = blurred_.get() + ptrdiff_t{y - bandBegin_} * stride_;
            const uint8_t* behind = target.at(area_.x + xBegin_, area_.y + y);
            ZVEX_ON_TARGET(colorRow(row + (xBegin_ - left_), values, count(), colors_, behind));
        } else {
            std::fill_n(row, right_ - left_, BORDER_INSIDE);
        }
        ZvBlender::drawBitmapBlend32(area_.x + left_, area_.y + y - target.top, &target, row, right_ - left_,
                                     1, right_ - left_, ZVE_BLEND_DST_OVER);
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
    return widen({image, width, width, height, passes, false, 0});
}

void drawGlow(const ZvECore::ParamPostProcessing* param, const ZvGlowProperty* property, GlowSide side) {
    if (property == nullptr || !isDrawable(param)) return;
    if (!(property->size > -1.0f)) return;  // not-a-number too
    auto rows = tryMake<GlowRows>();
    if (rows != nullptr && rows->make(*param, *property, side)) drawLayer(param, std::move(rows));
}

}  // namespace Zvex
