// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_WORKERPROCESS_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_WORKERPROCESS_H_

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace zvtext {

// A fork of this process, with a socket to it and a pipe from its standard error.
class WorkerProcess {
public:
    bool isAlive() const { return mProcess != 0; }  // as far as is known
    int socket() const { return mSocket; }          // below 0: none
    int errors() const { return mErrors; }          // where its standard error is read; below 0: nowhere

    // The new process runs work(its socket). It ends afterwards, or with this process. Signals from the
    // terminal are left to this process, and standard input and output are /dev/null. Returns an empty
    // text, or why no process could be started.
    std::string start(const std::function<void(int socket)>& work);

    // Call in other forks: closes the copies of the socket and the pipe that they inherited.
    void closeEnds() const;

    // The whole lines that have come from standard error; with `atEnd` all there is. At most about 64 kB.
    std::vector<std::string> takeErrors(bool atEnd = false);

    // Closes the socket, waits for the end and returns the wait status. Calls read(false) when there may be
    // errors to take, and read(true) once, for the last ones.
    int end(const std::function<void(bool atEnd)>& read);

    void kill();

private:
    pid_t mProcess = 0;
    int mSocket = -1, mErrors = -1;
    std::string mSaid;  // a line without its end so far
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_WORKERPROCESS_H_
