// SPDX-License-Identifier: Apache-2.0
//
// A pixel's position is its projection on the gradient line. Everything is in single precision.

#include "effect/filters/ZvLinearGradient.h"

#include <cmath>
#include <utility>

#include "effect/kernels/Gradient.h"
#include "foundation/OutOfMemory.h"
#include "foundation/Trigonometry.h"

namespace Zvex {

namespace {

// Negative because rows grow downward.
constexpr float kRadiansOfDegree = -0.01745328f;

constexpr float kEntries = 256.0f;

}  // namespace

ZvLinearGradient::ZvLinearGradient() {
    style = ZV_EFFECT_LINEAR_GRADIENT;
}

ZvLinearGradient::~ZvLinearGradient() {
    delete property;
}

int ZvLinearGradient::doPostProcessing(ParamPostProcessing* param) {
    if (!GradientRows::isDrawable(param, property)) return 0;
    auto fill = tryMake<GradientRows>();
    if (fill == nullptr || !fill->make(*param, *property)) return 0;

    const float angle = property->angle * kRadiansOfDegree;
    const float sine = Zvex::sine(angle), cosine = Zvex::cosine(angle);
    // The line ends at the sides of the box that it reaches first: left and right, or top and bottom.
    const bool spansWidth = std::abs(tangent(angle)) < fill->height() / fill->width();
    const float length = spansWidth ? fill->width() / std::abs(cosine) : fill->height() / std::abs(sine);
    const float entriesOfPixel = kEntries / property->scale / length;
    const float down = sine * entriesOfPixel, right = cosine * entriesOfPixel;
    if (fill->setLinear(down, right)) drawLayer(param, std::move(fill));
    return 0;
}

void ZvLinearGradient::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const auto& p = *static_cast<const ZvLinearGradientProperty*>(newProperty);
    replaceRecord(ZvLinearGradientProperty(p.angle, p.scale, p.opacity, p.count, p.stops), &property,
                  &mStops);
}

ZvProperty* ZvLinearGradient::getProperty() {
    return property;
}

}  // namespace Zvex
