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

// The box filled with tiles, one row at a time.
class PatternRows : public LayerRows {
public:
    // False if none of it is covered or if memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvPatternProperty& property) {
        mMask = param.mask;
        WorkingArea area;
        if (!area.grow(*param.textRect, 0)) return false;
        mBox = ZvRect(area.x, area.y, clampToInt(area.x + std::min<int64_t>(area.width, mMask->width)),
                      clampToInt(area.y + std::min<int64_t>(area.height, mMask->height)));
        mPart = partWithin(*mMask, mBox);
        if (isEmpty(mPart)) return false;
        return mRow.allocate(widthOf(mPart)) &&
               mTile.make(*property.bitmap, property.scale, property.opacity, widthOf(mBox), heightOf(mBox));
    }

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip*) override {
        const RowRange visible = rows.within(mPart.top, heightOf(mPart));
        const int count = widthOf(mPart);
        for (int y = mPart.top + visible.begin; y < mPart.top + visible.end; ++y) {
            const uint8_t* coverage = mMask->pixels + static_cast<size_t>(y) * mMask->width + mPart.left;
            mTile.row(mRow.get(), coverage, mPart.left - mBox.left, count, y - mBox.top);
            ZvBlender::drawBitmapBlend32(mPart.left, y - target.top, &target, mRow.get(), count, 1, count,
                                         ZVE_BLEND_DST_OVER);
        }
    }
    ZvRect reach() const override { return mPart; }

private:
    const ZvBitmap* mMask = nullptr;
    ZvRect mBox;   // filled with tiles
    ZvRect mPart;  // the part of it on the mask
    PatternTile mTile;
    Buffer<uint32_t> mRow;
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
