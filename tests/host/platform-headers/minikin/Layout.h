// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <minikin/MinikinFont.h>

#include <cstddef>
#include <cstdint>

namespace minikin {

enum class Bidi : uint8_t {
    LTR = 0,
    RTL = 1,
    DEFAULT_LTR = 2,
    DEFAULT_RTL = 3,
    FORCE_LTR = 4,
    FORCE_RTL = 5,
};

// Only doLayout makes one.
class Layout {
public:
    Layout(Layout&&) = delete;

    size_t nGlyphs() const;
    const MinikinFont* getFont(int i) const;
    FontFakery getFakery(int i) const;
    unsigned int getGlyphId(int i) const;
    float getX(int i) const;
    float getY(int i) const;
    float getAdvance() const;
    void getBounds(MinikinRect* rect) const;
};

}  // namespace minikin
