// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_FONTSTYLE_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_FONTSTYLE_H_

#include <cstdint>

namespace minikin {

class FontStyle {
public:
    enum class Slant : bool { ITALIC = true, UPRIGHT = false };

    constexpr FontStyle(uint16_t, Slant) {}
};

}  // namespace minikin

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_MINIKIN_FONTSTYLE_H_
