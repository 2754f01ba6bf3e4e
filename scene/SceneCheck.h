// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENECHECK_H_
#define ZVEX_SCENE_SCENECHECK_H_

#include <vector>

#include "scene/Scene.h"

namespace Zvex::scene {

// Check what code may have set, which nothing has read. All throw UsageError with the first place that is
// wrong.

// Every number, choice and list of the style, its layers and effects, with the limits that style files have.
void checkStyle(const Style& style);

// The text, the style and the numbers of the scene.
void checkScene(const Scene& scene);

// A style with layers has no effects beside them.
void checkLayers(const Style& style);

// Behind the last clipped layer is one that is not clipped.
void checkClips(const std::vector<LayerSettings>& layers);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENECHECK_H_
