// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LAYOUT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LAYOUT_H_

#include <minikin/FontCollection.h>
#include <minikin/MinikinFont.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace host {
class LayoutBuilder;
class LayoutGlyphs;
}  // namespace host

namespace minikin {

// The direction of a paragraph: given, taken from its first letter with a direction (else the default), or
// forced upon every character.
enum class Bidi : uint8_t {
    LTR = 0,
    RTL = 1,
    DEFAULT_LTR = 2,
    DEFAULT_RTL = 3,
    FORCE_LTR = 4,
    FORCE_RTL = 5,
};

// One line of positioned glyphs in visual order, left to right. Positions are pixels from the line's origin
// on the baseline, y growing downwards. Move-only. Keeps its fonts alive.
//
// Without the linear-text flag of the paint every advance is a whole number of pixels, and so is every pen
// position; only the offsets of marks are fractions then. With it, advances and bounds are fractions.
class Layout {
public:
    Layout() = default;
    Layout(Layout&&) = default;
    Layout& operator=(Layout&&) = default;
    Layout(const Layout&) = delete;
    Layout& operator=(const Layout&) = delete;

    // Blank glyphs count too.
    size_t nGlyphs() const { return mGlyphs.size(); }

    // Of glyph i, 0 <= i < nGlyphs(). A font is one object for all its glyphs in the layout.
    const MinikinFont* getFont(int i) const { return faceOf(i).font.get(); }
    FontFakery getFakery(int i) const { return faceOf(i).fakery; }
    unsigned int getGlyphId(int i) const { return mGlyphs[static_cast<size_t>(i)].id; }
    float getX(int i) const { return mGlyphs[static_cast<size_t>(i)].x; }
    float getY(int i) const { return mGlyphs[static_cast<size_t>(i)].y; }

    // The sum of all advances, letter spacing included; 0 without glyphs.
    float getAdvance() const { return mAdvance; }

    // The union of the glyphs' ink boxes, each of whole pixels around the glyph's outline (in the phone's
    // rendering, of linear text and above 256 pixels: at a size of 64, then scaled) and then moved to the
    // glyph's position. Blank glyphs add nothing; all zero when every glyph is blank.
    void getBounds(MinikinRect* bounds) const { *bounds = mBounds; }

private:
    friend class host::LayoutBuilder;
    friend class host::LayoutGlyphs;

    struct Face {
        std::shared_ptr<const MinikinFont> font;
        FontFakery fakery;
    };
    struct Glyph {
        uint32_t face;  // index into mFaces
        uint32_t id;
        float x, y;
        uint32_t cluster;  // offset in the text
        MinikinRect ink;
    };

    const Face& faceOf(int i) const { return mFaces[mGlyphs[static_cast<size_t>(i)].face]; }

    std::vector<Face> mFaces;
    std::vector<Glyph> mGlyphs;
    MinikinRect mBounds;
    float mAdvance = 0;
};

}  // namespace minikin

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_MINIKIN_LAYOUT_H_
