// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_
#define ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>

namespace zvtext {

// Lines from a file or standard input ("-"), as they come: nothing waits but read(), and no more is kept than
// one line and a block.
class BatchInput {
public:
    // Throws Failure where the file cannot be opened.
    BatchInput(const std::string& path, size_t maxLineBytes);
    ~BatchInput();
    BatchInput(const BatchInput&) = delete;
    BatchInput& operator=(const BatchInput&) = delete;

    int descriptor() const { return mDescriptor; }

    // Reads what there is, once; waits where there is nothing. Throws Failure.
    void read();

    enum class Next { Line, TooLong, ReadMore, End };

    // Takes the next line, without its end. A line above the limit is passed over and is TooLong.
    Next next(std::string& line);

    // Share of the input that has been taken, 0 to 1; negative where its size is not known.
    double share() const;

private:
    int mDescriptor = -1;
    size_t mMaxLineBytes;
    std::string mBuffer;
    size_t mBegin = 0, mScanned = 0;  // within the buffer: of the next line, and how far it was searched
    bool mPassingOver = false, mAtEnd = false;
    uint64_t mTaken = 0;
    int64_t mSize = -1;
};

}  // namespace zvtext

#endif  // ZVEX_TOOLS_ZVTEXT_BATCH_BATCHINPUT_H_
