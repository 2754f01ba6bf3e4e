// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/WorkerProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <utility>

namespace zvtext {

namespace {

constexpr size_t kMaxSaid = 65536;  // of a line without an end

[[noreturn]] void beWorker(pid_t parent, int socket, const std::function<void(int socket)>& work) {
    try {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_IGN);
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent) _exit(0);
        const int nothing = open("/dev/null", O_RDWR);
        dup2(nothing, STDIN_FILENO);
        dup2(nothing, STDOUT_FILENO);
        work(socket);
    } catch (...) {  // no memory for a message; the parent sees the socket close
    }
    std::fflush(stderr);
    _exit(0);
}

}  // namespace

std::string WorkerProcess::start(const std::function<void(int socket)>& work) {
    int ends[2] = {-1, -1}, errors[2] = {-1, -1};
    const pid_t parent = getpid();
    pid_t process = -1;
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0 && pipe2(errors, O_CLOEXEC) == 0)
        process = fork();
    const int error = errno;
    if (process == 0) {
        dup2(errors[1], STDERR_FILENO);
        for (const int unused : {ends[0], errors[0], errors[1]}) close(unused);
        beWorker(parent, ends[1], work);
    }
    close(ends[1]);
    close(errors[1]);
    if (process < 0) {
        close(ends[0]);
        close(errors[0]);
        return std::strerror(error);
    }
    fcntl(errors[0], F_SETFL, O_NONBLOCK);
    mProcess = process;
    mSocket = ends[0];
    mErrors = errors[0];
    return "";
}

void WorkerProcess::closeEnds() const {
    if (mSocket >= 0) close(mSocket);
    if (mErrors >= 0) close(mErrors);
}

std::vector<std::string> WorkerProcess::takeErrors(bool atEnd) {
    char block[4096];
    ssize_t got;
    for (int blocks = 0; blocks < 16 && (got = read(mErrors, block, sizeof block)) > 0; ++blocks)
        mSaid.append(block, static_cast<size_t>(got));
    if (mSaid.size() > kMaxSaid || (atEnd && !mSaid.empty() && mSaid.back() != '\n')) mSaid += '\n';
    std::vector<std::string> lines;
    size_t begin = 0;
    for (size_t end; (end = mSaid.find('\n', begin)) != std::string::npos; begin = end + 1)
        lines.push_back(mSaid.substr(begin, end + 1 - begin));
    mSaid.erase(0, begin);
    return lines;
}

int WorkerProcess::end(const std::function<void(bool atEnd)>& read) {
    int status = 0;
    if (mSocket >= 0) close(std::exchange(mSocket, -1));
    // It may have more to say than the pipe holds.
    while (mProcess != 0 && waitpid(mProcess, &status, WNOHANG) == 0) {
        pollfd event = {mErrors, POLLIN, 0};
        poll(&event, 1, 10);
        read(false);
    }
    mProcess = 0;
    if (mErrors >= 0) {
        read(true);
        close(std::exchange(mErrors, -1));
    }
    return status;
}

void WorkerProcess::kill() {
    if (mProcess > 0) ::kill(mProcess, SIGKILL);
}

}  // namespace zvtext
