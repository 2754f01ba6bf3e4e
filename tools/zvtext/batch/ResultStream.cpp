// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/ResultStream.h"

#include <poll.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <utility>

namespace zvtext {

namespace {

// A pipe that has room takes so much at once. A file takes anything.
size_t mostAtOnce() {
    struct stat status = {};
    const bool file = fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode);
    return file ? size_t{1} << 20 : PIPE_BUF;
}

}  // namespace

ResultStream::ResultStream() : mMostAtOnce(mostAtOnce()) {}

size_t ResultStream::addPlace() {
    mResults.emplace_back();
    return mFirst + mResults.size() - 1;
}

void ResultStream::finish(size_t place, std::string json, std::string picture) {
    mPictureBytes += picture.size();
    if (!json.empty()) json += "\n";
    mResults[place - mFirst] = {std::move(json), std::move(picture)};
}

void ResultStream::write() {
    while (isOpen() && isReady()) {
        if (mText.empty()) next();
        if (!mText.empty() && !writeSome()) return;
        if (mWritten < mText.size()) continue;
        if (mInPicture) {
            mPictureBytes -= mText.size();
            ++mPictures;
        }
        mText = std::exchange(mPicture, "");
        mInPicture = !mText.empty();
        mWritten = 0;
    }
}

void ResultStream::next() {
    Result result = *std::move(mResults.front());
    mResults.pop_front();
    ++mFirst;
    mText = std::move(result.text);
    mPicture = std::move(result.picture);
}

// False if the reader takes nothing now.
bool ResultStream::writeSome() {
    // All that fits at once, if this system can write without waiting; newer ones can, even into pipes.
    const iovec rest = {mText.data() + mWritten, mText.size() - mWritten};
    const ssize_t fitting = pwritev2(STDOUT_FILENO, &rest, 1, -1, RWF_NOWAIT);
    if (fitting > 0) {
        mWritten += static_cast<size_t>(fitting);
        return true;
    }
    pollfd ready = {STDOUT_FILENO, POLLOUT, 0};
    const int count = poll(&ready, 1, 0);
    if (count == 0) return false;
    const size_t length = std::min<size_t>(mText.size() - mWritten, mMostAtOnce);
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
