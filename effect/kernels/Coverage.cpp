// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Coverage.h"

#include <climits>
#include <cstring>

#include "foundation/SafeConvert.h"
#include "raster/Rects.h"

namespace Zvex {

namespace {

bool hasPixels(const ZvBitmap* bitmap) {
    return bitmap != nullptr && bitmap->pixels != nullptr;
}

}  // namespace

bool isDrawable(const ZvECore::ParamPostProcessing* param) {
    return isDrawableOnEither(param) && hasPixels(param->target);
}

bool isDrawableOnEither(const ZvECore::ParamPostProcessing* param) {
    if (param == nullptr || param->textRect == nullptr || param->target == nullptr) return false;
    if (!hasPixels(param->target) && !hasPixels(param->otherLayer)) return false;
    if (!hasPixels(param->mask)) return false;
    return !isEmpty(*param->textRect);
}

bool WorkingArea::grow(const ZvRect& box, int64_t newMargin) {
    if (newMargin < 0 || newMargin > INT_MAX) return false;
    const int64_t left = int64_t{box.left} - newMargin;
    const int64_t top = int64_t{box.top} - newMargin;
    const int64_t wide = int64_t{box.right} - box.left + 2 * newMargin;
    const int64_t high = int64_t{box.bottom} - box.top + 2 * newMargin;
    if (wide <= 0 || high <= 0 || high > INT_MAX / wide || left < INT_MIN || top < INT_MIN) return false;
    x = static_cast<int>(left);
    y = static_cast<int>(top);
    width = static_cast<int>(wide);
    height = static_cast<int>(high);
    margin = static_cast<int>(newMargin);
    return true;
}

void WorkingArea::move(int dx, int dy) {
    x = clampToInt(int64_t{x} + dx);
    y = clampToInt(int64_t{y} + dy);
}

ZvRect WorkingArea::rect() const {
    return ZvRect(x, y, clampToInt(int64_t{x} + width), clampToInt(int64_t{y} + height));
}

ZvRect partWithin(const ZvBitmap& mask, const ZvRect& box) {
    return intersected(box, pictureRect(mask.width, mask.height));
}

void copyCoverage(const ZvBitmap& mask, const ZvRect& box, uint8_t* plane, ptrdiff_t stride) {
    const ZvRect part = partWithin(mask, box);
    if (isEmpty(part)) return;
    for (int64_t y = part.top; y < part.bottom; ++y) {
        std::memcpy(plane + (y - box.top) * stride + (int64_t{part.left} - box.left),
                    mask.pixels + y * mask.width + part.left, static_cast<size_t>(widthOf(part)));
    }
}

}  // namespace Zvex
