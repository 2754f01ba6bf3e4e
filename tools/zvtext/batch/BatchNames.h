// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHNAMES_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHNAMES_H_

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <unordered_set>

#include "scene/FolderScope.h"

namespace zvtext {

using namespace Zvex::scene;

// The name with each "{index}" replaced by the line's number.
std::string expandTemplate(const std::string& text, uint64_t line);

// The paths of a batch's files. `option` opens the messages of the UsageErrors thrown.
class BatchNames {
public:
    // In a scope without limits, names may be absolute or leave the folder. With `tidies`, a folder is
    // cleared of temporary files from killed processes before the first file of the batch goes there. Throws
    // Failure if the current folder is unknown.
    BatchNames(std::string folder, FolderScope scope, bool tidies);

    // The path for a line's name; "-" for "-". Throws if the name is empty, too long, a folder, the journal
    // or outside the folder, or if the metrics were to go to standard output.
    std::string pathOf(const std::string& option, const std::string& name) const;

    // Reserves the path for one line; throws if another line has it. Needs some 40 bytes of memory for each
    // path.
    void claim(const std::string& option, const std::string& path);

private:
    const std::string mFolder;
    const FolderScope mScope;
    const bool mTidies;
    std::filesystem::path mCurrent;
    std::unordered_set<uint64_t> mTaken;  // hashes
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHNAMES_H_
