// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTSTYLE_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTSTYLE_H_

#include <cstdint>

namespace minikin {

// What a font is, or what a text wants: a weight (400 normal, 700 bold, 1 to 1000) and a slant.
class FontStyle {
public:
    // Italic stands for oblique as well.
    enum class Slant : bool { ITALIC = true, UPRIGHT = false };

    constexpr FontStyle() : FontStyle(400, Slant::UPRIGHT) {}
    constexpr FontStyle(uint16_t weight, Slant slant) : mWeight(weight), mSlant(slant) {}

    // As given.
    constexpr uint16_t weight() const { return mWeight; }
    constexpr Slant slant() const { return mSlant; }

private:
    uint16_t mWeight;
    Slant mSlant;
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_FONTSTYLE_H_
