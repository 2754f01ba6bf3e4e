// SPDX-License-Identifier: Apache-2.0
// Clipping and dispatch; the arithmetic is raster/BlendRows.h.
#include "raster/ZvBlender.h"

#include <algorithm>
#include <utility>

#include "foundation/ZvLog.h"
#include "raster/BlendRows.h"

namespace Zvex {

namespace {

constexpr char kTag[] = "Blender";

// The half-open range of target coordinates that a source of `size` at `at` covers. In 64 bits, because `at +
// size` can exceed an int and the target's size is unsigned.
struct Span {
    int64_t begin, end;
    int64_t sourceBegin;  // first column or row of the source in the range

    Span(int at, int size, uint32_t targetSize)
        : begin(std::max<int64_t>(at, 0)),
          end(std::min<int64_t>(int64_t{at} + size, targetSize)),
          sourceBegin(begin - at) {}
    bool empty() const { return begin >= end; }
};

// Calls blend(target, source, count) for each row of the part of the source that lies on dst, top row first.
// `depth` is the number of bytes from one pixel of dst to the next, for finding a row's start; `stride`
// counts elements of Source.
template <typename Source, typename Blend>
void forRows(int x, int y, const ZvBitmap* dst, uint32_t depth, const Source* src, int w, int h, int stride,
             Blend&& blend) {
    if (dst == nullptr || dst->pixels == nullptr || src == nullptr) return;
    const Span columns(x, w, dst->width);
    const Span rows(y, h, dst->height);
    if (columns.empty() || rows.empty()) return;

    const size_t count = static_cast<size_t>(columns.end - columns.begin);
    for (int64_t row = rows.begin; row < rows.end; ++row) {
        // Inside dst both factors are below 2^32 and their product is the size of a buffer that exists. A
        // stride may be negative, for an image stored from the bottom up.
        const size_t pixel = static_cast<size_t>(row * dst->width + columns.begin);
        const int64_t sourceRow = row - rows.begin + rows.sourceBegin;
        blend(dst->pixels + pixel * depth, src + (sourceRow * stride + columns.sourceBegin), count);
    }
}

template <typename Source, typename Blend>
void blendColor(int x, int y, const ZvBitmap* dst, const Source* src, int w, int h, int stride,
                Blend&& blend) {
    if (dst == nullptr || dst->bytesPerPixel != 4) return;
    forRows(x, y, dst, 4, src, w, h, stride, std::forward<Blend>(blend));
}

}  // namespace

void ZvBlender::drawBitmapBlend8(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                 int srcStride, unsigned int color, int mode) {
    switch (mode) {
        case ZVE_BLEND_SRC_OVER:
            blendSrcOver8To32(x, y, dst, src, w, h, srcStride, color);
            break;
        case ZVE_BLEND_DST_OVER:
            blendDstOver8To32(x, y, dst, src, w, h, srcStride, color);
            break;
        case ZVE_BLEND_DST_OVER_NSA:
            blendDstOver8To32NSA(x, y, dst, src, w, h, srcStride, color);
            ZV_DEBUG_LOG(kTag, "Blender - ZVE_BLEND_DST_OVER_NSA");
            break;
        case ZVE_BLEND_DST_OVER_SA:
            blendDstOverSA8To32(x, y, dst, src, w, h, srcStride, color);
            ZV_DEBUG_LOG(kTag, "Blender - ZVE_BLEND_OTHER");
            break;
        default:
            break;
    }
}

void ZvBlender::blendSrcOver8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, unsigned int color) {
    blendColor(x, y, dst, src, w, h, srcStride,
               [color](uint8_t* target, const uint8_t* source, size_t count) {
                   BlendRows::srcOver8To32(target, source, count, color);
               });
}

void ZvBlender::blendDstOver8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, unsigned int color) {
    blendColor(x, y, dst, src, w, h, srcStride,
               [color](uint8_t* target, const uint8_t* source, size_t count) {
                   BlendRows::dstOver8To32(target, source, count, color);
               });
}

void ZvBlender::blendDstOver8To32NSA(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w,
                                     int h, int srcStride, unsigned int color) {
    blendColor(x, y, dst, src, w, h, srcStride,
               [color](uint8_t* target, const uint8_t* source, size_t count) {
                   BlendRows::dstOver8To32NSA(target, source, count, color);
               });
}

void ZvBlender::blendDstOverSA8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                    int srcStride, unsigned int color) {
    blendColor(x, y, dst, src, w, h, srcStride,
               [color](uint8_t* target, const uint8_t* source, size_t count) {
                   BlendRows::dstOverSA8To32(target, source, count, color);
               });
}

void ZvBlender::drawBitmapBlend32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                  int srcStride, int mode) {
    switch (mode) {
        case ZVE_BLEND_SRC_OVER:
            blendSrcOver32To32(x, y, dst, src, w, h, srcStride);
            break;
        case ZVE_BLEND_DST_OVER:
            blendDstOver32To32(x, y, dst, src, w, h, srcStride);
            break;
        default:
            break;
    }
}

void ZvBlender::blendSrcOver32To32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                   int srcStride) {
    blendColor(x, y, dst, src, w, h, srcStride, BlendRows::srcOver32To32);
}

void ZvBlender::blendDstOver32To32(int x, int y, const ZvBitmap* dst, const unsigned int* src, int w, int h,
                                   int srcStride) {
    blendColor(x, y, dst, src, w, h, srcStride, BlendRows::dstOver32To32);
}

void ZvBlender::drawBitmapBlend32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                  int srcStride, int /*ignored*/, int order) {
    blendDstOver32To32(x, y, dst, src, w, h, srcStride, order);
}

// The elements are bytes, so -x bytes are skipped left of dst, on purpose. Reads stay within a row of 4 * w
// bytes: after a skip of k, 0 < k < w, at most w - k pixels follow, and k + 4 * (w - k) < 4 * w.
void ZvBlender::blendDstOver32To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                   int srcStride, int order) {
    if (order == 1) {
        blendColor(x, y, dst, src, w, h, srcStride, BlendRows::dstOverRGBA);
    } else if (order == 0) {
        blendColor(x, y, dst, src, w, h, srcStride, BlendRows::dstOverARGB);
    }
    // Any other order changes nothing.
}

void ZvBlender::drawBitmap(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                           unsigned int color) {
    if (dst == nullptr) return;
    if (dst->bytesPerPixel == 4) {
        drawBitmap8To32(x, y, dst, src, w, h, color);
    } else {
        drawBitmap8To8(x, y, dst, src, w, h);
    }
}

void ZvBlender::drawBitmap(int x, int y, const ZvBitmap* dst, const ZvBitmap* src, unsigned int color) {
    if (src == nullptr) return;
    drawBitmap(x, y, dst, src->pixels, static_cast<int>(src->width), static_cast<int>(src->height), color);
}

// A row's start is computed as in a 1-byte bitmap, while pixels are 4 bytes apart, on purpose. The last row
// starts at byte (height - 1) * width and takes 4 * width bytes, which the buffer of 4 * width * height bytes
// always holds. Rows overlap, so their order affects the picture.
void ZvBlender::drawBitmap8To32(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h,
                                unsigned int color) {
    if (dst == nullptr || dst->bytesPerPixel != 4) return;
    forRows(x, y, dst, 1, src, w, h, w, [color](uint8_t* target, const uint8_t* source, size_t count) {
        BlendRows::fill8To32(target, source, count, color);
    });
}

void ZvBlender::drawBitmap8To8(int x, int y, const ZvBitmap* dst, const unsigned char* src, int w, int h) {
    forRows(x, y, dst, 1, src, w, h, w, BlendRows::max8To8);
}

void ZvBlender::convertBGRAToARGB(ZvBitmap* bitmap) {
    if (bitmap == nullptr || bitmap->pixels == nullptr || bitmap->bytesPerPixel != 4) return;
    BlendRows::exchangeRedBlue(bitmap->pixels, bitmap->byteCount() / 4);
}

}  // namespace Zvex
