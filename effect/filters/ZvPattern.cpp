// SPDX-License-Identifier: Apache-2.0
#include "effect/filters/ZvPattern.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "effect/LayerRows.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/PatternTile.h"
#include "foundation/OutOfMemory.h"
#include "foundation/SafeConvert.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

void deleteWithBitmap(ZvPatternProperty* property) {
    if (property != nullptr) delete property->bitmap;
    delete property;
}

// The tiled box, a row at a time.
class PatternRows : public LayerRows {
public:
    // False when nothing of it is covered or memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvPatternProperty& property) {
        mask_ = param.mask;
        WorkingArea area;
        if (!area.grow(*param.textRect, 0)) return false;
        box_ = ZvRect(area.x, area.y, clampToInt(area.x + std::min<int64_t>(area.width, mask_->width)),
                      clampToInt(area.y + std::min<int64_t>(area.height, mask_->height)));
        part_ = partWithin(*mask_, box_);
        if (isEmpty(part_)) return false;
        return row_.allocate(widthOf(part_)) &&
               tile_.make(*property.bitmap, property.scale, property.opacity, widthOf(box_), heightOf(box_));
    }

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip*) override {
        const RowRange visible = rows.within(part_.top, heightOf(part_));
        const int count = widthOf(part_);
        for (int y = part_.top + visible.begin; y < part_.top + visible.end; ++y) {
            const uint8_t* coverage = mask_->pixels + static_cast<size_t>(y) * mask_->width + part_.left;
            tile_.row(row_.get(), coverage, part_.left - box_.left, count, y - box_.top);
            ZvBlender::drawBitmapBlend32(part_.left, y - target.top, &target, row_.get(), count, 1, count,
                                         ZVE_BLEND_DST_OVER);
        }
    }
    ZvRect reach() const override { return part_; }

private:
    const ZvBitmap* mask_ = nullptr;
    ZvRect box_;   // of the tiles
    ZvRect part_;  // of it, on the mask
    PatternTile tile_;
    Buffer<uint32_t> row_;
};

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
    auto rows = tryMake<PatternRows>();
    if (rows != nullptr && rows->make(*param, *property)) drawLayer(param, std::move(rows));
    return 0;
}

void ZvPattern::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    const ZvPatternProperty& given = *static_cast<const ZvPatternProperty*>(newProperty);
    std::unique_ptr<ZvBitmap> bitmap;
    if (given.bitmap != nullptr) {
        bitmap = tryMake<ZvBitmap>(*given.bitmap);
        if (bitmap == nullptr) return;
        if (bitmap->pixels == nullptr && given.bitmap->pixels != nullptr) return;
    }
    auto copy = tryMake<ZvPatternProperty>(bitmap.get(), given.scale, given.opacity);
    if (copy == nullptr) return;
    bitmap.release();
    deleteWithBitmap(property);
    property = copy.release();
}

ZvProperty* ZvPattern::getProperty() {
    return property;
}

}  // namespace Zvex
