// SPDX-License-Identifier: Apache-2.0
#include "effect/LayerPlace.h"

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"

namespace Zvex {

namespace {

constexpr LayerPlace kOver = {false, false, false}, kUnder = {true, false, true},
                     kAcross = {true, true, true};

LayerPlace placeOfStroke(int position) {
    switch (position) {
        case ZV_STROKE_OUTSIDE:
            return kUnder;
        case ZV_STROKE_CENTER:
            return kAcross;
        case ZV_STROKE_INSIDE:
            return kOver;
        default:  // on the back picture like one outside, in the order of one inside
            return {true, false, false};
    }
}

}  // namespace

LayerPlace placeOf(ZvECore* layer) {
    constexpr int kBevelInside = 1;
    switch (layer->getStyle()) {
        case ZV_EFFECT_OUTER_SHADOW:
        case ZV_EFFECT_OUTER_GLOW:
        case ZV_EFFECT_NONE:
            return kUnder;
        case ZV_EFFECT_BEVEL: {
            const auto* property = static_cast<const ZvBevelProperty*>(layer->getProperty());
            return property != nullptr && property->style == kBevelInside ? kOver : kUnder;
        }
        case ZV_EFFECT_EMBOSS:
            return kAcross;
        case ZV_EFFECT_STROKE:
        case ZV_EFFECT_STROKE_OLD: {
            const auto* property = static_cast<const ZvStrokeProperty*>(layer->getProperty());
            return placeOfStroke(property != nullptr ? property->position
                                                     : static_cast<int>(ZV_STROKE_OUTSIDE));
        }
        default:
            return kOver;
    }
}

}  // namespace Zvex
