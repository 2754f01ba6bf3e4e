// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_ZVBITMAP_H_
#define ZVEX_RASTER_ZVBITMAP_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

class ZvRect;

// A picture with packed rows: 8-bit coverage (1 byte a pixel) or colour (4 bytes a pixel, red, green, blue,
// alpha in memory on every machine; premultiplied within the engine). Owns its pixels, which come from
// malloc.
//
// A bitmap whose pixels could not be allocated keeps its sizes and has null pixels, which every routine takes
// as an empty target. Sizes are multiplied in 64 bits; what a pointer cannot address counts as not allocated.
class ZvBitmap {
public:
    uint32_t width = 0;          // pixels
    uint32_t height = 0;         // pixels
    uint8_t* pixels = nullptr;   // owned; null as well when the bitmap has no pixels
    uint32_t format = 4;         // 1: 4 bytes a pixel; 2: any other depth; 4: default-constructed
    uint32_t bytesPerPixel = 0;  // 1 or 4, but any is stored

    ZvBitmap() = default;

    // Zero-filled.
    ZvBitmap(unsigned int width, unsigned int height, unsigned int bytesPerPixel);

    // Picks the constructor below.
    enum class Unset { Pixels };
    // The pixels are whatever the memory holds: for a caller who writes them all.
    ZvBitmap(unsigned int width, unsigned int height, unsigned int bytesPerPixel, Unset);

    // Copies width * height * bytesPerPixel bytes of data, which stays the caller's. Null data gives zeros.
    ZvBitmap(unsigned int width, unsigned int height, const unsigned char* data, unsigned int bytesPerPixel);

    // Copies have pixels of their own, as far as there is memory.
    ZvBitmap(const ZvBitmap& other);

    // A cut-out of a mask: |left - right| by |top - bottom| pixels of the source's format and depth. Bytes,
    // not pixels, are copied: byte (y - top) * width + (x - left) is the source's byte y * source.width + x,
    // so a colour source fills only the first quarter of the cut-out, and a column outside the source reads
    // the neighbouring row. Bytes outside the source's buffer, and all of an inverted rectangle, read as 0. A
    // null rectangle gives no pixels.
    ZvBitmap(const ZvBitmap& source, const ZvRect* rect);

    ZvBitmap& operator=(const ZvBitmap& other);  // likewise
    virtual ~ZvBitmap();

    // Bytes of the pixel buffer; 0 when a size_t cannot say.
    size_t byteCount() const;
};

}  // namespace Zvex

#endif  // ZVEX_RASTER_ZVBITMAP_H_
