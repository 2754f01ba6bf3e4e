// SPDX-License-Identifier: Apache-2.0
#include "scene/FileSource.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <vector>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

class FileSource : public Source {
public:
    FileSource(FolderScope scope, ReadOptions reads) : mScope(std::move(scope)), mReads(std::move(reads)) {}

    Bytes read(const std::string& option, const std::string& name, size_t maxBytes) const override {
        return std::make_shared<const std::string>(readFile(option, name, maxBytes, mScope));
    }

    // False for folders, so that a folder named like a font does not hide the font. False outside the scope,
    // so that messages do not reveal what exists there.
    bool has(const std::string& name) const override {
        const Descriptor found(open(name.c_str(), O_PATH | O_CLOEXEC));
        struct stat status;
        return found && (mScope.isAnywhere() || mScope.holds(found)) && fstat(found.number(), &status) == 0 &&
               !S_ISDIR(status.st_mode);
    }

    void check(const std::string& option, const std::string& name) const override {
        if (!mScope.isAnywhere()) mScope.openFile(option, name);
    }

    const void* realm() const override { return nullptr; }

    std::shared_ptr<const Source> ofStyle(const std::string& name) const override {
        const std::string folder = std::filesystem::path(name).parent_path().string();
        // A link outside the scope may lead to a file inside it; the link's folder is then not added.
        std::vector<std::string> own;
        const std::string resolved = resolvedPath(folder.empty() ? "." : folder);
        if (!resolved.empty() && mScope.holds(resolved)) own.push_back(resolved);
        return fileSource(mReads.scopeWith(own, "a style"));
    }

    std::string fullName(const std::string& name) const override {
        return std::filesystem::absolute(name).lexically_normal().string();
    }

private:
    const FolderScope mScope;
    const ReadOptions mReads;
};

}  // namespace

std::string readFile(const std::string& option, const std::string& path, size_t maxBytes,
                     const FolderScope& scope) {
    const bool standardInput = path == "-";
    const std::string name = standardInput ? "standard input" : "'" + path + "'";
    const auto refuse = [&] {
        throw Failure(option + ": cannot read " + name + ": " + std::strerror(errno));
    };
    Descriptor file;
    if (!standardInput) {
        file = scope.isAnywhere() ? Descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY))
                                  : scope.openFile(option, path);
        if (!file) refuse();
    }
    const int descriptor = standardInput ? STDIN_FILENO : file.number();
    struct stat status = {};
    if (fstat(descriptor, &status) != 0) refuse();
    if (S_ISDIR(status.st_mode)) throw Failure(option + ": " + name + " is a folder");
    // A file says its size, which saves reading one that is too large and copying while the text grows.
    // Standard input may be a file that is already partly read.
    const bool known = !standardInput && S_ISREG(status.st_mode);
    const auto size = known ? static_cast<uint64_t>(status.st_size) : 0;
    std::string content;
    if (size <= maxBytes) content.reserve(static_cast<size_t>(size));
    char block[65536];
    for (ssize_t got = 1; size <= maxBytes && got != 0 && content.size() <= maxBytes;) {
        got = read(descriptor, block, sizeof block);
        if (got < 0 && errno != EINTR) refuse();
        content.append(block, static_cast<size_t>(std::max<ssize_t>(got, 0)));
    }
    if (std::max<uint64_t>(size, content.size()) > maxBytes) {
        throw Failure(option + ": " + name + " is larger than " + std::to_string(maxBytes) + " bytes");
    }
    if (content.size() < size) {
        throw Failure(option + ": cannot read " + name + ": it ends after " + std::to_string(content.size()) +
                      " of " + std::to_string(size) + " bytes");
    }
    return content;
}

std::shared_ptr<const Source> fileSource(FolderScope scope, ReadOptions reads) {
    return std::make_shared<FileSource>(std::move(scope), std::move(reads));
}

}  // namespace Zvex::scene
