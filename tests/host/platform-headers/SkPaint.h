// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "SkColor.h"
#include "SkScalar.h"
#include "SkTypeface.h"

class SkPaint {
public:
    enum Style { kFill_Style };
    enum Align { kLeft_Align, kCenter_Align, kRight_Align };
    enum TextEncoding { kUTF8_TextEncoding, kGlyphID_TextEncoding = 3 };

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
