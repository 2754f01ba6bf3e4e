// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PRESETS_H_
#define ZVEX_SCENE_PRESETS_H_

#include <string>
#include <vector>

namespace Zvex::scene {

// The style files of examples/styles, which are part of the program and go by their names without ".json".
struct Preset {
    const char* name;
    const char* json;
};

const std::vector<Preset>& presets();  // in the order of their names

// A line for each: its name and its description.
std::string presetList();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PRESETS_H_
