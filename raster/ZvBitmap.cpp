// SPDX-License-Identifier: Apache-2.0
#include "raster/ZvBitmap.h"

#include <algorithm>
#include <cstring>

#include "foundation/KeptMemory.h"
#include "foundation/OutOfMemory.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

// width * height of two 32-bit sizes fits in 64 bits; times bytesPerPixel it may not. Sizes above half the
// address space are refused, so that pointer differences stay exact.
size_t productOf(uint32_t width, uint32_t height, uint32_t bytesPerPixel) {
    const uint64_t area = uint64_t{width} * height;
    if (area == 0 || bytesPerPixel == 0 || area > uint64_t{PTRDIFF_MAX} / bytesPerPixel) return 0;
    return static_cast<size_t>(area * bytesPerPixel);
}

uint8_t* unset(size_t count) {
    if (count == 0) return nullptr;
    void* memory = takeMemory(count);
    if (memory == nullptr) markOutOfMemory();
    return static_cast<uint8_t*>(memory);
}

uint8_t* copyOf(const uint8_t* bytes, size_t count) {
    if (bytes == nullptr || count == 0) return nullptr;
    uint8_t* copy = unset(count);
    if (copy != nullptr) std::memcpy(copy, bytes, count);
    return copy;
}

uint8_t* zeros(size_t count) {
    if (count == 0) return nullptr;
    void* memory = takeZeroedMemory(count);
    if (memory == nullptr) markOutOfMemory();
    return static_cast<uint8_t*>(memory);
}

uint32_t distance(int32_t a, int32_t b) {
    const int64_t difference = int64_t{a} - b;
    return static_cast<uint32_t>(difference < 0 ? -difference : difference);
}

}  // namespace

size_t ZvBitmap::byteCount() const {
    return productOf(width, height, bytesPerPixel);
}

ZvBitmap::ZvBitmap(unsigned int mWidth, unsigned int mHeight, unsigned int mBytesPerPixel)
    : width(mWidth), height(mHeight), format(mBytesPerPixel == 4 ? 1 : 2), bytesPerPixel(mBytesPerPixel) {
    pixels = zeros(byteCount());
}

ZvBitmap::ZvBitmap(unsigned int mWidth, unsigned int mHeight, unsigned int mBytesPerPixel, Unset)
    : width(mWidth), height(mHeight), format(mBytesPerPixel == 4 ? 1 : 2), bytesPerPixel(mBytesPerPixel) {
    pixels = unset(byteCount());
}

ZvBitmap::ZvBitmap(unsigned int mWidth, unsigned int mHeight, const unsigned char* data,
                   unsigned int mBytesPerPixel)
    : width(mWidth), height(mHeight), format(mBytesPerPixel == 4 ? 1 : 2), bytesPerPixel(mBytesPerPixel) {
    pixels = data != nullptr ? copyOf(data, byteCount()) : zeros(byteCount());
}

ZvBitmap::ZvBitmap(const ZvBitmap& other)
    : width(other.width),
      height(other.height),
      pixels(copyOf(other.pixels, other.byteCount())),
      format(other.format),
      bytesPerPixel(other.bytesPerPixel) {}

ZvBitmap::ZvBitmap(const ZvBitmap& source, const ZvRect* rect)
    : format(source.format), bytesPerPixel(source.bytesPerPixel) {
    if (rect == nullptr) return;
    width = distance(rect->left, rect->right);
    height = distance(rect->top, rect->bottom);
    pixels = zeros(byteCount());
    if (pixels == nullptr || source.pixels == nullptr) return;
    if (rect->left > rect->right || rect->top > rect->bottom) return;

    // A row of the cut-out is one run of the source's bytes, limited to the source's buffer at both ends.
    // Coordinates are 32-bit and source.width is below 2^32, so the product and the sum below stay within
    // 2^63.
    const int64_t sourceBytes = static_cast<int64_t>(source.byteCount());
    for (int64_t y = rect->top; y < rect->bottom; ++y) {
        const int64_t first = y * int64_t{source.width} + rect->left;
        const int64_t begin = std::max<int64_t>(first, 0);
        const int64_t end = std::min<int64_t>(first + width, sourceBytes);
        if (begin >= end) continue;
        const size_t row = static_cast<size_t>(y - rect->top) * width;
        std::memcpy(pixels + row + (begin - first), source.pixels + begin, static_cast<size_t>(end - begin));
    }
}

ZvBitmap& ZvBitmap::operator=(const ZvBitmap& other) {
    if (this == &other) return *this;
    giveMemory(pixels);
    width = other.width;
    height = other.height;
    format = other.format;
    bytesPerPixel = other.bytesPerPixel;
    pixels = copyOf(other.pixels, other.byteCount());
    return *this;
}

ZvBitmap::~ZvBitmap() {
    giveMemory(pixels);
}

}  // namespace Zvex
