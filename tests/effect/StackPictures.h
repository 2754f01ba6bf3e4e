// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TESTS_EFFECT_STACKPICTURES_H_
#define ZVEX_TESTS_EFFECT_STACKPICTURES_H_

#include <cstring>
#include <vector>

#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "raster/ZvBitmap.h"

// The pictures of an effect stack, in both ways of rendering.

// The coverage as a line of glyphs, its pixels still the bitmap's.
inline Zvex::ZvGlyph glyphOf(const Zvex::ZvBitmap& coverage) {
    Zvex::ZvGlyph glyph;
    glyph.pixels = coverage.pixels;
    glyph.width = static_cast<uint16_t>(coverage.width);
    glyph.height = static_cast<uint16_t>(coverage.height);
    return glyph;
}

struct Line {
    int x, y;
    Zvex::ZvBitmap coverage;
};

inline void drawLines(Zvex::ZvEffect& stack, const std::vector<Line>& lines) {
    for (const Line& line : lines) {
        Zvex::ZvGlyph glyph = glyphOf(line.coverage);
        stack.renderEffectLayer(line.x, line.y, &glyph);
    }
}

// The layers drawn one after another, red first.
inline Zvex::ZvBitmap inLayers(Zvex::ZvEffect& stack, int width, int height, const std::vector<Line>& lines) {
    Zvex::ZvBitmap picture(static_cast<unsigned>(width), static_cast<unsigned>(height), 4);
    stack.initEffect(width, height);
    stack.setDstBitmap(&picture);
    drawLines(stack, lines);
    stack.doEffectPostProcessing();
    stack.compositeLayers(&picture);
    return picture;
}

// Drawn a few rows at a time, over old content. `drawn`, if given, becomes the box of what was drawn.
inline Zvex::ZvBitmap asPicture(Zvex::ZvEffect& stack, int width, int height, const std::vector<Line>& lines,
                                Zvex::PixelOrder order, Zvex::ZvRect* drawn = nullptr) {
    Zvex::ZvBitmap picture(static_cast<unsigned>(width), static_cast<unsigned>(height), 4);
    if (picture.pixels != nullptr) std::memset(picture.pixels, 0xA7, picture.byteCount());
    stack.initPicture(&picture);
    drawLines(stack, lines);
    const Zvex::ZvRect box = stack.drawPicture(order);
    if (drawn != nullptr) *drawn = box;
    return picture;
}

#endif  // ZVEX_TESTS_EFFECT_STACKPICTURES_H_
