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

// Where the files of a batch go. `option` opens the messages of the UsageErrors thrown.
class BatchNames {
public:
    // In a scope that is anywhere names may be absolute or leave the folder. With `tidies` the temporary
    // files that killed processes left are removed from a folder before the first file of the batch goes
    // there. Throws Failure where the current folder cannot be told.
    BatchNames(std::string folder, FolderScope scope, bool tidies);

    // The path for a name of a line. Throws for a name that is empty, too long, a folder's, the journal's,
    // "-", or outside the folder.
    std::string pathOf(const std::string& option, const std::string& name) const;

    // Nobody else may write there from now on; throws where somebody may already. some 40 bytes of memory a
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
