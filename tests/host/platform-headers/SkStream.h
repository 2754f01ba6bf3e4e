// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

class SkStreamAsset {
public:
    virtual ~SkStreamAsset() = 0;
    SkStreamAsset(SkStreamAsset&&) = delete;

protected:
    SkStreamAsset();
};

class SkMemoryStream : public SkStreamAsset {
public:
    SkMemoryStream(const void* data, size_t length, bool copyData = false);
    ~SkMemoryStream() override;
};
