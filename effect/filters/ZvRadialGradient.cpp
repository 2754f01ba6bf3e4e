// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvRadialGradient.h"

#include <utility>

#include "effect/kernels/Gradient.h"
#include "foundation/OutOfMemory.h"

namespace Zvex {

namespace {

constexpr float kEntries = 256.0f;

}  // namespace

ZvRadialGradient::ZvRadialGradient() {
    style = ZV_EFFECT_RADIAL_GRADIENT;
}

ZvRadialGradient::~ZvRadialGradient() {
    delete property;
}

int ZvRadialGradient::doPostProcessing(ParamPostProcessing* param) {
    if (!GradientRows::isDrawable(param, property)) return 0;
    auto fill = tryMake<GradientRows>();
    if (fill == nullptr || !fill->make(*param, *property)) return 0;

    const float entriesOfPixel = (kEntries / fill->width() + kEntries / fill->width()) / property->scale;
    fill->setRadial(entriesOfPixel);
    drawLayer(param, std::move(fill));
    return 0;
}

void ZvRadialGradient::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const auto& p = *static_cast<const ZvRadialGradientProperty*>(newProperty);
    replaceRecord(ZvRadialGradientProperty(p.angle, p.scale, p.opacity, p.count, p.stops), &property,
                  &mStops);
}

ZvProperty* ZvRadialGradient::getProperty() {
    return property;
}

}  // namespace Zvex
