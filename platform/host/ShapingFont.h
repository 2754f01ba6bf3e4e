// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_SHAPINGFONT_H_
#define ZVEX_PLATFORM_HOST_SHAPINGFONT_H_

#include <hb.h>
#include <minikin/MinikinFont.h>

#include <memory>

#include "platform/host/FontFace.h"

namespace host {

// A font for HarfBuzz at the scale of its design units. The fonts of each size are made from it. Immutable,
// any thread.
struct ShapingFont {
    // Null if the font is null or its bytes are no usable font.
    static std::shared_ptr<const ShapingFont> open(const minikin::MinikinFont* font);

    explicit ShapingFont(std::shared_ptr<FontFace> face);
    ~ShapingFont();
    ShapingFont(const ShapingFont&) = delete;
    ShapingFont& operator=(const ShapingFont&) = delete;

    const std::shared_ptr<FontFace> face;
    hb_font_t* const hbFont;
    const bool colorBitmaps;  // has a table of colour strikes (CBDT)
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_SHAPINGFONT_H_
