// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "SkColorSpace.h"

enum SkColorType { kAlpha_8_SkColorType = 1, kRGBA_8888_SkColorType = 4 };
enum SkAlphaType { kPremul_SkAlphaType = 2, kUnpremul_SkAlphaType = 3 };

struct SkImageInfo {
    static SkImageInfo Make(int width, int height, SkColorType colorType, SkAlphaType alphaType,
                            sk_sp<SkColorSpace> colorSpace = nullptr);
};
