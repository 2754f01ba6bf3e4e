// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_
#define ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_

#include <minikin/Layout.h>

#include <cstdint>

namespace host {

// What the port's layouts know of their glyphs beyond the platform's calls, for tools.
class LayoutGlyphs {
public:
    // Of glyph i, 0 <= i < nGlyphs(). The offset in the text laid out, in UTF-16 units, at which the
    // characters begin that the glyph stands for, with others or alone.
    static uint32_t clusterOf(const minikin::Layout& layout, int i) {
        return layout.mGlyphs[static_cast<size_t>(i)].cluster;
    }

    // The glyph's ink box at its place, as getBounds joins them; without width and height for blank glyphs.
    static const minikin::MinikinRect& inkOf(const minikin::Layout& layout, int i) {
        return layout.mGlyphs[static_cast<size_t>(i)].ink;
    }
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_LAYOUTGLYPHS_H_
