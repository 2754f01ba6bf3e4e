// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVSTROKE_H_
#define ZVEX_EFFECT_FILTERS_ZVSTROKE_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Makes a disc of coverage for the dilation: K x K bytes, K = 2 * r + 1, where r is the radius in pixels
// rounded half up. A cell is 255 if its centre lies within the radius of the middle, 0 from one pixel further
// out, and linear in between. The middle cell of a disc thinner than a pixel is partial as well:
// clamp(radius, 0, 1) * 255, rounded. *kernel comes from malloc; the caller frees it. Returns K, or 0 with
// *kernel null if memory is short, if r is negative, or if K * K does not fit an int.
int makeCircleKernel(unsigned char** kernel, float radius);

// Outlines the text with a band of one colour, type 10: outside the glyph edge, inside it, or centred on it.
//
// The band is the coverage dilated by a disc. The edge of the text box counts as a glyph edge.
class ZvStroke : public ZvECoreBase {
public:
    ZvStrokeProperty* property = nullptr;  // owned

    // One dilation. Planes are 8-bit coverage, rows packed. src and dst must not overlap.
    struct DTJob {
        unsigned char* dst = nullptr;     // result; must be initialised, the dilation only raises it
        unsigned char* src = nullptr;     // coverage to dilate
        unsigned char* kernel = nullptr;  // kernelSize x kernelSize bytes
        int srcStride = 0;                // width of src in bytes
        int srcHeight = 0;                // rows of src
        int srcY = 0;                     // row in src of the first pixel to read
        int srcX = 0;
        int dstStride = 0;  // width of dst in bytes
        int dstHeight = 0;  // rows of a plane of dst
        int dstY = 0;       // row in dst of that first pixel
        int dstX = 0;
        int planeSize = 0;   // bytes from the first plane of dst to the second
        int radius = 0;      // of the disc, fraction cut off; not read
        int kernelSize = 0;  // odd
        int columns = 0;     // pixels to read from each row of src
        int rows = 0;        // rows to read in all
        int rowStart = 0;    // half-open range of those rows to do in this call
        int rowEnd = 0;
    };

    ZvStroke();
    ~ZvStroke() override;

    // Draws the band onto target, and onto otherLayer if there is one, in the property's colour unchanged.
    // Destination-over; a centred stroke without a back picture goes source-over. It reaches r + 1 pixels
    // beyond the text box, where r is that of makeCircleKernel. The inside band has full coverage all around
    // the glyphs, up to that border; the glyphs' own layer in front hides it there. Pixels outside the mask
    // have coverage 0. An empty box draws nothing.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // Rounded half up: the width if outside, half of it if centred; 0 if inside or before setProperty.
    int getOffset() override;

    // The dilations of the three positions, over the rows rowStart..rowEnd - 1 of a DTJob. For all pixels of
    // src and all cells of the disc centred there, a byte of dst becomes the largest of its old value and
    // max(0, value + cell - 255). The value is the coverage (outside), 255 minus it (inside), or the first of
    // these in the first plane and the other in the second (centre). Rows and columns beyond the end of src
    // and cells outside dst are left out. Ranges may be done in any order, but not at once, because they
    // overlap in dst. Does nothing if the job is null or if memory is short. Returns 0.
    static int partalDTStrokeCenter(void* job);
    static int partalDTStrokeOutside(void* job);
    static int partalDTStrokeInside(void* job);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVSTROKE_H_
