// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Gradient.h"

#include <algorithm>

#include "raster/CpuTarget.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr float kLeastScale = 0.1f;

#define ZVEX_KERNELS "effect/kernels/GradientKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool GradientRows::isDrawable(const ZvECore::ParamPostProcessing* param,
                              const ZvGradientFillProperty* property) {
    if (property == nullptr || !Zvex::isDrawable(param)) return false;
    return property->scale >= kLeastScale && property->stops != nullptr && property->count >= 1;
}

bool GradientRows::make(const ZvECore::ParamPostProcessing& param, const ZvGradientFillProperty& property) {
    mMask = param.mask;
    mPart = partWithin(*mMask, *param.textRect);
    if (isEmpty(mPart)) return false;
    if (!mArea.grow(*param.textRect, 0) || !mRow.allocate(widthOf(mPart))) return false;
    fillColorTable(mColors, property.stops, property.count, property.stops[0].position, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : mColors) color = premultiplied(color);
    return true;
}

bool GradientRows::setLinear(float down, float right) {
    mRadial = false;
    mDown = down;
    mRight = right;
    if (down != 0.0f) return true;
    const int first = mPart.left - mArea.x, count = widthOf(mPart);
    Buffer<uint8_t> covered;
    if (!covered.allocate(count) || !mSame.allocate(count)) return false;
    std::fill_n(covered.get(), count, uint8_t{255});
    const float halfWidth = width() * 0.5f;
    ZVEX_ON_TARGET(
        linearRow(mSame.get(), covered.get(), count, mColors, first, halfWidth, 0.0f, 0.0f, right));
    return true;
}

void GradientRows::setRadial(float entriesOfPixel) {
    mRadial = true;
    mRight = entriesOfPixel;
}

// One row at a time, so that it is still in the cache when it is blended.
void GradientRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip*) {
    const RowRange visible = rows.within(0, mPart.bottom);
    const int first = mPart.left - mArea.x, count = widthOf(mPart);
    const float halfWidth = width() * 0.5f;
    uint32_t* words = mRow.get();
    for (int y = std::max(visible.begin, mPart.top); y < visible.end; ++y) {
        const uint8_t* coverage = mMask->pixels + static_cast<size_t>(y) * mMask->width + mPart.left;
        const float dy = static_cast<float>(y - mArea.y) - height() * 0.5f;
        if (mSame.get() != nullptr) {
            ZVEX_ON_TARGET(coveredRow(words, coverage, count, mSame.get()));
        } else if (mRadial) {
            ZVEX_ON_TARGET(radialRow(words, coverage, count, mColors, first, halfWidth, dy, mRight));
        } else {
            ZVEX_ON_TARGET(linearRow(words, coverage, count, mColors, first, halfWidth, dy, mDown, mRight));
        }
        ZvBlender::drawBitmapBlend32(mPart.left, y - target.top, &target, words, count, 1, count,
                                     ZVE_BLEND_DST_OVER);
    }
}

}  // namespace Zvex
