// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_ZVBLENDER_H_
#define ZVEX_RASTER_ZVBLENDER_H_

#include "raster/ZvBitmap.h"

namespace Zvex {

// Blend modes of drawBitmapBlend8 and drawBitmapBlend32. Other numbers draw nothing.
enum ZvBlendMode : int {
    ZVE_BLEND_SRC_OVER = 1,
    ZVE_BLEND_DST_OVER = 2,
    ZVE_BLEND_DST_OVER_NSA = 3,  // any coverage counts as full
    ZVE_BLEND_DST_OVER_SA = 7,   // the result is scaled by coverage
};

// Draws coverage and colour images onto a bitmap, clipped, in integer arithmetic without allocations. No
// state.
//
// For all: (x, y) is the source's top-left on dst, any int. w and h are the source's size in pixels; only the
// part inside dst is read. Nothing is drawn when dst, its pixels or src is null, when dst has the wrong
// depth, or when the clipped area is empty; no error is reported. src and dst must not overlap. Colours are
// 0xAARRGGBB. Colour targets are red, green, blue, alpha in memory, premultiplied unless said otherwise.
// Instead of dividing by 255, all use (value + 1) * weight >> 8. The results differ slightly, and the
// pictures depend on them. Strides may be wider than the row. Several threads may draw at once onto different
// bitmaps.
class ZvBlender {
public:
    virtual ~ZvBlender() = default;

    // Paints one colour through 8-bit coverage onto a 4-byte dst; srcStride in bytes. Modes 1, 2, 3 and 7; a
    // pixel with coverage 0 never changes.
    static void drawBitmapBlend8(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                 int srcStride, unsigned int color, int mode);

    // The four modes, where s is the coverage and a is the alpha of the colour scaled by s.
    //
    // Source over destination.
    static void blendSrcOver8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, unsigned int color);
    // Destination over source: fills only what dst leaves open.
    static void blendDstOver8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, unsigned int color);
    // Destination over the full colour wherever there is any coverage.
    static void blendDstOver8To32NSA(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w,
                                     int h, int srcStride, unsigned int color);
    // Destination over source, then the whole pixel scaled by the coverage: even an opaque dst is reduced to
    // the coverage.
    static void blendDstOverSA8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                    int srcStride, unsigned int color);

    // Draws premultiplied words 0xAARRGGBB onto a 4-byte dst; srcStride in words. Modes 1 and 2.
    static void drawBitmapBlend32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                  int srcStride, int mode);
    static void blendSrcOver32To32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                   int srcStride);
    static void blendDstOver32To32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                   int srcStride);

    // Destination over a premultiplied source of bytes; srcStride in bytes; the eighth argument is ignored.
    // order 1: red, green, blue, alpha in memory; order 0: alpha, red, green, blue; any other order draws
    // nothing. A negative x skips -x BYTES of each source row, not -x pixels: the picture is shifted and,
    // unless x is a multiple of 4, its channels are exchanged.
    static void drawBitmapBlend32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, int ignored, int order);
    static void blendDstOver32To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                   int srcStride, int order);

    // Draws coverage with rows of w bytes: onto a 4-byte dst with drawBitmap8To32, else with drawBitmap8To8.
    static void drawBitmap(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                           unsigned int color);
    static void drawBitmap(int x, int y, const ZvBitmap* dst, const ZvBitmap* src, unsigned int color);

    // Writes the straight colour, its alpha scaled by the coverage, coverage 0 included. A row starts at BYTE
    // row * width + column of dst, as if dst had 1 byte a pixel, while pixels are 4 bytes apart. So the rows
    // pile up in the upper part of dst; each row covers the end of the one before.
    static void drawBitmap8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                unsigned int color);
    // Keeps the larger of the two coverages: overlapping glyphs do not add up.
    static void drawBitmap8To8(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h);

    // Exchanges red and blue of every pixel of a 4-byte bitmap, in place.
    static void convertBGRAToARGB(ZvBitmap* bitmap);
};

}  // namespace Zvex

#endif  // ZVEX_RASTER_ZVBLENDER_H_
