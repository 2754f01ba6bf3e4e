// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVBEVEL_H_
#define ZVEX_EFFECT_FILTERS_ZVBEVEL_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Relief.h"
#include "effect/kernels/SquareRoots.h"

namespace Zvex {

// Makes the glyphs look raised, type 5: light and dark slopes along their edges, inside them (style 1) or
// around them (any other style).
//
// The record's size is the width of the slope, depth its steepness, angle and altitude say where the light
// stands (degrees, counter-clockwise from the positive x axis and up from the picture), direction 0 puts it
// opposite. technique 0 is soft: a slope of two thirds of the size, blurred by as much; any other is hard: a
// crisp one two pixels wider than the size. soften blurs once more. The alpha bytes of the two colours are
// the strength of the lights; the three opacities are not read, the effect stack has folded them in.
class ZvBevel : public ZvECoreBase {
public:
    ZvBevelProperty* property = nullptr;  // owned

    using BlurJob = ReliefBlurJob;

    // A plane of distances to complete: 0 on the edge's far side, 0 to 1 on partly covered pixels, else the
    // radius. Rows packed.
    struct DistanceJob {
        float* distance = nullptr;
        int height = 0, width = 0;
        int radius = 0;  // of the window, pixels; any size
        int rowBegin = 0, rowEnd = 0;
    };

    // Distances to light. Planes are of one size, rows packed.
    struct LightJob {
        unsigned char* highlight = nullptr;  // results, coverage of the light and of the dark colour
        unsigned char* shadow = nullptr;
        int width = 0;
        int radius = 0;                                         // the distance at which the slope ends
        float normalZ = 0, lightX = 0, lightY = 0, lightZ = 0;  // see ReliefLight
        int highlightAlpha = 0, shadowAlpha = 0;                // 0 to 255
        unsigned char inner = 0;                                // 1 for style 1
        float* distance = nullptr;
        int xBegin = 0, xEnd = 0;  // half-open; one pixel away from every edge of the planes at least
        int yBegin = 0, yEnd = 0;
    };

    ZvBevel();
    ~ZvBevel() override;

    // Draws onto target, source-over onto the front of two pictures, else destination-over. An inner bevel
    // lights the ground around the glyphs as it lights their flat tops, as far as the working area goes; the
    // text's own layer or the final composite takes that away. Mask pixels outside the mask read as 0. Draws
    // nothing with sizes so negative that no area is left, or so large that they overflow int. A hard slope
    // costs most where the outline is partly covered, see searchNearest.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // size rounded half up plus soften; 0 before setProperty.
    int getOffset() override;

    // The workers. Each takes one of the jobs, may be given any part of the rows (any order), and returns 0;
    // null, as a job or a plane, gives nothing, and so does a lack of memory.

    // A BlurJob, see blurRelief.
    static int partialBlur(void* job);
    // A DistanceJob, see searchNearest.
    static int partialDT(void* job);
    // A LightJob: writes both planes at every pixel of the rectangle whose distance is not the radius.
    static int partialLightProcess(void* job);

    // Blurs a plane but for a border of `radius` pixels.
    static void blur(unsigned char* src, unsigned char* dst, int radius, int height, int width);
    // See squaredDistances of a line.
    static void dt1D(float* out, float* in, int n);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVBEVEL_H_
