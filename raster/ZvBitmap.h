// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_RASTER_ZVBITMAP_H_
#define ZVEX_RASTER_ZVBITMAP_H_

#include <cstddef>
#include <cstdint>

namespace Zvex {

class ZvRect;

// A picture with packed rows: 8-bit coverage (1 byte a pixel) or colour (4 bytes a pixel). A colour pixel is
// red, green, blue, alpha in memory on every machine, premultiplied within the engine. The bitmap owns its
// pixels, which come from malloc.
//
// If its pixels could not be allocated, a bitmap keeps its sizes and has null pixels. Every routine treats it
// as an empty target. Sizes are multiplied in 64 bits; a size that is too large for a pointer counts as not
// allocated.
class ZvBitmap {
public:
    uint32_t width = 0;          // pixels
    uint32_t height = 0;         // pixels
    uint8_t* pixels = nullptr;   // owned; null if there are no pixels
    uint32_t format = 4;         // 1: 4 bytes a pixel; 2: any other depth; 4: default-constructed
    uint32_t bytesPerPixel = 0;  // 1 or 4; other values are stored as well

    ZvBitmap() = default;

    // Zero-filled.
    ZvBitmap(unsigned int width, unsigned int height, unsigned int bytesPerPixel);

    // Selects the constructor below.
    enum class Unset { Pixels };
    // Leaves the pixels undefined, for a caller who writes them all.
    ZvBitmap(unsigned int width, unsigned int height, unsigned int bytesPerPixel, Unset);

    // Copies width * height * bytesPerPixel bytes of data; the caller keeps data. Null data gives zeros.
    ZvBitmap(unsigned int width, unsigned int height, const unsigned char* data, unsigned int bytesPerPixel);

    // Copies the pixels too; without memory for them the copy has null pixels.
    ZvBitmap(const ZvBitmap& other);

    // Cuts a rectangle out of a mask: |left - right| by |top - bottom| pixels of the source's format and
    // depth. It copies bytes, not pixels: byte (y - top) * width + (x - left) is the source's byte y *
    // source.width + x. So a colour source fills only the first quarter of the cut-out, and a column outside
    // the source reads the neighbouring row. Bytes outside the source's buffer read as 0, and so does an
    // inverted rectangle. A null rectangle gives no pixels.
    ZvBitmap(const ZvBitmap& source, const ZvRect* rect);

    ZvBitmap& operator=(const ZvBitmap& other);  // copies in the same way
    virtual ~ZvBitmap();

    // Bytes of the pixel buffer; 0 if the number does not fit a size_t.
    size_t byteCount() const;
};

}  // namespace Zvex

#endif  // ZVEX_RASTER_ZVBITMAP_H_
