// SPDX-License-Identifier: Apache-2.0
#include "effect/ZvText.h"

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

    // What the layers in front have drawn beside the glyphs (a gradient fills its box, an inside stroke its
    // surroundings) must not show in a single picture.
    if (param->layerMode != 1) {
        logTextBlend();
        cutToGlyphs(target, mask, property->color, param->drawnArea);
        return 0;
    }
    const int width = static_cast<int>(mask->width), height = static_cast<int>(mask->height);
    ZvBlender::drawBitmapBlend8(0, 0, target, mask->pixels, width, height, width, property->color,
                                ZVE_BLEND_DST_OVER_NSA);
    return 0;
}

void ZvText::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceProperty(*static_cast<const ZvTextProperty*>(newProperty), &property);
}

ZvProperty* ZvText::getProperty() {
    return property;
}

}  // namespace Zvex
