// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchNames.h"

#include <climits>
#include <utility>

#include "scene/Failure.h"
#include "tools/zvtext/batch/BatchJournal.h"
#include "tools/zvtext/batch/Digest.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

using namespace Zvex::scene;

namespace fs = std::filesystem;

std::string expandTemplate(const std::string& text, uint64_t line) {
    static const std::string kIndex = "{index}";
    std::string name = text;
    const std::string number = std::to_string(line);
    for (size_t at = 0; (at = name.find(kIndex, at)) != std::string::npos; at += number.size()) {
        name.replace(at, kIndex.size(), number);
    }
    return name;
}

BatchNames::BatchNames(std::string folder, FolderScope scope, bool tidies)
    : mFolder(std::move(folder)), mScope(std::move(scope)), mTidies(tidies) {
    std::error_code error;
    mCurrent = fs::current_path(error);
    if (error) throw Failure("--output-dir: cannot tell the current folder: " + error.message());
}

std::string BatchNames::pathOf(const std::string& option, const std::string& name) const {
    // Names longer than any file system allows would take memory in each waiting result.
    if (name.size() >= PATH_MAX) throw UsageError(option + ": the name is too long");
    if (name.find('\0') != std::string::npos) throw UsageError(option + ": the name holds a NUL character");
    if (name == "-" && option == "--output") return name;
    const fs::path path = fs::path(name).lexically_normal();
    if (path.empty() || !path.has_filename() || path == "." || path.filename() == "..") {
        throw UsageError(option + ": '" + name + "' is not the name of a file");
    }
    if ((path.is_absolute() || *path.begin() == "..") && !mScope.isAnywhere()) {
        throw UsageError(option + ": '" + name + "' leaves the output folder; --allow-outside lets it");
    }
    if (path == "-") throw UsageError(option + ": - is standard output, where the results go");
    if (path.filename() == kJournalName) {
        throw UsageError(option + ": '" + name + "' is the batch's own file");
    }
    return (fs::path(mFolder) / path).lexically_normal().string();
}

void BatchNames::claim(const std::string& option, const std::string& path) {
    const fs::path absolute = (mCurrent / path).lexically_normal();
    // Links within the folder can give one file several names.
    std::error_code error;
    const fs::path real = fs::weakly_canonical(absolute, error);
    if (!mTaken.insert(Digest().add((error ? absolute : real).string()).word()).second) {
        throw UsageError(option + ": '" + path + "' is the output of an earlier line");
    }
    const std::string folder = absolute.parent_path().string() + "/";
    // Done before the first line of this folder runs, when it holds no temporary file of this batch yet.
    if (mTidies && mTaken.insert(Digest().add(folder).word()).second) removeTemporaries(folder, mScope);
}

}  // namespace zvtext
