// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_STYLESCHEMA_H_
#define ZVEX_SCENE_STYLESCHEMA_H_

#include <string>

namespace Zvex::scene {

// The JSON Schema (draft 2020-12) of style files, made from the same fields that read them, as a file's
// content: docs/style.schema.json. It accepts what readStyle accepts, but for what it cannot say: that no
// object has a key twice and that the positions of stops never fall.
std::string styleSchema();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_STYLESCHEMA_H_
