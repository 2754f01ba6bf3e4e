// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvRadialGradient.h"

#include "effect/filters/Gradient.h"

namespace Zvex {

namespace {

constexpr float ENTRIES = 256.0f;

}  // namespace

ZvRadialGradient::ZvRadialGradient() {
    style = ZV_EFFECT_RADIAL_GRADIENT;
}

ZvRadialGradient::~ZvRadialGradient() {
    delete property;
}

int ZvRadialGradient::doPostProcessing(ParamPostProcessing* param) {
    GradientFill fill;
    if (!fill.begin(param, property)) return 0;

    const float entriesOfPixel = (ENTRIES / fill.width() + ENTRIES / fill.width()) / property->scale;
    fill.drawRadial(entriesOfPixel);
    return 0;
}

void ZvRadialGradient::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const auto& p = *static_cast<const ZvRadialGradientProperty*>(newProperty);
    replaceRecord(ZvRadialGradientProperty(p.angle, p.scale, p.opacity, p.count, p.stops), &property,
                  &stops_);
}

ZvProperty* ZvRadialGradient::getProperty() {
    return property;
}

}  // namespace Zvex
