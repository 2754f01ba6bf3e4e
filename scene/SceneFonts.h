// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENEFONTS_H_
#define ZVEX_SCENE_SCENEFONTS_H_

#include <hwui/Typeface.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "scene/FontFile.h"
#include "scene/Scene.h"

namespace Zvex::scene {

// The fonts that a scene is drawn with, in the order in which they are asked.
struct SceneFonts {
    std::vector<std::shared_ptr<const LoadedFont>> fonts;  // --font, each --fallback, then the system's
    size_t given = 1;                                      // how many of them the scene names
    std::shared_ptr<const android::Typeface> typeface;     // of all of them
    std::vector<uint32_t> missing;  // characters that are drawn as missing, in the order of the text

    const LoadedFont& first() const { return *fonts[0]; }
};

// Loads the scene's fonts and, where it allows that, a few of the system's for the characters which those
// lack: the best font for the first such character serves all others it has, and so on. The same text and
// fonts give the same choice whatever the user's language is. Any thread: one at a time reads fonts. Throws
// UsageError or Failure, naming the option.
SceneFonts takeFonts(const Scene& scene);

// One line where characters are missing: their code points and the option that helps; else empty.
std::string missingWarning(const SceneFonts& fonts, bool systemFallback);

// "U+1F600"
std::string codePointName(uint32_t character);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENEFONTS_H_
