// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Gradient.h"

#include <algorithm>

#include "raster/CpuTarget.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr float LEAST_SCALE = 0.1f;

#define ZVEX_KERNELS "effect/kernels/GradientKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool GradientRows::isDrawable(const ZvECore::ParamPostProcessing* param,
                              const ZvGradientFillProperty* property) {
    if (property == nullptr || !Zvex::isDrawable(param)) return false;
    return property->scale >= LEAST_SCALE && property->stops != nullptr && property->count >= 1;
}

bool GradientRows::make(const ZvECore::ParamPostProcessing& param, const ZvGradientFillProperty& property) {
    mask_ = param.mask;
    part_ = partWithin(*mask_, *param.textRect);
    if (isEmpty(part_)) return false;
    if (!area_.grow(*param.textRect, 0) || !row_.allocate(widthOf(part_))) return false;
    fillColorTable(colors_, property.stops, property.count, property.stops[0].position, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors_) color = premultiplied(color);
    return true;
}

bool GradientRows::setLinear(float down, float right) {
    radial_ = false;
    down_ = down;
    right_ = right;
    if (down != 0.0f) return true;
    const int first = part_.left - area_.x, count = widthOf(part_);
    Buffer<uint8_t> covered;
    if (!covered.allocate(count) || !same_.allocate(count)) return false;
    std::fill_n(covered.get(), count, uint8_t{255});
    const float halfWidth = width() * 0.5f;
    ZVEX_ON_TARGET(
        linearRow(same_.get(), covered.get(), count, colors_, first, halfWidth, 0.0f, 0.0f, right));
    return true;
}

void GradientRows::setRadial(float entriesOfPixel) {
    radial_ = true;
    right_ = entriesOfPixel;
}

// A row at a time, so that it is still in the cache when it is blended.
void GradientRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip*) {
    const RowRange visible = rows.within(0, part_.bottom);
    const int first = part_.left - area_.x, count = widthOf(part_);
    const float halfWidth = width() * 0.5f;
    uint32_t* words = row_.get();
    for (int y = std::max(visible.begin, part_.top); y < visible.end; ++y) {
        const uint8_t* coverage = mask_->pixels + static_cast<size_t>(y) * mask_->width + part_.left;
        const float dy = static_cast<float>(y - area_.y) - height() * 0.5f;
        if (same_.get() != nullptr) {
            ZVEX_ON_TARGET(coveredRow(words, coverage, count, same_.get()));
        } else if (radial_) {
            ZVEX_ON_TARGET(radialRow(words, coverage, count, colors_, first, halfWidth, dy, right_));
        } else {
            ZVEX_ON_TARGET(linearRow(words, coverage, count, colors_, first, halfWidth, dy, down_, right_));
        }
        ZvBlender::drawBitmapBlend32(part_.left, y - target.top, &target, words, count, 1, count,
                                     ZVE_BLEND_DST_OVER);
    }
}

}  // namespace Zvex
