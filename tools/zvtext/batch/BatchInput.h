// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvtext {

// Reads lines from a file or standard input ("-") as they arrive. Only read() waits, and at most one line and
// a block are kept.
class BatchInput {
public:
    // Throws Failure if the file cannot be opened.
    BatchInput(const std::string& path, size_t maxLineBytes);
    ~BatchInput();
    BatchInput(const BatchInput&) = delete;
    BatchInput& operator=(const BatchInput&) = delete;

    int descriptor() const { return mDescriptor; }

    // Reads once; waits if there is nothing yet. Throws Failure.
    void read();

    enum class Next { Line, TooLong, ReadMore, End };

    // Takes the next line, without its line ending. A line above the limit is skipped and reported as
    // TooLong.
    Next next(std::string& line);

    // The share of the input that has been taken, 0 to 1; negative if its size is not known.
    double share() const;

private:
    int mDescriptor = -1;
    size_t mMaxLineBytes;
    std::string mBuffer;
    size_t mBegin = 0, mScanned = 0;  // start of the next line in the buffer, and how far it was searched
    bool mPassingOver = false, mAtEnd = false;
    uint64_t mTaken = 0;
    int64_t mSize = -1;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_
