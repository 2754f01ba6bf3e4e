// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKCOLOR_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKCOLOR_H_

#include <cstdint>

// A straight (not premultiplied) colour, 0xAARRGGBB.
typedef uint32_t SkColor;

constexpr SkColor SK_ColorBLACK = 0xFF000000;

constexpr uint8_t SkColorGetA(SkColor color) {
    return static_cast<uint8_t>(color >> 24);
}
constexpr uint8_t SkColorGetR(SkColor color) {
    return static_cast<uint8_t>(color >> 16);
}
constexpr uint8_t SkColorGetG(SkColor color) {
    return static_cast<uint8_t>(color >> 8);
}
constexpr uint8_t SkColorGetB(SkColor color) {
    return static_cast<uint8_t>(color);
}

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKCOLOR_H_
