// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKPAINT_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKPAINT_H_

#include <cstdint>
#include <utility>

#include "SkColor.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTypeface.h"

// How text and rectangles are drawn: a plain value, copied freely. The boolean settings are bits of one word,
// which setFlags replaces as a whole.
class SkPaint {
public:
    // The bits of the word.
    enum Flags {
        kAntiAlias_Flag = 0x01,           // coverage has 256 levels; without it, 0 and 255 only
        kFilterBitmap_Flag = 0x02,        // kept, without effect here
        kDither_Flag = 0x04,              // kept, without effect here
        kUnderlineText_Flag = 0x08,       // kept: text views draw the line themselves
        kStrikeThruText_Flag = 0x10,      // kept: text views draw the line themselves
        kFakeBoldText_Flag = 0x20,        // outlines are widened, advances are not
        kLinearText_Flag = 0x40,          // advances are fractional in a layout
        kSubpixelText_Flag = 0x80,        // glyphs lie on quarter pixels instead of whole ones
        kEmbeddedBitmapText_Flag = 0x400  // kept: strikes are used where a font has colour in them
    };
    // Kept; does not affect positioned glyphs.
    enum Align { kLeft_Align = 0, kCenter_Align = 1, kRight_Align = 2 };
    // Only fills are drawn; the other styles are kept and drawn as fills.
    enum Style { kFill_Style = 0, kStroke_Style = 1, kStrokeAndFill_Style = 2 };
    // Kept; glyphs are drawn from glyph ids only.
    enum TextEncoding {
        kUTF8_TextEncoding = 0,
        kUTF16_TextEncoding = 1,
        kUTF32_TextEncoding = 2,
        kGlyphID_TextEncoding = 3
    };

    // Opaque black, no flags, fill, size 12, scale 1, skew 0, left, UTF-8, no typeface.
    SkPaint() = default;

    // All 32 bits are kept.
    uint32_t getFlags() const { return mFlags; }
    void setFlags(uint32_t flags) { mFlags = flags; }
    bool isAntiAlias() const { return isSet(kAntiAlias_Flag); }
    void setAntiAlias(bool on) { set(kAntiAlias_Flag, on); }
    bool isFakeBoldText() const { return isSet(kFakeBoldText_Flag); }
    void setFakeBoldText(bool on) { set(kFakeBoldText_Flag, on); }
    bool isLinearText() const { return isSet(kLinearText_Flag); }
    bool isSubpixelText() const { return isSet(kSubpixelText_Flag); }

    // kFill_Style at the start.
    Style getStyle() const { return mStyle; }
    void setStyle(Style style) { mStyle = style; }

    // The colour for drawing, straight.
    SkColor getColor() const { return mColor; }
    void setColor(SkColor color) { mColor = color; }

    // Pixels per em. A negative size or NaN does not change it.
    SkScalar getTextSize() const { return mTextSize; }
    void setTextSize(SkScalar size) {
        if (size >= 0) mTextSize = size;
    }
    // Widens outlines and advances.
    SkScalar getTextScaleX() const { return mTextScaleX; }
    void setTextScaleX(SkScalar scale) { mTextScaleX = scale; }
    // Pixels to the right for each pixel downwards; slants to the right are negative. Advances stay.
    SkScalar getTextSkewX() const { return mTextSkewX; }
    void setTextSkewX(SkScalar skew) { mTextSkewX = skew; }

    // Left and UTF-8 at the start.
    Align getTextAlign() const { return mAlign; }
    void setTextAlign(Align align) { mAlign = align; }
    TextEncoding getTextEncoding() const { return mEncoding; }
    void setTextEncoding(TextEncoding encoding) { mEncoding = encoding; }

    // Does not take a reference for the caller.
    SkTypeface* getTypeface() const { return mTypeface.get(); }
    void setTypeface(sk_sp<SkTypeface> typeface) { mTypeface = std::move(typeface); }

private:
    bool isSet(uint32_t flag) const { return (mFlags & flag) != 0; }
    void set(uint32_t flag, bool on) { mFlags = on ? mFlags | flag : mFlags & ~flag; }

    sk_sp<SkTypeface> mTypeface;
    SkScalar mTextSize = 12;
    SkScalar mTextScaleX = 1;
    SkScalar mTextSkewX = 0;
    SkColor mColor = SK_ColorBLACK;
    uint32_t mFlags = 0;
    Align mAlign = kLeft_Align;
    Style mStyle = kFill_Style;
    TextEncoding mEncoding = kUTF8_TextEncoding;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKPAINT_H_
