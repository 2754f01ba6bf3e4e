// SPDX-License-Identifier: Apache-2.0
//
// An emboss: a relief as deep as the signed distance to the glyph edge, from the inner radius within the
// glyphs to the outer one around them; see Relief.h for what is made of it. Wide soft slopes take their
// distances from the exact transform, in two planes, all others search windows of one signed plane:
//
//     1 - inner radius ... 0 | 0 ... 1 on partly covered pixels | 1 ... outer radius
//              glyphs                                                   ground

#include "effect/filters/ZvEmboss.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <utility>

#include "effect/filters/Distance.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr double DEPTH_FLOOR = 0.2;
constexpr float SOFT_GAIN = 2.03f;      // a float: a light of 100 becomes 203, with a double 202
constexpr int LAST_WINDOWED_SIZE = 25;  // of soft slopes
constexpr int STYLE_DOUBLE = 3;

// Sizes in pixels. They are within the ints once the working area is.
struct Widths {
    bool soft, exact;
    int64_t outer, inner;  // radii of the slope
    int64_t blur;          // of the soft technique
    int64_t margin;

    explicit Widths(const ZvReliefProperty& property) {
        const int size = truncateToInt(property.size);
        const auto ceiling = [](double value) { return static_cast<int64_t>(std::ceil(value)); };
        soft = property.technique == 0;
        exact = soft && size > LAST_WINDOWED_SIZE;
        outer = soft ? ceiling(size * 0.25 + 1.0) : ceiling(size * 0.5 + 3.0);
        inner = soft ? outer : ceiling(size * 0.5 + 1.0);
        blur = soft ? ceiling(size * 0.5 + 1.0) : 0;
        margin = reliefMargin(outer, blur, property.soften);
    }
};

// The distances that make the relief: one signed plane, or one for each side of the edge.
struct Depths {
    Buffer<float> outside, inside;

    bool measure(const Widths& widths, const WorkingArea& area, const ZvBitmap& mask) {
        if (!outside.allocate(area.height, area.width)) return false;
        if (!widths.exact) return measureWithFractions(widths, area, mask);
        // A pixel on the slope looks at its neighbours, less than a pixel beyond.
        const int outer = static_cast<int>(widths.outer) + 2, inner = static_cast<int>(widths.inner) + 2;
        return inside.allocate(area.height, area.width) &&
               edgeDistances(outside.get(), area, mask, false, outer) &&
               edgeDistances(inside.get(), area, mask, true, inner);
    }

private:
    bool measureWithFractions(const Widths& widths, const WorkingArea& area, const ZvBitmap& mask) {
        const int outer = static_cast<int>(widths.outer), inner = static_cast<int>(widths.inner);
        float ramp[256];
        for (int coverage = 0; coverage < 256; ++coverage) {
            const float unit = static_cast<float>(coverage / 254.999);
            ramp[coverage] = unit < 0.001   ? static_cast<float>(outer)
                             : unit >= 1.0f ? 1.0f - static_cast<float>(inner)
                                            : 1.0f - unit;
        }
        fillFromCoverage(outside.get(), area, mask, static_cast<float>(outer), ramp);
        // The first row keeps what it is. No glyph is near it, so nothing depends on the order of the inward
        // search: all that an inner pixel can see has been measured from that pixel, too.
        return searchOutward({outside.get(), area.height, area.width, outer, 1, area.height}) &&
               searchInward({outside.get(), area.height, area.width, inner, 1, area.height});
    }
};

// The light on the relief, and for a second relief that from the opposite side.
void lightSlopes(ReliefPlanes* planes, int count, const Depths& depths, const ZvEmbossProperty& property,
                 const Widths& widths, const WorkingArea& area) {
    ReliefLight light = ReliefLight::make(property, DEPTH_FLOOR);
    for (int i = 0; i < count; ++i) {
        ZvEmboss::LightJob job;
        job.highlight = planes[i].highlight.get();
        job.shadow = planes[i].shadow.get();
        job.distance = depths.outside.get();
        job.insideDistance = depths.inside.get();
        job.width = area.width;
        job.outerRadius = static_cast<int>(widths.outer);
        job.innerRadius = static_cast<int>(widths.inner);
        job.normalZ = light.normalZ;
        job.lightX = i == 0 ? light.x : -light.x;
        job.lightY = i == 0 ? light.y : -light.y;
        job.lightZ = light.z;
        job.highlightAlpha = static_cast<int>(property.highlightColor >> 24);
        job.shadowAlpha = static_cast<int>(property.shadowColor >> 24);
        job.xBegin = job.yBegin = 1;
        job.xEnd = area.width - 1;
        job.yEnd = area.height - 1;
        if (widths.exact) {
            ZvEmboss::partialLightSoftProcess(&job);
        } else {
            ZvEmboss::partialLightHardProcess(&job);
        }
    }
}

// The rows of a job, on one of its planes.
void lightRows(const ZvEmboss::LightJob& p, LitSide side, const float* plane, int limit) {
    const ReliefLight light = {p.lightX, p.lightY, p.lightZ, p.normalZ};
    for (ptrdiff_t y = p.yBegin; y < p.yEnd; ++y) {
        const ptrdiff_t at = y * p.width;
        // The height falls away from the glyphs; within them, by the opposite shade, it rises.
        lightRow({side, p.highlight + at, p.shadow + at, plane + at, p.width, p.xBegin, p.xEnd,
                  static_cast<float>(limit), static_cast<float>(p.innerRadius), light,
                  side != LitSide::Within, p.highlightAlpha, p.shadowAlpha});
    }
}

}  // namespace

ZvEmboss::ZvEmboss() {
    style = ZV_EFFECT_EMBOSS;
}

ZvEmboss::~ZvEmboss() {
    delete property;
}

int ZvEmboss::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    const Widths widths(*property);
    WorkingArea area;
    if (!area.grow(*param->textRect, widths.margin)) return 0;

    const int count = property->style == STYLE_DOUBLE ? 2 : 1;
    ReliefPlanes planes[2];
    for (int i = 0; i < count; ++i) {
        if (!planes[i].allocate(area)) return 0;
    }
    {
        Depths depths;
        if (!depths.measure(widths, area, *param->mask)) return 0;
        lightSlopes(planes, count, depths, *property, widths, area);
    }
    Buffer<uint8_t> scratch;
    if (!scratch.allocateZeroed(area.height, area.width)) return 0;
    for (int i = 0; i < count; ++i) {
        if (widths.soft && !planes[i].blur(scratch, area, static_cast<int>(widths.blur))) return 0;
        if (property->soften >= 1 && !planes[i].blur(scratch, area, property->soften)) return 0;
    }

    const ReliefColors colors = {widths.soft ? SOFT_GAIN : 1.0f, property->highlightColor,
                                 property->shadowColor};
    // The other way round than the bevel.
    const int mode = param->layerMode == 1 ? ZVE_BLEND_DST_OVER : ZVE_BLEND_SRC_OVER;
    std::unique_ptr<ReliefRows> rows(new (std::nothrow)
                                         ReliefRows(area, std::move(planes[0]), colors, mode, true));
    if (rows == nullptr) return 0;
    if (count == 2) rows->putBehind(std::move(planes[1]), *param->mask);
    if (rows->allocate()) drawLayer(param, std::move(rows));
    return 0;
}

void ZvEmboss::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceProperty(limitedAgain<ZvEmbossProperty>(newProperty), &property);
}

ZvProperty* ZvEmboss::getProperty() {
    return property;
}

int ZvEmboss::getOffset() {
    if (property == nullptr) return 0;
    return clampToInt(int64_t{truncateToInt(std::ceil(property->size * 0.5 + 1.0))} +
                      truncateToInt(static_cast<float>(property->soften) + 0.5));
}

int ZvEmboss::partialBlur(void* job) {
    if (job != nullptr) blurRelief(*static_cast<const BlurJob*>(job));
    return 0;
}

int ZvEmboss::partialOutDT(void* job) {
    if (job == nullptr) return 0;
    const DistanceJob& p = *static_cast<const DistanceJob*>(job);
    searchOutward({p.distance, p.height, p.width, p.outerRadius, p.rowBegin, p.rowEnd});
    return 0;
}

int ZvEmboss::partialInDT(void* job) {
    if (job == nullptr) return 0;
    const DistanceJob& p = *static_cast<const DistanceJob*>(job);
    searchInward({p.distance, p.height, p.width, p.innerRadius, p.rowBegin, p.rowEnd});
    return 0;
}

int ZvEmboss::partialLightSoftProcess(void* job) {
    if (job == nullptr) return 0;
    const LightJob& p = *static_cast<const LightJob*>(job);
    if (p.highlight == nullptr || p.shadow == nullptr || p.distance == nullptr || p.insideDistance == nullptr)
        return 0;
    lightRows(p, LitSide::Around, p.distance, p.outerRadius);
    lightRows(p, LitSide::Within, p.insideDistance, p.innerRadius);
    return 0;
}

int ZvEmboss::partialLightHardProcess(void* job) {
    if (job == nullptr) return 0;
    const LightJob& p = *static_cast<const LightJob*>(job);
    if (p.highlight == nullptr || p.shadow == nullptr || p.distance == nullptr) return 0;
    lightRows(p, LitSide::Signed, p.distance, p.outerRadius);
    return 0;
}

void ZvEmboss::blur(unsigned char* src, unsigned char* dst, int radius, int height, int width) {
    blurRelief(src, dst, radius, height, width);
}

void ZvEmboss::dt1D(float* out, float* in, int n) {
    squaredDistances(out, in, n);
}

}  // namespace Zvex
