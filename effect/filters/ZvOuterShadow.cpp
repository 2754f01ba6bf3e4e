// SPDX-License-Identifier: Apache-2.0
//
// The coverage, blurred straight from the mask, columns first, in bands of rows that are small enough for the
// cache: the shadow of the whole text is never in memory. The blur reaches one radius beyond the text box,
// and only what falls onto the target is made of it. The definition is tests/reference/ShadowReference.h.
//
//     |<- radius ->|<- radius ->|<- text box ->|<- radius ->|<- radius ->|
//         empty        blurred      blurred        blurred      empty

#include "effect/filters/ZvOuterShadow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

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

    // Only what is seen is blurred: a radius far beyond the picture costs no more than its pixels. In pixels
    // of the area.
    const ZvRect part = partWithin(*param->mask, *param->textRect);
    const int64_t left = std::max<int64_t>(radius, -int64_t{area.x}),
                  top = std::max<int64_t>(radius, -int64_t{area.y});
    const int64_t right = std::min<int64_t>(area.width - radius, int64_t{param->target->width} - area.x);
    const int64_t bottom = std::min<int64_t>(area.height - radius, int64_t{param->target->height} - area.y);
    if (left >= right || top >= bottom || part.left >= part.right || part.top >= part.bottom) return 0;

    // Where the mask begins, of what is seen.
    const int sourceLeft = static_cast<int>(part.left - int64_t{param->textRect->left} + area.margin - left);
    const int sourceTop = static_cast<int>(part.top - int64_t{param->textRect->top} + area.margin - top);
    const int partWidth = part.right - part.left, partHeight = part.bottom - part.top;
    const int width = static_cast<int>(right - left), height = static_cast<int>(bottom - top);
    const uint8_t* coverage =
        param->mask->pixels + static_cast<size_t>(part.top) * param->mask->width + part.left;

    Gaussian kernel;
    Blur blur;
    Buffer<uint8_t> shadow;
    const int stride = std::max(width, partWidth);
    if (!kernel.make(radius, SHADOW_WEIGHT, GaussianConstant::Single)) return 0;
    const int band = std::min(blurBandRows(kernel), height);
    if (!blur.prepare(kernel, stride, band) || !shadow.allocate(band, stride)) return 0;
    for (int y = 0; y < height; y += band) {
        const int rows = std::min(band, height - y);
        blur.columns({coverage, param->mask->width, sourceTop - y, sourceTop - y + partHeight, shadow.get(),
                      stride, partWidth, rows, false, false});
        blur.rows({shadow.get(), stride, sourceLeft, sourceLeft + partWidth, shadow.get(), stride, width,
                   rows, false, false});
        ZvBlender::drawBitmapBlend8(static_cast<int>(area.x + left), static_cast<int>(area.y + top + y),
                                    param->target, shadow.get(), width, rows, stride, property->color,
                                    ZVE_BLEND_DST_OVER);
    }
    return 0;
}

void ZvOuterShadow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    if (!replaceProperty(*static_cast<const ZvOuterShadowProperty*>(newProperty), &property)) return;
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
