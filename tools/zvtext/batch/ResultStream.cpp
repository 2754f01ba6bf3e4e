// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/ResultStream.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

namespace zvtext {

size_t ResultStream::addPlace() {
    mResults.emplace_back();
    return mFirst + mResults.size() - 1;
}

void ResultStream::finish(size_t place, std::string json) {
    mResults[place - mFirst] = std::move(json) + "\n";
}

void ResultStream::write() {
    while (isOpen() && isReady()) {
        if (mText.empty()) {
            mText = *std::move(mResults.front());
            mResults.pop_front();
            ++mFirst;
        }
        if (!writeSome()) return;
        if (mWritten < mText.size()) continue;
        mText.clear();
        mWritten = 0;
    }
}

// False if the reader takes nothing now.
bool ResultStream::writeSome() {
    pollfd ready = {STDOUT_FILENO, POLLOUT, 0};
    const int count = poll(&ready, 1, 0);
    if (count == 0) return false;
    // At most as much as a pipe with room accepts at once.
    const size_t length = std::min<size_t>(mText.size() - mWritten, PIPE_BUF);
    const ssize_t now = count < 0 ? -1 : ::write(STDOUT_FILENO, mText.data() + mWritten, length);
    if (now >= 0) {
        mWritten += static_cast<size_t>(now);
    } else if (errno == EPIPE) {
        mClosed = true;
    } else if (errno != EINTR && errno != EAGAIN) {
        mFault = std::string("cannot write to standard output: ") + std::strerror(errno);
    }
    return true;
}

}  // namespace zvtext
