// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_

#include <string>
#include <vector>

#include "scene/FolderScope.h"

namespace zvtext {

using namespace Zvex::scene;

// Writes `content` to `path`: to a temporary file in the same folder, which is synced and renamed when
// complete, replacing any file there. "-" is standard output. Devices and pipes are written to, never
// replaced; for a link, the file that it leads to is replaced. On failure nothing is left or replaced (but a
// process killed by SIGKILL leaves its temporary file). Throws Failure with a message that starts with
// `option`; DiskFull if there is no room. A replaced file keeps its mode.
void writeFile(const std::string& content, const std::string& path, const std::string& option);

// Writes several files in the same way, all of them or none: the first is renamed only when all others are
// complete, and everything for devices, pipes and standard output has been written. In a limited scope only
// regular files are replaced, and missing folders are created.
struct NewFile {
    const std::string& content;
    const std::string& path;
    const std::string& option;
    FolderScope scope = {};
};
void writeFiles(const std::vector<NewFile>& files);

// From now on SIGINT, SIGTERM and SIGHUP remove this process's temporary files before they end it. Ignored
// signals stay ignored.
void removeTemporariesOnSignals();

// Prints `text` on standard output and checks that it was written; throws Failure if not.
void print(const std::string& text);

// Removes temporary files of killed processes from the folder, if the scope allows that folder. Files of
// living processes stay, and so do files that cannot be removed.
void removeTemporaries(const std::string& folder, const FolderScope& scope);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
