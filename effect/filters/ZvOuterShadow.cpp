// SPDX-License-Identifier: Apache-2.0
//
// The coverage, blurred straight from the mask, columns first, in bands of rows that fit the cache; the
// shadow of the whole text is never in memory. The blur reaches one radius beyond the text box. Only the part
// on the target is computed. The plain form is tests/reference/ShadowReference.h.
//
//     |<- radius ->|<- radius ->|<- text box ->|<- radius ->|<- radius ->|
//         empty        blurred      blurred        blurred      empty

#include "effect/filters/ZvOuterShadow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "effect/ColorRows.h"
#include "effect/Numbers.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/Coverage.h"
#include "effect/kernels/Gaussian.h"
#include "effect/kernels/Shadow.h"
#include "foundation/OutOfMemory.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

// The margin on one side. The shadow moves by `shift` pixels, towards this side or away from it.
int marginOf(const ZvOuterShadowProperty* property, int64_t shift, bool towards) {
    if (property == nullptr) return 0;
    const int64_t reach = roundSize(property->size), length = shift < 0 ? -shift : shift;
    return clampToInt(towards ? length + reach : std::max<int64_t>(reach - length, 0));
}

class ShadowRows : public ColorRows {
public:
    // False if none of it is visible or if memory is short.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvOuterShadowProperty& property,
              ShadowShift shift);

    Part next(RowRange rows) override;
    ZvRect reach() const override { return mSeen; }

private:
    void blurBand(int y);

    ZvRect mSeen;  // the part on the target
    const ZvBitmap* mMask = nullptr;
    ZvRect mPart;                    // the part of the mask that casts the shadow
    int mSourceX = 0, mSourceY = 0;  // position of that part, counted from mSeen
    Gaussian mKernel;
    Blur mBlur;
    Buffer<uint8_t> mShadow;  // the rows of the band
    int mStride = 0, mBandRows = 0;
    int mBandBegin = 0, mBandEnd = 0;  // rows of mSeen
};

bool ShadowRows::make(const ZvECore::ParamPostProcessing& param, const ZvOuterShadowProperty& property,
                      ShadowShift shift) {
    // Adds 0.5 as a double here, as a float in the margins: 0.49999997 blurs by 0 with a margin of 1.
    const int radius = std::max(truncateToInt(property.size + 0.5), 0);
    WorkingArea area;
    if (!area.grow(*param.textRect, 2 * int64_t{radius})) return false;
    area.move(shift.x, shift.y);
    mColor = property.color;
    mMode = ZVE_BLEND_DST_OVER;
    mMask = param.mask;

    // Only the visible part is blurred, so a radius far beyond the picture costs no more than the picture's
    // pixels. In pixels of the area.
    mPart = partWithin(*param.mask, *param.textRect);
    const int64_t left = std::max<int64_t>(radius, -int64_t{area.x}),
                  top = std::max<int64_t>(radius, -int64_t{area.y});
    const int64_t right = std::min<int64_t>(area.width - radius, int64_t{param.target->width} - area.x);
    const int64_t bottom = std::min<int64_t>(area.height - radius, int64_t{param.target->height} - area.y);
    if (left >= right || top >= bottom || isEmpty(mPart)) return false;
    mSeen = ZvRect(static_cast<int>(area.x + left), static_cast<int>(area.y + top),
                   static_cast<int>(area.x + right), static_cast<int>(area.y + bottom));
    mSourceX = static_cast<int>(mPart.left - int64_t{param.textRect->left} + area.margin - left);
    mSourceY = static_cast<int>(mPart.top - int64_t{param.textRect->top} + area.margin - top);

    const int width = static_cast<int>(right - left), height = static_cast<int>(bottom - top);
    mStride = std::max(width, widthOf(mPart));
    if (!mKernel.make(radius, kShadowWeight, GaussianConstant::Single)) return false;
    mBandRows = std::min(blurBandRows(mKernel), height);
    return mBlur.prepare(mKernel, mStride, mBandRows) && mShadow.allocate(mBandRows, mStride);
}

// Blurs the band that begins with row y of mSeen.
void ShadowRows::blurBand(int y) {
    const int width = widthOf(mSeen), height = heightOf(mSeen);
    const int partWidth = widthOf(mPart), partHeight = heightOf(mPart);
    const uint8_t* coverage = mMask->pixels + static_cast<size_t>(mPart.top) * mMask->width + mPart.left;
    const int rows = std::min(mBandRows, height - y);
    mBlur.columns({coverage, static_cast<ptrdiff_t>(mMask->width), mSourceY - y, mSourceY - y + partHeight,
                   mShadow.get(), mStride, partWidth, rows, false, false});
    mBlur.rows({mShadow.get(), mStride, mSourceX, mSourceX + partWidth, mShadow.get(), mStride, width, rows,
                false, false});
    mBandBegin = y;
    mBandEnd = y + rows;
}

ColorRows::Part ShadowRows::next(RowRange rows) {
    const RowRange part = rows.within(mSeen.top, heightOf(mSeen));
    const int y = part.begin;
    if (y >= part.end) return {};
    if (y >= mBandEnd) blurBand(y);
    return {mShadow.get() + ptrdiff_t{y - mBandBegin} * mStride,
            mStride,
            mSeen.left,
            mSeen.top + y,
            widthOf(mSeen),
            std::min(part.end, mBandEnd) - y};
}

}  // namespace

ZvOuterShadow::ZvOuterShadow() {
    style = ZV_EFFECT_OUTER_SHADOW;
}

ZvOuterShadow::~ZvOuterShadow() {
    delete property;
}

int ZvOuterShadow::doPostProcessing(ParamPostProcessing* param) {
    if (property == nullptr || !isDrawable(param)) return 0;
    auto rows = tryMake<ShadowRows>();
    if (rows != nullptr && rows->make(*param, *property, {dx, dy})) drawLayer(param, std::move(rows));
    return 0;
}

void ZvOuterShadow::setProperty(ZvProperty* newProperty) {
    if (newProperty == nullptr) return;
    if (!replaceProperty(*static_cast<const ZvOuterShadowProperty*>(newProperty), &property)) return;
    const ShadowShift shift = shadowShift(*property);
    dx = shift.x;
    dy = shift.y;
}

ZvProperty* ZvOuterShadow::getProperty() {
    return property;
}

int ZvOuterShadow::getLeftOffset() {
    return marginOf(property, dx, dx < 0);
}

int ZvOuterShadow::getRightOffset() {
    return marginOf(property, dx, dx >= 0);
}

int ZvOuterShadow::getTopOffset() {
    return marginOf(property, dy, dy < 0);
}

int ZvOuterShadow::getBottomOffset() {
    return marginOf(property, dy, dy >= 0);
}

}  // namespace Zvex
