// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_SCENEOPTIONS_H_
#define ZVEX_SCENE_SCENEOPTIONS_H_

#include <string>
#include <utility>
#include <vector>

#include "scene/Fields.h"
#include "scene/Json.h"
#include "scene/Scene.h"

namespace Zvex::scene {

// What can be asked of a picture: the scene, and what it is made with. Its fields are the options of the
// command line, the keys of a batch's lines and those of readScene.
struct SceneOptions {
    Scene scene;
    std::string textFile;  // in place of the text; "-" is standard input
    std::shared_ptr<const Source> textSource;
    double scale = 1;
};
Fields fieldsOf(SceneOptions& options);

// The fields of the scene and its style, without those of SceneOptions.
Fields fieldsOf(Scene& scene);

// Options as they were given, in their order: names, and values as JSON has them.
using GivenOptions = std::vector<std::pair<std::string, Json>>;

// Puts them into the fields. A value is a string as the command line has it, or what its field takes in JSON;
// null is as if the option were not there. Styles, presets and effects come first, in their order; the rest
// wins over them. Warnings go to the style among the fields. Throws UsageError, its message opening with "--"
// and the option's name.
void readOptions(const Fields& fields, const GivenOptions& given, const FilePlaces& places = {});

// Fits the style's effects to the text's size and scales the scene.
void fitScene(SceneOptions& options);

// The scene that is asked for, fitted, with the text of the file. Throws UsageError or Failure.
Scene sceneOf(SceneOptions options);

// The scene of a JSON object whose keys are the fields of SceneOptions:
//
//     readScene(R"({"text": "Gold", "font": "DejaVu Serif:bold", "preset": "gold", "size": 120})")
//
// A key is what `zvtext render --help` lists as an option, without the dashes. Values are numbers, strings as
// on the command line, true or false for a flag, an array for "fallback"; "style" may be the style itself, an
// effect its object: {"stroke": {"width": 8, "color": "#202020"}}. Throws Error with the place, "size", and
// the cause.
Scene readScene(const std::string& json, const FilePlaces& places = {});

// The members of the object, for readOptions. `name` as parseJson has it.
GivenOptions readGiven(const std::string& json, const std::string& name = "it");

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_SCENEOPTIONS_H_
