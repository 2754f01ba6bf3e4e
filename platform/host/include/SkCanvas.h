// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_PLATFORM_HOST_INCLUDE_SKCANVAS_H_
#define ZVEX_PLATFORM_HOST_INCLUDE_SKCANVAS_H_

#include "SkBitmap.h"
#include "SkBlendMode.h"
#include "SkClipOp.h"
#include "SkColor.h"
#include "SkPaint.h"
#include "SkRect.h"
#include "SkRefCnt.h"
#include "SkScalar.h"
#include "SkTextBlob.h"

namespace host {
struct GlyphImage;
}

// Draws on the pixels of a bitmap, inside a clip that starts as the whole bitmap and only shrinks.
//
// Coverage images take the source's alpha, source-over: d' = s + d * (255 - s) / 255. Colour images are
// straight. With a colour space, which is sRGB, source-over blends light (LinearLight.h): half transparent
// black on white gives 187. Without one, with alphas sa, da and A = sa * 255 + da * (255 - sa), it gives the
// alpha A / 255 and each channel (sc * sa * 255 + dc * da * (255 - sa)) / A, quotients rounded to the
// nearest. A source of alpha 0 leaves the pixel unchanged; over an empty pixel the source's bytes are copied.
//
// Edges of rectangles may lie anywhere: a pixel belongs to a rectangle when its centre does (left and top
// edge inclusive), so no drawing blends along an edge. Coordinates that are not a number draw nothing;
// infinite or huge ones lie outside every bitmap. One thread at a time for one canvas and its pixels; never
// fails.
class SkCanvas {
public:
    explicit SkCanvas(const SkBitmap& bitmap);
    virtual ~SkCanvas() = default;
    SkCanvas(const SkCanvas&) = delete;
    SkCanvas& operator=(const SkCanvas&) = delete;

    // Fills the clip. kSrc writes the colour as given (its alpha on coverage).
    void drawColor(SkColor color, SkBlendMode mode = SkBlendMode::kSrcOver);

    // Intersects the clip with the rectangle (its edges in either order). Edges are whole pixels,
    // anti-aliased or not. A rectangle with an edge that is not a number leaves an empty clip.
    void clipRect(const SkRect& rect, SkClipOp op, bool doAntiAlias);

    // Source-over with the paint's colour; the rectangle's edges may come in either order.
    void drawRect(const SkRect& rect, const SkPaint& paint);

    // Source-over of a straight colour bitmap onto a straight colour canvas, its top left pixel at (x, y),
    // rounded as an edge is. The alpha of the paint, if any, scales the bitmap's. Other pairs of layouts draw
    // nothing. The bitmap must not share pixels with the canvas.
    void drawBitmap(const SkBitmap& bitmap, SkScalar x, SkScalar y, const SkPaint* paint = nullptr);

    // Source-over of the paint's colour through each glyph's coverage, glyphs in order. A glyph's origin is
    // (x, y) plus its position, summed in single precision: x is rounded to the nearest quarter pixel (down
    // to one in the plain rendering) if the run's font has the subpixel flag, else to the nearest whole
    // pixel; y always to the nearest whole pixel (halves up). Null blobs, runs without a typeface, and glyphs
    // 2^28 pixels away or farther draw nothing. Glyphs above 256 pixels are paths in the phone's rendering,
    // whose positions are not rounded.
    void drawTextBlob(const sk_sp<SkTextBlob>& blob, SkScalar x, SkScalar y, const SkPaint& paint);

private:
    struct PixelRect {
        int left = 0, top = 0, right = 0, bottom = 0;
    };
    PixelRect pixelsOf(const SkRect& rect) const;
    void fill(const PixelRect& area, SkColor color, SkBlendMode mode);
    void drawGlyph(const host::GlyphImage& image, int x, int y, SkColor color);

    SkBitmap mBitmap;
    PixelRect mClip;
};

#endif  // ZVEX_PLATFORM_HOST_INCLUDE_SKCANVAS_H_
