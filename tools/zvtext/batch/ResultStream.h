// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>

namespace zvtext {

// The results of a batch, which go to standard output in the order of their lines; behind a result comes the
// picture of its line if that is streamed. A slow reader keeps nobody waiting.
class ResultStream {
public:
    ResultStream();

    // A place behind the others.
    size_t addPlace();
    // Without JSON the place stays empty.
    void finish(size_t place, std::string json, std::string picture = "");

    // The number of places whose results have not been written.
    size_t waiting() const { return mResults.size() + (mText.empty() ? 0 : 1); }
    // The first place that is not being written.
    size_t first() const { return mFirst; }
    // The bytes of pictures that wait.
    size_t pictureBytes() const { return mPictureBytes; }
    // The number of pictures that have been written.
    uint64_t pictures() const { return mPictures; }
    // Whether there is something to write now.
    bool isReady() const { return !mText.empty() || (!mResults.empty() && mResults.front()); }

    // Writes what the reader takes without waiting.
    void write();

    bool isOpen() const { return !mClosed && mFault.empty(); }
    bool isClosed() const { return mClosed; }            // by its reader
    void close() { mClosed = true; }                     // as if by its reader
    const std::string& fault() const { return mFault; }  // why nothing more can be written

private:
    struct Result {
        std::string text, picture;
    };

    bool writeSome();
    void next();

    const size_t mMostAtOnce;  // bytes for one write
    std::deque<std::optional<Result>> mResults;
    size_t mFirst = 0;     // the place of the first of them
    std::string mText;     // what is being written: a result, then its picture
    std::string mPicture;  // of the result
    bool mInPicture = false;
    size_t mWritten = 0;  // bytes of the text
    size_t mPictureBytes = 0;
    uint64_t mPictures = 0;
    bool mClosed = false;
    std::string mFault;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_RESULTSTREAM_H_
