// SPDX-License-Identifier: Apache-2.0
#include "scene/Picture.h"

#include <cstring>
#include <string>

#include "scene/Failure.h"

namespace Zvex::scene {

namespace {

uint32_t premultiplied(uint32_t pixel) {
    const uint32_t alpha = pixel >> 24;
    const auto times = [&](int shift) { return ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift; };
    return alpha << 24 | times(16) | times(8) | times(0);
}

// Red first in memory, on the little-endian machines that the library is for.
uint32_t redFirst(uint32_t pixel) {
    return (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
}

// (The C library's checked memcpy prevents vectors.)
template <typename Turn>
void turnPixels(const uint32_t* source, size_t count, uint8_t* bytes, Turn turn) {
    for (size_t i = 0; i < count; ++i) {
        const uint32_t pixel = turn(source[i]);
        __builtin_memcpy(bytes + 4 * i, &pixel, 4);
    }
}

}  // namespace

void convertPixels(const uint32_t* source, size_t count, PixelFormat format, void* target) {
    auto* const bytes = static_cast<uint8_t*>(target);
    switch (format) {
        case PixelFormat::Argb:
            if (target != source) std::memcpy(bytes, source, 4 * count);
            break;
        case PixelFormat::ArgbPremultiplied:
            turnPixels(source, count, bytes, premultiplied);
            break;
        case PixelFormat::Rgba:
            turnPixels(source, count, bytes, redFirst);
            break;
        case PixelFormat::RgbaPremultiplied:
            turnPixels(source, count, bytes, [](uint32_t pixel) { return redFirst(premultiplied(pixel)); });
            break;
    }
}

void checkComplete(const Picture& picture) {
    const int64_t width = picture.width, height = picture.height;
    if (width > 0 && height > 0 && static_cast<uint64_t>(width * height) == picture.pixels.size()) return;
    throw UsageError("picture: it is " + std::to_string(width) + " x " + std::to_string(height) +
                     " pixels and holds " + std::to_string(picture.pixels.size()) +
                     (picture.pixels.empty() ? "; it was measured, not drawn" : ""));
}

std::vector<uint8_t> pixelBytes(const Picture& picture, PixelFormat format) {
    checkComplete(picture);
    std::vector<uint8_t> bytes(picture.pixels.size() * 4);
    convertPixels(picture.pixels.data(), picture.pixels.size(), format, bytes.data());
    return bytes;
}

}  // namespace Zvex::scene
