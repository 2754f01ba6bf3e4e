// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_SCENE_PNGBYTES_H_
#define ZVEX_TESTS_SCENE_PNGBYTES_H_

#include <zlib.h>

#include <string>

// PNG files made by hand.

inline std::string bigEndian(size_t number) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
    return bytes;
}

inline std::string chunk(const std::string& type, const std::string& content) {
    const std::string summed = type + content;
    const uLong crc =
        crc32(0, reinterpret_cast<const Bytef*>(summed.data()), static_cast<uInt>(summed.size()));
    return bigEndian(content.size()) + summed + bigEndian(crc);
}

inline std::string deflated(const std::string& bytes) {
    uLongf size = compressBound(bytes.size());
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(&out[0]), &size, reinterpret_cast<const Bytef*>(bytes.data()),
             bytes.size());
    out.resize(size);
    return out;
}

inline std::string pngOf(size_t width, size_t height, int depth, int colorType, bool interlaced,
                         const std::string& extras, const std::string& rows) {
    const char kind[] = {static_cast<char>(depth), static_cast<char>(colorType), 0, 0,
                         static_cast<char>(interlaced)};
    return std::string("\x89PNG\r\n\x1A\n", 8) +
           chunk("IHDR", bigEndian(width) + bigEndian(height) + std::string(kind, sizeof kind)) + extras +
           chunk("IDAT", deflated(rows)) + chunk("IEND", "");
}

#endif  // ZVEX_TESTS_SCENE_PNGBYTES_H_
