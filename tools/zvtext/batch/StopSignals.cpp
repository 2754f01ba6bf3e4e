// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/StopSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "scene/Failure.h"

namespace zvtext {

namespace {

volatile std::sig_atomic_t gSignal = 0;
int gWakeEnd = -1;

// Leaves the number and wakes the loop.
void onSignal(int number) {
    const int error = errno;
    gSignal = number;
    const char byte = 0;
    if (write(gWakeEnd, &byte, 1) < 0) errno = error;  // full: the loop is awake anyway
    errno = error;
}

}  // namespace

StopSignals::StopSignals() {
    if (pipe2(mPipe, O_CLOEXEC | O_NONBLOCK) != 0) throw Zvex::scene::Failure("cannot make a pipe");
    gWakeEnd = mPipe[1];
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action = {};
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            continue;  // as for nohup and &
        action = {};
        action.sa_handler = onSignal;
        action.sa_flags = SA_RESETHAND;  // the second signal ends the process
        sigaction(number, &action, nullptr);
    }
}

StopSignals::~StopSignals() {
    for (const int end : mPipe) close(end);
}

int StopSignals::number() const {
    return gSignal;
}

void StopSignals::drain() const {
    char byte;
    while (read(mPipe[0], &byte, 1) == 1) {
    }
}

}  // namespace zvtext
