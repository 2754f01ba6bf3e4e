// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/OutputFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <utility>

#include "tools/zvtext/Failure.h"

namespace zvtext {

namespace {

namespace fs = std::filesystem;

// Behind the output's name; mkstemp replaces the Xs.
const std::string kTemporarySuffix = ".zvtext-XXXXXX";

// Takes the stream and closes it. False, with errno saying why, unless every byte is on its way; with `sync`,
// on the disk.
bool writeAndClose(const std::string& content, std::FILE* stream, bool sync) {
    if (stream == nullptr) return false;
    bool whole = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
    whole = whole && std::fflush(stream) == 0 && (!sync || fsync(fileno(stream)) == 0);
    const int error = errno;
    if (std::fclose(stream) != 0) return false;
    errno = error;
    return whole;
}

// A file beside the target, under its name as far as that leaves room for the suffix.
std::string temporaryName(const std::string& target) {
    const size_t begin = target.rfind('/') + 1;  // 0 where there is none
    return target.substr(0, begin) + target.substr(begin, NAME_MAX - kTemporarySuffix.size()) +
           kTemporarySuffix;
}

// The lock says that its process lives: a file is not removed by others from then on, but may have been
// before. mkstemp makes the file private; an output gets the mode that any new file of this process would
// have.
std::FILE* openTemporary(std::string& temporary) {
    const std::string pattern = temporary;
    int descriptor = -1;
    struct stat status = {};
    for (int attempt = 0; attempt < 100 && status.st_nlink == 0; ++attempt) {
        if (descriptor >= 0) close(descriptor);
        temporary = pattern;
        descriptor = mkstemp(&temporary[0]);
        if (descriptor < 0) return nullptr;
        flock(descriptor, LOCK_EX);
        if (fstat(descriptor, &status) != 0) break;
    }
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    std::FILE* stream = fdopen(descriptor, "wb");
    if (stream == nullptr) close(descriptor);
    return stream;
}

bool isDanglingLink(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && stat(path.c_str(), &status) != 0;
}

// One file on its way to its place.
class StagedFile {
public:
    // Writes a regular file's content to a temporary name beside it.
    explicit StagedFile(const NewFile& file) : mFile(file), mTarget(file.path), mStream(file.path == "-") {
        if (!mStream && isDanglingLink(file.path)) {
            throw Failure(file.option + ": '" + file.path + "' is a link that leads to no file");
        }
        struct stat existing;
        if (!file.scope.isAnywhere()) {
            findTarget();
        } else if (!mStream && stat(file.path.c_str(), &existing) == 0) {
            if (S_ISDIR(existing.st_mode)) {
                throw Failure(file.option + ": '" + file.path + "' is a folder");
            }
            mStream = !S_ISREG(existing.st_mode);
            if (char* resolved = mStream ? nullptr : realpath(file.path.c_str(), nullptr)) {
                mTarget = resolved;
                std::free(resolved);
            }
        }
        if (mStream) return;
        errno = 0;
        std::string temporary = temporaryName(mTarget);
        std::FILE* stream = openTemporary(temporary);
        if (stream != nullptr) mTemporary = temporary;
        if (stream != nullptr) mLock = dup(fileno(stream));
        if (writeAndClose(file.content, stream, true)) return;
        const std::string why = std::strerror(errno);
        removeTemporary();
        throw Failure(file.option + ": cannot write '" + file.path + "': " + why);
    }
    StagedFile(StagedFile&& other) noexcept
        : mFile(other.mFile),
          mFolder(std::move(other.mFolder)),
          mTarget(std::move(other.mTarget)),
          mTemporary(std::exchange(other.mTemporary, "")),
          mStream(other.mStream),
          mLock(std::exchange(other.mLock, -1)) {}
    ~StagedFile() {
        removeTemporary();
        if (mLock >= 0) close(mLock);
    }

    // Standard output, a device or a pipe: written to, not replaced.
    bool isStream() const { return mStream; }

    void commit() {
        errno = 0;
        if (mFile.path == "-") {
            const std::string& content = mFile.content;
            if (std::fwrite(content.data(), 1, content.size(), stdout) == content.size() &&
                std::fflush(stdout) == 0) {
                return;
            }
            throw Failure((mFile.option.empty() ? "" : mFile.option + ": ") +
                          "cannot write to standard output: " + std::strerror(errno));
        }
        const bool done = mStream ? writeAndClose(mFile.content, std::fopen(mFile.path.c_str(), "wb"), false)
                                  : std::rename(mTemporary.c_str(), mTarget.c_str()) == 0;
        if (!done) {
            throw Failure(mFile.option + ": cannot write '" + mFile.path + "': " + std::strerror(errno));
        }
        mTemporary.clear();
    }

private:
    // Finds the target by its folder's descriptor: whatever becomes of the names on the way to it, the file
    // goes into the folder that was checked.
    void findTarget() {
        const FolderScope& scope = mFile.scope;
        fs::path target = fs::path(mFile.path);
        const Descriptor existing(open(mFile.path.c_str(), O_PATH | O_CLOEXEC));
        struct stat status = {};
        if (existing && fstat(existing.number(), &status) == 0) {
            if (!scope.holds(existing)) throw Failure(scope.refusal(mFile.option, mFile.path));
            if (!S_ISREG(status.st_mode)) {
                throw Failure(mFile.option + ": '" + mFile.path + "' is " +
                              (S_ISDIR(status.st_mode) ? "a folder" : "no regular file"));
            }
            const std::string resolved = resolvedPath(mFile.path);
            if (!resolved.empty()) target = resolved;
        }
        mFolder = scope.makeFolder(mFile.option, target.parent_path());
        mTarget = mFolder.name() + "/" + target.filename().string();
    }

    void removeTemporary() {
        if (!mTemporary.empty()) unlink(mTemporary.c_str());
    }

    const NewFile mFile;
    Descriptor mFolder;      // the target's, in a scope that is not anywhere
    std::string mTarget;     // behind a link, the file it leads to
    std::string mTemporary;  // empty where there is none
    bool mStream;
    int mLock = -1;  // the temporary file's, held until it has its name
};

bool isTemporary(const std::string& name) {
    if (name.size() <= kTemporarySuffix.size()) return false;
    const size_t fixed = kTemporarySuffix.find('X');
    return name.compare(name.size() - kTemporarySuffix.size(), fixed, kTemporarySuffix, 0, fixed) == 0;
}

}  // namespace

void writeFile(const std::string& content, const std::string& path, const std::string& option) {
    writeFiles({{content, path, option}});
}

void writeFiles(const std::vector<NewFile>& files) {
    std::vector<StagedFile> staged;
    staged.reserve(files.size());
    for (const NewFile& file : files) staged.emplace_back(file);
    for (const bool streams : {true, false}) {
        for (StagedFile& file : staged) {
            if (file.isStream() == streams) file.commit();
        }
    }
}

void print(const std::string& text) {
    writeFile(text, "-", "");
}

void removeTemporaries(const std::string& path, const FolderScope& scope) {
    const Descriptor opened(open(path.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    if (!opened || !(scope.isAnywhere() || scope.holds(opened))) return;
    const std::string folder = opened.name();
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.c_str()), closedir);
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr) {
        if (!isTemporary(entry->d_name)) continue;
        const std::string path = folder + "/" + entry->d_name;
        // For writing, without which some network file systems lock nothing.
        const int descriptor = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0) continue;
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
        close(descriptor);
    }
}

}  // namespace zvtext
