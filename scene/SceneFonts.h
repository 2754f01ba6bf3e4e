// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENEFONTS_H_
#define ZVEX_SCENE_SCENEFONTS_H_

#include <hwui/Typeface.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "scene/FontFile.h"
#include "scene/Scene.h"
#include "scene/SceneText.h"

namespace Zvex::scene {

// The fonts that a scene is drawn with, in the order of search.
struct SceneFonts {
    std::vector<std::shared_ptr<const LoadedFont>> fonts;  // --font, each --fallback, then the system's
    size_t given = 1;                                      // the number of fonts that the scene names
    std::shared_ptr<const android::Typeface> typeface;     // made from all of them
    std::vector<uint32_t> missing;  // characters drawn as missing, in the order of the text

    const LoadedFont& first() const { return *fonts[0]; }
};

// Loads the scene's fonts. If the scene allows it, also loads a few of the system's fonts for the characters
// that those lack: the best font for the first such character also serves all others that it has, and so on.
// The choice depends only on the text, its language and the fonts, not on the user's. Any thread; fonts are
// read by one at a time. Throws UsageError or Failure, naming the option.
SceneFonts takeFonts(const Scene& scene, const SceneText& text);

// How many fonts the process has loaded for its scenes, and keeps. Any thread.
size_t countLoadedFonts();

// The system's fonts that have all characters of the text, which is UTF-8: names for Font, the best first, at
// most eight. Any thread.
std::vector<std::string> systemFontNames(const std::string& text);

// If characters are missing, one line with their code points and the option that helps; else empty.
std::string missingWarning(const SceneFonts& fonts, bool systemFallback);

// "U+1F600"
std::string codePointName(uint32_t character);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENEFONTS_H_
