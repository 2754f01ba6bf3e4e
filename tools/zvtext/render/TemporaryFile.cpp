// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/render/TemporaryFile.h"

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
#include <memory>
#include <mutex>
#include <utility>

namespace zvtext {

using namespace Zvex::scene;

namespace {

// Appended to the output's name; mkstemp replaces the Xs.
const std::string kTemporarySuffix = ".zvtext-XXXXXX";

// --- Temporary files to remove when a signal ends the process

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kMaxNotes = 4;
char gNotes[kMaxNotes][PATH_MAX];  // empty: free
std::mutex gNotesMutex;

// Holds the signals for this thread and keeps other threads from the notes.
class SignalsHeld {
public:
    SignalsHeld() {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int number : kEndingSignals) sigaddset(&ending, number);
        pthread_sigmask(SIG_BLOCK, &ending, &mBefore);
        gNotesMutex.lock();
    }
    ~SignalsHeld() {
        gNotesMutex.unlock();
        pthread_sigmask(SIG_SETMASK, &mBefore, nullptr);
    }
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
// so before. mkstemp makes the file private.
Descriptor openTemporary(std::string& temporary, std::optional<mode_t> kept) {
    const std::string pattern = temporary;
    Descriptor file;
    struct stat status = {};
    for (int attempt = 0; attempt < 100 && status.st_nlink == 0; ++attempt) {
        temporary = pattern;
        file = Descriptor(mkostemp(&temporary[0], O_CLOEXEC));
        if (!file) return file;
        flock(file.number(), LOCK_EX);
        if (fstat(file.number(), &status) != 0) break;
    }
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file.number(), kept.value_or(0666 & ~mask));
    return file;
}

bool isTemporary(const std::string& name) {
    if (name.size() <= kTemporarySuffix.size()) return false;
    const size_t fixed = kTemporarySuffix.find('X');
    return name.compare(name.size() - kTemporarySuffix.size(), fixed, kTemporarySuffix, 0, fixed) == 0;
}

}  // namespace

TemporaryFile::TemporaryFile(TemporaryFile&& other) noexcept
    : mTarget(std::move(other.mTarget)),
      mPath(std::exchange(other.mPath, "")),
      mFile(std::move(other.mFile)),
      mNote(std::exchange(other.mNote, -1)) {}

TemporaryFile::~TemporaryFile() {
    const int error = errno;
    if (!mPath.empty()) unlink(mPath.c_str());
    if (mNote >= 0) forgetTemporary(mNote);
    errno = error;
}

bool TemporaryFile::create(const std::string& target, std::optional<mode_t> kept) {
    mTarget = target;
    std::string path = temporaryName(target);
    const SignalsHeld held;  // no signal may come between creating and noting the file
    mFile = openTemporary(path, kept);
    if (!mFile) return false;
    mPath = path;
    mNote = noteTemporary(path);
    return true;
}

bool TemporaryFile::write(const std::string& content) const {
    for (size_t written = 0; written < content.size();) {
        const ssize_t now = ::write(mFile.number(), content.data() + written, content.size() - written);
        if (now < 0 && errno != EINTR) return false;
        written += static_cast<size_t>(now < 0 ? 0 : now);
    }
    return true;
}

void TemporaryFile::startSync() const {
    sync_file_range(mFile.number(), 0, 0, SYNC_FILE_RANGE_WRITE);
}

bool TemporaryFile::sync() const {
    return fsync(mFile.number()) == 0;
}

bool TemporaryFile::rename() {
    if (std::rename(mPath.c_str(), mTarget.c_str()) != 0) return false;
    mPath.clear();
    if (mNote >= 0) forgetTemporary(std::exchange(mNote, -1));
    return true;
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
