// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVPROPERTY_H_
#define ZVEX_EFFECT_ZVPROPERTY_H_

#include <cstdint>

namespace Zvex {

class ZvBitmap;

// The settings of the effects, one record for each, and the key that they are written to.
//
// A record is a plain value: public fields, copied freely, all zero by default. It owns nothing: a stop array
// or bitmap that it points at belongs to the record's user and must outlive the record. Constructors apply
// the ranges given at the fields and keep everything else unchanged. A value below its range becomes the
// lower end, one above the upper end, NaN the lower end. A float becomes an int by dropping its fraction,
// clamped to the ints; NaN becomes 0.
//
// Colours are 0xAARRGGBB. The adder that builds a record decides whether its colour is premultiplied (see
// ZvEffect).

// One colour stop of a gradient.
struct ZvGradient {
    uint32_t color = 0;  // 0xAARRGGBB, straight; the adders set the alpha byte from the opacities
    float opacity = 0;   // 0 to 1
    float position = 0;  // 0 to 1, along the gradient
};

// Base of all records; not used by itself.
class ZvProperty {
public:
    uint32_t color;  // 0xAARRGGBB
    float opacity;   // 0 to 1

    ZvProperty(unsigned int color, float opacity);
    virtual ~ZvProperty();

    // The most bytes that toSequentialChar writes, not counting the closing NUL; never negative.
    virtual int getSequentialCharLength() = 0;

    // Writes the record's part of the layer key at *cursor, closes it with a NUL and leaves *cursor on that
    // NUL, where the next record continues. Needs getSequentialCharLength() + 1 bytes. No byte before the NUL
    // is 0: the first is a letter for the kind of record, and all others have their top bit set. Returns 1.
    //
    // The key leaves out values on which an effect's picture does not depend directly: the opacities (the
    // adders multiply them into the colours; the pattern's is written), the number of stops and the stops'
    // opacities. Settings that differ only there have the same key. Large values do not fit: a "small" field
    // below keeps the low 7 bits of its integer part, a "byte" field 8, a "word" field 16.
    virtual int toSequentialChar(char** cursor) = 0;

protected:
    ZvProperty(const ZvProperty&) = default;
    ZvProperty& operator=(const ZvProperty&) = default;
};

// Plain text fill. Key: 'T', color.
class ZvTextProperty : public ZvProperty {
public:
    ZvTextProperty() : ZvTextProperty(0, 0.0f) {}
    ZvTextProperty(unsigned int color, float opacity);
    int getSequentialCharLength() override;
    int toSequentialChar(char** cursor) override;
};

// Base of both shadows; not used by itself.
class ZvShadowProperty : public ZvProperty {
public:
    float angle;     // degrees, where the light comes from, counter-clockwise from the positive x axis
    float distance;  // pixels by which the shadow moves away from the light
    float size;      // pixels, radius of the blur

    int getSequentialCharLength() override;

protected:
    ZvShadowProperty(float angle, float distance, float size, unsigned int color, float opacity);
};

// Keeps its numbers as given. Key: 'S', angle, distance and size small, color.
class ZvOuterShadowProperty : public ZvShadowProperty {
public:
    ZvOuterShadowProperty() : ZvOuterShadowProperty(0.0f, 0.0f, 0.0f, 0, 0.0f) {}
    ZvOuterShadowProperty(float angle, float distance, float size, unsigned int color, float opacity);
    int toSequentialChar(char** cursor) override;
};

// The angle becomes a whole number of degrees in -359..359 and keeps its sign. Key: 'I', then as the outer
// one.
class ZvInnerShadowProperty : public ZvShadowProperty {
public:
    ZvInnerShadowProperty() : ZvInnerShadowProperty(0.0f, 0.0f, 0.0f, 0, 0.0f) {}
    ZvInnerShadowProperty(float angle, float distance, float size, unsigned int color, float opacity);
    int toSequentialChar(char** cursor) override;
};

// Where a stroke runs; any other number draws as inside.
enum ZvStrokePosition : int {
    ZV_STROKE_CENTER = 0,  // half its width on either side of the glyph edge
    ZV_STROKE_OUTSIDE = 1,
    ZV_STROKE_INSIDE = 2,
};

// Key: 'K', width small, color, kind and position small.
class ZvStrokeProperty : public ZvProperty {
public:
    float width;   // pixels
    int kind;      // copied, but no picture depends on it
    int position;  // ZvStrokePosition

    ZvStrokeProperty() : ZvStrokeProperty(0.0f, 0, 0.0f, 0, 0) {}
    ZvStrokeProperty(float width, unsigned int color, float opacity, int kind, int position);
    int getSequentialCharLength() override;
    int toSequentialChar(char** cursor) override;
};

// Base of both glows; not used by itself. In the key a negative count is 0, and a null array has no stops.
class ZvGlowProperty : public ZvProperty {
public:
    float size;         // pixels, how far the glow reaches
    int count;          // stops; with 0 the glow has one colour
    ZvGradient* stops;  // count entries, not owned

    int getSequentialCharLength() override;

protected:
    ZvGlowProperty(float size, unsigned int color, float opacity, int count, ZvGradient* stops);
};

// Key: 'G', size small, color, then for each stop its color and its position in hundredths, small. The
// announced length is one byte more for each stop than is written.
class ZvOuterGlowProperty : public ZvGlowProperty {
public:
    ZvOuterGlowProperty() : ZvOuterGlowProperty(0.0f, 0, 0.0f, 0, nullptr) {}
    ZvOuterGlowProperty(float size, unsigned int color, float opacity, int count, ZvGradient* stops);
    int toSequentialChar(char** cursor) override;
};

// Key: 'N', then as the outer glow.
class ZvInnerGlowProperty : public ZvGlowProperty {
public:
    ZvInnerGlowProperty() : ZvInnerGlowProperty(0.0f, 0, 0.0f, 0, nullptr) {}
    ZvInnerGlowProperty(float size, unsigned int color, float opacity, int count, ZvGradient* stops);
    int toSequentialChar(char** cursor) override;
};

// Base of both gradient fills; not used by itself. color is 0. In the key a negative count is 0, and a null
// array has no stops.
class ZvGradientFillProperty : public ZvProperty {
public:
    float angle;        // whole degrees in -359..359, with the given sign; not read by the radial fill
    float scale;        // 0 to 2, length of the gradient relative to the text
    int count;          // stops
    ZvGradient* stops;  // count entries, not owned

    int getSequentialCharLength() override;

protected:
    ZvGradientFillProperty(float angle, float scale, float opacity, int count, ZvGradient* stops);
};

// Key: 'L', angle, scale in hundredths as a byte, then the stops as for the glows. Here too the announced
// length is one byte more for each stop than is written.
class ZvLinearGradientProperty : public ZvGradientFillProperty {
public:
    ZvLinearGradientProperty() : ZvLinearGradientProperty(0.0f, 0.0f, 0.0f, 0, nullptr) {}
    ZvLinearGradientProperty(float angle, float scale, float opacity, int count, ZvGradient* stops);
    int toSequentialChar(char** cursor) override;
};

// Key: 'D', then as the linear gradient.
class ZvRadialGradientProperty : public ZvGradientFillProperty {
public:
    ZvRadialGradientProperty() : ZvRadialGradientProperty(0.0f, 0.0f, 0.0f, 0, nullptr) {}
    ZvRadialGradientProperty(float angle, float scale, float opacity, int count, ZvGradient* stops);
    int toSequentialChar(char** cursor) override;
};

// Base of bevel and emboss; not used by itself. color is 0.
class ZvReliefProperty : public ZvProperty {
public:
    // Bevel: 1 lies inside the glyphs, any other value around them. Emboss: 3 adds a second relief around the
    // glyphs, lit from the opposite side; any other value does not.
    int style;
    float size;      // pixels, width of the slope; the emboss has half of it on either side of the edge
    float depth;     // 0 to 10, steepness of the slope
    int direction;   // 0: lit from the other side
    int technique;   // 0: soft; any other: hard
    int soften;      // pixels, 0 to 16, of an additional blur
    float angle;     // azimuth of the light, whole degrees in -359..359, with the given sign
    float altitude;  // elevation of the light, whole degrees in -89..89, with the given sign
    // The colours of the sides away from the light and towards it. The alpha byte is their strength; the
    // adders multiply these opacities and the layer's into it, and nothing else reads the opacities.
    uint32_t shadowColor;
    float shadowOpacity;
    uint32_t highlightColor;
    float highlightOpacity;

    int getSequentialCharLength() override;

protected:
    ZvReliefProperty(int style, float size, float depth, int direction, int technique, int soften,
                     float opacity, float angle, float altitude, unsigned int shadowColor,
                     float shadowOpacity, unsigned int highlightColor, float highlightOpacity);
};

// Key: 'B', style small, size as a byte, depth in hundredths as a word, direction, technique and soften
// small, angle, altitude small, both colours.
class ZvBevelProperty : public ZvReliefProperty {
public:
    ZvBevelProperty() : ZvBevelProperty(0, 0.0f, 0.0f, 0, 0, 0, 0.0f, 0.0f, 0.0f, 0, 0.0f, 0, 0.0f) {}
    ZvBevelProperty(int style, float size, float depth, int direction, int technique, int soften,
                    float opacity, float angle, float altitude, unsigned int shadowColor, float shadowOpacity,
                    unsigned int highlightColor, float highlightOpacity);
    int toSequentialChar(char** cursor) override;
};

// Key: 'E', then as the bevel.
class ZvEmbossProperty : public ZvReliefProperty {
public:
    ZvEmbossProperty() : ZvEmbossProperty(0, 0.0f, 0.0f, 0, 0, 0, 0.0f, 0.0f, 0.0f, 0, 0.0f, 0, 0.0f) {}
    ZvEmbossProperty(int style, float size, float depth, int direction, int technique, int soften,
                     float opacity, float angle, float altitude, unsigned int shadowColor,
                     float shadowOpacity, unsigned int highlightColor, float highlightOpacity);
    int toSequentialChar(char** cursor) override;
};

// color is 0. Key: 'P', the low 32 bits of the bitmap's address written as a colour, scale and opacity in
// hundredths as words. So equal pixels in two bitmaps give two keys.
class ZvPatternProperty : public ZvProperty {
public:
    ZvBitmap* bitmap;  // 4 bytes a pixel: alpha, red, green, blue, straight; not owned
    float scale;       // 0 to 10

    ZvPatternProperty() : ZvPatternProperty(nullptr, 0.0f, 0.0f) {}
    ZvPatternProperty(ZvBitmap* bitmap, float scale, float opacity);
    int getSequentialCharLength() override;
    int toSequentialChar(char** cursor) override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVPROPERTY_H_
