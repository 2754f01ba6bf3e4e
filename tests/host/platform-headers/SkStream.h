// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKSTREAM_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKSTREAM_H_

#include <cstddef>

class SkStreamAsset {
public:
    virtual ~SkStreamAsset() = 0;
    SkStreamAsset(const SkStreamAsset&) = delete;
    void operator=(const SkStreamAsset&) = delete;

protected:
    SkStreamAsset();
};

class SkMemoryStream : public SkStreamAsset {
public:
    SkMemoryStream(const void* data, size_t length, bool copyData = false);
    ~SkMemoryStream() override;
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKSTREAM_H_
