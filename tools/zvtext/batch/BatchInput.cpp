// SPDX-License-Identifier: Apache-2.0
#include "tools/zvtext/batch/BatchInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "scene/Failure.h"

namespace zvtext {

using namespace Zvex::scene;

BatchInput::BatchInput(const std::string& path, size_t maxLineBytes) : mMaxLineBytes(maxLineBytes) {
    mDescriptor = path == "-" ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status;
    if (mDescriptor < 0 || fstat(mDescriptor, &status) != 0) {
        throw Failure("FILE: cannot read '" + path + "': " + std::strerror(errno));
    }
    if (S_ISDIR(status.st_mode)) throw Failure("FILE: '" + path + "' is a folder");
    if (S_ISREG(status.st_mode)) mSize = std::max<int64_t>(status.st_size, 1);
}

BatchInput::~BatchInput() {
    if (mDescriptor > STDIN_FILENO) close(mDescriptor);
}

void BatchInput::read() {
    mBuffer.erase(0, mBegin);
    mScanned -= mBegin;
    mBegin = 0;
    constexpr size_t kBlock = 65536;
    const size_t kept = mBuffer.size();
    mBuffer.resize(kept + kBlock);
    const ssize_t got = ::read(mDescriptor, &mBuffer[kept], kBlock);
    const int error = errno;
    mBuffer.resize(kept + static_cast<size_t>(std::max<ssize_t>(got, 0)));
    mAtEnd = got == 0;
    if (got < 0 && error != EINTR && error != EAGAIN) {
        throw Failure(std::string("FILE: cannot read: ") + std::strerror(error));
    }
}

BatchInput::Next BatchInput::next(std::string& line) {
    size_t end = mBuffer.find('\n', mScanned);
    const bool found = end != std::string::npos;
    if (!found) end = mBuffer.size();
    mScanned = end;
    if (end - mBegin > mMaxLineBytes) mPassingOver = true;
    if (!found && mPassingOver) {
        mTaken += end - mBegin;
        mBegin = end;
    }
    if (!found && !mAtEnd) return Next::ReadMore;
    if (!found && mBegin == end && !mPassingOver) return Next::End;
    mTaken += end - mBegin + 1;
    const bool tooLong = mPassingOver;
    mPassingOver = false;
    if (!tooLong) line.assign(mBuffer, mBegin, end - mBegin);
    mBegin = mScanned = std::min(end + 1, mBuffer.size());
    return tooLong ? Next::TooLong : Next::Line;
}

double BatchInput::share() const {
    return mSize < 0 ? -1 : std::min(static_cast<double>(mTaken) / static_cast<double>(mSize), 1.0);
}

}  // namespace zvtext
