// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include "scene/Failure.h"

namespace zvtext {

using namespace Zvex::scene;

namespace fs = std::filesystem;

namespace {

constexpr size_t kSyncsAtOnce = 8;

// Writes to the stream and closes it. False, with errno set, unless every byte was written.
bool writeAndClose(const std::string& content, std::FILE* stream) {
    if (stream == nullptr) return false;
    const bool whole =
        std::fwrite(content.data(), 1, content.size(), stream) == content.size() && std::fflush(stream) == 0;
    const int error = errno;
    if (std::fclose(stream) != 0) return false;
    errno = error;
    return whole;
}

bool isDanglingLink(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && stat(path.c_str(), &status) != 0;
}

}  // namespace

// One file that is being written and then moved into place.
class StagedFile {
public:
    // Writes a regular file's content to a temporary name beside it.
    explicit StagedFile(const NewFile& file)
        : mContent(&file.content), mPath(file.path), mOption(file.option), mStream(file.path == "-") {
        std::string target = file.path;  // for a link, the file that it leads to
        std::optional<mode_t> mode;      // of the file that is replaced
        struct stat existing;
        if (!file.scope.isAnywhere()) {
            findTarget(file.scope, target, mode);
        } else if (!mStream) {
            refuseDanglingLink();
        }
        if (file.scope.isAnywhere() && !mStream && stat(mPath.c_str(), &existing) == 0) {
            if (S_ISDIR(existing.st_mode)) throw Failure(mOption + ": '" + mPath + "' is a folder");
            mStream = !S_ISREG(existing.st_mode);
            mode = existing.st_mode & kPermissions;
            if (char* resolved = mStream ? nullptr : realpath(mPath.c_str(), nullptr)) {
                target = resolved;
                std::free(resolved);
            }
        }
        if (mStream) return;
        errno = 0;
        if (!mTemporary.create(target, mode) || !mTemporary.write(file.content)) refuseWriting(errno);
        mFolderPath = target.find('/') == std::string::npos ? "." : target.substr(0, target.rfind('/') + 1);
    }

    // For standard output, a device or a pipe, which are written to and not replaced.
    bool isStream() const { return mStream; }

    const std::string& folder() const { return mFolderPath; }

    void startSync() const {
        if (!mStream) mTemporary.startSync();
    }
    void sync() const {
        if (!mStream && !mTemporary.sync()) refuseWriting(errno);
    }

    // Gives the file its name, or writes to the stream.
    void take() {
        errno = 0;
        if (mPath == "-") {
            if (std::fwrite(mContent->data(), 1, mContent->size(), stdout) == mContent->size() &&
                std::fflush(stdout) == 0) {
                return;
            }
            throw Failure((mOption.empty() ? "" : mOption + ": ") +
                          "cannot write to standard output: " + std::strerror(errno));
        }
        const bool done =
            mStream ? writeAndClose(*mContent, std::fopen(mPath.c_str(), "wb")) : mTemporary.rename();
        if (!done) refuseWriting(errno);
    }

    [[noreturn]] void refuseWriting(int error) const {
        const std::string message = mOption + ": cannot write '" + mPath + "': " + std::strerror(error);
        if (error == ENOSPC || error == EDQUOT) throw DiskFull(message);
        throw Failure(message);
    }

private:
    static constexpr mode_t kPermissions = 0777;

    void refuseDanglingLink() const {
        if (!isDanglingLink(mPath)) return;
        throw Failure(mOption + ": '" + mPath + "' is a link that leads to no file");
    }

    // Finds the target through its folder's descriptor: even if names on the path to it change, the file goes
    // into the folder that was checked.
    void findTarget(const FolderScope& scope, std::string& target, std::optional<mode_t>& mode) {
        fs::path found = fs::path(mPath);
        const Descriptor existing(open(mPath.c_str(), O_PATH | O_CLOEXEC));
        struct stat status = {};
        if (existing && fstat(existing.number(), &status) == 0) {
            if (!scope.holds(existing)) throw Failure(scope.refusal(mOption, mPath));
            if (!S_ISREG(status.st_mode)) {
                throw Failure(mOption + ": '" + mPath + "' is " +
                              (S_ISDIR(status.st_mode) ? "a folder" : "not a regular file"));
            }
            mode = status.st_mode & kPermissions;
            const std::string resolved = resolvedPath(mPath);
            if (!resolved.empty()) found = resolved;
        } else {
            if (!scope.wouldHold(mPath)) throw Failure(scope.refusal(mOption, mPath));
            refuseDanglingLink();
        }
        mFolder = scope.makeFolder(mOption, found.parent_path());
        target = mFolder.name() + "/" + found.filename().string();
    }

    const std::string* mContent;  // for streams; of others it has been written
    std::string mPath, mOption;
    bool mStream;
    Descriptor mFolder;  // the target's folder; unused in a scope without limits
    std::string mFolderPath;
    TemporaryFile mTemporary;
};

StagedFiles::StagedFiles(const std::vector<NewFile>& files) {
    mFiles.reserve(files.size());
    for (const NewFile& file : files) mFiles.emplace_back(file);
}
StagedFiles::StagedFiles(StagedFiles&&) noexcept = default;
StagedFiles& StagedFiles::operator=(StagedFiles&&) noexcept = default;
StagedFiles::~StagedFiles() = default;

bool StagedFiles::hasStreams() const {
    for (const StagedFile& file : mFiles) {
        if (file.isStream()) return true;
    }
    return false;
}

void StagedFiles::sync() const {
    for (const StagedFile& file : mFiles) file.sync();
}

void StagedFiles::take() {
    for (const bool streams : {true, false}) {
        for (StagedFile& file : mFiles) {
            if (file.isStream() == streams) file.take();
        }
    }
}

namespace {

// Brings the names in folders to the disk, those in each folder once.
class FolderSync {
public:
    // Returns an errno, 0 for success.
    int sync(const std::string& path) {
        Descriptor folder(open(path.c_str(), kFlags));
        const std::optional<Id> id = idOf(folder);
        if (!id) return errno;
        const auto [known, isNew] = mErrors.try_emplace(*id, 0);
        // Some file systems sync no folders: there is nothing to be done then.
        if (isNew && fsync(folder.number()) != 0 && errno != EINVAL && errno != EROFS) known->second = errno;
        if (isNew) syncParents(std::move(folder), *id);
        return known->second;
    }

private:
    using Id = std::pair<dev_t, ino_t>;
    static constexpr int kFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

    static std::optional<Id> idOf(const Descriptor& folder) {
        struct stat status = {};
        if (!folder || fstat(folder.number(), &status) != 0) return std::nullopt;
        return Id(status.st_dev, status.st_ino);
    }

    // A folder may be new itself: those around it are synced when the process meets it first.
    static void syncParents(Descriptor folder, Id id) {
        static std::mutex mutex;
        const std::lock_guard lock(mutex);
        static std::set<Id> met;
        while (met.insert(id).second) {
            folder = Descriptor(openat(folder.number(), "..", kFlags));
            const std::optional<Id> parent = idOf(folder);
            if (!parent) return;
            fsync(folder.number());
            id = *parent;
        }
    }

    std::map<Id, int> mErrors;
};

}  // namespace

std::vector<std::exception_ptr> commitTogether(std::vector<StagedFiles>& group) {
    std::vector<std::exception_ptr> errors(group.size());
    const auto each = [&](auto&& step, size_t first = 0, size_t stride = 1) {
        for (size_t i = first; i < group.size(); i += stride) {
            try {
                if (errors[i] == nullptr) step(group[i]);
            } catch (...) {
                errors[i] = std::current_exception();
            }
        }
    };
    each([](StagedFiles& files) {
        for (const StagedFile& file : files.mFiles) file.startSync();
    });
    // The disk serves several syncs in little more time than one, but a thread waits for each.
    const auto sync = [&](size_t first, size_t stride) {
        each([](StagedFiles& files) { files.sync(); }, first, stride);
    };
    const size_t atOnce = std::min(kSyncsAtOnce, group.size());
    std::vector<std::thread> threads;
    for (size_t i = 1; i < atOnce; ++i) {
        try {
            threads.emplace_back(sync, i, atOnce);
        } catch (const std::system_error&) {  // no more threads
            sync(i, atOnce);
        }
    }
    sync(0, atOnce);
    for (std::thread& thread : threads) thread.join();
    each([](StagedFiles& files) { files.take(); });
    FolderSync folders;
    each([&](StagedFiles& files) {
        for (const StagedFile& file : files.mFiles) {
            const int error = file.isStream() ? 0 : folders.sync(file.folder());
            if (error != 0) file.refuseWriting(error);
        }
    });
    return errors;
}

void writeFile(const std::string& content, const std::string& path, const std::string& option) {
    writeFiles({{content, path, option}});
}

void writeFiles(const std::vector<NewFile>& files) {
    StagedFiles staged(files);
    staged.sync();
    staged.take();
}

void print(const std::string& text) {
    writeFile(text, "-", "");
}

}  // namespace zvtext
