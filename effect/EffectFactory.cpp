// SPDX-License-Identifier: Apache-2.0
#include "effect/EffectFactory.h"

#include <typeinfo>

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

namespace {

struct LayerClass {
    int type;
    ZvECore* (*make)();
    const std::type_info* info;
};

template <typename Layer>
constexpr LayerClass classOf(int type) {
    return {type, []() -> ZvECore* { return tryMake<Layer>().release(); }, &typeid(Layer)};
}

constexpr LayerClass kClasses[] = {
    classOf<ZvBevel>(ZV_EFFECT_BEVEL),
    classOf<ZvEmboss>(ZV_EFFECT_EMBOSS),
    classOf<ZvInnerGlow>(ZV_EFFECT_INNER_GLOW),
    classOf<ZvInnerShadow>(ZV_EFFECT_INNER_SHADOW),
    classOf<ZvLinearGradient>(ZV_EFFECT_LINEAR_GRADIENT),
    classOf<ZvOuterGlow>(ZV_EFFECT_OUTER_GLOW),
    classOf<ZvOuterShadow>(ZV_EFFECT_OUTER_SHADOW),
    classOf<ZvPattern>(ZV_EFFECT_PATTERN),
    classOf<ZvRadialGradient>(ZV_EFFECT_RADIAL_GRADIENT),
    classOf<ZvStroke>(ZV_EFFECT_STROKE),
    classOf<ZvText>(ZV_EFFECT_TEXT),
};

}  // namespace

ZvECore* newEffectLayer(int type) {
    for (const LayerClass& known : kClasses) {
        if (known.type == type) return known.make();
    }
    return nullptr;
}

bool isBuiltInLayer(const ZvECore* layer) {
    for (const LayerClass& known : kClasses) {
        if (*known.info == typeid(*layer)) return true;
    }
    return false;
}

}  // namespace Zvex
