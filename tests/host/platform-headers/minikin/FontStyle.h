// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace minikin {

class FontStyle {
public:
    enum class Slant : bool { ITALIC = true, UPRIGHT = false };

    constexpr FontStyle(uint16_t, Slant) {}
};

}  // namespace minikin
