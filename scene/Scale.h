// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCALE_H_
#define ZVEX_SCENE_SCALE_H_

#include "scene/Scene.h"

namespace Zvex::scene {

// Multiplies every length by `factor`, so that the picture is what these numbers make when given by hand: the
// text's size, the lengths of the effects, layers and canvas, and, to the nearest pixel, the view's width,
// height and padding. Throws UsageError, naming the option and the effect's key, where a length would pass
// its limit.
void scaleScene(Scene& scene, double factor);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCALE_H_
