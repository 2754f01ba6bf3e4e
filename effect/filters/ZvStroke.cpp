// SPDX-License-Identifier: Apache-2.0
//
// An outline is one of these: the text's coverage dilated by a smooth disc (outside); 255 minus the coverage,
// dilated by it (inside); or the smaller of the two (centred: a band of half the width on either side of the
// edge). That takes one dilation for the first two and two for the third; see Dilation.h for their cost. The
// band is never in memory as a whole: a few rows at a time are dilated and blended.

#include "effect/filters/ZvStroke.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <utility>

#include "effect/ColorRows.h"
#include "effect/Numbers.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Dilation.h"
#include "foundation/KeptMemory.h"
#include "foundation/OutOfMemory.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

namespace {

// Transparent pixels around the text box, so that glyphs which touch the box have an edge there. Together
// with the disc's radius they give the reach of the stroke:
//
//     |<- r ->|1|<- text box ->|1|<- r ->|
constexpr int kBorder = 1;

// The cell of a disc at `distance` from its middle: 1 up to the radius, falling to 0 over the next pixel.
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

constexpr uint8_t kCoverage = 0;
constexpr uint8_t kBackground = 255;

// The dilation of the mask within the box and its border, over the rows of the area. Pixels outside the mask
// have coverage 0.
DilationParam dilationOf(const ZvBitmap& mask, const ZvRect& box, const WorkingArea& area,
                         const uint8_t* kernel, int kernelSize, uint8_t inverted) {
    DilationParam param;
    ZvRect part = partWithin(mask, box);
    const bool empty = isEmpty(part);
    if (empty) part = ZvRect(box.left, box.top, box.left, box.top);
    param.source = empty ? mask.pixels : mask.pixels + int64_t{part.top} * mask.width + part.left;
    param.sourceStride = mask.width;
    param.columns = widthOf(part);
    param.inverted = inverted;
    param.left = part.left - box.left + kBorder;
    param.top = part.top - box.top + kBorder;
    param.right = box.right - part.right + kBorder;
    param.bottom = box.bottom - part.bottom + kBorder;
    param.targetWidth = area.width;
    param.targetHeight = area.height;
    param.originX = kernelSize / 2 + param.left;
    param.originY = kernelSize / 2 + param.top;
    param.kernel = kernel;
    param.kernelSize = kernelSize;
    param.rowEnd = heightOf(part);
    return param;
}

// Overwrites the rows with the dilation; 0 where nothing reaches.
void dilateRows(Dilation& dilation, int64_t row, int rows, uint8_t* lines, int width) {
    std::memset(lines, 0, static_cast<size_t>(width) * static_cast<size_t>(rows));
    const int64_t begin = std::max(row, dilation.firstRow());
    const int64_t end = std::min(row + rows, dilation.endRow());
    if (begin < end) {
        dilation.raise(begin, static_cast<int>(end - begin), lines + (begin - row) * width, width);
    }
}

// The band around the edge, a few rows at a time.
class StrokeRows : public ColorRows {
public:
    // False if memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvStrokeProperty& property);

    Part next(RowRange rows) override;
    ZvRect reach() const override { return mArea.rect(); }

private:
    void makeBand(int row, int rows);

    WorkingArea mArea;
    Buffer<uint8_t> mKernel;
    // The dilations of the coverage and of its inverse; null if not needed.
    std::unique_ptr<Dilation> mOutward, mInward;
    Buffer<uint8_t> mBand;  // Dilation::kBatch rows of each
};

bool StrokeRows::make(const ZvECore::ParamPostProcessing& param, const ZvStrokeProperty& property) {
    const bool centered = property.position == ZV_STROKE_CENTER;
    mColor = property.color;
    mDrawsOnOther = true;
    mMode = centered && param.layerMode != 1 ? ZVE_BLEND_SRC_OVER : ZVE_BLEND_DST_OVER;

    unsigned char* cells = nullptr;
    const int kernelSize = makeCircleKernel(&cells, centered ? property.width * 0.5f : property.width);
    if (cells == nullptr) return false;
    mKernel.adopt(cells);
    const ZvRect& box = *param.textRect;
    const ZvBitmap& mask = *param.mask;
    if (!mArea.grow(box, int64_t{kBorder} + kernelSize / 2)) return false;
    const auto add = [&](std::unique_ptr<Dilation>& dilation, uint8_t inverted) {
        dilation = Dilation::make(dilationOf(mask, box, mArea, cells, kernelSize, inverted));
        return dilation != nullptr;
    };
    const bool isOutside = property.position == ZV_STROKE_OUTSIDE;
    if ((centered || isOutside) && !add(mOutward, kCoverage)) return false;
    if (!isOutside && !add(mInward, kBackground)) return false;
    return mBand.allocate(2 * Dilation::kBatch, mArea.width);
}

// The smaller of both dilations, or the only one.
void StrokeRows::makeBand(int row, int rows) {
    dilateRows(mOutward != nullptr ? *mOutward : *mInward, row, rows, mBand.get(), mArea.width);
    if (mOutward == nullptr || mInward == nullptr) return;
    const int64_t count = int64_t{mArea.width} * rows;
    uint8_t* band = mBand.get();
    uint8_t* inside = band + count;
    dilateRows(*mInward, row, rows, inside, mArea.width);
    for (int64_t i = 0; i < count; ++i) band[i] = std::min(band[i], inside[i]);
}

ColorRows::Part StrokeRows::next(RowRange rows) {
    const RowRange part = rows.within(mArea.y, mArea.height);
    const int count = std::min(part.count(), Dilation::kBatch);
    if (count <= 0) return {};
    makeBand(part.begin, count);
    return {mBand.get(), mArea.width, mArea.x, mArea.y + part.begin, mArea.width, count};
}

}  // namespace

int makeCircleKernel(unsigned char** kernel, float radius) {
    if (kernel == nullptr) return 0;
    *kernel = nullptr;
    const int r = roundSize(radius);
    const int64_t size = 2 * int64_t{r} + 1;
    if (r < 0 || size > INT_MAX / size) return 0;
    unsigned char* cells = static_cast<unsigned char*>(takeMemory(static_cast<size_t>(size * size)));
    if (cells == nullptr) {
        markOutOfMemory();
        return 0;
    }
    // Only cells in the ring need the root: the rest of the disc is full, and cells outside are empty.
    const int inner = truncateToInt(radius) * truncateToInt(radius), outer = (r + 2) * (r + 2);
    for (int dy = 0; dy <= r; ++dy) {
        unsigned char* row = cells + (r + dy) * size;
        for (int dx = 0; dx <= r; ++dx) {
            const int square = dx * dx + dy * dy;
            row[r + dx] = row[r - dx] = square <= inner ? 255
                                        : square >= outer
                                            ? 0
                                            : discCoverage(std::sqrt(static_cast<float>(square)), radius);
        }
        std::memcpy(cells + (r - dy) * size, row, static_cast<size_t>(size));
    }
    // A pen thinner than a pixel draws a paler line. Without this the middle cell would be opaque for any
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
    if (property == nullptr || !isDrawableOnEither(param)) return 0;
    if (!(property->width >= 0) || !std::isfinite(property->width)) return 0;
    auto rows = tryMake<StrokeRows>();
    if (rows != nullptr && rows->make(*param, *property)) drawLayer(param, std::move(rows));
    return 0;
}

void ZvStroke::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    replaceProperty(*static_cast<const ZvStrokeProperty*>(newProperty), &property);
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
    dilatePlane(*static_cast<const DTJob*>(job), 0, kCoverage);
    dilatePlane(*static_cast<const DTJob*>(job), 1, kBackground);
    return 0;
}

int ZvStroke::partalDTStrokeOutside(void* job) {
    if (job != nullptr) dilatePlane(*static_cast<const DTJob*>(job), 0, kCoverage);
    return 0;
}

int ZvStroke::partalDTStrokeInside(void* job) {
    if (job != nullptr) dilatePlane(*static_cast<const DTJob*>(job), 0, kBackground);
    return 0;
}

}  // namespace Zvex
