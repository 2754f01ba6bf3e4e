// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_SCENE_PICTURE_H_
#define ZVEX_SCENE_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zvex::scene {

// A picture of straight (not premultiplied) colours, one 0xAARRGGBB word a pixel, rows without padding.
struct Picture {
    int width = 0, height = 0;  // pixels, at least 1
    std::vector<uint32_t> pixels;
};

// What an encoder spends its time on. All are lossless.
enum class Compression {
    Fast,     // the least time
    Default,  // most of what can be saved, in little more time
    Small,    // the smallest file, in several times the time
};

// The four bytes of a pixel. Premultiplied: red, green and blue times alpha / 255, to the nearest.
enum class PixelFormat {
    Argb,  // a straight 0xAARRGGBB word, its bytes in the machine's order
    ArgbPremultiplied,
    Rgba,  // straight bytes in the order red, green, blue, alpha
    RgbaPremultiplied,
};

// Writes `count` straight 0xAARRGGBB words as `format` to `target`, four bytes each. `target` may be `source`
// itself; otherwise they must not overlap.
void convertPixels(const uint32_t* source, size_t count, PixelFormat format, void* target);

// Throws UsageError unless the picture has all its pixels; one from measure() has none.
void checkComplete(const Picture& picture);

// All of the picture's pixels: 4 * width * height bytes. Throws UsageError as checkComplete does.
std::vector<uint8_t> pixelBytes(const Picture& picture, PixelFormat format = PixelFormat::Rgba);

}  // namespace Zvex::scene

#endif  // ZVEX_SCENE_PICTURE_H_
