// SPDX-License-Identifier: Apache-2.0
//
// The coverage in the middle of a plane with room for two radii around it, blurred in two passes: the blur
// writes up to one radius from the text, and its windows reach one more. The definition is
// tests/reference/ShadowReference.h.
//
//     |<- radius ->|<- radius ->|<- text box ->|<- radius ->|<- radius ->|
//         empty        blurred      blurred        blurred      empty

#include "effect/filters/ZvOuterShadow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>

#include "effect/Numbers.h"
#include "effect/filters/Buffer.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/Gaussian.h"
#include "effect/filters/Shadow.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

// The margin on a side that the shadow moves away from, by `shift` pixels, or towards.
int marginOf(const ZvOuterShadowProperty* property, int64_t shift, bool towards) {
    if (property == nullptr) return 0;
    const int64_t reach = roundSize(property->size), length = shift < 0 ? -shift : shift;
    return clampToInt(towards ? length + reach : std::max<int64_t>(reach - length, 0));
}

}  // namespace

ZvOuterShadow::ZvOuterShadow() {
    style = ZV_EFFECT_OUTER_SHADOW;
}

ZvOuterShadow::~ZvOuterShadow() {
    delete property;
}

int ZvOuterShadow::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    // The half is a double here and a float in the margins: 0.49999997 blurs by 0 with a margin of 1.
    const int radius = std::max(truncateToInt(property->size + 0.5), 0);
    WorkingArea area;
    if (!area.grow(*param->textRect, 2 * int64_t{radius})) return 0;
    area.move(dx, dy);

    // Only rows that are seen are blurred: a radius far beyond the picture costs no more than its rows.
    const int64_t rowBegin = std::max<int64_t>(radius, -int64_t{area.y});
    const int64_t rowEnd = std::min<int64_t>(area.height - radius, int64_t{param->target->height} - area.y);
    if (rowBegin >= rowEnd || int64_t{area.x} + area.width <= 0 || area.x >= int64_t{param->target->width})
        return 0;

    Buffer<uint8_t> padded, shadow;
    Gaussian kernel;
    if (!padded.allocateZeroed(area.height, area.width) || !shadow.allocateZeroed(area.height, area.width) ||
        !kernel.make(radius, SHADOW_WEIGHT, GaussianConstant::Single))
        return 0;
    copyCoverage(*param->mask, *param->textRect, padded.get() + area.row(area.margin) + area.margin,
                 area.width);
    if (!blurPlane({padded.get(), shadow.get(), area.width, &kernel, false, radius, area.width - radius,
                    static_cast<int>(rowBegin), static_cast<int>(rowEnd)}))
        return 0;
    ZvBlender::drawBitmapBlend8(area.x, area.y, param->target, shadow.get(), area.width, area.height,
                                area.width, property->color, ZVE_BLEND_DST_OVER);
    return 0;
}

void ZvOuterShadow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    ZvOuterShadowProperty* copy =
        new (std::nothrow) ZvOuterShadowProperty(*static_cast<const ZvOuterShadowProperty*>(newProperty));
    if (copy == nullptr) return;
    delete property;
    property = copy;
    const ShadowShift shift = shadowShift(*property);
    dx = shift.x;
    dy = shift.y;
}

ZvProperty* ZvOuterShadow::getProperty() {
    return property;
}

int ZvOuterShadow::getLeftOffset() {
    return marginOf(property, dx, dx < 0);
}

int ZvOuterShadow::getRightOffset() {
    return marginOf(property, dx, dx >= 0);
}

int ZvOuterShadow::getTopOffset() {
    return marginOf(property, dy, dy < 0);
}

int ZvOuterShadow::getBottomOffset() {
    return marginOf(property, dy, dy >= 0);
}

}  // namespace Zvex
