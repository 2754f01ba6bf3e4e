// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/OutputFile.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <utility>

#include "scene/Failure.h"

namespace zvtext {

using namespace Zvex::scene;

namespace {

namespace fs = std::filesystem;

// Appended to the output's name; mkstemp replaces the Xs.
const std::string kTemporarySuffix = ".zvtext-XXXXXX";

// Writes to the stream and closes it. False, with errno set, unless every byte was written (with `sync`, to
// the disk).
bool writeAndClose(const std::string& content, std::FILE* stream, bool sync) {
    if (stream == nullptr) return false;
    bool whole = std::fwrite(content.data(), 1, content.size(), stream) == content.size();
    whole = whole && std::fflush(stream) == 0 && (!sync || fsync(fileno(stream)) == 0);
    const int error = errno;
    if (std::fclose(stream) != 0) return false;
    errno = error;
    return whole;
}

// --- Temporary files to remove when a signal ends the process

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kMaxNotes = 4;
char gNotes[kMaxNotes][PATH_MAX];  // empty: free

class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int number : kEndingSignals) sigaddset(&ending, number);
        pthread_sigmask(SIG_BLOCK, &ending, &mBefore);
    }
    ~SignalsHeld() { pthread_sigmask(SIG_SETMASK, &mBefore, nullptr); }
    SignalsHeld(const SignalsHeld&) = delete;
    SignalsHeld& operator=(const SignalsHeld&) = delete;

private:
    sigset_t mBefore;
};

// Call both with the signals held. Returns the note's number, or -1 if there is no room.
int noteTemporary(const std::string& path) {
    for (int i = 0; i < kMaxNotes; ++i) {
        if (gNotes[i][0] != '\0' || path.size() >= PATH_MAX) continue;
        std::memcpy(gNotes[i], path.c_str(), path.size() + 1);
        return i;
    }
    return -1;
}

void forgetTemporary(int note) {
    const SignalsHeld held;
    if (note >= 0) gNotes[note][0] = '\0';
}

// The signal is raised again at the handler's end and then ends the process.
void onEndingSignal(int number) {
    for (const auto& path : gNotes) {
        if (path[0] != '\0') unlink(path);
    }
    raise(number);
}

// A file beside the target, named after it as far as the suffix leaves room.
std::string temporaryName(const std::string& target) {
    const size_t begin = target.rfind('/') + 1;  // 0 if there is none
    return target.substr(0, begin) + target.substr(begin, NAME_MAX - kTemporarySuffix.size()) +
           kTemporarySuffix;
}

// The lock shows that its process lives: from then on others do not remove the file, but they may have done
// so before. mkstemp makes the file private. An output keeps the mode of the file that it replaces (`kept`),
// or gets that of any new file of this process.
std::FILE* openTemporary(std::string& temporary, std::optional<mode_t> kept) {
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
    fchmod(descriptor, kept.value_or(0666 & ~mask));
    std::FILE* stream = fdopen(descriptor, "wb");
    if (stream == nullptr) close(descriptor);
    return stream;
}

bool isDanglingLink(const std::string& path) {
    struct stat status;
    return lstat(path.c_str(), &status) == 0 && S_ISLNK(status.st_mode) && stat(path.c_str(), &status) != 0;
}

// One file that is being written and then moved into place.
class StagedFile {
public:
    // Writes a regular file's content to a temporary name beside it.
    explicit StagedFile(const NewFile& file) : mFile(file), mTarget(file.path), mStream(file.path == "-") {
        struct stat existing;
        if (!file.scope.isAnywhere()) {
            findTarget();
        } else if (!mStream) {
            refuseDanglingLink();
        }
        if (file.scope.isAnywhere() && !mStream && stat(file.path.c_str(), &existing) == 0) {
            if (S_ISDIR(existing.st_mode)) {
                throw Failure(file.option + ": '" + file.path + "' is a folder");
            }
            mStream = !S_ISREG(existing.st_mode);
            mMode = existing.st_mode & kPermissions;
            if (char* resolved = mStream ? nullptr : realpath(file.path.c_str(), nullptr)) {
                mTarget = resolved;
                std::free(resolved);
            }
        }
        if (mStream) return;
        errno = 0;
        std::string temporary = temporaryName(mTarget);
        std::FILE* stream = nullptr;
        {
            const SignalsHeld held;  // no signal may come between creating and noting the file
            stream = openTemporary(temporary, mMode);
            if (stream != nullptr) mTemporary = temporary;
            if (stream != nullptr) mNote = noteTemporary(temporary);
        }
        if (stream != nullptr) mLock = dup(fileno(stream));
        if (writeAndClose(file.content, stream, true)) return;
        const int error = errno;
        removeTemporary();
        refuseWriting(error);
    }
    StagedFile(StagedFile&& other) noexcept
        : mFile(other.mFile),
          mFolder(std::move(other.mFolder)),
          mTarget(std::move(other.mTarget)),
          mTemporary(std::exchange(other.mTemporary, "")),
          mStream(other.mStream),
          mLock(std::exchange(other.mLock, -1)),
          mNote(std::exchange(other.mNote, -1)) {}
    ~StagedFile() {
        removeTemporary();
        if (mLock >= 0) close(mLock);
    }

    // For standard output, a device or a pipe, which are written to and not replaced.
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
        if (!done) refuseWriting(errno);
        mTemporary.clear();
        forgetTemporary(std::exchange(mNote, -1));
    }

private:
    static constexpr mode_t kPermissions = 0777;

    [[noreturn]] void refuseWriting(int error) const {
        const std::string message =
            mFile.option + ": cannot write '" + mFile.path + "': " + std::strerror(error);
        if (error == ENOSPC || error == EDQUOT) throw DiskFull(message);
        throw Failure(message);
    }

    void refuseDanglingLink() const {
        if (!isDanglingLink(mFile.path)) return;
        throw Failure(mFile.option + ": '" + mFile.path + "' is a link that leads to no file");
    }

    // Finds the target through its folder's descriptor: even if names on the path to it change, the file goes
    // into the folder that was checked.
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
            mMode = status.st_mode & kPermissions;
            const std::string resolved = resolvedPath(mFile.path);
            if (!resolved.empty()) target = resolved;
        } else {
            if (!scope.wouldHold(mFile.path)) throw Failure(scope.refusal(mFile.option, mFile.path));
            refuseDanglingLink();
        }
        mFolder = scope.makeFolder(mFile.option, target.parent_path());
        mTarget = mFolder.name() + "/" + target.filename().string();
    }

    void removeTemporary() {
        if (!mTemporary.empty()) unlink(mTemporary.c_str());
        forgetTemporary(std::exchange(mNote, -1));
    }

    const NewFile mFile;
    Descriptor mFolder;      // the target's folder; unused in a scope without limits
    std::string mTarget;     // for a link, the file that it leads to
    std::string mTemporary;  // empty if there is none
    bool mStream;
    std::optional<mode_t> mMode;  // of the file that is replaced
    int mLock = -1;               // the temporary file's lock, held until it is renamed
    int mNote = -1;
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

void removeTemporariesOnSignals() {
    for (const int number : kEndingSignals) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = onEndingSignal;
        action.sa_flags = SA_RESETHAND;
        sigaction(number, &action, nullptr);
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
        // Opened for writing, because some network file systems lock nothing otherwise.
        const int descriptor = open(path.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (descriptor < 0) continue;
        if (flock(descriptor, LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
        close(descriptor);
    }
}

}  // namespace zvtext
