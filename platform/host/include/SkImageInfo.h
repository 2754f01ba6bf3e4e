// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKIMAGEINFO_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKIMAGEINFO_H_

#include <utility>

#include "SkColorSpace.h"
#include "SkRefCnt.h"

// The pixel layouts that are drawn on; the numbers are the platform's.
enum SkColorType {
    kUnknown_SkColorType = 0,
    kAlpha_8_SkColorType = 1,    // one byte: coverage
    kRGBA_8888_SkColorType = 4,  // four bytes in memory: red, green, blue, alpha
};

enum SkAlphaType {
    kUnknown_SkAlphaType = 0,
    kPremul_SkAlphaType = 2,    // colours are multiplied by their alpha (says nothing for coverage)
    kUnpremul_SkAlphaType = 3,  // colours are straight
};

// Describes an image: size in pixels, layout, and the space of its colours. A plain value; any size may be
// stated, the bitmap checks it.
struct SkImageInfo {
public:
    SkImageInfo() = default;

    static SkImageInfo Make(int width, int height, SkColorType colorType, SkAlphaType alphaType,
                            sk_sp<SkColorSpace> colorSpace = nullptr) {
        SkImageInfo info;
        info.mWidth = width;
        info.mHeight = height;
        info.mColorType = colorType;
        info.mAlphaType = alphaType;
        info.mColorSpace = std::move(colorSpace);
        return info;
    }

    int width() const { return mWidth; }
    int height() const { return mHeight; }
    SkColorType colorType() const { return mColorType; }
    SkAlphaType alphaType() const { return mAlphaType; }
    SkColorSpace* colorSpace() const { return mColorSpace.get(); }
    // 1 for coverage, 4 for colour, 0 for a layout that is not known.
    int bytesPerPixel() const {
        return mColorType == kAlpha_8_SkColorType ? 1 : mColorType == kRGBA_8888_SkColorType ? 4 : 0;
    }

private:
    int mWidth = 0;
    int mHeight = 0;
    SkColorType mColorType = kUnknown_SkColorType;
    SkAlphaType mAlphaType = kUnknown_SkAlphaType;
    sk_sp<SkColorSpace> mColorSpace;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKIMAGEINFO_H_
