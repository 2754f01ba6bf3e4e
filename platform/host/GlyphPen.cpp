// SPDX-License-Identifier: Apache-2.0
#include "platform/host/GlyphPen.h"

#include <cmath>

namespace host {

namespace {

// Glyphs further away touch no bitmap; sums of nearer positions fit an int.
constexpr float kFarAway = 268435456;  // 2^28

}  // namespace

GlyphStyle glyphStyleOf(const SkPaint& font) {
    GlyphStyle style;
    style.size = font.getTextSize();
    style.scaleX = font.getTextScaleX();
    style.skewX = font.getTextSkewX();
    style.fakeBold = font.isFakeBoldText();
    style.antiAlias = font.isAntiAlias();
    style.subpixel = font.isSubpixelText();
    style.linear = font.isLinearText();
    return style;
}

bool placePen(float x, float y, const GlyphStyle& style, GlyphPen* pen) {
    if (!(std::fabs(x) < kFarAway) || !(std::fabs(y) < kFarAway)) return false;
    pen->y = static_cast<int>(std::floor(static_cast<double>(y) + 0.5));
    if (style.subpixel) {
        const double toNearest = style.rendering == Rendering::Phone ? 0.5 : 0;
        const int quarters =
            static_cast<int>(std::floor(static_cast<double>(x) * 4 + toNearest));  // below 2^31
        pen->quarterX = ((quarters % 4) + 4) % 4;
        pen->x = (quarters - pen->quarterX) / 4;
    } else {
        pen->quarterX = 0;
        pen->x = static_cast<int>(std::floor(static_cast<double>(x) + 0.5));
    }
    return true;
}

}  // namespace host
