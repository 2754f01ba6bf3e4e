// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
#define ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_

#include <exception>
#include <string>
#include <vector>

#include "scene/FolderScope.h"
#include "tools/zvtext/render/TemporaryFile.h"

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
    std::string path;
    std::string option;
    FolderScope scope = {};
};
void writeFiles(const std::vector<NewFile>& files);

// The same in steps. Nothing is left without the last one.
class StagedFile;
class StagedFiles {
public:
    // Writes all but streams (devices, pipes and standard output) to temporary files.
    explicit StagedFiles(const std::vector<NewFile>& files);
    StagedFiles(StagedFiles&&) noexcept;
    StagedFiles& operator=(StagedFiles&&) noexcept;
    ~StagedFiles();

    bool hasStreams() const;

    // Brings the content to the disk.
    void sync() const;

    // Writes the streams, from the content, and gives the files their names.
    void take();

private:
    friend std::vector<std::exception_ptr> commitTogether(std::vector<StagedFiles>& group);
    std::vector<StagedFile> mFiles;
};

// Syncs and names them all, for little more than one of them takes: the disk gets many syncs at once. The
// names are on the disk afterwards, too. One that fails leaves the others alone; returns what each one has
// thrown, null for success.
std::vector<std::exception_ptr> commitTogether(std::vector<StagedFiles>& group);

// Prints `text` on standard output and checks that it was written; throws Failure if not.
void print(const std::string& text);

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_RENDER_OUTPUTFILE_H_
