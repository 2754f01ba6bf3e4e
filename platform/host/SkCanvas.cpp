// SPDX-License-Identifier: Apache-2.0
//
// Draws rectangles, bitmaps and glyphs onto coverage or straight colour. Everything is first clipped to a
// rectangle of pixels, so the row loops need no edge checks.
#include <SkCanvas.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>

#include "platform/host/FontFace.h"
#include "platform/host/GlyphPen.h"
#include "platform/host/LinearLight.h"
#include "platform/host/PixelMath.h"

namespace {

// Bitmaps further away than this touch no bitmap; sums of nearer positions fit an int.
constexpr float kFarAway = 268435456;  // 2^28

// The first pixel whose centre is at or right of the edge, between low and high. The edge must not be NaN.
int firstPixel(float edge, int low, int high) {
    const double pixel = std::ceil(static_cast<double>(edge) - 0.5);
    if (!(pixel > low)) return low;
    return pixel < high ? static_cast<int>(pixel) : high;
}

uint8_t* pixelAt(const SkBitmap& bitmap, int x, int y) {
    return static_cast<uint8_t*>(bitmap.getPixels()) + static_cast<size_t>(y) * bitmap.rowBytes() +
           static_cast<size_t>(x) * static_cast<size_t>(bitmap.info().bytesPerPixel());
}

bool isCoverage(const SkBitmap& bitmap) {
    return bitmap.info().colorType() == kAlpha_8_SkColorType;
}

bool isLinear(const SkBitmap& bitmap) {
    return bitmap.info().colorSpace() != nullptr;
}

void coverageRowOver(uint8_t* target, uint8_t source, int count) {
    for (int i = 0; i < count; ++i) target[i] = host::coverageOver(source, target[i]);
}

template <int kLength>
bool isBlank(const uint8_t* bytes) {
    uint64_t words[kLength / 8], any = 0;
    std::memcpy(words, bytes, kLength);
    for (const uint64_t word : words) any |= word;
    return any == 0;
}

// Copies onto blank bytes; false, with nothing written, if they are not blank. Copies in fixed lengths,
// because calls that copy rows as short as a glyph's are slower. The last copy may overlap the one before.
template <int kLength>
bool copyOntoBlank(uint8_t* __restrict target, const uint8_t* __restrict source, int count) {
    const int last = count - kLength;
    for (int i = 0; i < last; i += kLength) {
        if (!isBlank<kLength>(target + i)) return false;
    }
    if (!isBlank<kLength>(target + last)) return false;
    for (int i = 0; i < last; i += kLength) std::memcpy(target + i, source + i, kLength);
    std::memcpy(target + last, source + last, kLength);
    return true;
}

// Draws a row of a glyph's coverage, scaled by alpha, onto a row of coverage.
void glyphRowOver(uint8_t* __restrict target, const uint8_t* __restrict coverage, uint8_t alpha, int count) {
    // Usually nothing is there yet, because glyphs seldom overlap.
    if (alpha == 255 && count >= 32 && copyOntoBlank<32>(target, coverage, count)) return;
    if (alpha == 255 && count >= 8 && count < 32 && copyOntoBlank<8>(target, coverage, count)) return;
    if (alpha == 255) {
        for (int i = 0; i < count; ++i) target[i] = host::coverageOver(coverage[i], target[i]);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const uint8_t source = static_cast<uint8_t>(host::multiplyBytes(coverage[i], alpha));
        target[i] = host::coverageOver(source, target[i]);
    }
}

// Source-over of a straight colour, with its alpha scaled by `share`, onto a pixel of straight colour: in
// linear light if the canvas has a colour space, else on the bytes.
void colorOver(uint8_t* pixel, const uint8_t* color, uint8_t alpha, uint8_t share, bool linear) {
    if (alpha == 0 || share == 0) return;
    if (alpha == 255 && share == 255) {
        std::memcpy(pixel, color, 3);
        pixel[3] = 255;
    } else if (linear) {
        const host::LightSource source = host::lightSource(color[0], color[1], color[2], alpha);
        host::lightOver(pixel, source, static_cast<float>(share) * (1 / 255.0f));
    } else {
        const auto scaled = static_cast<uint8_t>(host::multiplyBytes(alpha, share));
        host::straightOver(pixel, color[0], color[1], color[2], scaled);
    }
}

// Draws a row of a glyph's coverage onto a row of straight colour.
void glyphRowOver(uint8_t* target, const uint8_t* coverage, SkColor color, int count, bool linear) {
    const uint8_t channels[3] = {SkColorGetR(color), SkColorGetG(color), SkColorGetB(color)};
    for (int i = 0; i < count; ++i, target += 4) {
        colorOver(target, channels, SkColorGetA(color), coverage[i], linear);
    }
}

// The number of pixels, from the first one on, whose alpha is `alpha`.
int runOfAlpha(const uint8_t* pixels, uint8_t alpha, int count) {
    constexpr int kPiece = 16;
    const uint8_t same[4] = {0, 0, 0, alpha}, mask[4] = {0, 0, 0, 255};
    uint32_t wanted, alphaBits;
    std::memcpy(&wanted, same, 4);
    std::memcpy(&alphaBits, mask, 4);
    int i = 0;
    for (; i + kPiece <= count; i += kPiece) {
        uint32_t words[kPiece], differing = 0;
        std::memcpy(words, pixels + 4 * static_cast<size_t>(i), sizeof words);
        for (const uint32_t word : words) differing |= word ^ wanted;
        if ((differing & alphaBits) != 0) break;
    }
    while (i < count && pixels[4 * static_cast<size_t>(i) + 3] == alpha) ++i;
    return i;
}

// Draws a row of straight colour, scaled by alpha, onto another. Handles runs of transparent and of opaque
// pixels at once.
void straightRowOver(uint8_t* target, const uint8_t* source, uint8_t alpha, int count, bool linear) {
    if (alpha != 255) {
        for (int i = 0; i < count; ++i, target += 4, source += 4) {
            colorOver(target, source, source[3], alpha, linear);
        }
        return;
    }
    while (count > 0) {
        int run = 1;
        if (source[3] == 0) {
            run = runOfAlpha(source, 0, count);
        } else if (source[3] == 255) {
            run = runOfAlpha(source, 255, count);
            std::memcpy(target, source, 4 * static_cast<size_t>(run));
        } else if (target[3] == 0) {
            std::memcpy(target, source, 4);
        } else {
            colorOver(target, source, source[3], 255, linear);
        }
        target += 4 * static_cast<size_t>(run);
        source += 4 * static_cast<size_t>(run);
        count -= run;
    }
}

// Glyphs whose images are looked up at once.
struct GlyphBatch {
    static constexpr size_t kSize = 16;
    size_t count = 0;
    host::GlyphPen pens[kSize];
    host::FontFace::PlacedGlyph glyphs[kSize];
    std::shared_ptr<const host::GlyphImage> images[kSize];
};

}  // namespace

SkCanvas::SkCanvas(const SkBitmap& bitmap) : mBitmap(bitmap) {
    if (bitmap.getPixels() != nullptr) mClip = {0, 0, bitmap.width(), bitmap.height()};
}

SkCanvas::PixelRect SkCanvas::pixelsOf(const SkRect& rect) const {
    if (std::isnan(rect.fLeft) || std::isnan(rect.fTop) || std::isnan(rect.fRight) ||
        std::isnan(rect.fBottom)) {
        return {};
    }
    return {firstPixel(std::min(rect.fLeft, rect.fRight), mClip.left, mClip.right),
            firstPixel(std::min(rect.fTop, rect.fBottom), mClip.top, mClip.bottom),
            firstPixel(std::max(rect.fLeft, rect.fRight), mClip.left, mClip.right),
            firstPixel(std::max(rect.fTop, rect.fBottom), mClip.top, mClip.bottom)};
}

void SkCanvas::clipRect(const SkRect& rect, SkClipOp /*op: there is only intersect*/, bool /*doAntiAlias*/) {
    mClip = pixelsOf(rect);
}

void SkCanvas::drawColor(SkColor color, SkBlendMode mode) {
    fill(mClip, color, mode);
}

void SkCanvas::drawRect(const SkRect& rect, const SkPaint& paint) {
    fill(pixelsOf(rect), paint.getColor(), SkBlendMode::kSrcOver);
}

void SkCanvas::fill(const PixelRect& area, SkColor color, SkBlendMode mode) {
    if (area.left >= area.right) return;
    const int count = area.right - area.left;
    const uint8_t alpha = SkColorGetA(color);
    const bool replace = mode == SkBlendMode::kSrc || alpha == 255;
    const uint8_t source[4] = {SkColorGetR(color), SkColorGetG(color), SkColorGetB(color), alpha};
    uint32_t word;
    std::memcpy(&word, source, 4);
    for (int y = area.top; y < area.bottom; ++y) {
        uint8_t* row = pixelAt(mBitmap, area.left, y);
        if (isCoverage(mBitmap)) {
            if (replace) {
                std::memset(row, alpha, static_cast<size_t>(count));
            } else {
                coverageRowOver(row, alpha, count);
            }
        } else if (replace) {
            for (int x = 0; x < count; ++x) std::memcpy(row + 4 * static_cast<size_t>(x), &word, 4);
        } else {
            for (int x = 0; x < count; ++x) {
                colorOver(row + 4 * static_cast<size_t>(x), source, alpha, 255, isLinear(mBitmap));
            }
        }
    }
}

void SkCanvas::drawBitmap(const SkBitmap& bitmap, SkScalar x, SkScalar y, const SkPaint* paint) {
    if (bitmap.getPixels() == nullptr || isCoverage(bitmap) || isCoverage(mBitmap)) return;
    if (!(std::fabs(x) < kFarAway) || !(std::fabs(y) < kFarAway)) return;
    const int left = static_cast<int>(std::ceil(static_cast<double>(x) - 0.5));
    const int top = static_cast<int>(std::ceil(static_cast<double>(y) - 0.5));
    // Sides of a colour bitmap are below 2^31 / 4, except if the other side is 0; 64 bits hold any.
    const int64_t right = std::min<int64_t>(int64_t{left} + bitmap.width(), mClip.right);
    const int64_t bottom = std::min<int64_t>(int64_t{top} + bitmap.height(), mClip.bottom);
    const int begin = std::max(left, mClip.left);
    if (begin >= right) return;
    const uint8_t alpha = paint != nullptr ? SkColorGetA(paint->getColor()) : 255;
    for (int row = std::max(top, mClip.top); row < bottom; ++row) {
        straightRowOver(pixelAt(mBitmap, begin, row), pixelAt(bitmap, begin - left, row - top), alpha,
                        static_cast<int>(right) - begin, isLinear(mBitmap));
    }
}

void SkCanvas::drawTextBlob(const sk_sp<SkTextBlob>& blob, SkScalar x, SkScalar y, const SkPaint& paint) {
    const SkColor color = paint.getColor();
    if (blob == nullptr || SkColorGetA(color) == 0 || mClip.left >= mClip.right || mClip.top >= mClip.bottom)
        return;
    for (const std::unique_ptr<SkTextBlob::Run>& run : blob->runs()) {
        const SkPaint& font = run->font;
        if (font.getTypeface() == nullptr) continue;
        const host::FontFace& face = *font.getTypeface()->face();
        const host::GlyphStyle style = host::glyphStyleOf(font);
        const bool paths = host::drawnAsPath(style);
        GlyphBatch batch;
        const auto drawBatch = [&] {
            face.images(batch.glyphs, batch.count, style, batch.images);
            for (size_t i = 0; i < batch.count; ++i)
                drawGlyph(*batch.images[i], batch.pens[i].x, batch.pens[i].y, color);
            batch.count = 0;
        };
        for (size_t i = 0; i < run->glyphs.size(); ++i) {
            const float penX = x + run->positions[2 * i], penY = y + run->positions[2 * i + 1];
            host::GlyphPen& pen = batch.pens[batch.count];
            if (!host::placePen(penX, penY, style, &pen)) continue;
            if (paths) {
                const host::GlyphBox clip = {mClip.left, mClip.top, mClip.right, mClip.bottom};
                drawGlyph(face.pathImage(run->glyphs[i], style, penX, penY, clip), 0, 0, color);
                continue;
            }
            batch.glyphs[batch.count] = {run->glyphs[i], pen.quarterX};
            if (++batch.count == batch.kSize) drawBatch();
        }
        drawBatch();
    }
}

void SkCanvas::drawGlyph(const host::GlyphImage& image, int x, int y, SkColor color) {
    const int left = x + image.left, top = y + image.top;
    const int begin = std::max(left, mClip.left);
    const int count = std::min(left + image.width, mClip.right) - begin;
    const int bottom = std::min(top + image.height, mClip.bottom);
    if (count <= 0) return;
    for (int row = std::max(top, mClip.top); row < bottom; ++row) {
        const uint8_t* coverage = image.coverage.data() +
                                  static_cast<size_t>(row - top) * static_cast<size_t>(image.width) +
                                  static_cast<size_t>(begin - left);
        uint8_t* target = pixelAt(mBitmap, begin, row);
        if (isCoverage(mBitmap)) {
            glyphRowOver(target, coverage, SkColorGetA(color), count);
        } else {
            glyphRowOver(target, coverage, color, count, isLinear(mBitmap));
        }
    }
}
