// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENECHECK_H_
#define ZVEX_SCENE_SCENECHECK_H_

#include <vector>

#include "scene/Scene.h"

namespace Zvex::scene {

// Checks for scenes that are set up in code, where no reader has checked the values. All throw UsageError
// with the first wrong place.

// Checks every number, choice and list of the style, its layers and effects, with the limits of style files.
void checkStyle(const Style& style);

// Checks the text, the style and the numbers of the scene.
void checkScene(const Scene& scene);

// A style with layers must have no other effects.
void checkLayers(const Style& style);

// There must be a layer that is not clipped behind the last clipped one.
void checkClips(const std::vector<LayerSettings>& layers);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENECHECK_H_
