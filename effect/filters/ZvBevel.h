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
// In the record, size is the width of the slope and depth its steepness. angle and altitude give the position
// of the light (degrees, counter-clockwise from the positive x axis, and up from the picture); direction 0
// puts it on the opposite side. technique 0 is soft: a slope of two thirds of the size, blurred by as much.
// Any other technique is hard: a crisp slope two pixels wider than the size. soften adds another blur. The
// alpha bytes of the two colours are the strength of the lights. The three opacities are not read: the effect
// stack has multiplied them into the alpha bytes.
class ZvBevel : public ZvECoreBase {
public:
    ZvBevelProperty* property = nullptr;  // owned

    using BlurJob = ReliefBlurJob;

    // A plane of distances to complete: 0 beyond the edge, 0 to 1 on partly covered pixels, elsewhere the
    // radius. Rows packed.
    struct DistanceJob {
        float* distance = nullptr;
        int height = 0, width = 0;
        int radius = 0;  // of the window, pixels; any size
        int rowBegin = 0, rowEnd = 0;
    };

    // Lights a plane of distances. Planes are of one size, rows packed.
    struct LightJob {
        unsigned char* highlight = nullptr;  // results: coverage of the light and of the dark colour
        unsigned char* shadow = nullptr;
        int width = 0;
        int radius = 0;                                         // the distance at which the slope ends
        float normalZ = 0, lightX = 0, lightY = 0, lightZ = 0;  // see ReliefLight
        int highlightAlpha = 0, shadowAlpha = 0;                // 0 to 255
        unsigned char inner = 0;                                // 1 for style 1
        float* distance = nullptr;
        int xBegin = 0, xEnd = 0;  // half-open; at least one pixel away from every edge of the planes
        int yBegin = 0, yEnd = 0;
    };

    ZvBevel();
    ~ZvBevel() override;

    // Draws onto target: source-over onto the front one of two pictures, else destination-over. An inner
    // bevel lights the ground around the glyphs like their flat tops, across the whole working area; the
    // text's own layer or the final composite removes that. Pixels outside the mask have coverage 0. Draws
    // nothing if sizes are so negative that no area is left, or so large that they overflow int. A hard slope
    // costs most where the outline is partly covered, see searchNearest.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // The size rounded half up, plus soften; 0 before setProperty.
    int getOffset() override;

    // The workers. Each takes one of the jobs and returns 0. It may be given any part of the rows, in any
    // order. It does nothing if a job or plane is null, or if memory is short.

    // A BlurJob, see blurRelief.
    static int partialBlur(void* job);
    // A DistanceJob; see searchNearest.
    static int partialDT(void* job);
    // A LightJob: writes both planes at every pixel of the rectangle whose distance is not the radius.
    static int partialLightProcess(void* job);

    // Blurs a plane except for a border of `radius` pixels.
    static void blur(unsigned char* src, unsigned char* dst, int radius, int height, int width);
    // squaredDistances of one line.
    static void dt1D(float* out, float* in, int n);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVBEVEL_H_
