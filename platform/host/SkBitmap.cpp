// SPDX-License-Identifier: Apache-2.0
#include <SkBitmap.h>
#include <SkColorSpace.h>

#include <cstdint>

sk_sp<SkColorSpace> SkColorSpace::MakeSRGB() {
    static SkColorSpace* const space = new SkColorSpace;  // never destroyed: static objects may hold bitmaps
    space->ref();
    return sk_sp<SkColorSpace>(space);
}

bool SkBitmap::installPixels(const SkImageInfo& info, void* pixels, size_t rowBytes) {
    *this = SkBitmap();
    const bool drawable =
        info.colorType() == kAlpha_8_SkColorType ||
        (info.colorType() == kRGBA_8888_SkColorType && info.alphaType() == kUnpremul_SkAlphaType);
    if (!drawable || info.width() < 0 || info.height() < 0) return false;
    // Then every offset into the image fits an int, and no product below overflows.
    constexpr uint64_t kMaxBytes = INT32_MAX;
    const uint64_t row = static_cast<uint64_t>(info.width()) * static_cast<uint64_t>(info.bytesPerPixel());
    const uint64_t height = static_cast<uint64_t>(info.height());
    if (row > rowBytes || rowBytes > kMaxBytes || rowBytes * height > kMaxBytes) return false;
    mInfo = info;
    mPixels = pixels;
    mRowBytes = rowBytes;
    return true;
}
