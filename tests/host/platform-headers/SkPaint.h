// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKPAINT_H_
#define ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKPAINT_H_

#include <cstdint>

#include "SkColor.h"
#include "SkScalar.h"
#include "SkTypeface.h"

class SkPaint {
public:
    enum Flags {
        kAntiAlias_Flag = 0x01,
        kFilterBitmap_Flag = 0x02,
        kDither_Flag = 0x04,
        kUnderlineText_Flag = 0x08,
        kStrikeThruText_Flag = 0x10,
        kFakeBoldText_Flag = 0x20,
        kLinearText_Flag = 0x40,
        kSubpixelText_Flag = 0x80,
        kEmbeddedBitmapText_Flag = 0x400,
    };
    enum Style { kFill_Style };
    enum Align { kLeft_Align, kCenter_Align, kRight_Align };
    enum TextEncoding {
        kUTF8_TextEncoding,
        kUTF16_TextEncoding,
        kUTF32_TextEncoding,
        kGlyphID_TextEncoding,
    };

    SkPaint();
    SkPaint(const SkPaint& paint);
    ~SkPaint();
    SkPaint& operator=(const SkPaint& paint);

    Align getTextAlign() const;
    void setTextAlign(Align align);
    TextEncoding getTextEncoding() const;
    void setTextEncoding(TextEncoding encoding);
    Style getStyle() const;
    void setStyle(Style style);
    SkScalar getTextSize() const;
    void setTextSize(SkScalar size);
    SkScalar getTextScaleX() const;
    void setTextScaleX(SkScalar scale);
    SkScalar getTextSkewX() const;
    void setTextSkewX(SkScalar skew);
    bool isFakeBoldText() const;
    void setFakeBoldText(bool on);
    uint32_t getFlags() const;
    void setFlags(uint32_t flags);
    SkColor getColor() const;
    void setColor(SkColor color);
    bool isAntiAlias() const;
    void setAntiAlias(bool on);
    SkTypeface* getTypeface() const;
    void setTypeface(sk_sp<SkTypeface> typeface);
};

#endif  // ZVEX_TESTS_HOST_PLATFORM_HEADERS_SKPAINT_H_
