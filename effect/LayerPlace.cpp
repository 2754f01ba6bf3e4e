// SPDX-License-Identifier: Apache-2.0
#include "effect/LayerPlace.h"

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"

namespace Zvex {

namespace {

constexpr LayerPlace OVER = {false, false, false}, UNDER = {true, false, true}, ACROSS = {true, true, true};

LayerPlace placeOfStroke(int position) {
    switch (position) {
        case ZV_STROKE_OUTSIDE:
            return UNDER;
        case ZV_STROKE_CENTER:
            return ACROSS;
        case ZV_STROKE_INSIDE:
            return OVER;
        default:  // drawn as one outside, in the order of one inside
            return {true, false, false};
    }
}

}  // namespace

LayerPlace placeOf(ZvECore* layer) {
    constexpr int BEVEL_INSIDE = 1;
    switch (layer->getStyle()) {
        case ZV_EFFECT_OUTER_SHADOW:
        case ZV_EFFECT_OUTER_GLOW:
        case ZV_EFFECT_NONE:
            return UNDER;
        case ZV_EFFECT_BEVEL: {
            const auto* property = static_cast<const ZvBevelProperty*>(layer->getProperty());
            return property != nullptr && property->style == BEVEL_INSIDE ? OVER : UNDER;
        }
        case ZV_EFFECT_EMBOSS:
            return ACROSS;
        case ZV_EFFECT_STROKE:
        case ZV_EFFECT_STROKE_OLD: {
            const auto* property = static_cast<const ZvStrokeProperty*>(layer->getProperty());
            return placeOfStroke(property != nullptr ? property->position
                                                     : static_cast<int>(ZV_STROKE_OUTSIDE));
        }
        default:
            return OVER;
    }
}

}  // namespace Zvex
