// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVSTROKE_H_
#define ZVEX_EFFECT_FILTERS_ZVSTROKE_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Makes a disc of coverage for the dilation: K x K bytes, K = 2 * r + 1 with r the radius in pixels rounded
// half up. 255 where a cell's centre lies within the radius of the middle, 0 from one pixel further out,
// linear in between; the middle cell of a disc thinner than a pixel is partial as well, clamp(radius, 0, 1) *
// 255 rounded. *kernel comes from malloc and is freed by the caller. Returns K; 0 with *kernel null when
// memory is short, when the radius is negative and r with it, or when K * K does not fit an int.
int makeCircleKernel(unsigned char** kernel, float radius);

// Outlines the text with a band of one colour, type 10: outside the glyph edge, inside it, or centred on it.
//
// The band is the coverage dilated by a disc. The edge of the text box counts as a glyph edge.
class ZvStroke : public ZvECoreBase {
public:
    ZvStrokeProperty* property = nullptr;  // owned

    // One dilation. Planes are 8-bit coverage, rows packed. src and dst must not overlap.
    struct DTJob {
        unsigned char* dst = nullptr;     // result; holds at least 0 on entry, the dilation only raises it
        unsigned char* src = nullptr;     // coverage to dilate
        unsigned char* kernel = nullptr;  // kernelSize x kernelSize bytes
        int srcStride = 0;                // width of src in bytes
        int srcHeight = 0;                // rows of src
        int srcY = 0;                     // place in src of the first pixel to read
        int srcX = 0;
        int dstStride = 0;  // width of dst in bytes
        int dstHeight = 0;  // rows of a plane of dst
        int dstY = 0;       // place in dst of that first pixel
        int dstX = 0;
        int planeSize = 0;   // bytes from the first plane of dst to the second one
        int radius = 0;      // of the disc, its fraction cut off; not read
        int kernelSize = 0;  // odd
        int columns = 0;     // pixels to read from each row of src
        int rows = 0;        // rows to read in all
        int rowStart = 0;    // half-open band of those rows to do in this call
        int rowEnd = 0;
    };

    ZvStroke();
    ~ZvStroke() override;

    // Draws the band onto target, and onto otherLayer if there is one, in the property's colour as it is.
    // Destination-over; a centred stroke without a back picture goes source-over. Reaches r + 1 pixels beyond
    // the text box, r being makeCircleKernel's. The inside band is full coverage all around the glyphs, up to
    // that border: the glyphs' own layer, which is in front, is what hides it there. Mask pixels outside the
    // mask read as 0; an empty box draws nothing.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // Rounded half up: the width outside, half of it centred, 0 inside and before setProperty.
    int getOffset() override;

    // The dilations of the three positions, over the rows rowStart..rowEnd - 1 of a DTJob. Each byte of dst
    // becomes the largest of its old value and, over all pixels of src and cells of the disc centred there,
    // of max(0, value + cell - 255). The value is the coverage (outside), 255 minus it (inside), or the
    // former in the first and the latter in the second plane (centre). Rows and columns
    // beyond the end of src, and what falls outside dst, are left out. Bands may be done in any order, not at
    // once: they overlap in dst. Null gives nothing, and so does a shortage of memory. Return 0.
    static int partalDTStrokeCenter(void* job);
    static int partalDTStrokeOutside(void* job);
    static int partalDTStrokeInside(void* job);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVSTROKE_H_
