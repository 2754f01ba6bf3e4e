// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_
#define ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Relief.h"
#include "effect/kernels/SquareRoots.h"

namespace Zvex {

// Makes the text look pressed out of a sheet, type 6: one slope that begins within the glyphs and ends around
// them, light on one side and dark on the other.
//
// The record has the bevel's fields. size is the width of the whole slope. A hard slope has half of it, or a
// little more, on either side of the edge; a soft one has a quarter, and is blurred by half. Style 3 adds a
// second relief behind the first one, lit from the opposite side and visible around the glyphs; any other
// style has one relief.
class ZvEmboss : public ZvECoreBase {
public:
    ZvEmbossProperty* property = nullptr;  // owned

    using BlurJob = ReliefBlurJob;

    // A plane of signed distances to complete: the outer radius on the ground, 1 minus the inner radius
    // within the glyphs, 0 to 1 on partly covered pixels. Rows packed.
    struct DistanceJob {
        float* distance = nullptr;
        int height = 0, width = 0;
        int outerRadius = 0, innerRadius = 0;  // of the windows, pixels; any size
        int rowBegin = 0, rowEnd = 0;
    };

    // Lights one or two planes of distances. Planes are of one size, rows packed.
    struct LightJob {
        unsigned char* highlight = nullptr;  // results: coverage of the light and of the dark colour
        unsigned char* shadow = nullptr;
        float* distance = nullptr;        // signed; if there are two planes, the distances around the glyphs
        float* insideDistance = nullptr;  // the distances within the glyphs; null if there is one plane
        int width = 0;
        int outerRadius = 0, innerRadius = 0;                   // the distances at which the slope ends
        float normalZ = 0, lightX = 0, lightY = 0, lightZ = 0;  // see ReliefLight
        int highlightAlpha = 0, shadowAlpha = 0;                // 0 to 255
        int xBegin = 0, xEnd = 0;  // half-open; at least one pixel away from every edge of the planes
        int yBegin = 0, yEnd = 0;
    };

    ZvEmboss();
    ~ZvEmboss() override;

    // Draws one picture onto target and, if there is one, onto otherLayer: destination-over onto the two
    // pictures of a text that has two, else source-over. Pixels outside the mask have coverage 0. Draws
    // nothing if sizes are so negative that no area is left, or so large that they overflow int. A hard slope
    // costs most, see searchInward.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // Half of size plus one, rounded up, plus soften; 0 before setProperty.
    int getOffset() override;

    // The workers. Each takes one of the jobs and returns 0. It does nothing if a job or plane is null, or if
    // memory is short. Rows may be split in any way except for partialInDT, see searchInward.

    // A BlurJob, see blurRelief.
    static int partialBlur(void* job);
    // A DistanceJob: searchOutward with the outer radius, searchInward with the inner one.
    static int partialOutDT(void* job);
    static int partialInDT(void* job);
    // A LightJob with two planes. Writes both results at every pixel whose distance around or within the
    // glyphs is above 0 and below that side's radius; if both are, the inner one counts.
    static int partialLightSoftProcess(void* job);
    // A LightJob with one plane. Writes both results at every pixel whose distance is not the outer radius.
    static int partialLightHardProcess(void* job);

    // Blurs a plane except for a border of `radius` pixels.
    static void blur(unsigned char* src, unsigned char* dst, int radius, int height, int width);
    // squaredDistances of one line.
    static void dt1D(float* out, float* in, int n);
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVEMBOSS_H_
