// SPDX-License-Identifier: Apache-2.0
#include "tests/tool/FailingCalls.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstddef>
#include <vector>

namespace {

// How a call names its file: by a descriptor, a path, or a descriptor of a folder and a path in it.
struct Call {
    int number;
    const char* name;
    int descriptor, path;  // the arguments' places; -1: it has none
    int error;
};

constexpr Call kCalls[] = {
    {__NR_openat, "openat", 0, 1, EIO},        {__NR_read, "read", 0, -1, EIO},
    {__NR_pread64, "pread", 0, -1, EIO},       {__NR_write, "write", 0, -1, ENOSPC},
    {__NR_writev, "writev", 0, -1, ENOSPC},    {__NR_close, "close", 0, -1, EIO},
    {__NR_fsync, "fsync", 0, -1, ENOSPC},      {__NR_fstat, "fstat", 0, -1, EIO},
    {__NR_newfstatat, "fstatat", 0, 1, EIO},   {__NR_lseek, "lseek", 0, -1, EIO},
    {__NR_fchmod, "fchmod", 0, -1, EPERM},     {__NR_flock, "flock", 0, -1, ENOLCK},
    {__NR_mkdirat, "mkdirat", 0, 1, ENOSPC},   {__NR_readlinkat, "readlinkat", 0, 1, EIO},
    {__NR_renameat, "renameat", 0, 1, ENOSPC}, {__NR_renameat2, "renameat2", 0, 1, ENOSPC},
    {__NR_getdents64, "getdents", 0, -1, EIO},
#ifdef __NR_open
    {__NR_open, "open", -1, 0, EIO},           {__NR_stat, "stat", -1, 0, EIO},
    {__NR_lstat, "lstat", -1, 0, EIO},         {__NR_mkdir, "mkdir", -1, 0, ENOSPC},
    {__NR_readlink, "readlink", -1, 0, EIO},   {__NR_rename, "rename", -1, 0, ENOSPC},
#endif
};

// Called in the child: from now on these calls wait for the listener at the returned descriptor.
int listen() {
    std::vector<sock_filter> program = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const Call& call : kCalls) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(call.number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) return -1;
    return static_cast<int>(
        syscall(__NR_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

std::string linkTarget(const std::string& link) {
    char target[PATH_MAX];
    const ssize_t length = readlink(link.c_str(), target, sizeof target);
    return std::string(target, static_cast<size_t>(length > 0 ? length : 0));
}

// The path of the file that the call is about.
std::string fileOf(const seccomp_notif& request, const Call& call) {
    const std::string process = "/proc/" + std::to_string(request.pid);
    const auto opened = [&](int descriptor) {
        return linkTarget(process + (descriptor == AT_FDCWD ? "/cwd" : "/fd/" + std::to_string(descriptor)));
    };
    const int descriptor =
        call.descriptor >= 0 ? static_cast<int>(request.data.args[call.descriptor]) : AT_FDCWD;
    std::string path;
    if (call.path >= 0) {
        const int memory = open((process + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
        char bytes[PATH_MAX] = "";  // reading stops where the memory ends
        pread(memory, bytes, sizeof bytes - 1, static_cast<off_t>(request.data.args[call.path]));
        path = bytes;
        close(memory);
    }
    if (path.empty()) return opened(descriptor);
    const std::string own = "/proc/self/fd/";
    if (path.rfind(own, 0) == 0) {
        const size_t end = path.find('/', own.size());
        return opened(std::atoi(path.c_str() + own.size())) +
               (end == std::string::npos ? "" : path.substr(end));
    }
    return path[0] == '/' ? path : opened(descriptor) + "/" + path;
}

class Listener {
public:
    Listener(std::string folder, int number, Fails how)
        : mFolder(std::move(folder)), mNumber(number), mHow(how) {}

    // Answers until no process is left that could call.
    void answer(int listener, FailedCall& result) const {
        for (;;) {
            pollfd event = {listener, POLLIN, 0};
            if (poll(&event, 1, -1) < 0 && errno == EINTR) continue;
            if ((event.revents & POLLIN) == 0) return;
            seccomp_notif request = {};
            if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &request) != 0) continue;  // the process was killed
            seccomp_notif_resp response = {request.id, 0, 0, SECCOMP_USER_NOTIF_FLAG_CONTINUE};
            for (const Call& call : kCalls) {
                if (call.number == request.data.nr) decide(request, call, response, result);
            }
            ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response);
        }
    }

private:
    void decide(const seccomp_notif& request, const Call& call, seccomp_notif_resp& response,
                FailedCall& result) const {
        if (mHow == Fails::AsEnd && call.number != __NR_read && call.number != __NR_pread64) return;
        const std::string file = fileOf(request, call);
        if (file.compare(0, mFolder.size() + 1, mFolder + "/") != 0 || file == mFolder + "/stderr") return;
        if (call.path >= 0 && file.compare(0, mFolder.size() + 4, mFolder + "/std") == 0) return;
        if (++result.calls != mNumber) return;
        result.name = std::string(call.name) + ", " + file;
        response.flags = 0;
        response.error = mHow == Fails::AsEnd ? 0 : -call.error;
    }

    const std::string mFolder;
    const int mNumber;
    const Fails mHow;
};

}  // namespace

FailedCall runWithFailingCall(const std::string& folder, int number, Fails how,
                              const std::function<int()>& process) {
    FailedCall result;
    int told[2] = {-1, -1};
    if (pipe2(told, O_CLOEXEC) != 0) return result;
    const pid_t child = fork();
    if (child == 0) {
        // The number that the listener will get: once it exists, the child can report nothing.
        const int next = dup(told[1]);
        close(next);
        if (write(told[1], &next, sizeof next) != sizeof next) _exit(127);
        const int listener = listen();
        _exit(listener < 0 ? 127 : process());
    }
    int theirs = -1, status = 0;
    ssize_t got = read(told[0], &theirs, sizeof theirs);
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, child, 0));
    int listener = -1;
    bool ended = got != sizeof theirs;
    while (!ended && (listener = static_cast<int>(syscall(SYS_pidfd_getfd, handle, theirs, 0))) < 0) {
        ended = errno != EBADF || waitpid(child, &status, WNOHANG) != 0;
    }
    if (listener < 0) syscall(SYS_pidfd_send_signal, handle, SIGKILL, nullptr, 0);
    for (const int descriptor : {told[0], told[1], handle}) close(descriptor);
    result.supported = listener >= 0;
    if (listener >= 0) Listener(folder, number, how).answer(listener, result);
    waitpid(child, &status, 0);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    close(listener);
    return result;
}
