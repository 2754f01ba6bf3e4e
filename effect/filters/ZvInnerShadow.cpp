// SPDX-License-Identifier: Apache-2.0
//
// The inverse of the coverage, blurred along the rows and then, shifted, down the columns. Only the pixels
// that the shifted windows start from are computed. The plain form is tests/reference/ShadowReference.h.

#include "effect/filters/ZvInnerShadow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "effect/ColorRows.h"
#include "effect/Numbers.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Gaussian.h"
#include "effect/kernels/Shadow.h"
#include "foundation/OutOfMemory.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

// The pixels of one row or column of `length` that are within the radius of the shifted text. The rest is a
// band on the side that the text moves away from.
//
//     shift > radius:  |   band    |   within the radius   |
//                      0     shift - radius             length
struct Span {
    int begin, end;  // half-open
    int count() const { return end - begin; }
};

Span spanOf(int length, int shift, int radius) {
    return {static_cast<int>(std::max<int64_t>(0, int64_t{shift} - radius)),
            static_cast<int>(std::min<int64_t>(length, int64_t{length} + radius + shift))};
}

// Whether the shifted text is close enough for a blur. To the left and upwards it may be one pixel further
// away than to the right and downwards; then the whole box is band, opaque where the coverage is partial.
bool isNear(int64_t length, int64_t shift, int64_t radius) {
    return length + radius + shift >= 0 && shift < length + radius;
}

void showOnText(uint8_t* __restrict row, const uint8_t* blurred, int count) {
    for (int x = 0; x < count; ++x) {
        const uint8_t value = blurred[x];  // always read, so that the compiler can use vectors
        row[x] = static_cast<uint8_t>(row[x] != 0 ? value : 0);
    }
}

// On entry `shadow` holds the coverage of the text box, as large as the area; it becomes the shadow. False,
// with part of it changed, if memory is short.
bool cutOut(uint8_t* shadow, const WorkingArea& area, ShadowShift shift, int radius) {
    Gaussian kernel;
    if (!kernel.make(radius, kShadowWeight, GaussianConstant::Single)) return false;
    const int width = area.width, height = area.height;
    const Span columns = spanOf(width, shift.x, radius), rows = spanOf(height, shift.y, radius);
    const int band = std::min(blurBandRows(kernel), height), count = columns.count();
    Buffer<uint8_t> inverse, blurred;  // of the pixels within reach
    Blur blur;
    if (!inverse.allocate(height, width) || !blurred.allocate(band, width) ||
        !blur.prepare(kernel, width, band))
        return false;

    if (count > 0) {
        blur.rows({shadow, width, shift.x - columns.begin, shift.x - columns.begin + width, inverse.get(),
                   count, count, height, false, true});
    }
    std::memset(shadow, 255, area.row(rows.begin));
    for (int y = rows.begin; y < rows.end; y += band) {
        const int bandRows = std::min(band, rows.end - y);
        // Beyond the source everything is shadow: the inverse of no coverage.
        blur.columns({inverse.get(), count, shift.y - y, shift.y - y + height, blurred.get(), count, count,
                      bandRows, true, true});
        for (int i = 0; i < bandRows; ++i) {
            uint8_t* row = shadow + area.row(y + i);
            std::memset(row, 255, static_cast<size_t>(columns.begin));
            showOnText(row + columns.begin, blurred.get() + ptrdiff_t{i} * count, count);
            std::memset(row + columns.end, 255, static_cast<size_t>(width - columns.end));
        }
    }
    std::memset(shadow + area.row(rows.end), 255, area.pixels() - area.row(rows.end));
    return true;
}

// The shadow in one colour.
class PlaneRows : public ColorRows {
public:
    PlaneRows(const WorkingArea& area, Buffer<uint8_t> plane, uint32_t color)
        : mArea(area), mPlane(std::move(plane)) {
        mColor = color;
        mMode = ZVE_BLEND_DST_OVER;
    }

    Part next(RowRange rows) override {
        const RowRange part = rows.within(mArea.y, mArea.height);
        if (part.count() <= 0) return {};
        return {mPlane.get() + mArea.row(part.begin),
                mArea.width,
                mArea.x,
                mArea.y + part.begin,
                mArea.width,
                part.count()};
    }
    ZvRect reach() const override { return mArea.rect(); }

private:
    WorkingArea mArea;
    Buffer<uint8_t> mPlane;
};

}  // namespace

ZvInnerShadow::ZvInnerShadow() {
    style = ZV_EFFECT_INNER_SHADOW;
}

ZvInnerShadow::~ZvInnerShadow() {
    delete property;
}

int ZvInnerShadow::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    const ShadowShift shift = shadowShift(*property);
    const int radius = std::max(roundSize(property->size), 0);
    WorkingArea area;
    Buffer<uint8_t> shadow;
    if (!area.grow(*param->textRect, 0) || !shadow.allocateZeroed(area.height, area.width)) return 0;
    copyCoverage(*param->mask, *param->textRect, shadow.get(), area.width);
    if (isNear(area.width, shift.x, radius) && isNear(area.height, shift.y, radius) &&
        !cutOut(shadow.get(), area, shift, radius))
        return 0;
    drawLayer(param, tryMake<PlaneRows>(area, std::move(shadow), property->color));
    return 0;
}

void ZvInnerShadow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const ZvInnerShadowProperty& given = *static_cast<const ZvInnerShadowProperty*>(newProperty);
    replaceProperty(
        ZvInnerShadowProperty(given.angle, given.distance, given.size, given.color, given.opacity),
        &property);
}

ZvProperty* ZvInnerShadow::getProperty() {
    return property;
}

int ZvInnerShadow::getOffset() {
    return 0;
}

}  // namespace Zvex
