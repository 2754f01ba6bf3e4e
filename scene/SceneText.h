// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENETEXT_H_
#define ZVEX_SCENE_SCENETEXT_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "scene/ParagraphDirections.h"
#include "scene/Scene.h"

namespace Zvex::scene {

// A scene's text as its lines show it: UTF-16, in upper case where the style says so.
struct SceneText {
    explicit SceneText(const Scene& scene);

    std::vector<uint32_t> offsets;  // of each unit in the scene's UTF-8, its end included; they never fall
    std::u16string units;           // tabs only where the scene has tab stops
    std::string locale;             // ICU's name of the language
    ParagraphDirections directions;

    uint32_t offsetOf(size_t unit) const { return offsets[std::min(unit, offsets.size() - 1)]; }
};

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENETEXT_H_
