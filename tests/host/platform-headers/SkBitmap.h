// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKBITMAP_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKBITMAP_H_

#include <cstddef>

#include "SkImageInfo.h"

class SkBitmap {
public:
    SkBitmap();
    SkBitmap(const SkBitmap& other);
    ~SkBitmap();

    bool installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes);
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKBITMAP_H_
