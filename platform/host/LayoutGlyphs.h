// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_
#define ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_

#include <minikin/Layout.h>

#include <cstdint>

namespace host {

// What the port's layouts know about their glyphs beyond the platform's calls; for tools.
class LayoutGlyphs {
public:
    // For glyph i, 0 <= i < nGlyphs(): the offset in the text, in UTF-16 units, of the characters that the
    // glyph stands for, alone or with others.
    static uint32_t clusterOf(const minikin::Layout& layout, int i) {
        return layout.mGlyphs[static_cast<size_t>(i)].cluster;
    }

    // The glyph's ink box at its position, as getBounds joins them; blank glyphs have no width and height.
    static const minikin::MinikinRect& inkOf(const minikin::Layout& layout, int i) {
        return layout.mGlyphs[static_cast<size_t>(i)].ink;
    }
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_
