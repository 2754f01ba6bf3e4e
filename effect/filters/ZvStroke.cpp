// SPDX-License-Identifier: Apache-2.0
//
// An outline: the text's coverage dilated by a smooth disc (outside), the coverage of everything but the text
// dilated by it (inside), or the smaller of the two (centred: a band of half the width on either side of the
// edge). One dilation for the first two, two for the third; see Dilation.h for their cost.

#include "effect/filters/ZvStroke.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "effect/Numbers.h"
#include "effect/filters/Buffer.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/Dilation.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

// Transparent pixels around the text box, so that glyphs which touch it have an edge there. Together with the
// disc's radius this is how far the picture of the stroke reaches:
//
//     |<- r ->|1|<- text box ->|1|<- r ->|
constexpr int BORDER = 1;

// The cell of a disc at `distance` from its middle: 1 up to the radius, falling to 0 within the next pixel.
uint8_t discCoverage(float distance, float radius) {
    return byteOfUnit(clampFloat(1.0f - (distance - radius), 0.0f, 1.0f));
}

// Dilates the job's rows into one of its planes.
void dilatePlane(const ZvStroke::DTJob& job, int plane, uint8_t inverted) {
    if (job.dst == nullptr || job.src == nullptr || job.kernel == nullptr) return;
    DilationParam param;
    param.source = job.src + static_cast<ptrdiff_t>(job.srcY) * job.srcStride + job.srcX;
    param.sourceStride = job.srcStride;
    param.columns = std::min(job.columns, job.srcStride - job.srcX);
    param.inverted = inverted;
    param.target = job.dst + static_cast<ptrdiff_t>(plane) * job.planeSize;
    param.targetWidth = job.dstStride;
    param.targetHeight = job.dstHeight;
    param.originX = job.dstX;
    param.originY = job.dstY;
    param.kernel = job.kernel;
    param.kernelSize = job.kernelSize;
    param.rowBegin = std::max(job.rowStart, 0);
    param.rowEnd = std::min({job.rowEnd, job.rows, job.srcHeight - job.srcY});
    dilate(param);
}

constexpr uint8_t COVERAGE = 0;
constexpr uint8_t BACKGROUND = 255;

}  // namespace

int makeCircleKernel(unsigned char** kernel, float radius) {
    if (kernel == nullptr) return 0;
    *kernel = nullptr;
    const int r = roundSize(radius);
    const int64_t size = 2 * int64_t{r} + 1;
    if (r < 0 || size > INT_MAX / size) return 0;
    unsigned char* cells = static_cast<unsigned char*>(std::malloc(static_cast<size_t>(size * size)));
    if (cells == nullptr) return 0;
    unsigned char* cell = cells;
    for (int dy = -r; dy <= r; ++dy) {
        for (int dx = -r; dx <= r; ++dx)
            *cell++ = discCoverage(std::sqrt(static_cast<float>(dx * dx + dy * dy)), radius);
    }
    // A pen thinner than a pixel leaves a paler line; the ramp alone would make the middle opaque for any
    // radius.
    cells[size * r + r] = byteOfUnit(clampFloat(radius, 0.0f, 1.0f));
    *kernel = cells;
    return static_cast<int>(size);
}

ZvStroke::ZvStroke() {
    style = ZV_EFFECT_STROKE;
}

ZvStroke::~ZvStroke() {
    delete property;
}

int ZvStroke::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    if (!(property->width >= 0) || !std::isfinite(property->width)) return 0;

    const bool centered = property->position == ZV_STROKE_CENTER;
    unsigned char* cells = nullptr;
    const float discRadius = centered ? property->width * 0.5f : property->width;
    const int kernelSize = makeCircleKernel(&cells, discRadius);
    if (cells == nullptr) return 0;
    Buffer<uint8_t> kernel;
    kernel.adopt(cells);
    const int radius = kernelSize / 2;

    const ZvRect& box = *param->textRect;
    WorkingArea source, area;
    if (!source.grow(box, BORDER) || !area.grow(box, int64_t{BORDER} + radius)) return 0;
    Buffer<uint8_t> padded;
    Buffer<uint8_t> band;
    if (!padded.allocateZeroed(source.height, source.width)) return 0;
    if (!band.allocateZeroed(area.height, area.width, centered ? 2 : 1)) return 0;
    copyCoverage(*param->mask, box, padded.get() + source.row(BORDER) + BORDER, source.width);

    DTJob job;
    job.dst = band.get();
    job.src = padded.get();
    job.kernel = kernel.get();
    job.srcStride = source.width;
    job.srcHeight = source.height;
    job.dstStride = area.width;
    job.dstHeight = area.height;
    job.dstY = radius;
    job.dstX = radius;
    job.planeSize = area.width * area.height;
    job.radius = truncateToInt(discRadius);
    job.kernelSize = kernelSize;
    job.columns = job.srcStride;
    job.rows = job.srcHeight;
    job.rowStart = 0;
    job.rowEnd = job.rows;
    if (centered) {
        partalDTStrokeCenter(&job);
        uint8_t* outside = band.get();
        const uint8_t* inside = outside + job.planeSize;
        for (int i = 0; i < job.planeSize; ++i) outside[i] = std::min(outside[i], inside[i]);
    } else if (property->position == ZV_STROKE_OUTSIDE) {
        partalDTStrokeOutside(&job);
    } else {
        partalDTStrokeInside(&job);
    }

    const int mode = centered && param->layerMode != 1 ? ZVE_BLEND_SRC_OVER : ZVE_BLEND_DST_OVER;
    for (ZvBitmap* target : {param->target, param->otherLayer}) {
        ZvBlender::drawBitmapBlend8(area.x, area.y, target, band.get(), job.dstStride, job.dstHeight,
                                    job.dstStride, property->color, mode);
    }
    return 0;
}

void ZvStroke::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    ZvStrokeProperty* copy =
        new (std::nothrow) ZvStrokeProperty(*static_cast<const ZvStrokeProperty*>(newProperty));
    if (copy == nullptr) return;
    delete property;
    property = copy;
}

ZvProperty* ZvStroke::getProperty() {
    return property;
}

int ZvStroke::getOffset() {
    if (property == nullptr) return 0;
    if (property->position == ZV_STROKE_OUTSIDE) return roundSize(property->width);
    if (property->position == ZV_STROKE_CENTER) return roundSize(property->width * 0.5f);
    return 0;
}

int ZvStroke::partalDTStrokeCenter(void* job) {
    if (job == nullptr) return 0;
    dilatePlane(*static_cast<const DTJob*>(job), 0, COVERAGE);
    dilatePlane(*static_cast<const DTJob*>(job), 1, BACKGROUND);
    return 0;
}

int ZvStroke::partalDTStrokeOutside(void* job) {
    if (job != nullptr) dilatePlane(*static_cast<const DTJob*>(job), 0, COVERAGE);
    return 0;
}

int ZvStroke::partalDTStrokeInside(void* job) {
    if (job != nullptr) dilatePlane(*static_cast<const DTJob*>(job), 0, BACKGROUND);
    return 0;
}

}  // namespace Zvex
