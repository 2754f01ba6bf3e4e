// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>

#include "SkImageInfo.h"

struct SkBitmap {
    bool installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes);
};
