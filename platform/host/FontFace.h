// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_FONTFACE_H_
#define ZVEX_PLATFORM_HOST_FONTFACE_H_

#include <hb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/host/Rendering.h"

namespace host {

// The size and style of a glyph. Every glyph is blank if a size or width (size * scaleX, of either sign) is
// outside kMinGlyphSize..kMaxGlyphSize (on the phone kMinPhoneSize..kMaxPhoneSize), if the skew exceeds
// kMaxGlyphSkew, or if a value is not a number.
struct GlyphStyle {
    float size = 0;    // pixels per em
    float scaleX = 1;  // of outlines and advances; negative mirrors, 0 is blank
    float skewX = 0;   // pixels to the right for each pixel downwards; slants to the right are negative
    bool fakeBold = false;
    bool antiAlias = true;
    bool subpixel = false;  // fractional advances; does not affect images and boxes
    bool linear = false;    // no hinting, and metrics that scale with the size; no effect in Plain
    Rendering rendering = host::rendering();
};

constexpr float kMinGlyphSize = 1.0f / 64;
constexpr float kMaxGlyphSize = 16384;
constexpr float kMinPhoneSize = 1.0f / 4096;
constexpr float kMaxPhoneSize = 1 << 20;
constexpr float kMaxGlyphSkew = 64;
bool drawable(const GlyphStyle& style);
// The phone hints and keeps glyphs up to this size, in width and height (slanted). Larger ones are paths,
// filled each time they are drawn.
constexpr float kMaxHintedSize = 256;
bool drawnAsPath(const GlyphStyle& style);
// A glyph is blank if its image needs more bytes than this, or if it is wider or taller than kMaxGlyphSide.
constexpr size_t kMaxGlyphBytes = size_t{64} << 20;
constexpr int kMaxGlyphSide = 32767;

// Pixels, y downwards, origin at the pen; right and bottom exclusive.
struct GlyphBox {
    int left = 0, top = 0, right = 0, bottom = 0;
    bool empty() const { return left >= right || top >= bottom; }
};

// The same for measured boxes, which are fractional where metrics are scaled.
struct InkBox {
    float left = 0, top = 0, right = 0, bottom = 0;
    bool empty() const { return !(left < right && top < bottom); }
};

// Coverage, 0 to 255, in rows of `width` bytes. Its top left pixel lies at (left, top) from the pixel the pen
// is in, y downwards. Blank glyphs have width and height 0.
struct GlyphImage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint8_t> coverage;
};

// The same in colour: straight 0xAARRGGBB words, in rows of `width`.
struct ColorImage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint32_t> pixels;
};

// A table that a font in memory may contain: the axis positions of a variable font. It has pairs of an axis's
// tag and a value in 16.16 fixed point, both big-endian. Axes that the font lacks are ignored, values are
// clamped to the axis's range, and pairs after the first 64 are not read.
constexpr uint32_t kAxesTable = HB_TAG('Z', 'V', 'a', 'x');

// One font of a file: its characters, advances, and glyphs as coverage. It connects the drawing half of the
// port (Sk*) with the layout half (minikin, hwui), and only this class and the files it uses call FreeType.
//
// On the phone, outlines are hinted with FreeType's interpreter 35 or the CFF hinter, except slanted and
// linear text; without anti-alias they are hinted for its monochrome rasteriser. Levels pass through the
// gamma table. Fake bold widens by a 34th of the em, to the right and upwards. Colour glyphs give their alpha
// without hinting and gamma: a strike bitmap scaled as on the platform (StrikeFilter.h), or the layers of a
// layered glyph, one over the other, with their palette alphas. A painted glyph (PaintGraph.h) gives its
// alpha if it has neither layers nor an outline.
//
// The plain rendering does not hint. Fake bold widens the outline by size x (1/24 at size 9 and below,
// falling linearly to 1/32 at size 36 and above) in total, evenly on both sides, after scale and skew. A
// strike is resampled by area.
//
// A strike is the nearest that is not smaller than the size, else the largest; fake bold does not change it.
// A font with an sbix table has only strikes, as in FreeType.
//
// Methods may be called from any thread and throw std::bad_alloc if memory is short. A glyph that the font
// lacks or that cannot be read is blank; its advance is 0 if the font states none.
class FontFace {
public:
    // Null if the bytes are no sfnt font that both FreeType and HarfBuzz can read, if no character is mapped,
    // or if a collection has no such index. The bytes must not change. They are borrowed for the life of the
    // face, unless `owner` holds them; the face keeps `owner` that long. A variable font has its default axis
    // values, or those of its kAxesTable.
    static std::shared_ptr<FontFace> open(const void* data, size_t size, int index,
                                          std::shared_ptr<void> owner = nullptr);
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    // Unique within the process; never 0.
    uint32_t uniqueId() const;
    // Immutable; belongs to this face.
    hb_face_t* hbFace() const;
    // Sets the axes of a font made from hbFace() to this face's values.
    void setAxes(hb_font_t* font) const;
    unsigned unitsPerEm() const;
    unsigned glyphCount() const;

    // Whether the character map has a glyph for the code point. Lock-free.
    bool covers(uint32_t codePoint) const;
    // Whether the font has an entry for the sequence (base, variation selector). Lock-free.
    bool coversVariation(uint32_t codePoint, uint32_t selector) const;

    // In pixels. Plain: the font's own advance x size x scaleX / units per em, rounded to whole pixels
    // (halves up) unless style.subpixel. Fake bold and skew do not change it. 0 for a blank style. Phone: the
    // hinted advance from FreeType; without hinting or with style.subpixel, the font's own, scaled. Not
    // rounded here.
    float advance(uint32_t glyph, const GlyphStyle& style) const;

    // The box of the outline's control points (of all layers; of the scaled strike), rounded outwards to
    // whole pixels, for a pen at a whole pixel; empty for blank glyphs. No pixel of image(glyph, style, 0)
    // lies outside it. Phone, for linear text and glyphs that are paths: the box at 64 pixels, scaled. Phone:
    // also for a glyph whose image is blank because it would be too large.
    InkBox inkBox(uint32_t glyph, const GlyphStyle& style) const;

    // Coverage for a pen at quarterX / 4 pixels, quarterX in 0..3 (taken modulo 4). Never null. Kept in the
    // process-wide glyph cache.
    std::shared_ptr<const GlyphImage> image(uint32_t glyph, const GlyphStyle& style, int quarterX) const;
    // The same for several.
    struct PlacedGlyph {
        uint32_t glyph = 0;
        int quarterX = 0;
    };
    void images(const PlacedGlyph* glyphs, size_t count, const GlyphStyle& style,
                std::shared_ptr<const GlyphImage>* images) const;

    // Whether the font may have colour glyphs. Lock-free.
    bool hasColors() const;

    // The picture of a colour glyph, for a pen at quarterX / 4 pixels; no pixels if the glyph has no colours.
    // Palettes may refer to `textColor`; if it is opaque, the alpha of strikes and layers is that of
    // image(). Strikes are filtered premultiplied. A glyph with a graph and layers is painted from the graph
    // (PaintGraph.h). Large glyphs are not paths here. A picture of more than kMaxGlyphBytes is blank. The
    // picture is not kept.
    ColorImage colorImage(uint32_t glyph, const GlyphStyle& style, int quarterX, uint32_t textColor) const;

    // The part within `clip` of a glyph whose style is drawn as a path, for a pen at (x, y). Positions are
    // not rounded, and the image is not kept. Colour glyphs have no path.
    GlyphImage pathImage(uint32_t glyph, const GlyphStyle& style, float x, float y,
                         const GlyphBox& clip) const;

private:
    struct Impl;
    explicit FontFace(std::unique_ptr<Impl> impl);

    std::shared_ptr<const GlyphImage> drawn(const PlacedGlyph& placed, const GlyphStyle& style) const;

    std::unique_ptr<Impl> mImpl;
};

}  // namespace host

#endif  // ZVEX_PLATFORM_HOST_FONTFACE_H_
