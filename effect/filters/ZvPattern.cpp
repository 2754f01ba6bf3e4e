// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvPattern.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "effect/filters/Buffer.h"
#include "effect/filters/Coverage.h"
#include "effect/filters/PatternTile.h"
#include "foundation/SafeConvert.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

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
    if (property == nullptr || !PatternTile::isUsable(property->bitmap, property->scale)) return 0;
    if (!isDrawable(param)) return 0;
    WorkingArea area;
    if (!area.grow(*param->textRect, 0)) return 0;
    const ZvBitmap& mask = *param->mask;
    const ZvRect box(area.x, area.y, clampToInt(area.x + std::min<int64_t>(area.width, mask.width)),
                     clampToInt(area.y + std::min<int64_t>(area.height, mask.height)));
    const ZvRect part = partWithin(mask, box);
    if (part.left >= part.right) return 0;
    const int first = part.left - box.left, count = part.right - part.left;
    PatternTile tile;
    Buffer<uint32_t> row;
    if (!row.allocate(count) || !tile.make(*property->bitmap, property->scale, property->opacity,
                                           box.right - box.left, box.bottom - box.top))
        return 0;

    // A row at a time, so that it is still in the cache when it is blended.
    for (int y = part.top; y < part.bottom; ++y) {
        const uint8_t* coverage = mask.pixels + static_cast<size_t>(y) * mask.width + part.left;
        tile.row(row.get(), coverage, first, count, y - box.top);
        ZvBlender::drawBitmapBlend32(part.left, y, param->target, row.get(), count, 1, count,
                                     ZVE_BLEND_DST_OVER);
    }
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
