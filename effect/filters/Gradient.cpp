// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/Gradient.h"

namespace Zvex {

namespace {

constexpr float LEAST_SCALE = 0.1f;

}  // namespace

bool GradientFill::begin(const ZvECore::ParamPostProcessing* param, const ZvGradientFillProperty* property) {
    if (property == nullptr || !isDrawable(param)) return false;
    if (!(property->scale >= LEAST_SCALE) || property->stops == nullptr || property->count < 1) return false;
    if (!area_.grow(*param->textRect, 0) || !image_.allocateZeroed(area_.height, area_.width)) return false;
    param_ = param;
    fillColorTable(colors_, property->stops, property->count, property->stops[0].position, ZV_CURVE_STRAIGHT);
    for (uint32_t& color : colors_) color = premultiplied(color);
    return true;
}

}  // namespace Zvex
