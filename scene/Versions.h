// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_VERSIONS_H_
#define ZVEX_SCENE_VERSIONS_H_

#include <string>
#include <utility>
#include <vector>

namespace Zvex::scene {

// The libraries that this one uses, with their versions at run time: {"HarfBuzz", "6.0.0"}.
std::vector<std::pair<std::string, std::string>> libraryVersions();

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_VERSIONS_H_
