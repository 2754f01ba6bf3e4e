// SPDX-License-Identifier: Apache-2.0
//
// A bevel: the distance to the glyph edge, up to a radius, is the height of a relief, lit as in Relief.h.
// Wide soft bevels take their distances from the exact transform. It ignores partial coverage, but these
// bevels are blurred anyway, and its cost does not depend on the radius. All others search a window.

#include "effect/filters/ZvBevel.h"

#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>

#include "effect/kernels/DistanceRows.h"
#include "effect/kernels/DistanceSearch.h"
#include "effect/kernels/DistanceTransform.h"
#include "foundation/OutOfMemory.h"
#include "foundation/SafeConvert.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr double kDepthFloor = 0.1;
constexpr float kSoftGain = 1.83f;
constexpr int kFirstExactRadius = 11;  // of soft bevels

// Sizes in pixels. They fit ints once the working area does.
struct Widths {
    bool soft;
    int64_t radius;  // of the slope
    int64_t blur;    // of the soft technique
    int64_t margin;

    explicit Widths(const ZvReliefProperty& property)
        : soft(property.technique == 0), radius(0), blur(0), margin(0) {
        const int64_t size = truncateToInt(property.size);
        if (soft)
            blur = static_cast<int64_t>(
                std::ceil(static_cast<double>(static_cast<float>(2 * size)) / 3.0 + 1.0));
        radius = soft ? blur : size + 2;
        margin = reliefMargin(radius, blur, property.soften);
    }
};

// What the distances are measured from: the full pixels, on the side of the edge that has no slope.
struct Edge {
    Buffer<uint8_t> levels;
    float ramp[256];  // values of the levels
    std::unique_ptr<DistanceRows> distances;

    // Unless the slope is wide and soft, uses the fractions of partly covered pixels, which lie within a
    // pixel of the other side.
    bool make(const Widths& widths, const ReliefArea& area, const ReliefArea& whole, const ZvBitmap& mask,
              bool inner) {
        const int radius = static_cast<int>(widths.radius);
        const bool exact = widths.soft && radius >= kFirstExactRadius;
        if (exact) {
            distances = transformLevels(inner ? Levels::Coverage : Levels::Beside, area, whole, mask, radius);
            return distances != nullptr;
        }
        if (!levels.allocate(area.height, area.width)) return false;
        makeLevels(levels.get(), inner ? Levels::Coverage : Levels::Ground, area, mask, 0);
        for (int level = 0; level < 256; ++level) {
            const float unit = static_cast<float>((255 - level) / 254.99);
            ramp[level] = unit <= 0.001 ? static_cast<float>(radius) : unit < 1.0f ? 1.0f - unit : 0.0f;
        }
        distances = DistanceRows::search(levels.get(), area.width, area.height, radius, ramp, false);
        return distances != nullptr;
    }
};

// Around the glyphs the distance grows outwards and the height falls.
SlopeLighting lighting(const ReliefLight& light, int64_t radius, bool inner) {
    return {LitSide::Bevel, light, static_cast<float>(radius), 0, !inner};
}

// Lights the slopes of the area, which is a part of the whole one.
bool lightSlopes(ReliefPlanes& planes, const ZvBevelProperty& property, const Widths& widths,
                 const ReliefArea& area, const ReliefArea& whole, const ZvBitmap& mask) {
    const bool inner = property.style == 1;
    Edge edge;
    if (!edge.make(widths, area, whole, mask, inner) ||
        !planes.allocate(area, widths.blur, property.soften)) {
        return false;
    }
    const SlopeLighting slopes = lighting(ReliefLight::make(property, kDepthFloor), widths.radius, inner);
    for (int y = 0; y < area.height; ++y) {
        edge.distances->next();
        planes.clearRow(y);
        if (y < 2) continue;
        planes.lightRow(slopes, *edge.distances, y);
        planes.endRow(y - 1);
    }
    return true;
}

}  // namespace

ZvBevel::ZvBevel() {
    style = ZV_EFFECT_BEVEL;
}

ZvBevel::~ZvBevel() {
    delete property;
}

int ZvBevel::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    const Widths widths(*property);
    ReliefArea whole;
    if (!whole.grow(*param, widths.margin)) return 0;
    const ReliefArea area = whole.cut(reliefBorder(widths.blur, property->soften));

    ReliefPlanes planes;
    if (!lightSlopes(planes, *property, widths, area, whole, *param->mask)) return 0;
    const ReliefColors colors = {widths.soft ? kSoftGain : 1.0f, property->highlightColor,
                                 property->shadowColor};
    const int mode = param->layerMode == 1 ? ZVE_BLEND_SRC_OVER : ZVE_BLEND_DST_OVER;
    auto rows = tryMake<ReliefRows>(colors, mode, false);
    if (rows != nullptr && rows->allocate(planes)) drawLayer(param, std::move(rows));
    return 0;
}

void ZvBevel::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceProperty(limitedAgain<ZvBevelProperty>(newProperty), &property);
}

ZvProperty* ZvBevel::getProperty() {
    return property;
}

int ZvBevel::getOffset() {
    if (property == nullptr) return 0;
    return clampToInt(int64_t{truncateToInt(property->size + 0.5)} +
                      truncateToInt(static_cast<float>(property->soften) + 0.5));
}

int ZvBevel::partialBlur(void* job) {
    if (job != nullptr) blurRelief(*static_cast<const BlurJob*>(job));
    return 0;
}

int ZvBevel::partialDT(void* job) {
    if (job == nullptr) return 0;
    const DistanceJob& p = *static_cast<const DistanceJob*>(job);
    searchNearest({p.distance, p.height, p.width, p.radius, p.rowBegin, p.rowEnd});
    return 0;
}

int ZvBevel::partialLightProcess(void* job) {
    if (job == nullptr) return 0;
    const LightJob& p = *static_cast<const LightJob*>(job);
    if (p.highlight == nullptr || p.shadow == nullptr || p.distance == nullptr) return 0;
    lightPlane(lighting(ReliefLight::of(p), p.radius, p.inner != 0), LitPlane::of(p, p.distance));
    return 0;
}

void ZvBevel::blur(unsigned char* src, unsigned char* dst, int radius, int height, int width) {
    blurRelief(src, dst, radius, height, width);
}

void ZvBevel::dt1D(float* out, float* in, int n) {
    squaredDistances(out, in, n);
}

}  // namespace Zvex
