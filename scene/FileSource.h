// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_FILESOURCE_H_
#define ZVEX_SCENE_FILESOURCE_H_

#include <memory>

#include "scene/FolderScope.h"
#include "scene/Source.h"

namespace Zvex::scene {

// The machine's files that lie in the scope, by their paths; "-" is standard input. A style among them may
// name files in its own folder and below, and those that `reads` allows.
std::shared_ptr<const Source> fileSource(FolderScope scope = {}, ReadOptions reads = {});

// The whole of a file in `scope`, or of standard input for "-". Throws Failure, its message starting with
// `option`. No more than a little above maxBytes is read, whatever the file is.
std::string readFile(const std::string& option, const std::string& path, size_t maxBytes,
                     const FolderScope& scope = {});

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_FILESOURCE_H_
