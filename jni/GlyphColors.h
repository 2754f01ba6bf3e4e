// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_GLYPHCOLORS_H_
#define ZVEX_JNI_GLYPHCOLORS_H_

#include <cstdint>
#include <memory>

#include "effect/TextLayers.h"
#include "raster/ZvRect.h"
#include "text/ZvTextObject.h"

namespace Zvex {

// The glyphs of a text that have colours of their own, such as emoji. The desktop port draws them; on the
// phone there are none, so that they are silhouettes in the text's colour. Used while the text and the fonts
// stay as they are.
class GlyphColors {
public:
    // Null if the text has none. Logs a warning for glyphs whose colours cannot be drawn. Throws
    // std::bad_alloc.
    static std::unique_ptr<GlyphColors> of(ZvTextObject& text);

    virtual ~GlyphColors() = default;

    // Whether the text object has no coverage for some of them, so that even a silhouette needs `complete`.
    virtual bool lackCoverage() const = 0;

    // Draws them in a picture of that size, which has `margins` beside the view. Parts of a glyph that have
    // the text's colour get `textColor`, which is opaque. Throws std::bad_alloc.
    virtual ColorGlyphLayer draw(const ZvRect& margins, int width, int height, uint32_t textColor) const = 0;

    // Gives the coverage the shape of glyphs that were drawn.
    virtual void complete(TextCoverage& coverage, const ColorGlyphLayer& drawn) const = 0;
};

}  // namespace Zvex

#endif  // ZVEX_JNI_GLYPHCOLORS_H_
