// SPDX-License-Identifier: Apache-2.0
#include "scene/Picture.h"

#include <cstring>

namespace Zvex::scene {

namespace {

uint32_t premultiplied(uint32_t pixel) {
    const uint32_t alpha = pixel >> 24;
    const auto times = [&](int shift) { return ((pixel >> shift & 0xFF) * alpha + 127) / 255 << shift; };
    return alpha << 24 | times(16) | times(8) | times(0);
}

}  // namespace

void convertPixels(const uint32_t* source, size_t count, PixelFormat format, void* target) {
    const bool premultiplies =
        format == PixelFormat::ArgbPremultiplied || format == PixelFormat::RgbaPremultiplied;
    const bool words = format == PixelFormat::Argb || format == PixelFormat::ArgbPremultiplied;
    auto* bytes = static_cast<uint8_t*>(target);
    for (size_t i = 0; i < count; ++i, bytes += 4) {
        const uint32_t pixel = premultiplies ? premultiplied(source[i]) : source[i];
        if (words) {
            std::memcpy(bytes, &pixel, 4);
            continue;
        }
        bytes[0] = static_cast<uint8_t>(pixel >> 16);
        bytes[1] = static_cast<uint8_t>(pixel >> 8);
        bytes[2] = static_cast<uint8_t>(pixel);
        bytes[3] = static_cast<uint8_t>(pixel >> 24);
    }
}

std::vector<uint8_t> pixelBytes(const Picture& picture, PixelFormat format) {
    std::vector<uint8_t> bytes(picture.pixels.size() * 4);
    convertPixels(picture.pixels.data(), picture.pixels.size(), format, bytes.data());
    return bytes;
}

}  // namespace Zvex::scene
