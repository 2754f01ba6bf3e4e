// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_EFFECTFACTORY_H_
#define ZVEX_EFFECT_EFFECTFACTORY_H_

namespace Zvex {

class ZvECore;

// Makes a layer of the class for a ZvEffectType; the caller owns it. Null for a type without a class or if
// memory is short. This is the one place that names all classes: adding one takes an include and a line.
ZvECore* newEffectLayer(int type);

// Whether the layer's class is one of these and not derived from one. Such a layer draws only in
// doPostProcessing, and can hand over its rows there.
bool isBuiltInLayer(const ZvECore* layer);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_EFFECTFACTORY_H_
