// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_
#define ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Relief.h"
#include "effect/kernels/SquareRoots.h"

namespace Zvex {

// Makes the text a relief pressed from a sheet, type 6: one slope that begins within the glyphs and ends
// around them, light on one side and dark on the other.
//
// The record reads as the bevel's. size is the width of the whole slope, half of it on either side of the
// edge (hard, a little more), or a quarter, blurred by half (soft). Style 3 lights the relief a second time
// from the opposite side, seen around the glyphs behind the first; any other style is lit once.
class ZvEmboss : public ZvECoreBase {
public:
    ZvEmbossProperty* property = nullptr;  // owned

    using BlurJob = ReliefBlurJob;

    // A plane of signed distances to complete: the outer radius on the ground, 1 less the inner radius within
    // the glyphs, 0 to 1 on partly covered pixels. Rows packed.
    struct DistanceJob {
        float* distance = nullptr;
        int height = 0, width = 0;
        int outerRadius = 0, innerRadius = 0;  // of the windows, pixels; any size
        int rowBegin = 0, rowEnd = 0;
    };

    // Distances to light. Planes are of one size, rows packed.
    struct LightJob {
        unsigned char* highlight = nullptr;  // results, coverage of the light and of the dark colour
        unsigned char* shadow = nullptr;
        float* distance = nullptr;        // signed; of two planes that of the distances around the glyphs
        float* insideDistance = nullptr;  // the distances within the glyphs; null where there is one plane
        int width = 0;
        int outerRadius = 0, innerRadius = 0;                   // the distances at which the slope ends
        float normalZ = 0, lightX = 0, lightY = 0, lightZ = 0;  // see ReliefLight
        int highlightAlpha = 0, shadowAlpha = 0;                // 0 to 255
        int xBegin = 0, xEnd = 0;  // half-open; one pixel away from every edge of the planes at least
        int yBegin = 0, yEnd = 0;
    };

    ZvEmboss();
    ~ZvEmboss() override;

    // Draws one picture onto target and, if there is one, onto otherLayer: destination-over onto the two of a
    // text with two pictures, else source-over. Mask pixels outside the mask read as 0. Draws nothing with
    // sizes so negative that no area is left, or so large that they overflow int. A hard slope
    // costs most, see searchInward.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // Half of size plus one, rounded up, plus soften; 0 before setProperty.
    int getOffset() override;

    // The workers. Each takes one of the jobs and returns 0; null, as a job or a plane, gives nothing, and so
    // does a lack of memory. Rows may be split anyhow but for partialInDT, see searchInward.

    // A BlurJob, see blurRelief.
    static int partialBlur(void* job);
    // A DistanceJob, see searchOutward and, for the inner radius, searchInward.
    static int partialOutDT(void* job);
    static int partialInDT(void* job);
    // A LightJob with two planes: writes both results at every pixel whose distance around or within the
    // glyphs is above 0 and below the radius there; where both are, the inner one counts.
    static int partialLightSoftProcess(void* job);
    // A LightJob with one plane: writes both results at every pixel whose distance is not the outer radius.
    static int partialLightHardProcess(void* job);

    // Blurs a plane but for a border of `radius` pixels.
    static void blur(unsigned char* src, unsigned char* dst, int radius, int height, int width);
    // See squaredDistances of a line.
    static void dt1D(float* out, float* in, int n);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_
