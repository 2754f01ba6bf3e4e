// SPDX-License-Identifier: Apache-2.0
//
// A tiled picture, scaled with bilinear sampling: two neighbours and a weight for each column and each row of
// the text box are worked out once, four taps a pixel remain. The definition is
// tests/reference/PatternReference.h.

#include "effect/filters/ZvPattern.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "effect/filters/Buffer.h"
#include "effect/filters/Coverage.h"
#include "foundation/SafeConvert.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

constexpr double MIN_SCALE = 0.1;

// What a column (or row) of the text box is made of.
struct Sample {
    uint32_t first, second;  // columns (rows) of the pattern
    uint32_t weight;         // of the second, 0..254; the first has the rest of 255
};

struct PatternParam {
    const ZvBitmap* pattern;
    float scale, opacity;
    const ZvBitmap* mask;
    WorkingArea area;       // the text box, as far as it is drawn
    const Sample* columns;  // area.width
    uint32_t* words;        // premultiplied colour, as large as area, zero
    int rowBegin, rowEnd;   // half-open
};

// Pixels between two repeats of a side of the pattern.
int periodOf(float scale, uint32_t size) {
    return truncateToInt(scale * static_cast<float>(size));
}

Sample sampleAt(int pixel, float scale, uint32_t size) {
    const float place = static_cast<float>(pixel % periodOf(scale, size)) / scale;
    const float whole = std::floor(place);
    Sample sample;
    // From millions of pixels on, the division can round up to the size.
    sample.first = std::min(truncateToUnsigned(whole), size - 1);
    sample.second = sample.first + 1 < size ? sample.first + 1 : 0;
    sample.weight = static_cast<uint32_t>(truncateToInt((place - whole) * 255.0));
    return sample;
}

// Byte k of a pixel between two rows of the pattern. The weights of the four taps sum up to 255 * 255 and are
// taken out by a shift of 16: 255 comes out as 253, in the alpha as in the colours. All fits 32 bits, 255 *
// 255 * 255 at most.
uint32_t mix(const uint8_t* upper, const uint8_t* lower, const Sample& column, const Sample& row, size_t k) {
    const size_t first = size_t{4} * column.first + k, second = size_t{4} * column.second + k;
    const uint32_t weight = column.weight;
    const uint32_t above = (255 - weight) * upper[first] + weight * upper[second];
    const uint32_t below = (255 - weight) * lower[first] + weight * lower[second];
    return ((above * (255 - row.weight) + below * row.weight) >> 16) & 0xFF;
}

// An opacity above 1 may bring the alpha beyond a byte: its word then keeps the low 8 bits, and products run
// over as 32-bit words do.
uint32_t premultiply(const uint32_t (&argb)[4], float opacity) {
    const uint32_t alpha = truncateToUnsigned(opacity * static_cast<float>(argb[0]));
    const auto scaled = [alpha](uint32_t c) { return std::min<uint32_t>(255, ((c + 1) * alpha) >> 8); };
    return alpha << 24 | scaled(argb[1]) << 16 | scaled(argb[2]) << 8 | scaled(argb[3]);
}

void fillRows(const PatternParam& p) {
    const size_t stride = size_t{4} * p.pattern->width;
    for (int y = p.rowBegin; y < p.rowEnd; ++y) {
        const Sample row = sampleAt(y, p.scale, p.pattern->height);
        const uint8_t* upper = p.pattern->pixels + row.first * stride;
        const uint8_t* lower = p.pattern->pixels + row.second * stride;
        uint32_t* words = p.words + p.area.row(y);
        for (int x = 0; x < p.area.width; ++x) {
            if (coverageAt(*p.mask, int64_t{p.area.x} + x, int64_t{p.area.y} + y) == 0) continue;
            uint32_t argb[4];
            for (size_t k = 0; k < 4; ++k) argb[k] = mix(upper, lower, p.columns[x], row, k);
            words[x] = premultiply(argb, p.opacity);
        }
    }
}

bool isUsable(const ZvPatternProperty* property) {
    if (property == nullptr || !(property->scale >= MIN_SCALE)) return false;
    const ZvBitmap* bitmap = property->bitmap;
    if (bitmap == nullptr || bitmap->pixels == nullptr || bitmap->bytesPerPixel != 4) return false;
    return periodOf(property->scale, bitmap->width) > 0 && periodOf(property->scale, bitmap->height) > 0;
}

void deleteWithBitmap(ZvPatternProperty* property) {
    if (property != nullptr) delete property->bitmap;
    delete property;
}

}  // namespace

ZvPattern::ZvPattern() {
    style = ZV_EFFECT_PATTERN;
}

ZvPattern::~ZvPattern() {
    deleteWithBitmap(property);
}

int ZvPattern::doPostProcessing(ParamPostProcessing* param) {
    if (!isUsable(property) || !isDrawable(param)) return 0;
    const ZvBitmap& pattern = *property->bitmap;
    WorkingArea area;
    if (!area.grow(*param->textRect, 0)) return 0;
    area.width = static_cast<int>(std::min<int64_t>(area.width, param->mask->width));
    area.height = static_cast<int>(std::min<int64_t>(area.height, param->mask->height));
    Buffer<uint32_t> words;
    Buffer<Sample> columns;
    if (!words.allocateZeroed(area.height, area.width) || !columns.allocate(area.width)) return 0;

    for (int x = 0; x < area.width; ++x)
        columns[static_cast<size_t>(x)] = sampleAt(x, property->scale, pattern.width);
    fillRows({&pattern, property->scale, property->opacity, param->mask, area, columns.get(), words.get(), 0,
              area.height});
    ZvBlender::drawBitmapBlend32(area.x, area.y, param->target, words.get(), area.width, area.height,
                                 area.width, ZVE_BLEND_DST_OVER);
    return 0;
}

void ZvPattern::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const ZvPatternProperty& given = *static_cast<const ZvPatternProperty*>(newProperty);
    std::unique_ptr<ZvBitmap> bitmap;
    if (given.bitmap != nullptr) {
        bitmap.reset(new (std::nothrow) ZvBitmap(*given.bitmap));
        if (bitmap == nullptr) return;
        if (bitmap->pixels == nullptr && given.bitmap->pixels != nullptr) return;
    }
    ZvPatternProperty* copy = new (std::nothrow) ZvPatternProperty(bitmap.get(), given.scale, given.opacity);
    if (copy == nullptr) return;
    bitmap.release();
    deleteWithBitmap(property);
    property = copy;
}

ZvProperty* ZvPattern::getProperty() {
    return property;
}

}  // namespace Zvex
