// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCALE_H_
#define ZVEX_SCENE_SCALE_H_

#include "scene/Scene.h"
#include "scene/Style.h"
#include "scene/Values.h"

namespace Zvex::scene {

// What --scale takes.
constexpr NumberRange kScale = {0, 16, "", true};

// Multiply every length by `factor`, so that the picture is what these numbers make when given by hand:
// of the style the text's size and the lengths of its effects, of the scene (without its style) the view's
// width, height and padding, to the nearest pixel. Throw UsageError, naming the option and the effect's key,
// where a length would pass its limit.
void scaleStyle(Style& style, double factor);
void scaleView(Scene& scene, double factor);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCALE_H_
