// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectFactory.h"

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
#include "foundation/OutOfMemory.h"

namespace Zvex {

ZvECore* newEffectLayer(int type) {
    switch (type) {
        case ZV_EFFECT_BEVEL:
            return tryMake<ZvBevel>().release();
        case ZV_EFFECT_EMBOSS:
            return tryMake<ZvEmboss>().release();
        case ZV_EFFECT_INNER_GLOW:
            return tryMake<ZvInnerGlow>().release();
        case ZV_EFFECT_INNER_SHADOW:
            return tryMake<ZvInnerShadow>().release();
        case ZV_EFFECT_LINEAR_GRADIENT:
            return tryMake<ZvLinearGradient>().release();
        case ZV_EFFECT_OUTER_GLOW:
            return tryMake<ZvOuterGlow>().release();
        case ZV_EFFECT_OUTER_SHADOW:
            return tryMake<ZvOuterShadow>().release();
        case ZV_EFFECT_PATTERN:
            return tryMake<ZvPattern>().release();
        case ZV_EFFECT_RADIAL_GRADIENT:
            return tryMake<ZvRadialGradient>().release();
        case ZV_EFFECT_STROKE:
            return tryMake<ZvStroke>().release();
        case ZV_EFFECT_TEXT:
            return tryMake<ZvText>().release();
        default:
            return nullptr;
    }
}

}  // namespace Zvex
