// SPDX-License-Identifier: Apache-2.0
// Fonts stay loaded as long as a process, so each preview is made by a new one. It tells its parent through a
// pipe which files it is about to read, and when each was changed last: a change during the work counts too.
#include "tools/zvtext/preview/Watch.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <ctime>
#include <map>
#include <utility>

#include "scene/Failure.h"
#include "tools/zvtext/render/OutputFile.h"

namespace zvtext {

namespace {

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr long kPollMilliseconds = 200, kQuietMilliseconds = 60;
constexpr int kUsageStatus = 2;

volatile std::sig_atomic_t gEnded = 0;

void onEndingSignal(int) {
    gEnded = 1;
}

void catchEndingSignals() {
    for (const int number : kEndingSignals) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = onEndingSignal;
        sigaction(number, &action, nullptr);
    }
}

class NotedSource : public Source {
public:
    NotedSource(std::shared_ptr<const Source> source, NoteFile note)
        : mSource(std::move(source)), mNote(std::move(note)) {}

    Bytes read(const std::string& option, const std::string& name, size_t maxBytes) const override {
        mNote(name);
        return mSource->read(option, name, maxBytes);
    }
    bool has(const std::string& name) const override { return mSource->has(name); }
    void check(const std::string& option, const std::string& name) const override {
        mSource->check(option, name);
    }
    const void* realm() const override { return mSource->realm(); }
    std::shared_ptr<const Source> ofStyle(const std::string& name) const override {
        std::shared_ptr<const Source> source = mSource->ofStyle(name);
        return source == nullptr ? nullptr : notedSource(std::move(source), mNote);
    }
    std::string fullName(const std::string& name) const override { return mSource->fullName(name); }

private:
    const std::shared_ptr<const Source> mSource;
    const NoteFile mNote;
};

// Differs when the file was written, replaced or removed.
std::string stampOf(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0) return "none";
    std::string stamp;
    for (const auto part : {static_cast<long>(status.st_ino), static_cast<long>(status.st_size),
                            static_cast<long>(status.st_ctim.tv_sec), status.st_ctim.tv_nsec})
        stamp += std::to_string(part) + " ";
    return stamp;
}

using Stamps = std::map<std::string, std::string>;  // by the files' paths

Stamps now(Stamps stamps) {
    for (auto& [path, stamp] : stamps) stamp = stampOf(path);
    return stamps;
}

void pause(long milliseconds) {
    timespec length = {0, milliseconds * 1'000'000};
    nanosleep(&length, nullptr);  // signals cut it short
}

void writeWhole(int descriptor, const std::string& text) {
    for (size_t at = 0; at < text.size();) {
        const ssize_t written = write(descriptor, text.data() + at, text.size() - at);
        if (written < 0 && errno != EINTR) return;
        at += static_cast<size_t>(written > 0 ? written : 0);
    }
}

std::string readWhole(int descriptor) {
    std::string text;
    char block[4096];
    for (ssize_t got = 1; got != 0;) {
        got = read(descriptor, block, sizeof block);
        if (got < 0 && errno != EINTR) break;
        text.append(block, static_cast<size_t>(got > 0 ? got : 0));
    }
    return text;
}

// A note is "PATH\0STAMP\0".
Stamps stampsOf(const std::string& notes) {
    Stamps stamps;
    for (size_t at = 0; at < notes.size();) {
        const size_t middle = notes.find('\0', at), end = notes.find('\0', middle + 1);
        if (end == std::string::npos) break;
        stamps.emplace(notes.substr(at, middle - at), notes.substr(middle + 1, end - middle - 1));
        at = end + 1;
    }
    return stamps;
}

void waitForChange(const Stamps& stamps) {
    while (gEnded == 0 && now(stamps) == stamps) pause(kPollMilliseconds);
    // Until a program has finished writing.
    Stamps before, after = now(stamps);
    do {
        before = after;
        pause(kQuietMilliseconds);
        after = now(stamps);
    } while (gEnded == 0 && before != after);
}

}  // namespace

std::shared_ptr<const Source> notedSource(std::shared_ptr<const Source> source, NoteFile note) {
    return std::make_shared<NotedSource>(std::move(source), std::move(note));
}

bool watch(const std::function<void(const NoteFile& note)>& make, int& status) {
    catchEndingSignals();
    status = 0;
    Stamps stamps;
    for (bool first = true; gEnded == 0; first = false) {
        Stamps before = now(stamps);  // of files that change meanwhile, too
        int ends[2];
        const pid_t child = pipe2(ends, O_CLOEXEC) == 0 ? fork() : -1;
        if (child < 0) throw Failure("--watch: cannot start a process");
        if (child == 0) {
            close(ends[0]);
            removeTemporariesOnSignals();
            make([descriptor = ends[1]](const std::string& path) {
                writeWhole(descriptor, path + '\0' + stampOf(path) + '\0');
            });
            return true;
        }
        close(ends[1]);
        Stamps noted = stampsOf(readWhole(ends[0]));
        close(ends[0]);
        int ended = 0;
        while (waitpid(child, &ended, 0) < 0 && errno == EINTR) continue;
        if (first && WIFEXITED(ended) && WEXITSTATUS(ended) == kUsageStatus) {
            status = kUsageStatus;
            return false;
        }
        if (ended != 0) noted.merge(before);  // a style that is wrong hides what it names
        stamps = std::move(noted);
        waitForChange(stamps);
    }
    return false;
}

}  // namespace zvtext
