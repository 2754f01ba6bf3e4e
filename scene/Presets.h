// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PRESETS_H_
#define ZVEX_SCENE_PRESETS_H_

#include <string>
#include <vector>

namespace Zvex::scene {

// The style files of examples/styles, which are part of the program. Their names omit ".json".
struct Preset {
    const char* name;
    const char* json;
};

const std::vector<Preset>& presets();               // sorted by name
const Preset* findPreset(const std::string& name);  // null where there is none
std::string presetNames();                          // "aurora, blocks, ..."

// One line for each: its name and its description.
std::string presetList();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PRESETS_H_
