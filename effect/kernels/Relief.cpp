// SPDX-License-Identifier: Apache-2.0
#include "effect/kernels/Relief.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "effect/kernels/Gaussian.h"
#include "foundation/SafeConvert.h"
#include "foundation/Trigonometry.h"
#include "raster/CpuTarget.h"
#include "raster/Rects.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

// Not the nearest float: the pictures depend on this value.
constexpr float kPi = 3.14159f;

float radians(float degrees) {
    return degrees * kPi / 180.0f;
}

constexpr int kWeight = 100;

// Pixels of a block. A block of equal pixels is computed once.
constexpr int kBlock = 64;

// Rows that are blurred at a time.
constexpr int kBand = 64;

// A first blur is wide if its radius exceeds this many times the rows that it is needed for.
constexpr double kWideBlur = 1.5;

// Marks a block whose pixels differ, in light or in shadow.
constexpr int32_t kUneven = -1;

// The pixels of a row from `begin` to `end` - 1, with their neighbours on all four sides. The pointers are to
// the row's first pixel.
struct LitRow {
    uint8_t* highlight;
    uint8_t* shadow;
    const float* above;
    const float* distances;
    const float* below;
    int begin, end;
};

#define ZVEX_KERNELS "effect/kernels/ReliefKernels.inc"
#include "raster/ForEachTarget.h"

// The part of a row of the area that lies on the mask: columns `begin` to `end` - 1.
struct MaskRow {
    const uint8_t* pixels;
    int begin, end;  // columns of the area; *pixels is at `begin`
};

MaskRow maskRow(const WorkingArea& area, const ZvBitmap& mask, int y, int begin, int end) {
    const int64_t width = mask.width, height = mask.height, x = area.x, maskY = int64_t{area.y} + y;
    const int64_t first = std::max<int64_t>(begin, -x), last = std::min<int64_t>(end, width - x);
    if (maskY < 0 || maskY >= height || first >= last) return {mask.pixels, begin, begin};
    return {mask.pixels + (maskY * width + x + first), static_cast<int>(first), static_cast<int>(last)};
}

bool isByte(int alpha) {
    return alpha >= 0 && alpha <= 255;
}

void lightRow(const SlopeLighting& lighting, const LitRow& row) {
    const ReliefLight& light = lighting.light;
    if (isByte(light.highlightAlpha) && isByte(light.shadowAlpha)) {
        ZVEX_ON_TARGET(lightRow<int>(lighting, row));
    } else {
        TargetBaseline::lightRow<int64_t>(lighting, row);  // too rare for a build for each instruction set
    }
}

}  // namespace

void lightPlane(const SlopeLighting& lighting, const LitPlane& plane) {
    for (ptrdiff_t y = plane.yBegin; y < plane.yEnd; ++y) {
        const ptrdiff_t at = y * plane.width;
        const float* distances = plane.distances + at;
        lightRow(lighting, {plane.highlight + at, plane.shadow + at, distances - plane.width, distances,
                            distances + plane.width, plane.xBegin, plane.xEnd});
    }
}

bool ReliefArea::grow(const ZvECore::ParamPostProcessing& param, int64_t newMargin) {
    if (!WorkingArea::grow(*param.textRect, newMargin)) return false;
    box = *param.textRect;
    ZvRect pictures = pictureRect(param.mask->width, param.mask->height);
    for (const ZvBitmap* picture : {param.target, param.otherLayer}) {
        if (picture != nullptr) pictures = united(pictures, pictureRect(picture->width, picture->height));
    }
    const ZvRect part = intersected(rect(), pictures);
    if (isEmpty(part)) return false;
    shown = ZvRect(part.left - x, part.top - y, part.right - x, part.bottom - y);
    return true;
}

ReliefArea ReliefArea::cut(int64_t border) const {
    // A blur counts pixels in the border of its rows as 0, so the border affects twice its width.
    const auto before = [=](int begin) { return begin >= 2 * border ? static_cast<int>(begin - border) : 0; };
    const auto after = [=](int end, int size) {
        return size - end >= 2 * border ? static_cast<int>(end + border) : size;
    };
    const int left = before(shown.left), top = before(shown.top);
    const int right = after(shown.right, width), bottom = after(shown.bottom, height);
    ReliefArea part = *this;
    part.x += left;
    part.y += top;
    part.width = right - left;
    part.height = bottom - top;
    part.shown = ZvRect(shown.left - left, shown.top - top, shown.right - left, shown.bottom - top);
    part.isCutLeft = isCutLeft || left > 0;
    part.isCutRight = isCutRight || right < width;
    return part;
}

bool ReliefPlanes::allocate(const ReliefArea& newArea, int64_t newBlur, int newSoften) {
    area = newArea;
    blur = static_cast<int>(newBlur);
    soften = newSoften;
    const int more = std::max(soften, 0);
    const ZvRect& shown = area.shown;
    const ZvRect needed(shown.left - more, shown.top - more, shown.right + more, shown.bottom + more);
    const bool showsBorder = needed.left < blur || needed.top < blur || needed.right > area.width - blur ||
                             needed.bottom > area.height - blur;
    if (showsBorder || blur <= kWideBlur * heightOf(needed))
        return highlight.allocate(area.height, area.width) && shadow.allocate(area.height, area.width);
    mWide = tryMake<WideBlur>();
    if (mWide == nullptr || !mWide->kernel.make(blur, kWeight, GaussianConstant::Double)) return false;
    mWide->needed = needed;
    for (ColumnSums* sums : {&mWide->highlight, &mWide->shadow}) {
        if (!sums->prepare(mWide->kernel, needed.top, heightOf(needed), area.width)) return false;
    }
    return highlight.allocate(area.width) && shadow.allocate(area.width);
}

void ReliefPlanes::clearRow(int y) const {
    for (const Buffer<uint8_t>* plane : {&highlight, &shadow})
        std::memset(plane->get() + at(y), 0, static_cast<size_t>(area.width));
}

void ReliefPlanes::lightRow(const SlopeLighting& lighting, const float* above, const float* distances,
                            const float* below, int y) const {
    Zvex::lightRow(lighting, {highlight.get() + at(y), shadow.get() + at(y), above, distances, below, 1,
                              area.width - 1});
}

void ReliefPlanes::endRow(int y) const {
    if (mWide == nullptr) return;
    mWide->highlight.add(highlight.get(), y);
    mWide->shadow.add(shadow.get(), y);
}

bool ReliefPlanes::finish() {
    if (mWide == nullptr) return true;
    const ReliefArea part = area.cut(std::max(soften, 0));
    if (!blurRows(&mWide->highlight, part, &highlight) || !blurRows(&mWide->shadow, part, &shadow))
        return false;
    mWide.reset();
    area = part;
    blur = 0;
    return true;
}

// Ends the first blur: along the rows, into a plane of the part.
bool ReliefPlanes::blurRows(ColumnSums* sums, const ReliefArea& part, Buffer<uint8_t>* plane) const {
    const ZvRect& needed = mWide->needed;
    const int width = widthOf(needed), height = heightOf(needed);
    Buffer<uint8_t> means;
    Blur rows;
    if (!means.allocate(height, area.width) || !plane->allocateZeroed(part.height, part.width) ||
        !rows.prepare(mWide->kernel, width, height)) {
        return false;
    }
    sums->finish(means.get());
    // Pixels of the border count as 0.
    const int left = std::max(needed.left - blur, area.isCutLeft ? 0 : blur);
    const int right = std::min(needed.right + blur, area.isCutRight ? area.width : area.width - blur);
    uint8_t* target = plane->get() + part.row(area.y + needed.top - part.y) + (area.x + needed.left - part.x);
    rows.rows({means.get() + left, area.width, left - needed.left, right - needed.left, target, part.width,
               width, height, false, false});
    return true;
}

ReliefLight ReliefLight::make(const ZvReliefProperty& property, double depthFloor) {
    const float azimuth = radians(180.0f - property.angle), elevation = radians(property.altitude);
    const float sign = property.direction == 0 ? -1.0f : 1.0f;
    const double depth = property.depth > depthFloor ? property.depth : depthFloor;
    ReliefLight light;
    light.x = sign * (cosine(azimuth) * cosine(elevation));
    light.y = sign * (sine(azimuth) * cosine(elevation));
    light.z = sine(elevation);
    light.normalZ = static_cast<float>(2.4 / depth);
    light.highlightAlpha = static_cast<int>(property.highlightColor >> 24);
    light.shadowAlpha = static_cast<int>(property.shadowColor >> 24);
    return light;
}

int64_t reliefMargin(int64_t radius, int64_t blur, int64_t soften) {
    return std::max(2 * soften, 2 * blur) + radius;
}

int64_t reliefBorder(int64_t blur, int64_t soften) {
    return std::max<int64_t>(blur, 0) + std::max<int64_t>(soften, 0) + 2;
}

void makeLevels(uint8_t* plane, Levels levels, const ReliefArea& area, const ZvBitmap& mask, int more) {
    const int none = levels == Levels::Coverage ? 0 : 255;
    const auto within = [](int64_t at, int size) {
        return static_cast<int>(std::clamp<int64_t>(at, 0, size));
    };
    const int left = within(int64_t{area.box.left} - area.x, area.width);
    const int top = within(int64_t{area.box.top} - area.y, area.height);
    const int right = within(int64_t{area.box.right} + more - area.x, area.width);
    const int bottom = within(int64_t{area.box.bottom} + more - area.y, area.height);
    const auto clear = [&](uint8_t* row, int begin, int end) {
        if (begin < end) std::memset(row + begin, none, static_cast<size_t>(end - begin));
    };
    for (int y = 0; y < area.height; ++y) {
        uint8_t* row = plane + area.row(y);
        const MaskRow part = maskRow(area, mask, y, left, right);
        if (y < top || y >= bottom || part.begin >= part.end) {
            clear(row, 0, area.width);
            continue;
        }
        clear(row, 0, part.begin);
        clear(row, part.end, area.width);
        ZVEX_ON_TARGET(makeLevels(row + part.begin, part.pixels, part.end - part.begin, levels));
    }
}

std::unique_ptr<DistanceRows> transformLevels(Levels levels, const ReliefArea& part, const ReliefArea& whole,
                                              const ZvBitmap& mask, int radius) {
    // Only pixels of the box can be covered.
    ReliefArea text = part;
    const ZvRect& box = part.box;
    const ZvRect more(box.left, box.top, clampToInt(int64_t{box.right} + 1),
                      clampToInt(int64_t{box.bottom} + 1));
    const ZvRect covered = intersected(partWithin(mask, more), part.rect());
    text.width = text.height = 1;
    if (!isEmpty(covered)) {
        text.x = covered.left;
        text.y = covered.top;
        text.width = widthOf(covered);
        text.height = heightOf(covered);
    }
    Buffer<uint8_t> plane;
    if (!plane.allocate(text.height, text.width)) return nullptr;
    makeLevels(plane.get(), levels, text, mask, 1);
    return DistanceRows::transform({plane.get(), text.placeIn(whole), levels == Levels::Coverage},
                                   whole.width, whole.height, part.placeIn(whole), radius);
}

bool blurRelief(const ReliefBlurJob& job) {
    if (job.source == nullptr || job.destination == nullptr) return true;
    if (job.xBegin >= job.xEnd || job.yBegin >= job.yEnd) return true;
    Gaussian kernel;
    if (!kernel.make(job.radius, kWeight, GaussianConstant::Double)) return false;
    return blurPlane({job.source, job.destination, job.stride, &kernel, false, job.xBegin, job.xEnd,
                      job.yBegin, job.yEnd});
}

bool blurRelief(unsigned char* source, unsigned char* destination, int radius, int height, int width) {
    const int border = std::max(radius, 0);
    const auto end = [=](int size) { return clampToInt(int64_t{size} - border); };
    return blurRelief({source, destination, width, border, border, end(width), border, end(height)});
}

void ReliefColors::row(uint32_t* pixels, const uint8_t* highlightLights, const uint8_t* shadowLights,
                       int count) const {
    ZVEX_ON_TARGET(colorRow(pixels, highlightLights, shadowLights, count, gain, highlight, shadow));
}

bool ReliefRows::allocate(ReliefPlanes& light) {
    if (!mLight.make(light)) return false;
    mArea = light.area;
    return mRow.allocate(mArea.width);
}

bool ReliefRows::putBehind(ReliefPlanes& light, const ZvBitmap& mask) {
    mMask = &mask;
    return mBehind.make(light) && mRowBehind.allocate(mArea.width) && mCoverage.allocate(mArea.width);
}

void ReliefRows::colorRow(int y) {
    const int width = mArea.width;
    mLight.moveTo(y);
    mColors.row(mRow.get(), mLight.highlight(), mLight.shadow(), width);
    if (mMask == nullptr) return;
    mBehind.moveTo(y);
    mColors.row(mRowBehind.get(), mBehind.highlight(), mBehind.shadow(), width);
    std::memset(mCoverage.get(), 0, static_cast<size_t>(width));
    const ZvRect row(mArea.x, mArea.y + y, mArea.x + width, mArea.y + y + 1);
    const ZvRect part = intersected(mArea.box, row);
    if (!isEmpty(part)) copyCoverage(*mMask, part, mCoverage.get() + (part.left - mArea.x), width);
    ZVEX_ON_TARGET(underlayRow(mRow.get(), mRowBehind.get(), mCoverage.get(), width));
}

void ReliefRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) {
    const RowRange part = rows.within(mArea.y, mArea.height);
    for (int y = part.begin; y < part.end; ++y) {
        colorRow(y);
        for (const PictureStrip* picture : {&target, mOnBoth ? other : nullptr}) {
            if (picture == nullptr) continue;
            ZvBlender::drawBitmapBlend32(mArea.x, mArea.y + y - picture->top, picture, mRow.get(),
                                         mArea.width, 1, mArea.width, mBlendMode);
        }
    }
}

bool BlurredLight::make(ReliefPlanes& light) {
    if (!light.finish()) return false;
    const ReliefArea& area = light.area;
    mArea = area;
    mHighlight = std::move(light.highlight);
    mShadow = std::move(light.shadow);
    if (light.blur > 0 && light.soften > 0) {
        Buffer<uint8_t> highlight, shadow;
        if (!prepare(light.blur, light.soften) || !highlight.allocateZeroed(area.height, area.width) ||
            !shadow.allocateZeroed(area.height, area.width)) {
            return false;
        }
        for (int y = mNeeded.top; y < mNeeded.bottom; y += kBand) {
            blurRows(y, std::min(kBand, mNeeded.bottom - y), highlight.get() + area.row(y),
                     shadow.get() + area.row(y));
        }
        mBorder = std::move(mShadow);
        mHighlight = std::move(highlight);
        mShadow = std::move(shadow);
    }
    const int radius = light.soften > 0 ? light.soften : light.blur;
    if (radius < 1) return true;
    if (!prepare(radius, 0)) return false;
    for (Buffer<uint8_t>* band : {&mBandHighlight, &mBandShadow}) {
        if (!band->allocate(kBand, area.width)) return false;
        std::memset(band->get(), 0, size_t{kBand} * static_cast<size_t>(area.width));
    }
    return true;
}

// Prepares one of the blurs. The next one needs pixels `beyond` those that are shown.
bool BlurredLight::prepare(int radius, int beyond) {
    mRadius = radius;
    mLeft = mArea.isCutLeft ? 0 : std::min(radius, mArea.width);
    mRight = mArea.isCutRight ? mArea.width : std::max(mArea.width - radius, mLeft);
    const auto within = [](int64_t at, int size) {
        return static_cast<int>(std::clamp<int64_t>(at, 0, size));
    };
    const ZvRect& shown = mArea.shown;
    mNeeded = ZvRect(within(int64_t{shown.left} - beyond, mArea.width),
                     within(int64_t{shown.top} - beyond, mArea.height),
                     within(int64_t{shown.right} + beyond, mArea.width),
                     within(int64_t{shown.bottom} + beyond, mArea.height));
    if (mLeft >= mRight || mArea.height <= 2 * int64_t{radius}) return true;  // all border
    const int blocks = (mArea.width + kBlock - 1) / kBlock;
    if (!mKernel.make(radius, kWeight, GaussianConstant::Double) ||
        !mBlur.prepare(mKernel, mArea.width, kBand) || !mColumn.allocate(kBand, mArea.width) ||
        !mEven.allocate(mArea.height, blocks) || !mEvenBand.allocate(blocks)) {
        return false;
    }
    for (int y = 0; y < mArea.height; ++y) {
        ZVEX_ON_TARGET(findEven(mEven.get() + ptrdiff_t{y} * blocks, mHighlight.get() + mArea.row(y),
                                mShadow.get() + mArea.row(y), mArea.width));
    }
    return true;
}

void BlurredLight::moveTo(int y) {
    if (mRadius < 1) {
        mHighlightRow = mHighlight.get() + mArea.row(y);
        mShadowRow = mShadow.get() + mArea.row(y);
        return;
    }
    if (y < mBandBegin || y >= mBandEnd) {
        mBandBegin = y;
        mBandEnd = y + std::min(kBand, std::max(mNeeded.bottom - y, 1));
        blurRows(mBandBegin, mBandEnd - mBandBegin, mBandHighlight.get(), mBandShadow.get());
    }
    mHighlightRow = mBandHighlight.get() + mArea.row(y - mBandBegin);
    mShadowRow = mBandShadow.get() + mArea.row(y - mBandBegin);
}

void BlurredLight::blurRows(int y, int count, uint8_t* highlight, uint8_t* shadow) {
    const ptrdiff_t width = mArea.width;
    for (int i = 0; i < count; ++i) {
        const bool inside = mLeft < mRight && y + i >= mRadius && y + i < mArea.height - mRadius;
        const auto fill = [&](ptrdiff_t begin, ptrdiff_t end) {
            const size_t from = mArea.row(y + i) + static_cast<size_t>(begin),
                         size = static_cast<size_t>(end - begin);
            std::memcpy(shadow + i * width + begin, mHighlight.get() + from, size);
            if (mBorder.get() != nullptr) {
                std::memcpy(highlight + i * width + begin, mBorder.get() + from, size);
            } else {
                std::memset(highlight + i * width + begin, 0, size);
            }
        };
        fill(0, inside ? mLeft : width);
        if (inside) fill(mRight, width);
    }
    const int first = std::max(y, mRadius), last = std::min(y + count, mArea.height - mRadius);
    if (first >= last || mLeft >= mRight) return;
    const ptrdiff_t skipped = (first - y) * width;
    findEvenBlocks(first, last - first);
    blurBand(mHighlight.get(), first, last - first, 0, highlight + skipped);
    blurBand(mShadow.get(), first, last - first, 8, shadow + skipped);
}

// Finds the blocks that are even in all rows that the windows of these rows see.
void BlurredLight::findEvenBlocks(int y, int count) {
    const int blocks = (mArea.width + kBlock - 1) / kBlock;
    const int32_t* row = mEven.get() + ptrdiff_t{y - mRadius} * blocks;
    std::copy_n(row, blocks, mEvenBand.get());
    for (int i = 1; i < count + 2 * mRadius; ++i) {
        row += blocks;
        for (int block = 0; block < blocks; ++block) {
            int32_t& value = mEvenBand[static_cast<size_t>(block)];
            value = value == row[block] ? value : kUneven;
        }
    }
}

// Blurs rows y..y + count - 1 of one of the planes, except for the border. `shift` is where the plane's byte
// lies in the values of even blocks.
void BlurredLight::blurBand(const uint8_t* plane, int y, int count, int shift, uint8_t* target) {
    const ptrdiff_t width = mArea.width;
    const int left = mLeft, right = mRight, blocks = (mArea.width + kBlock - 1) / kBlock;
    uint8_t* column = mColumn.get();
    const auto isEven = [&](int block) { return mEvenBand[static_cast<size_t>(block)] != kUneven; };
    // For the pixels up to `beyond` those that are needed: calls blur(x, end) for the runs of uneven ones and
    // sets all others to their value.
    const auto forRuns = [&](uint8_t* rows, int beyond, const auto& even, const auto& blurRun) {
        const int64_t from = std::max<int64_t>(int64_t{mNeeded.left} - beyond, left),
                      to = std::min<int64_t>(int64_t{mNeeded.right} + beyond, right);
        for (int block = 0, next = 0; block < blocks; block = next) {
            const bool same = even(block);
            const int32_t value = mEvenBand[static_cast<size_t>(block)];
            for (next = block + 1; next < blocks && even(next) == same; ++next) {
                if (same && mEvenBand[static_cast<size_t>(next)] != value) break;
            }
            const int begin = static_cast<int>(std::max<int64_t>(int64_t{block} * kBlock, from)),
                      end = static_cast<int>(std::min<int64_t>(int64_t{next} * kBlock, to));
            if (begin >= end) continue;
            if (!same) {
                blurRun(begin, end);
                continue;
            }
            for (int i = 0; i < count; ++i)
                std::memset(rows + i * width + begin, value >> shift & 255, static_cast<size_t>(end - begin));
        }
    };
    forRuns(column, mRadius, isEven, [&](int begin, int end) {
        mBlur.columns({plane + mArea.row(y - mRadius) + begin, width, -mRadius, count + mRadius,
                       column + begin, width, end - begin, count, false, false});
    });
    // Along the rows, pixels beyond the border count as 0.
    const auto isEvenAround = [&](int block) {
        const int32_t value = mEvenBand[static_cast<size_t>(block)];
        const int begin = block * kBlock - mRadius, end = (block + 1) * kBlock + mRadius;
        if (value == kUneven || (value != 0 && (begin < left || end > right))) return false;
        for (int i = std::max(begin, 0) / kBlock; i * kBlock < std::min(end, mArea.width); ++i) {
            if (mEvenBand[static_cast<size_t>(i)] != value) return false;
        }
        return true;
    };
    forRuns(target, 0, isEvenAround, [&](int begin, int end) {
        const int first = std::max(begin - mRadius, left), last = std::min(end + mRadius, right);
        mBlur.rows({column + first, width, first - begin, last - begin, target + begin, width, end - begin,
                    count, false, false});
    });
}

}  // namespace Zvex
