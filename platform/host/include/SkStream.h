// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKSTREAM_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKSTREAM_H_

#include <cstddef>
#include <cstdint>
#include <vector>

// Bytes in memory, of known length. Immutable.
class SkStreamAsset {
public:
    SkStreamAsset() = default;
    virtual ~SkStreamAsset() = default;
    SkStreamAsset(const SkStreamAsset&) = delete;
    SkStreamAsset& operator=(const SkStreamAsset&) = delete;

    virtual size_t getLength() const = 0;  // in bytes
    // All bytes in one piece, valid while the stream lives; null if there are none.
    virtual const void* getMemoryBase() = 0;
};

// Borrowed bytes, or a copy.
class SkMemoryStream : public SkStreamAsset {
public:
    // Without copyData the caller keeps the bytes; they must outlive the stream and every typeface made from
    // it. A null pointer counts as length 0.
    SkMemoryStream(const void* data, size_t length, bool copyData = false);

    size_t getLength() const override { return mLength; }
    const void* getMemoryBase() override { return mData; }

private:
    std::vector<uint8_t> mCopy;
    const void* mData;
    size_t mLength;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKSTREAM_H_
