// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvText.h"

#include <new>

#include "effect/Composite.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

ZvText::ZvText() {
    style = ZV_EFFECT_TEXT;
}

ZvText::~ZvText() {
    delete property;
}

int ZvText::doPostProcessing(ParamPostProcessing* param) {
    if (param == nullptr || property == nullptr || param->target == nullptr || param->mask == nullptr)
        return 0;
    ZvBitmap* target = param->target;
    const ZvBitmap* mask = param->mask;
    if (target->pixels == nullptr || target->bytesPerPixel != 4 || mask->pixels == nullptr) return 0;

    const bool twoLayers = param->layerMode == 1;
    ZvBlender::drawBitmapBlend8(0, 0, target, mask->pixels, static_cast<int>(mask->width),
                                static_cast<int>(mask->height), static_cast<int>(mask->width),
                                property->color, twoLayers ? ZVE_BLEND_DST_OVER_NSA : ZVE_BLEND_DST_OVER_SA);
    // The blender leaves pixels of coverage 0 alone. What the layers in front have drawn there (a gradient
    // fills its box, an inside stroke its surroundings) must not show beside the glyphs.
    if (!twoLayers) clearOutsideGlyphs(target, mask);
    return 0;
}

void ZvText::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    ZvTextProperty* copy =
        new (std::nothrow) ZvTextProperty(*static_cast<const ZvTextProperty*>(newProperty));
    if (copy == nullptr) return;
    delete property;
    property = copy;
}

ZvProperty* ZvText::getProperty() {
    return property;
}

}  // namespace Zvex
