// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/Relief.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "effect/filters/Distance.h"
#include "effect/filters/Gaussian.h"
#include "raster/CpuTarget.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

// Not the nearest float: the pictures are made with it.
constexpr float PI = 3.14159f;

float radians(float degrees) {
    return degrees * PI / 180.0f;
}

constexpr float FAR = 1e20f;

constexpr int WEIGHT = 100;

#define ZVEX_KERNELS "effect/filters/ReliefKernels.inc"
#include "raster/ForEachTarget.h"

// The part of a row of the area, from `begin` to `end` - 1, that lies within the mask.
struct MaskRow {
    const uint8_t* pixels;
    int begin, end;  // columns of the area; the former is that of *pixels
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

// Pixel by pixel, for alphas that are no bytes.
void lightRowOfAnyAlpha(const LitRow& row) {
    for (int x = row.begin; x < row.end; ++x) {
        const float* pixel = row.distances + x;
        const bool flat = row.side == LitSide::Bevel || row.side == LitSide::Signed
                              ? *pixel == row.limit
                              : !(*pixel < row.limit) || *pixel == 0.0f;
        if (flat) continue;
        const float gx = slope(pixel[-1], pixel[1]), gy = slope(pixel[-row.stride], pixel[row.stride]);
        int shade = truncateToInt(row.side == LitSide::Within ? row.light.oppositeShade(gx, gy)
                                                              : row.light.shade(gx, gy));
        if (row.flip) shade = 255 - shade;
        const bool below = row.side == LitSide::Signed && !(*pixel > 0.0f);
        const int byte = reliefCoverage(below ? *pixel + row.inner - 1.0f : row.limit - *pixel);
        row.highlight[x] = lightByte(byte, shade + 1, row.highlightAlpha);
        row.shadow[x] = lightByte(byte, 256 - shade, row.shadowAlpha);
    }
}

}  // namespace

void lightRow(const LitRow& row) {
    if (isByte(row.highlightAlpha) && isByte(row.shadowAlpha)) {
        ZVEX_ON_TARGET(lightRow(row));
    } else {
        lightRowOfAnyAlpha(row);
    }
}

ReliefLight ReliefLight::make(const ZvReliefProperty& property, double depthFloor) {
    const float azimuth = radians(180.0f - property.angle), elevation = radians(property.altitude);
    const float sign = property.direction == 0 ? -1.0f : 1.0f;
    const double depth = property.depth > depthFloor ? property.depth : depthFloor;
    ReliefLight light;
    light.x = sign * (std::cos(azimuth) * std::cos(elevation));
    light.y = sign * (std::sin(azimuth) * std::cos(elevation));
    light.z = std::sin(elevation);
    light.normalZ = static_cast<float>(2.4 / depth);
    return light;
}

int64_t reliefMargin(int64_t radius, int64_t blur, int64_t soften) {
    return std::max(2 * soften, 2 * blur) + radius;
}

void fillFromCoverage(float* plane, const WorkingArea& area, const ZvBitmap& mask, float outside,
                      const float* ramp) {
    std::fill_n(plane, area.pixels(), outside);
    const int inset = area.margin, right = area.width - inset;
    for (int y = inset; y < area.height - inset; ++y) {
        float* row = plane + area.row(y);
        if (inset < right) std::fill(row + inset, row + right, ramp[0]);
        const MaskRow part = maskRow(area, mask, y, inset, right);
        // Eight pixels at once where all are empty or full.
        const int count = part.end - part.begin, eights = count / 8 * 8;
        row += part.begin;
        for (int x = 0; x < eights; x += 8) {
            uint64_t pixels;
            std::memcpy(&pixels, part.pixels + x, sizeof pixels);
            if (pixels == 0) continue;
            if (pixels == UINT64_MAX) {
                std::fill_n(row + x, 8, ramp[255]);
            } else {
                for (int i = x; i < x + 8; ++i) row[i] = ramp[part.pixels[i]];
            }
        }
        for (int x = eights; x < count; ++x) row[x] = ramp[part.pixels[x]];
    }
}

bool edgeDistances(float* plane, const WorkingArea& area, const ZvBitmap& mask, bool inside, int radius) {
    const float text = inside ? FAR : 0.0f, ground = inside ? 0.0f : FAR;
    std::fill_n(plane, area.pixels(), ground);
    const int right = std::min(area.width - area.margin, area.width - 1);
    const int bottom = std::min(area.height - area.margin, area.height - 1);
    for (int y = area.margin; y <= bottom; ++y) {
        const MaskRow part = maskRow(area, mask, y, area.margin, right + 1);
        float* row = plane + area.row(y) + part.begin;
        for (int x = 0; x < part.end - part.begin; ++x) row[x] = part.pixels[x] != 0 ? text : ground;
    }
    return distancesWithin(plane, area.width, area.height, radius);
}

bool blurRelief(const ReliefBlurJob& job) {
    if (job.source == nullptr || job.destination == nullptr) return true;
    if (job.xBegin >= job.xEnd || job.yBegin >= job.yEnd) return true;
    Gaussian kernel;
    if (!kernel.make(job.radius, WEIGHT, GaussianConstant::Double)) return false;
    return blurPlane({job.source, job.destination, job.stride, &kernel, false, job.xBegin, job.xEnd,
                      job.yBegin, job.yEnd});
}

bool blurRelief(unsigned char* source, unsigned char* destination, int radius, int height, int width) {
    const int border = std::max(radius, 0);
    const auto end = [=](int size) { return clampToInt(int64_t{size} - border); };
    return blurRelief({source, destination, width, border, border, end(width), border, end(height)});
}

bool ReliefPlanes::blur(Buffer<uint8_t>& scratch, const WorkingArea& area, int radius) {
    for (Buffer<uint8_t>* plane : {&highlight, &shadow}) {
        if (!blurRelief(plane->get(), scratch.get(), radius, area.height, area.width)) return false;
        std::swap(*plane, scratch);
    }
    return true;
}

uint32_t ReliefColors::pixel(int highlightLight, int shadowLight) const {
    const int lit = truncateToInt(gain * static_cast<float>(highlightLight));
    const int dark = truncateToInt(gain * static_cast<float>(shadowLight));
    const uint32_t alpha = static_cast<uint32_t>(std::min(std::abs(dark - lit), 255));
    const uint32_t color = dark > lit ? shadow : highlight;
    uint32_t result = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8)
        result |= ((alpha * (((color >> shift) & 0xFF) + 1)) >> 8)
                  << shift;  // at most 255 * 256 >> 8, a byte
    return result;
}

void ReliefColors::row(uint32_t* pixels, const uint8_t* highlightLights, const uint8_t* shadowLights,
                       int count) const {
    ZVEX_ON_TARGET(colorRow(pixels, highlightLights, shadowLights, count, gain, highlight, shadow));
}

ReliefRows::ReliefRows(const WorkingArea& area, ReliefPlanes planes, const ReliefColors& colors,
                       int blendMode, bool onBoth)
    : area_(area), planes_(std::move(planes)), colors_(colors), blendMode_(blendMode), onBoth_(onBoth) {}

void ReliefRows::putBehind(ReliefPlanes planes, const ZvBitmap& mask) {
    behind_ = std::move(planes);
    mask_ = &mask;
}

bool ReliefRows::allocate() {
    return row_.allocate(area_.width) && rowBehind_.allocate(area_.width) &&
           coverage_.allocateZeroed(area_.width);
}

void ReliefRows::colorRow(int y) {
    const size_t at = area_.row(y);
    const int width = area_.width, margin = area_.margin;
    colors_.row(row_.get(), planes_.highlight.get() + at, planes_.shadow.get() + at, width);
    if (mask_ == nullptr) return;
    colors_.row(rowBehind_.get(), behind_.highlight.get() + at, behind_.shadow.get() + at, width);
    const ZvRect box(area_.x + margin, area_.y + y, area_.x + width - margin, area_.y + y + 1);
    std::memset(coverage_.get(), 0, static_cast<size_t>(width));
    if (y >= margin && y < area_.height - margin) copyCoverage(*mask_, box, coverage_.get() + margin, width);
    ZVEX_ON_TARGET(underlayRow(row_.get(), rowBehind_.get(), coverage_.get(), width));
}

void ReliefRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) {
    const RowRange part = rows.within(area_.y, area_.height);
    for (int y = part.begin; y < part.end; ++y) {
        colorRow(y);
        for (const PictureStrip* picture : {&target, onBoth_ ? other : nullptr}) {
            if (picture == nullptr) continue;
            ZvBlender::drawBitmapBlend32(area_.x, area_.y + y - picture->top, picture, row_.get(),
                                         area_.width, 1, area_.width, blendMode_);
        }
    }
}

}  // namespace Zvex
