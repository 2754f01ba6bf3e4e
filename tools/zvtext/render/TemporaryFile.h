// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_TEMPORARYFILE_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_TEMPORARYFILE_H_

#include <sys/types.h>

#include <optional>
#include <string>

#include "scene/FolderScope.h"

namespace zvtext {

using namespace Zvex::scene;

// A file that is written beside its target and then takes the target's name. Without that nothing is left,
// but a process killed by SIGKILL leaves the file.
class TemporaryFile {
public:
    TemporaryFile() = default;  // no file
    TemporaryFile(TemporaryFile&& other) noexcept;
    ~TemporaryFile();

    // Each returns false and sets errno if it fails. The new file has the mode `kept`, or else that of any
    // new file of this process.
    bool create(const std::string& target, std::optional<mode_t> kept);
    bool write(const std::string& content) const;
    void startSync() const;  // does not wait
    bool sync() const;
    bool rename();

private:
    std::string mTarget, mPath;  // no path: no file, or it has been renamed
    Descriptor mFile;            // its lock shows that the process lives
    int mNote = -1;
};

// From now on SIGINT, SIGTERM and SIGHUP remove this process's temporary files before they end it. Ignored
// signals stay ignored.
void removeTemporariesOnSignals();

// Removes temporary files of killed processes from the folder, if the scope allows that folder. Files of
// living processes stay, and so do files that cannot be removed.
void removeTemporaries(const std::string& folder, const FolderScope& scope);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_TEMPORARYFILE_H_
