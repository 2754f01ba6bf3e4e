// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_RELIEF_H_
#define ZVEX_EFFECT_KERNELS_RELIEF_H_

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "effect/LayerRows.h"
#include "effect/Numbers.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Gaussian.h"

namespace Zvex {

class DistanceRows;

// Shared by bevel and emboss. The distance to the glyph edge is the height of a relief. It is lit from one
// side; light and shadow go to two planes of bytes, which are blurred, and each pixel is coloured by their
// difference.
//
// Arithmetic is in single precision. Expressions with a fractional constant (2.4, 0.5, ...) are in double
// precision, and their results are stored in single precision.

// A light in the direction (x, y, z), y downwards and z towards the viewer, and the steepness of the relief
// that it falls on: the normal of a slope is (-gx, -gy, normalZ), of any length, where (gx, gy) is the fall
// of the height from one pixel to the next.
struct ReliefLight {
    float x, y, z;
    float normalZ;
    int highlightAlpha, shadowAlpha;  // strength of the light and of its shadow: 255 is full, any int is safe

    // Depths below the floor, and NaN, count as the floor.
    static ReliefLight make(const ZvReliefProperty& property, double depthFloor);

    // The light of a worker's job.
    template <typename Job>
    static ReliefLight of(const Job& job) {
        return {job.lightX, job.lightY, job.lightZ, job.normalZ, job.highlightAlpha, job.shadowAlpha};
    }
};

// The pixels of a plane of distances that are lit, and how.
enum class LitSide {
    Bevel,   // all that are not at the limit; the slope ends there
    Signed,  // the same of a plane whose slope ends at 1 - inner below 0, too
    Around,  // those above 0 and below the limit
    Within,  // the same, lit as the slope that falls the other way
};

// How the slopes of one plane of distances are lit.
struct SlopeLighting {
    LitSide side;
    ReliefLight light;
    float limit, inner;
    bool flip;  // 255 - shade in place of the shade
};

// Two planes to light by a plane of distances, of one size, rows packed. Pixels that are not lit keep their
// bytes. The rectangle is half-open and keeps a pixel away from every edge of the planes.
struct LitPlane {
    uint8_t* highlight;
    uint8_t* shadow;
    const float* distances;
    int width;
    int xBegin, xEnd, yBegin, yEnd;

    // The rectangle of a worker's job.
    template <typename Job>
    static LitPlane of(const Job& job, const float* distances) {
        return {job.highlight, job.shadow, distances, job.width, job.xBegin, job.xEnd, job.yBegin, job.yEnd};
    }
};

// Lights the rectangle: the shade, 0 to 255, is 255 times the cosine between the light and the normal, and
// the coverage is how far the distance is from the end of the slope, up to a pixel. The highlight is the
// coverage scaled by (shade + 1) * highlightAlpha, the shadow by (256 - shade) * shadowAlpha.
void lightPlane(const SlopeLighting& lighting, const LitPlane& plane);

// How far the working area reaches beyond the text box: a slope as wide as `radius`, and the larger of the
// two blurs twice.
int64_t reliefMargin(int64_t radius, int64_t blur, int64_t soften);

// The source of the levels for DistanceRows.
enum class Levels {
    Coverage,  // full pixels are those without coverage: distances of the text
    Ground,    // 255 minus the coverage: distances around the text
    Beside,    // full pixels are those with any coverage, all others 255
};

// The levels of the area: coverage counts in the box in its middle, grown by `more` to the right and below.
void makeLevels(uint8_t* plane, Levels levels, const WorkingArea& area, const ZvBitmap& mask, int more);

// One blur of bytes: a rectangle of `source` blurred into `destination`, both of the same size, rows packed.
struct ReliefBlurJob {
    unsigned char* source = nullptr;
    unsigned char* destination = nullptr;  // must not overlap source
    int stride = 0;                        // pixels, the width of both planes
    int radius = 0;                        // pixels; below 1 copies
    int xBegin = 0, xEnd = 0;  // half-open; the rectangle to write, which keeps `radius` away from
    int yBegin = 0, yEnd = 0;  // every edge of the planes
};

// The Gaussian of Gaussian.h with a middle weight of 100. An empty rectangle leaves the destination as it is,
// null planes as well. False when memory is short, with nothing written.
bool blurRelief(const ReliefBlurJob& job);

// The same of all of two planes but a border of `radius` pixels.
bool blurRelief(unsigned char* source, unsigned char* destination, int radius, int height, int width);

// The light on one relief.
struct ReliefPlanes {
    Buffer<uint8_t> highlight, shadow;

    bool allocate(const WorkingArea& area) {
        return highlight.allocate(area.height, area.width) && shadow.allocate(area.height, area.width);
    }
    // Lights the row before the last that was measured, but for its ends; row `y` is the last one.
    void lightRow(const SlopeLighting& lighting, const WorkingArea& area, const DistanceRows& distances,
                  int y) const;
    // No light in that row.
    void clearRow(const WorkingArea& area, int y) const {
        for (const Buffer<uint8_t>* plane : {&highlight, &shadow})
            std::memset(plane->get() + area.row(y), 0, static_cast<size_t>(area.width));
    }
};

// A relief's lights, blurred, as rows of bytes. They are made a few at a time, in the order in which they are
// wanted first.
//
// A blur leaves a border of its radius, and what one sees there are the planes that it took turns with: in
// the first one the highlight has no light, the shadow the highlight that was not blurred; in the second one
// the highlight has the first shadow that was not blurred, the shadow the highlight as it was blurred once. A
// bevel that lights the ground around the text has such a border.
class BlurredLight {
public:
    // With the blurs of two radii, in this order; a radius below 1 is none. Takes the planes over. False when
    // memory is short.
    bool make(const WorkingArea& area, ReliefPlanes& light, int firstRadius, int secondRadius);

    // A row of each, to be read until the next call.
    void moveTo(int y);
    const uint8_t* highlight() const { return mHighlightRow; }
    const uint8_t* shadow() const { return mShadowRow; }

private:
    bool prepare(int radius);
    void blurRows(int y, int count, uint8_t* highlight, uint8_t* shadow);
    void findEvenBlocks(int y, int count);
    void blurBand(const uint8_t* plane, int y, int count, int shift, uint8_t* target);

    WorkingArea mArea;
    ReliefPlanes mLight;      // the planes to blur
    Buffer<uint8_t> mBorder;  // what the border of the highlight shows; null is no light
    int mRadius = 0;          // below 1 there is no blur
    Gaussian mKernel;
    Blur mBlur;
    // The two bytes of each block of a row whose pixels are all the same, else kUneven; the same of the rows
    // that a band sees.
    Buffer<int32_t> mEven, mEvenBand;
    Buffer<uint8_t> mColumn, mBandHighlight, mBandShadow;
    int mBandBegin = 0, mBandEnd = 0;  // the rows that were blurred last
    const uint8_t* mHighlightRow = nullptr;
    const uint8_t* mShadowRow = nullptr;
};

// From light to colour.
struct ReliefColors {
    float gain;  // of both planes, before their difference is taken
    uint32_t highlight, shadow;

    // The pixels of `count` lights, which they must not overlap: the colour of the stronger of the two,
    // premultiplied with their difference (and not with its own alpha, which the lights hold already),
    // 0xAARRGGBB. Equal lights give a transparent pixel.
    void row(uint32_t* pixels, const uint8_t* highlightLights, const uint8_t* shadowLights, int count) const;
};

// The coloured relief.
class ReliefRows : public LayerRows {
public:
    ReliefRows(const WorkingArea& area, const ReliefColors& colors, int blendMode, bool onBoth)
        : mArea(area), mColors(colors), mBlendMode(blendMode), mOnBoth(onBoth) {}

    // The relief with its two blurs, see BlurredLight. False when memory is short.
    bool allocate(ReliefPlanes& light, int firstRadius, int secondRadius);

    // A second relief behind the first one, fading out where the glyphs are. False when memory is short.
    bool putBehind(ReliefPlanes& light, int firstRadius, int secondRadius, const ZvBitmap& mask);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override { return mArea.rect(); }

private:
    void colorRow(int y);

    WorkingArea mArea;
    BlurredLight mLight, mBehind;
    const ZvBitmap* mMask = nullptr;  // null without a second relief
    ReliefColors mColors;
    int mBlendMode;
    bool mOnBoth;  // pictures, if there are two
    Buffer<uint32_t> mRow, mRowBehind;
    Buffer<uint8_t> mCoverage;
};

// The record built anew, so that its own limits hold again.
template <typename Property>
Property limitedAgain(const ZvProperty* property) {
    const ZvReliefProperty& p = *static_cast<const Property*>(property);
    return Property(p.style, p.size, p.depth, p.direction, p.technique, p.soften, p.opacity, p.angle,
                    p.altitude, p.shadowColor, p.shadowOpacity, p.highlightColor, p.highlightOpacity);
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_RELIEF_H_
