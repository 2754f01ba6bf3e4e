// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/Gradient.h"

#include "raster/CpuTarget.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

constexpr float LEAST_SCALE = 0.1f;

#define ZVEX_KERNELS "effect/filters/GradientKernels.inc"
#include "raster/ForEachTarget.h"

}  // namespace

bool GradientFill::begin(const ZvECore::ParamPostProcessing* param, const ZvGradientFillProperty* property) {
    if (property == nullptr || !isDrawable(param)) return false;
    if (!(property->scale >= LEAST_SCALE) || property->stops == nullptr || property->count < 1) return false;
    if (!area_.grow(*param->textRect, 0) || !row_.allocateZeroed(area_.width)) return false;
    param_ = param;
    fillColorTable(colors_, property->stops, property->count, property->stops[0].position, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors_) color = premultiplied(color);
    return true;
}

// A row at a time, so that it is still in the cache when it is blended.
template <typename FillRow>
void GradientFill::drawRows(FillRow fillRow) {
    const ZvRect& box = *param_->textRect;
    const ZvRect part = partWithin(*param_->mask, box);
    if (part.left >= part.right) return;
    const int first = part.left - box.left, count = part.right - part.left;
    for (int y = part.top; y < part.bottom; ++y) {
        const uint8_t* coverage =
            param_->mask->pixels + static_cast<size_t>(y) * param_->mask->width + part.left;
        const float dy = static_cast<float>(y - box.top) - height() * 0.5f;
        fillRow(row_.get() + first, coverage, count, first, dy);
        ZvBlender::drawBitmapBlend32(area_.x, y, param_->target, row_.get(), area_.width, 1, area_.width,
                                     ZVE_BLEND_DST_OVER);
    }
}

void GradientFill::drawLinear(float down, float right) {
    const float halfWidth = width() * 0.5f;
    drawRows([&](uint32_t* words, const uint8_t* coverage, int count, int first, float dy) {
        ZVEX_ON_TARGET(linearRow(words, coverage, count, colors_, first, halfWidth, dy, down, right));
    });
}

void GradientFill::drawRadial(float entriesOfPixel) {
    const float halfWidth = width() * 0.5f;
    drawRows([&](uint32_t* words, const uint8_t* coverage, int count, int first, float dy) {
        ZVEX_ON_TARGET(radialRow(words, coverage, count, colors_, first, halfWidth, dy, entriesOfPixel));
    });
}

}  // namespace Zvex
