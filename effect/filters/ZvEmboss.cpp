// SPDX-License-Identifier: Apache-2.0
//
// An emboss: the height of the relief is the signed distance to the glyph edge, from the inner radius within
// the glyphs to the outer one around them, lit as in Relief.h. Wide soft slopes take their distances from the
// exact transform, in two planes. All others search windows of one signed plane:
//
//     1 - inner radius ... 0 | 0 ... 1 on partly covered pixels | 1 ... outer radius
//              glyphs                                                   ground

#include "effect/filters/ZvEmboss.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
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

constexpr double kDepthFloor = 0.2;
constexpr float kSoftGain = 2.03f;     // as a float it turns a light of 100 into 203, as a double into 202
constexpr int kLastWindowedSize = 25;  // of soft slopes
constexpr int kStyleDouble = 3;

// Ground further away than this does not decide how high a pixel of a glyph lies: nearer ground on the same
// ray gives the same height except for rounding. So huge sizes cost no more than the picture.
constexpr int kFurthestGround = 256;

// Sizes in pixels. They fit ints once the working area does.
struct Widths {
    bool soft, exact;
    int64_t outer, inner;  // radii of the slope
    int64_t blur;          // of the soft technique
    int64_t margin;

    explicit Widths(const ZvReliefProperty& property) {
        const int size = truncateToInt(property.size);
        const auto ceiling = [](double value) { return static_cast<int64_t>(std::ceil(value)); };
        soft = property.technique == 0;
        exact = soft && size > kLastWindowedSize;
        outer = soft ? ceiling(size * 0.25 + 1.0) : ceiling(size * 0.5 + 3.0);
        inner = soft ? outer : ceiling(size * 0.5 + 1.0);
        blur = soft ? ceiling(size * 0.5 + 1.0) : 0;
        margin = reliefMargin(outer, blur, property.soften);
    }

    // The inner radius as far as the search goes. From each pixel of a glyph it reaches beyond the box.
    int reach(const ZvRect& box) const {
        const int64_t depth = std::min(int64_t{box.right} - box.left, int64_t{box.bottom} - box.top) / 2;
        return static_cast<int>(std::min(inner, std::max<int64_t>(kFurthestGround, depth + 3)));
    }
};

// The height falls away from the glyphs. Within them it rises with the distance, so they are lit as the slope
// that falls the other way.
SlopeLighting lighting(LitSide side, const ReliefLight& light, int64_t outer, int64_t inner) {
    const bool within = side == LitSide::Within;
    return {side, light, static_cast<float>(within ? inner : outer), static_cast<float>(inner), !within};
}

// Calls visit(light, i) for each relief; the light of the second one comes from the opposite side.
template <typename Light>
void forReliefs(const ReliefLight& light, int count, const Light& visit) {
    visit(light, 0);
    if (count < 2) return;
    ReliefLight opposite = light;
    opposite.x = -light.x;
    opposite.y = -light.y;
    visit(opposite, 1);
}

// Soft, wide slopes: two planes of distances, one for each side of the edge.
bool lightExactSlopes(ReliefPlanes* planes, int count, const ZvEmbossProperty& property, const Widths& widths,
                      const ReliefArea& area, const ReliefArea& whole, const ZvBitmap& mask) {
    const int outer = static_cast<int>(widths.outer), inner = static_cast<int>(widths.inner);
    // The neighbours of a pixel on the slope lie less than a pixel beyond it.
    const std::unique_ptr<DistanceRows> distances[] = {
        transformLevels(Levels::Beside, area, whole, mask, outer + 2),
        transformLevels(Levels::Coverage, area, whole, mask, inner + 2)};
    if (distances[0] == nullptr || distances[1] == nullptr) return false;
    const ReliefLight light = ReliefLight::make(property, kDepthFloor);
    for (int y = 0; y < area.height; ++y) {
        for (const auto& rows : distances) rows->next();
        for (int i = 0; i < count; ++i) planes[i].clearRow(y);
        if (y < 2) continue;
        forReliefs(light, count, [&](const ReliefLight& from, int i) {
            planes[i].lightRow(lighting(LitSide::Around, from, outer, inner), *distances[0], y);
            planes[i].lightRow(lighting(LitSide::Within, from, outer, inner), *distances[1], y);
            planes[i].endRow(y - 1);
        });
    }
    return true;
}

// All other slopes: one plane of signed distances, with the fractions of partly covered pixels.
bool measureSigned(float* plane, const Widths& widths, const ReliefArea& area, const ZvBitmap& mask) {
    const int outer = static_cast<int>(widths.outer), inner = static_cast<int>(widths.inner);
    float ramp[256];
    for (int level = 0; level < 256; ++level) {
        const float unit = static_cast<float>((255 - level) / 254.999);
        ramp[level] = unit < 0.001   ? static_cast<float>(outer)
                      : unit >= 1.0f ? 1.0f - static_cast<float>(inner)
                                     : 1.0f - unit;
    }
    Buffer<uint8_t> levels;
    if (!levels.allocate(area.height, area.width)) return false;
    makeLevels(levels.get(), Levels::Ground, area, mask, 0);
    if (inner < 1) {  // full pixels cannot be measured from
        for (size_t i = 0; i < area.pixels(); ++i) plane[i] = ramp[levels[i]];
        if (!searchOutward({plane, area.height, area.width, outer, 1, area.height})) return false;
    } else {
        const auto rows = DistanceRows::search(levels.get(), area.width, area.height, outer, ramp, true);
        if (rows == nullptr) return false;
        for (int y = 0; y < area.height; ++y) {
            rows->next();
            std::copy_n(rows->row(y), area.width, plane + area.row(y));
        }
    }
    // The first row keeps its values. No glyph's window reaches it, so the order of the inward search does
    // not matter.
    for (int x = 0; x < area.width; ++x) plane[x] = ramp[levels[static_cast<size_t>(x)]];
    return searchInward({plane, area.height, area.width, widths.reach(area.box), 1, area.height});
}

bool lightSignedSlopes(ReliefPlanes* planes, int count, const ZvEmbossProperty& property,
                       const Widths& widths, const ReliefArea& area, const ReliefArea& whole,
                       const ZvBitmap& mask) {
    // The inward search needs the distances of all the ground that its windows reach.
    const int reach = widths.reach(whole.box);
    const int64_t border = std::max<int64_t>(reach + 1, reliefBorder(widths.blur, property.soften));
    const ReliefArea reached = reach < widths.inner ? whole.cut(border) : whole;
    Buffer<float> plane;
    if (!plane.allocate(reached.height, reached.width) || !measureSigned(plane.get(), widths, reached, mask))
        return false;
    forReliefs(ReliefLight::make(property, kDepthFloor), count, [&](const ReliefLight& from, int i) {
        for (int y = 0; y < area.height; ++y) {
            planes[i].clearRow(y);
            if (y < 1 || y >= area.height - 1) continue;
            const float* row = plane.get() + reached.row(y + area.y - reached.y) + (area.x - reached.x);
            planes[i].lightRow(lighting(LitSide::Signed, from, widths.outer, widths.inner),
                               row - reached.width, row, row + reached.width, y);
            planes[i].endRow(y);
        }
    });
    return true;
}

}  // namespace

ZvEmboss::ZvEmboss() {
    style = ZV_EFFECT_EMBOSS;
}

ZvEmboss::~ZvEmboss() {
    delete property;
}

int ZvEmboss::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawableOnEither(param)) return 0;
    const Widths widths(*property);
    ReliefArea whole;
    if (!whole.grow(*param, widths.margin)) return 0;
    const ReliefArea area = whole.cut(reliefBorder(widths.blur, property->soften));

    const int count = property->style == kStyleDouble ? 2 : 1;
    ReliefPlanes planes[2];
    for (int i = 0; i < count; ++i) {
        if (!planes[i].allocate(area, widths.blur, property->soften)) return 0;
    }
    const auto lightSlopes = widths.exact ? lightExactSlopes : lightSignedSlopes;
    if (!lightSlopes(planes, count, *property, widths, area, whole, *param->mask)) return 0;
    const ReliefColors colors = {widths.soft ? kSoftGain : 1.0f, property->highlightColor,
                                 property->shadowColor};
    // The opposite of what the bevel does.
    const int mode = param->layerMode == 1 ? ZVE_BLEND_DST_OVER : ZVE_BLEND_SRC_OVER;
    auto rows = tryMake<ReliefRows>(colors, mode, true);
    if (rows == nullptr || !rows->allocate(planes[0])) return 0;
    if (count == 2 && !rows->putBehind(planes[1], *param->mask)) return 0;
    drawLayer(param, std::move(rows));
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
    const ReliefLight light = ReliefLight::of(p);
    for (const LitSide side : {LitSide::Around, LitSide::Within}) {
        lightPlane(lighting(side, light, p.outerRadius, p.innerRadius),
                   LitPlane::of(p, side == LitSide::Around ? p.distance : p.insideDistance));
    }
    return 0;
}

int ZvEmboss::partialLightHardProcess(void* job) {
    if (job == nullptr) return 0;
    const LightJob& p = *static_cast<const LightJob*>(job);
    if (p.highlight == nullptr || p.shadow == nullptr || p.distance == nullptr) return 0;
    lightPlane(lighting(LitSide::Signed, ReliefLight::of(p), p.outerRadius, p.innerRadius),
               LitPlane::of(p, p.distance));
    return 0;
}

void ZvEmboss::blur(unsigned char* src, unsigned char* dst, int radius, int height, int width) {
    blurRelief(src, dst, radius, height, width);
}

void ZvEmboss::dt1D(float* out, float* in, int n) {
    squaredDistances(out, in, n);
}

}  // namespace Zvex
