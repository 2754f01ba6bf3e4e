// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_

#include <string>
#include <vector>

#include "scene/FolderScope.h"

namespace zvtext {

using namespace Zvex::scene;

// Writes `content` to `path`. The file appears there only when it is whole: it is written to a temporary name
// in the same folder, synced, and renamed over whatever stood there. "-" writes to standard output; a device
// or a pipe is written to, never replaced; behind a link, the file it leads to is replaced. On failure
// nothing is left or replaced (a process that SIGKILL ends leaves its temporary file); throws Failure with a
// message that starts with `option`, DiskFull where there is no room. A file that is replaced keeps its mode.
void writeFile(const std::string& content, const std::string& path, const std::string& option);

// Several files in the same way, all of them or none: the first to be renamed is so when every other is whole
// as well, and what goes to devices, pipes and standard output has been written. In a scope that is not
// anywhere only regular files are replaced, and folders that are missing are made.
struct NewFile {
    const std::string& content;
    const std::string& path;
    const std::string& option;
    FolderScope scope = {};
};
void writeFiles(const std::vector<NewFile>& files);

// From now on SIGINT, SIGTERM and SIGHUP remove the temporary files of this process before they end it.
// Signals that are ignored stay so.
void removeTemporariesOnSignals();

// Prints `text` on standard output and sees that it arrives; throws Failure where it does not.
void print(const std::string& text);

// Removes the temporary files that killed processes have left in the folder, if it is one of the scope's;
// those of a process that lives stay. What cannot be removed is left.
void removeTemporaries(const std::string& folder, const FolderScope& scope);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
