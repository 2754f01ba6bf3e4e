// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_STYLESCHEMA_H_
#define ZVEX_SCENE_STYLESCHEMA_H_

#include <string>

namespace Zvex::scene {

// The JSON Schema (draft 2020-12) of style files as a file's content, made from the fields that read them:
// docs/style.schema.json. It accepts what readStyle accepts, except for two rules that it cannot express: no
// object has a key twice, and the positions of stops never fall.
std::string styleSchema();

// The schema of the objects of readScene, the options of a picture. A style within them has the schema of
// style files.
std::string optionsSchema();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_STYLESCHEMA_H_
