// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_COLORGLYPHS_H_
#define ZVEX_SCENE_COLORGLYPHS_H_

#include <string>
#include <vector>

#include "scene/ColorRun.h"
#include "scene/Style.h"

namespace Zvex::scene {

// The effects that show around a glyph.
std::vector<EffectSettings> effectsAround(const std::vector<EffectSettings>& effects);

// Whether the runs have glyphs that take another drawing than text does.
bool hasColors(const std::vector<ColorRun>& runs, const Style& style);

// One line where glyphs are silhouettes though the style wants their colours; else empty.
std::string silhouetteWarning(const std::vector<ColorRun>& runs, const Style& style);

// Which layers, as the style lists them, draw glyphs in their colours; of a style without layers, itself.
std::vector<bool> coloredLayers(const Style& style);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_COLORGLYPHS_H_
