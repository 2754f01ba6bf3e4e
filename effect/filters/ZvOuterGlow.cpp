// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvOuterGlow.h"

#include "effect/Numbers.h"
#include "effect/kernels/Glow.h"

namespace Zvex {

ZvOuterGlow::ZvOuterGlow() {
    style = ZV_EFFECT_OUTER_GLOW;
}

ZvOuterGlow::~ZvOuterGlow() {
    delete property;
}

int ZvOuterGlow::doPostProcessing(ParamPostProcessing* param) {
    drawGlow(param, property, GlowSide::Outside);
    return 0;
}

void ZvOuterGlow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceRecord(*static_cast<const ZvOuterGlowProperty*>(newProperty), &property, &mStops);
}

ZvProperty* ZvOuterGlow::getProperty() {
    return property;
}

int ZvOuterGlow::getOffset() {
    return property == nullptr ? 0 : roundSize(property->size);
}

void ZvOuterGlow::makeColorLUT(unsigned int* table, float fadeStart, int curve) {
    makeGlowTable(table, property, fadeStart, curve);
}

void ZvOuterGlow::increaseByBoxFilter(unsigned char* image, int passes, int width, int height) {
    widenByBoxFilter(image, passes, width, height);
}

}  // namespace Zvex
