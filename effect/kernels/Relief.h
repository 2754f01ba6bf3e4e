// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_RELIEF_H_
#define ZVEX_EFFECT_KERNELS_RELIEF_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "effect/LayerRows.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/DistanceRows.h"
#include "effect/kernels/Gaussian.h"

namespace Zvex {

// Shared by bevel and emboss. The distance to the glyph edge is the height of a relief. It is lit from one
// side. Light and shadow go to two planes of bytes, which are blurred. Their difference colours each pixel.
//
// Arithmetic is in single precision. Expressions with a fractional constant (2.4, 0.5, ...) are in double
// precision, and their results are stored in single precision.

// A light in the direction (x, y, z), y downwards and z towards the viewer, and the steepness of the relief.
// The normal of a slope is (-gx, -gy, normalZ), of any length, where (gx, gy) is how far the height falls
// from one pixel to the next.
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

// Which pixels of a plane of distances are lit, and how.
enum class LitSide {
    Bevel,   // those not at the limit, where the slope ends
    Signed,  // the same, for a plane whose slope also ends at 1 - inner, below 0
    Around,  // those above 0 and below the limit
    Within,  // the same, lit as a slope that falls the other way
};

// How the slopes of one plane of distances are lit.
struct SlopeLighting {
    LitSide side;
    ReliefLight light;
    float limit, inner;
    bool flip;  // writes 255 - shade instead of the shade
};

// Two planes to light from a plane of distances, of one size, rows packed. Pixels that are not lit keep their
// bytes. The rectangle is half-open and stays at least one pixel away from every edge of the planes.
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

// Lights the rectangle. The shade, 0 to 255, is 255 times the cosine of the angle between the light and the
// normal. The coverage is the distance to the end of the slope, up to one pixel. The highlight is the
// coverage scaled by (shade + 1) * highlightAlpha, the shadow by (256 - shade) * shadowAlpha.
void lightPlane(const SlopeLighting& lighting, const LitPlane& plane);

// The text box grown by a margin. Pixels near its edges are drawn in another way, see BlurredLight. So a part
// of it can stand for the whole only if it keeps the edges that matter.
struct ReliefArea : WorkingArea {
    ZvRect box;    // the text box, on the target
    ZvRect shown;  // columns and rows of the area that lie on the target, the other layer or the mask
    bool isCutLeft = false, isCutRight = false;  // columns are missing there

    // The whole area. False as for WorkingArea, or if nothing of it is shown.
    bool grow(const ZvECore::ParamPostProcessing& param, int64_t newMargin);
    // The part within `border` pixels of what is shown. All glyphs lie in it.
    ReliefArea cut(int64_t border) const;
    // Where this part lies.
    ZvRect placeIn(const ReliefArea& whole) const {
        const int left = x - whole.x, top = y - whole.y;
        return ZvRect(left, top, left + width, top + height);
    }
};

// How far the working area reaches beyond the text box: the width of the slope, `radius`, plus twice the
// larger of the two blurs.
int64_t reliefMargin(int64_t radius, int64_t blur, int64_t soften);

// How far pixels beyond what is shown affect it: both blurs, and the neighbours of a lit pixel.
int64_t reliefBorder(int64_t blur, int64_t soften);

// The source of the levels for DistanceRows.
enum class Levels {
    Coverage,  // uncovered pixels are full: distances inside the text
    Ground,    // 255 minus the coverage: distances around the text
    Beside,    // pixels with any coverage are full, all others 255
};

// Computes the levels of the area. Coverage counts within the box in its middle, extended by `more` to the
// right and below.
void makeLevels(uint8_t* plane, Levels levels, const ReliefArea& area, const ZvBitmap& mask, int more);

// The transform of the whole area's levels, with `more` 1, in the given part of it. Null if memory is short.
std::unique_ptr<DistanceRows> transformLevels(Levels levels, const ReliefArea& part, const ReliefArea& whole,
                                              const ZvBitmap& mask, int radius);

// One blur of bytes: a rectangle of `source` blurred into `destination`, both of the same size, rows packed.
struct ReliefBlurJob {
    unsigned char* source = nullptr;
    unsigned char* destination = nullptr;  // must not overlap source
    int stride = 0;                        // pixels, the width of both planes
    int radius = 0;                        // pixels; below 1 copies
    int xBegin = 0, xEnd = 0;              // half-open rectangle to write; it keeps `radius` away from
    int yBegin = 0, yEnd = 0;              // every edge of the planes
};

// Uses the Gaussian of Gaussian.h with a middle weight of 100. An empty rectangle or a null plane changes
// nothing. False, with nothing written, if memory is short.
bool blurRelief(const ReliefBlurJob& job);

// Blurs the whole plane except for a border of `radius` pixels.
bool blurRelief(unsigned char* source, unsigned char* destination, int radius, int height, int width);

// Light and shadow of one relief, to be blurred with two radii, in this order; a radius below 1 means no
// blur. If the first is much larger than the rows that it is needed for, that blur is done here, row by row:
// planes of the whole area would be larger still.
class ReliefPlanes {
public:
    ReliefArea area;           // what the planes hold
    int blur = 0, soften = 0;  // the radii, pixels
    Buffer<uint8_t> highlight, shadow;

    // False if memory is short.
    bool allocate(const ReliefArea& newArea, int64_t newBlur, int newSoften);
    // Clears row y. It is cleared before it is lit.
    void clearRow(int y) const;
    // Lights the row before the one measured last, except for its ends; `y` is the row measured last.
    void lightRow(const SlopeLighting& lighting, const DistanceRows& distances, int y) const {
        lightRow(lighting, distances.row(y - 2), distances.row(y - 1), distances.row(y), y - 1);
    }
    // Lights row y, except for its ends. The three rows of distances begin at the first column.
    void lightRow(const SlopeLighting& lighting, const float* above, const float* distances,
                  const float* below, int y) const;
    // Row y is lit, and no other one since the last call.
    void endRow(int y) const;
    // All rows are lit. If that completes the first blur, its radius becomes 0, and the area the part of it
    // that is needed. False if memory is short.
    bool finish();

private:
    struct WideBlur {
        ZvRect needed;  // columns and rows of the area
        Gaussian kernel;
        ColumnSums highlight, shadow;
    };

    bool blurRows(ColumnSums* sums, const ReliefArea& part, Buffer<uint8_t>* plane) const;
    size_t at(int y) const { return mWide != nullptr ? 0 : area.row(y); }

    std::unique_ptr<WideBlur> mWide;  // null if the planes hold the whole area
};

// The blurred lights of a relief, as rows of bytes. They are computed a few rows at a time, in the order in
// which they are first needed.
//
// A blur leaves a border of its radius, which shows other planes. After the first blur the highlight has no
// light there, and the shadow shows the unblurred highlight. After the second the highlight shows the
// unblurred shadow, and the shadow shows the highlight after the first blur. A bevel that lights the ground
// around the text has such a border.
class BlurredLight {
public:
    // Finishes the planes and takes ownership of them. False if memory is short.
    bool make(ReliefPlanes& light);

    // Moves to row y; the pointers below are valid until the next call.
    void moveTo(int y);
    const uint8_t* highlight() const { return mHighlightRow; }
    const uint8_t* shadow() const { return mShadowRow; }

private:
    bool prepare(int radius, int beyond);
    void blurRows(int y, int count, uint8_t* highlight, uint8_t* shadow);
    void findEvenBlocks(int y, int count);
    void blurBand(const uint8_t* plane, int y, int count, int shift, uint8_t* target);

    ReliefArea mArea;
    int mLeft = 0, mRight = 0;            // the columns of the area that are no border
    ZvRect mNeeded;                       // the columns and rows to blur; all others are left undefined
    Buffer<uint8_t> mHighlight, mShadow;  // the planes to blur
    Buffer<uint8_t> mBorder;              // shown by the border of the highlight; null is no light
    int mRadius = 0;                      // below 1 there is no blur
    Gaussian mKernel;
    Blur mBlur;
    // For each block of a row: its two bytes if all its pixels are equal, else kUneven. mEvenBand is the same
    // for all rows that a band sees.
    Buffer<int32_t> mEven, mEvenBand;
    Buffer<uint8_t> mColumn, mBandHighlight, mBandShadow;
    int mBandBegin = 0, mBandEnd = 0;  // the rows that were blurred last
    const uint8_t* mHighlightRow = nullptr;
    const uint8_t* mShadowRow = nullptr;
};

// Turns light into colour.
struct ReliefColors {
    float gain;  // applied to both planes before taking their difference
    uint32_t highlight, shadow;

    // Colours `count` pixels; they must not overlap the lights. A pixel gets the colour of the stronger
    // light, premultiplied with the difference of the two lights (not with its own alpha, which the lights
    // include already), as 0xAARRGGBB. Equal lights give a transparent pixel.
    void row(uint32_t* pixels, const uint8_t* highlightLights, const uint8_t* shadowLights, int count) const;
};

// The coloured relief.
class ReliefRows : public LayerRows {
public:
    ReliefRows(const ReliefColors& colors, int blendMode, bool onBoth)
        : mColors(colors), mBlendMode(blendMode), mOnBoth(onBoth) {}

    // Makes the relief with its two blurs, see BlurredLight. False if memory is short.
    bool allocate(ReliefPlanes& light);

    // Adds a second relief of the same size behind the first one; it fades out where the glyphs are. False if
    // memory is short.
    bool putBehind(ReliefPlanes& light, const ZvBitmap& mask);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override { return mArea.rect(); }

private:
    void colorRow(int y);

    ReliefArea mArea;
    BlurredLight mLight, mBehind;
    const ZvBitmap* mMask = nullptr;  // null without a second relief
    ReliefColors mColors;
    int mBlendMode;
    bool mOnBoth;  // draws onto both pictures, if there are two
    Buffer<uint32_t> mRow, mRowBehind;
    Buffer<uint8_t> mCoverage;
};

// Copies the record by its constructor, so that its limits apply again.
template <typename Property>
Property limitedAgain(const ZvProperty* property) {
    const ZvReliefProperty& p = *static_cast<const Property*>(property);
    return Property(p.style, p.size, p.depth, p.direction, p.technique, p.soften, p.opacity, p.angle,
                    p.altitude, p.shadowColor, p.shadowOpacity, p.highlightColor, p.highlightOpacity);
}

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_RELIEF_H_
