// SPDX-License-Identifier: Apache-2.0
// Opens exactly the file that was checked. It first gets a descriptor that opens nothing yet (O_PATH), asks
// the kernel for the path behind it, and then opens the file through that descriptor. If only the path were
// checked, somebody could swap a folder for a link between the check and the opening.
#include "scene/FolderScope.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

// The path of the descriptor's file. Empty if it is unknown, as without /proc.
std::string placeOf(const Descriptor& descriptor) {
    std::string place(PATH_MAX, '\0');
    const ssize_t length = readlink(descriptor.name().c_str(), &place[0], place.size());
    place.resize(static_cast<size_t>(std::clamp<ssize_t>(length, 0, PATH_MAX)));
    return place.size() < PATH_MAX ? place : "";
}

}  // namespace

Descriptor::~Descriptor() {
    if (mNumber >= 0) close(mNumber);
}

std::string resolvedPath(const std::string& path) {
    const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), std::free);
    return real != nullptr ? real.get() : "";
}

FolderScope::FolderScope(const std::vector<std::string>& folders, std::string user)
    : mAnywhere(false), mUser(std::move(user)) {
    for (const std::string& folder : folders) {
        std::string real = resolvedPath(folder.empty() ? "." : folder);
        if (!real.empty() && !holds(real)) mFolders.push_back(std::move(real));
    }
}

void FolderScope::addQuietly(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        std::string real = resolvedPath(folder);
        if (!real.empty()) mQuietFolders.push_back(std::move(real));
    }
}

bool FolderScope::holds(const std::string& resolved) const {
    const auto holdsIt = [&](const std::string& folder) {
        const size_t length = folder == "/" ? 0 : folder.size();
        return resolved.compare(0, length, folder, 0, length) == 0 &&
               (resolved.size() == length || resolved[length] == '/');
    };
    return mAnywhere || std::any_of(mFolders.begin(), mFolders.end(), holdsIt) ||
           std::any_of(mQuietFolders.begin(), mQuietFolders.end(), holdsIt);
}

bool FolderScope::holds(const Descriptor& descriptor) const {
    const std::string place = placeOf(descriptor);
    return !place.empty() && place[0] == '/' && holds(place);
}

std::string FolderScope::refusal(const std::string& option, const std::string& path) const {
    std::string list;
    for (const std::string& folder : mFolders) list += (list.empty() ? "'" : " and '") + folder + "'";
    if (list.empty()) list = "every folder";
    if (mFolders.size() == 1 && resolvedPath(mFolders[0]).empty())
        return option + ": '" + path + "' cannot be reached: the folder " + list + " is gone";
    return option + ": '" + path + "' lies outside " + list + ", where " + mUser;
}

bool FolderScope::wouldHold(const std::string& path) const {
    namespace fs = std::filesystem;
    constexpr int kMaxLinks = 40;
    fs::path whole = path;
    for (int links = 0;; ++links) {
        fs::path existing = whole, rest;
        Descriptor folder;
        while (!(folder = Descriptor(open(existing.empty() ? "." : existing.c_str(), O_PATH | O_CLOEXEC)))) {
            if (existing.empty() || existing == existing.root_path()) return false;
            rest = rest.empty() ? existing.filename() : existing.filename() / rest;
            existing = existing.parent_path();
        }
        if (!holds(folder)) return false;
        if (rest.empty() || links == kMaxLinks) return true;
        // For a link to a missing file, its target decides.
        const fs::path next = existing / *rest.begin();
        std::error_code error;
        const fs::path target = fs::read_symlink(next, error);
        if (error) return true;
        whole = existing / target;  // an absolute target replaces the folder
        for (auto part = std::next(rest.begin()); part != rest.end(); ++part) whole /= *part;
    }
}

Descriptor FolderScope::openFile(const std::string& option, const std::string& path) const {
    const Descriptor found(open(path.c_str(), O_PATH | O_CLOEXEC));
    const int error = errno;
    if (!found) {
        if (!wouldHold(path)) throw Failure(refusal(option, path));
        throw Failure(option + ": cannot read '" + path + "': " + std::strerror(error));
    }
    if (!holds(found)) throw Failure(refusal(option, path));
    struct stat status = {};
    if (fstat(found.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
        throw Failure(option + ": '" + path + "' is " +
                      (S_ISDIR(status.st_mode)
                           ? "a folder"
                           : "not a regular file; --allow-read-anywhere lets it be read"));
    }
    Descriptor file(open(found.name().c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file) throw Failure(option + ": cannot read '" + path + "': " + std::strerror(errno));
    return file;
}

Descriptor FolderScope::makeFolder(const std::string& option, const std::string& path) const {
    const std::filesystem::path plain = std::filesystem::path(path).lexically_normal();
    constexpr int kFlags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    Descriptor folder(open(plain.empty() ? "." : plain.c_str(), kFlags));
    if (!folder && errno == ENOENT && plain.has_filename()) {
        // The folder around it, opened and checked first.
        const Descriptor around = makeFolder(option, plain.parent_path());
        const std::string name = plain.filename();
        if (mkdirat(around.number(), name.c_str(), 0777) == 0 || errno == EEXIST) {
            folder = Descriptor(openat(around.number(), name.c_str(), kFlags));
        }
    }
    const int error = errno;
    if (!folder && !wouldHold(path)) throw Failure(refusal(option, path));
    if (!folder) throw Failure(option + ": cannot make '" + path + "': " + std::strerror(error));
    if (!holds(folder)) throw Failure(refusal(option, path));
    return folder;
}

FolderScope ReadOptions::scopeWith(std::vector<std::string> own, const std::string& user) const {
    if (anywhere) return FolderScope();
    own.insert(own.end(), folders.begin(), folders.end());
    return FolderScope(own, user + " may read; --allow-read DIR adds a folder");
}

}  // namespace Zvex::scene
