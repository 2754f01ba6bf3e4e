// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_EFFECTFACTORY_H_
#define ZVEX_EFFECT_EFFECTFACTORY_H_

namespace Zvex {

class ZvECore;

// A new layer of the class for a ZvEffectType, owned by the caller; null for a type without a class and when
// memory is short. The one place that names all classes: adding one is an include and a line.
ZvECore* newEffectLayer(int type);

// Whether the layer is of one of these classes itself, not of one derived from them: it draws in
// doPostProcessing only, and can hand over its rows there.
bool isBuiltInLayer(const ZvECore* layer);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_EFFECTFACTORY_H_
