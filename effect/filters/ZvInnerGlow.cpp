// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvInnerGlow.h"

#include "effect/Numbers.h"
#include "effect/kernels/Glow.h"

namespace Zvex {

ZvInnerGlow::ZvInnerGlow() {
    style = ZV_EFFECT_INNER_GLOW;
}

ZvInnerGlow::~ZvInnerGlow() {
    delete property;
}

int ZvInnerGlow::doPostProcessing(ParamPostProcessing* param) {
    drawGlow(param, property, GlowSide::Inside);
    return 0;
}

void ZvInnerGlow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceRecord(*static_cast<const ZvInnerGlowProperty*>(newProperty), &property, &mStops);
}

ZvProperty* ZvInnerGlow::getProperty() {
    return property;
}

int ZvInnerGlow::getOffset() {
    return property == nullptr ? 0 : roundSize(property->size);
}

void ZvInnerGlow::makeColorLUT(unsigned int* table, float fadeStart, int curve) {
    makeGlowTable(table, property, fadeStart, curve);
}

void ZvInnerGlow::increaseByBoxFilter(unsigned char* image, int passes, int width, int height) {
    widenByBoxFilter(image, passes, width, height);
}

}  // namespace Zvex
