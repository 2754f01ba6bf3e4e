// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectFactory.h"

#include <new>

#include "effect/ZvText.h"
#include "effect/filters/ZvBevel.h"
#include "effect/filters/ZvEmboss.h"
#include "effect/filters/ZvInnerGlow.h"
#include "effect/filters/ZvInnerShadow.h"
#include "effect/filters/ZvLinearGradient.h"
#include "effect/filters/ZvOuterGlow.h"
#include "effect/filters/ZvOuterShadow.h"
#include "effect/filters/ZvPattern.h"
#include "effect/filters/ZvRadialGradient.h"
#include "effect/filters/ZvStroke.h"

namespace Zvex {

ZvECore* newEffectLayer(int type) {
    switch (type) {
        case ZV_EFFECT_BEVEL:
            return new (std::nothrow) ZvBevel;
        case ZV_EFFECT_EMBOSS:
            return new (std::nothrow) ZvEmboss;
        case ZV_EFFECT_INNER_GLOW:
            return new (std::nothrow) ZvInnerGlow;
        case ZV_EFFECT_INNER_SHADOW:
            return new (std::nothrow) ZvInnerShadow;
        case ZV_EFFECT_LINEAR_GRADIENT:
            return new (std::nothrow) ZvLinearGradient;
        case ZV_EFFECT_OUTER_GLOW:
            return new (std::nothrow) ZvOuterGlow;
        case ZV_EFFECT_OUTER_SHADOW:
            return new (std::nothrow) ZvOuterShadow;
        case ZV_EFFECT_PATTERN:
            return new (std::nothrow) ZvPattern;
        case ZV_EFFECT_RADIAL_GRADIENT:
            return new (std::nothrow) ZvRadialGradient;
        case ZV_EFFECT_STROKE:
            return new (std::nothrow) ZvStroke;
        case ZV_EFFECT_TEXT:
            return new (std::nothrow) ZvText;
        default:
            return nullptr;
    }
}

}  // namespace Zvex
