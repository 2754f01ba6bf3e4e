// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_

#include <cstddef>
#include <deque>
#include <optional>
#include <string>

namespace zvtext {

// The results of a batch, which go to standard output in the order of their lines. A slow reader keeps nobody
// waiting.
class ResultStream {
public:
    // A place behind the others.
    size_t addPlace();
    void finish(size_t place, std::string json);

    // The number of places whose results have not been written.
    size_t waiting() const { return mResults.size() + (mText.empty() ? 0 : 1); }
    // Whether there is something to write now.
    bool isReady() const { return !mText.empty() || (!mResults.empty() && mResults.front()); }

    // Writes what the reader takes without waiting.
    void write();

    bool isOpen() const { return !mClosed && mFault.empty(); }
    bool isClosed() const { return mClosed; }            // by its reader
    void close() { mClosed = true; }                     // as if by its reader
    const std::string& fault() const { return mFault; }  // why nothing more can be written

private:
    bool writeSome();

    std::deque<std::optional<std::string>> mResults;
    size_t mFirst = 0;    // the place of the first of them
    std::string mText;    // what is being written
    size_t mWritten = 0;  // bytes of it
    bool mClosed = false;
    std::string mFault;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_
