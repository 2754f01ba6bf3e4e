// SPDX-License-Identifier: Apache-2.0
#include "effect/Spread.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "effect/Numbers.h"
#include "effect/filters/ZvStroke.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Dilation.h"

namespace Zvex {

namespace {

// Makes the disc of a stroke that wide. False if memory is short.
bool makeDisc(int width, DilationParam* param, Buffer<uint8_t>* disc) {
    unsigned char* cells = nullptr;
    param->kernelSize = makeCircleKernel(&cells, static_cast<float>(width));
    param->kernel = cells;
    disc->adopt(cells);
    return cells != nullptr;
}

}  // namespace

bool Spread::make(const ZvBitmap& mask, const ZvRect& box, int pixels) {
    mCoverage = Buffer<uint8_t>();
    mBox = ZvRect(box.left, box.top, box.left, box.top);
    pixels = clampInt(pixels, -kMaxSpread, kMaxSpread);
    const int64_t lost = 2 * std::max(-pixels, 0);
    if (int64_t{box.right} - box.left <= lost || int64_t{box.bottom} - box.top <= lost) return true;
    WorkingArea source, area;
    if (mask.pixels == nullptr || !source.grow(box, 0) || !area.grow(box, std::max(pixels, 0))) return false;
    Buffer<uint8_t> plane;
    if (!plane.allocateZeroed(source.height, source.width)) return false;
    copyCoverage(mask, box, plane.get(), source.width);
    if (pixels == 0) {
        mCoverage = std::move(plane);
    } else if (!dilateAround(plane.get(), source.width, source.height, pixels)) {
        return false;
    }
    const ZvRect widened = area.rect();
    const int inset = std::max(-pixels, 0);
    mBox = ZvRect(widened.left + inset, widened.top + inset, widened.right - inset, widened.bottom - inset);
    return true;
}

// Dilates the coverage, or its inverse for narrowing. To narrow glyphs is to widen their surroundings: the
// box then shrinks by the pixels, and everything that reaches the remaining part lies within the old box.
bool Spread::dilateAround(const uint8_t* source, int width, int height, int pixels) {
    DilationParam param;
    Buffer<uint8_t> disc, dilated;
    param.source = source;
    param.sourceStride = param.columns = width;
    param.rowEnd = height;
    param.inverted = pixels < 0 ? 255 : 0;
    param.targetWidth = width + 2 * pixels;
    param.targetHeight = height + 2 * pixels;
    param.originX = param.originY = pixels;
    if (!makeDisc(std::abs(pixels), &param, &disc)) return false;
    if (!dilated.allocateZeroed(param.targetHeight, param.targetWidth)) return false;
    param.target = dilated.get();
    if (!dilate(param)) return false;
    const size_t count = static_cast<size_t>(param.targetHeight) * static_cast<size_t>(param.targetWidth);
    for (size_t i = 0; i < count; ++i) dilated[i] = static_cast<uint8_t>(dilated[i] ^ param.inverted);
    mCoverage = std::move(dilated);
    return true;
}

}  // namespace Zvex
