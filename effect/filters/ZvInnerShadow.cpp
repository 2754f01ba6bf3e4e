// SPDX-License-Identifier: Apache-2.0
//
// The inverse of the coverage, blurred along the rows and then, shifted, down the columns. Only the pixels
// that the shifted windows start from are computed, and the planes are wide enough that no window has to be
// cut: nothing beside the text (all shadow) costs a test. The definition is
// tests/reference/ShadowReference.h.

#include "effect/filters/ZvInnerShadow.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "effect/Numbers.h"
#include "effect/filters/Buffer.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/Gaussian.h"
#include "effect/filters/Shadow.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

// The pixels, of one row or column of `length`, that a shift leaves within the radius of the shifted text.
// The rest is a band on the side that the text moves away from.
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

// Whether the shifted text comes close enough for a blur. To the left it may be one pixel further away than
// to the right; the band is then the whole box, opaque where the coverage would be partial. The same upwards.
bool isNear(int64_t length, int64_t shift, int64_t radius) {
    return length + radius + shift >= 0 && shift < length + radius;
}

// `shadow` holds the coverage of the text box, area large, and becomes the shadow. False, with some of it
// changed, when memory is short.
bool cutOut(uint8_t* shadow, const WorkingArea& area, ShadowShift shift, int radius) {
    Gaussian kernel;
    if (!kernel.make(radius, SHADOW_WEIGHT, GaussianConstant::Single)) return false;
    const int width = area.width, height = area.height, room = 2 * radius;  // of either end of a plane
    const Span columns = spanOf(width, shift.x, radius), rows = spanOf(height, shift.y, radius);
    // The coverage of a row with room for the shift and the windows, and the inverse with the same room above
    // and below, where all is shadow.
    Buffer<uint8_t> padded, inverse, blurred;
    Buffer<uint32_t> sums;
    const int64_t paddedWidth = width + 2 * int64_t{room}, inverseRows = height + 2 * int64_t{room};
    if (paddedWidth > INT_MAX || inverseRows > INT_MAX) return false;
    if (!padded.allocateZeroed(paddedWidth) || !inverse.allocate(inverseRows, width) ||
        !blurred.allocate(width) || !sums.allocate(width))
        return false;

    std::memset(inverse.get(), 255, static_cast<size_t>(inverseRows) * static_cast<size_t>(width));
    for (int y = 0; y < height; ++y) {
        std::memcpy(padded.get() + room, shadow + area.row(y), static_cast<size_t>(width));
        blurRun({padded.get() + room + columns.begin - shift.x, inverse.get() + area.row(room + y),
                 columns.count(), 1, &kernel, true},
                sums.get());
    }
    for (int y = 0; y < height; ++y) {
        uint8_t* row = shadow + area.row(y);
        if (y < rows.begin || y >= rows.end) {
            std::memset(row, 255, static_cast<size_t>(width));
            continue;
        }
        blurRun({inverse.get() + area.row(room + y - shift.y), blurred.get(), columns.count(), width, &kernel,
                 false},
                sums.get());
        std::memset(row, 255, static_cast<size_t>(columns.begin));
        for (int x = columns.begin; x < columns.end; ++x) {
            if (row[x] != 0) row[x] = blurred[static_cast<size_t>(x - columns.begin)];
        }
        std::memset(row + columns.end, 255, static_cast<size_t>(width - columns.end));
    }
    return true;
}

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
    ZvBlender::drawBitmapBlend8(area.x, area.y, param->target, shadow.get(), area.width, area.height,
                                area.width, property->color, ZVE_BLEND_DST_OVER);
    return 0;
}

void ZvInnerShadow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const ZvInnerShadowProperty& given = *static_cast<const ZvInnerShadowProperty*>(newProperty);
    ZvInnerShadowProperty* copy = new (std::nothrow)
        ZvInnerShadowProperty(given.angle, given.distance, given.size, given.color, given.opacity);
    if (copy == nullptr) return;
    delete property;
    property = copy;
}

ZvProperty* ZvInnerShadow::getProperty() {
    return property;
}

int ZvInnerShadow::getOffset() {
    return 0;
}

}  // namespace Zvex
