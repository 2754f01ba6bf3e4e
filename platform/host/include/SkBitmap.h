// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKBITMAP_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKBITMAP_H_

#include <cstddef>

#include "SkImageInfo.h"

// A view of pixels that it does not own: they must outlive the bitmap, its copies and the canvases over them.
// Copies share the pixels. Drawing an empty bitmap (no pixels, or a side of zero), or drawing on it, does
// nothing.
class SkBitmap {
public:
    // Refers to `pixels`, whose rows are `rowBytes` apart; bytes between the rows are never touched. False,
    // with an empty bitmap, for a negative side, a layout other than coverage or straight 8888 colour, a row
    // longer than rowBytes, or an image of 2^31 bytes or more. Null pixels succeed and make the bitmap empty.
    bool installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes);

    const SkImageInfo& info() const { return mInfo; }
    int width() const { return mInfo.width(); }
    int height() const { return mInfo.height(); }
    size_t rowBytes() const { return mRowBytes; }
    void* getPixels() const { return mPixels; }

private:
    SkImageInfo mInfo;
    void* mPixels = nullptr;
    size_t mRowBytes = 0;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKBITMAP_H_
