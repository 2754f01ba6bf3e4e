// SPDX-License-Identifier: Apache-2.0
//
// Box sums spread the coverage, a Gaussian smooths it, and a table of colours makes the picture. The inner
// glow does the same to 255 minus the coverage. With r = (int)size + 1:
//
//     |<- 0.9 r ->|<- 1.1 r ->|<- text box ->|<- 1.1 r ->|<- 0.9 r ->|
//     ^ border: not blurred    ^ spread: 0.475 r by the box sums, 0.9 r by the Gaussian
//
// Each pass of the box sums spreads by one pixel, and there is one pass for every two pixels of the size.
// Their plane is the text box with that margin. All passes are made over a few rows before the next rows are
// read, and only where something changes, which is along the outlines. The plain form is
// tests/reference/GlowReference.h.

#include "effect/kernels/Glow.h"

#include <algorithm>
#include <cstddef>
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

constexpr int kLastEntry = kColorTableSize - 1;

constexpr float kFadeStart = 0.3f;
constexpr float kMostFadeStart = 0.99f, kLeastFadeStart = 0.01f;

constexpr double kPassesOfReach = 0.475;
constexpr float kBlurOfReach = 0.9f;
constexpr int kGaussianScale = 128;

// The value of the border around the blurred pixels.
constexpr uint32_t kBorderOutside = 0, kBorderInside = 0xFFFFFFFF;

// Scales the alpha of the entries: unchanged up to the start, then falling linearly.
void fade(uint32_t* table, float start) {
    if (start >= 1.0f) start = kMostFadeStart;
    if (!(start > 0.0f)) start = kLeastFadeStart;
    const int first = truncateToInt(start * 256.0);
    for (int i = first; i <= kLastEntry; ++i) {
        const uint32_t weight = static_cast<uint32_t>((kLastEntry - i) * 256 / (kLastEntry - first));
        table[i] = (weight * (table[i] >> 24) >> 8) << 24 | (table[i] & 0x00FFFFFF);
    }
}

// The box filter on 255 minus an image, for images that are nearly full: the sum of the nine inverses is n =
// 9 * 255 - sum. Then 255 - min(sum >> 2, 255) is (n - kInverseLoss) / 4, rounded down, but at least 0.
constexpr uint16_t kInverseLoss = 9 * 255 - 4 * 255 - 3;

struct Widening {
    uint8_t* image;  // changed in place, except for its first and last row
    ptrdiff_t stride;
    int width, height, passes;
    bool inverse;   // the image is the inverse of the one to widen
    uint16_t edge;  // the new value of the other rows' first and last pixels
};

// The kernels look at this many rows at a time, in blocks of 8 or 16 pixels, eight blocks at a time.
constexpr int kWideningGroup = 8;

#define ZVEX_KERNELS "effect/kernels/GlowKernels.inc"
#include "raster/ForEachTarget.h"

// False, with the image unchanged, if memory is short.
bool widen(const Widening& w) {
    constexpr int64_t kLargestBlock = 16, kSmallestBlock = 8;
    const int64_t width = (w.width + 8 * kLargestBlock - 1) / (8 * kLargestBlock) * (8 * kLargestBlock);
    const int64_t stride = width + 2 * kLargestBlock, stateStride = width / kSmallestBlock + 16;
    Buffer<uint16_t> rows;  // two groups, and two rows for each pass
    Buffer<uint8_t> states;
    if (!rows.allocateZeroed(2 * int64_t{w.passes} + 2 * kWideningGroup, stride)) return false;
    if (!states.allocate(int64_t{w.passes} + 4, stateStride)) return false;
    ZVEX_ON_TARGET(widenPlane(w, rows.get(), states.get(), stride, stateStride));
    return true;
}

// Makes a glow from its settings; sizes are in pixels of its working area.
class GlowRows : public LayerRows {
public:
    // False if no part of it is visible or if memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvGlowProperty& property, GlowSide side);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override;

private:
    bool placeWithin(const ZvBitmap& target);
    bool widenCoverage(const ZvECore::ParamPostProcessing& param);
    void fillColors(const ZvGlowProperty& property);
    void blurBand(int y);

    int sourceWidth() const { return mArea.width - 2 * mSource; }
    int sourceHeight() const { return mArea.height - 2 * mSource; }
    int count() const { return std::max(mXEnd - mXBegin, 0); }

    WorkingArea mArea;
    bool mInside = false;
    int mPasses = 0;
    int mSource = 0;  // on all sides, where the plane of the passes begins; no pass writes outside it
    int mLeft = 0, mTop = 0, mRight = 0, mBottom = 0;    // the part of the area that is seen
    int mXBegin = 0, mXEnd = 0, mYBegin = 0, mYEnd = 0;  // the part of that which is blurred, not border
    Gaussian mKernel;
    Blur mBlur;
    Buffer<uint8_t> mWidened, mBlurred;  // the plane; a band of rows
    int mStride = 0, mBandRows = 0;      // of mBlurred
    int mBandBegin = 0, mBandEnd = 0;
    Buffer<uint32_t> mRow;                   // of what is seen, the border in place
    uint32_t mColors[kColorTableSize] = {};  // premultiplied, from none to the strongest
};

// Finds the parts of the area that lie on the target.
bool GlowRows::placeWithin(const ZvBitmap& target) {
    mLeft = clampToInt(std::max<int64_t>(0, -int64_t{mArea.x}));
    mTop = clampToInt(std::max<int64_t>(0, -int64_t{mArea.y}));
    mRight = static_cast<int>(std::min<int64_t>(mArea.width, int64_t{target.width} - mArea.x));
    mBottom = static_cast<int>(std::min<int64_t>(mArea.height, int64_t{target.height} - mArea.y));
    mXBegin = std::max(mLeft, mKernel.radius);
    mXEnd = std::min(mRight, mArea.width - mKernel.radius);
    mYBegin = std::max(mTop, mKernel.radius);
    mYEnd = std::min(mBottom, mArea.height - mKernel.radius);
    return mLeft < mRight && mTop < mBottom;
}

bool GlowRows::make(const ZvECore::ParamPostProcessing& param, const ZvGlowProperty& property,
                    GlowSide side) {
    // At least 1. A size beyond the ints makes an area that is refused.
    const int64_t reach = int64_t{truncateToInt(property.size)} + 1;
    if (!mArea.grow(*param.textRect, 2 * reach)) return false;
    mInside = side == GlowSide::Inside;
    mPasses = std::max(truncateToInt(static_cast<double>(reach) * kPassesOfReach), 1);
    mSource = mArea.margin - mPasses - 1;
    const int radius = truncateToInt(static_cast<float>(reach) * kBlurOfReach);
    if (!mKernel.make(radius, kGaussianScale, GaussianConstant::Single)) return false;
    if (!placeWithin(*param.target)) return false;

    mStride = std::max(count(), sourceWidth());
    mBandRows = std::max(1, std::min(blurBandRows(mKernel), mYEnd - mYBegin));
    if (!mBlurred.allocate(mBandRows, mStride) || !mRow.allocate(mRight - mLeft) ||
        !mBlur.prepare(mKernel, mStride, mBandRows) || !widenCoverage(param))
        return false;
    fillColors(property);
    std::fill_n(mRow.get(), mRight - mLeft, mInside ? kBorderInside : kBorderOutside);
    return true;
}

// The inner glow is the glow of 255 minus the coverage. The passes work on the coverage itself: they leave
// little of it, and empty blocks cost nothing. They set the outermost columns to 0, which is full in the
// inverse; that shows only if there is no blur.
bool GlowRows::widenCoverage(const ZvECore::ParamPostProcessing& param) {
    const int width = sourceWidth(), height = sourceHeight();
    if (!mWidened.allocateZeroed(height, width)) return false;
    const ptrdiff_t inset = ptrdiff_t{mPasses} + 1;
    copyCoverage(*param.mask, *param.textRect, mWidened.get() + inset * width + inset, width);
    const uint16_t edge = mInside && mSource == 0 ? 255 : 0;
    return widen({mWidened.get(), width, width, height, mPasses, mInside, edge});
}

void GlowRows::fillColors(const ZvGlowProperty& property) {
    makeGlowTable(mColors, &property, kFadeStart, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : mColors) color = premultiplied(color);
    std::reverse(mColors, mColors + kColorTableSize);
}

ZvRect GlowRows::reach() const {
    const int top = mInside ? mTop : mYBegin, bottom = mInside ? mBottom : std::max(mYBegin, mYEnd);
    return ZvRect(mArea.x + mLeft, mArea.y + top, mArea.x + mRight, mArea.y + bottom);
}

// The band that begins with row y.
void GlowRows::blurBand(int y) {
    const int width = sourceWidth(), height = sourceHeight(), rows = std::min(mBandRows, mYEnd - y);
    mBlur.columns({mWidened.get(), width, mSource - y, mSource - y + height, mBlurred.get(), mStride, width,
                   rows, false, false});
    mBlur.rows({mBlurred.get(), mStride, mSource - mXBegin, mSource - mXBegin + width, mBlurred.get(),
                mStride, count(), rows, false, mInside});
    mBandBegin = y;
    mBandEnd = y + rows;
}

void GlowRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip*) {
    const RowRange part = rows.within(mArea.y, mBottom);
    for (int y = std::max(part.begin, mTop); y < part.end; ++y) {
        const bool blurred = y >= mYBegin && y < mYEnd && count() > 0;
        if (!blurred && !mInside) continue;
        uint32_t* row = mRow.get();
        if (blurred) {
            if (y >= mBandEnd) blurBand(y);
            const uint8_t* values = mBlurred.get() + ptrdiff_t{y - mBandBegin} * mStride;
            const uint8_t* behind = target.at(mArea.x + mXBegin, mArea.y + y);
            ZVEX_ON_TARGET(colorRow(row + (mXBegin - mLeft), values, count(), mColors, behind));
        } else {
            std::fill_n(row, mRight - mLeft, kBorderInside);
        }
        ZvBlender::drawBitmapBlend32(mArea.x + mLeft, mArea.y + y - target.top, &target, row, mRight - mLeft,
                                     1, mRight - mLeft, ZVE_BLEND_DST_OVER);
    }
}

}  // namespace

void makeGlowTable(uint32_t* table, const ZvGlowProperty* property, float fadeStart, int curve) {
    if (table == nullptr || property == nullptr) return;
    if (property->size == 0.0f) {
        std::fill_n(table, kColorTableSize, 0);
        return;
    }
    if (property->stops == nullptr || property->count < 1) {
        std::fill_n(table, kColorTableSize, property->color);
    } else {
        fillColorTable(table, property->stops, property->count, 0.0f, curve);
    }
    fade(table, fadeStart);
    table[kLastEntry] = 0;
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
