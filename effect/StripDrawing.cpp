// SPDX-License-Identifier: Apache-2.0
#include "effect/StripDrawing.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "effect/LayerPlace.h"
#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "foundation/OutOfMemory.h"
#include "raster/Rects.h"
#include "raster/WriteAside.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"

namespace Zvex {

namespace {

// Whether a core's own caches cannot hold the picture.
bool isLarge(const ZvBitmap& picture) {
    return picture.byteCount() >= size_t{4} << 20;
}

}  // namespace

void StripDrawing::prepare() {
    mWaiting.reset(new (std::nothrow) WaitingLayer[mScene.layers.size()]);
    if (mWaiting == nullptr) return markOutOfMemory();
    mDrawn = mScene.textRect;
    ZvECore::ParamPostProcessing param;
    param.target = &mScene.picture;  // the back picture has the same size
    param.mask = &mScene.mask;
    param.textRect = &mScene.textRect;
    param.layerMode = mScene.hasTwoPictures ? 1 : 0;
    param.drawnArea = &mDrawn;
    param.overLayers = true;  // harmless for the first layer, which draws onto nothing
    WaitingLayer* waiting = mWaiting.get();
    for (ZvECore* effect : mScene.layers) {
        const LayerPlace place = mScene.hasTwoPictures ? placeOf(effect) : LayerPlace();
        waiting->behind = place.behind;
        waiting->both = place.both;
        param.otherLayer = place.both ? &mScene.picture : nullptr;
        param.rows = &waiting->rows;
        effect->doPostProcessing(&param);
        if (waiting->rows != nullptr) mDrawn = united(mDrawn, waiting->rows->reach());
        ++waiting;
    }
    mDrawn = clampedTo(mDrawn, mScene.picture.width, mScene.picture.height);
}

void StripDrawing::draw(PixelOrder order) {
    const ZvBitmap& picture = mScene.picture;
    const int width = clampToSize(INT_MAX, picture.width), height = clampToSize(INT_MAX, picture.height);
    const int step = std::min(stripRows(picture.width), height);
    if (isLarge(picture)) mFront.allocate(step, width, 4);
    if (mScene.hasTwoPictures) mBack.allocate(step, width, 4);
    preparePlainText(order);
    for (int y = 0; y < height;) {
        const RowRange rows = {y, height - y < step ? height : y + step};
        drawStrip(rows, order);
        y = rows.end;
    }
}

void StripDrawing::preparePlainText(PixelOrder order) {
    const size_t count = mScene.layers.size();
    if (mWaiting == nullptr || mScene.hasTwoPictures || count == 0 || count > 2) return;
    if (mScene.layers[0]->getStyle() != ZV_EFFECT_TEXT || mWaiting[0].rows == nullptr) return;
    const uint32_t color = mScene.layers[0]->getProperty()->color;
    if (count == 2) {
        mUnder = mWaiting[1].rows != nullptr ? mWaiting[1].rows->asColor() : nullptr;
        if (mUnder == nullptr || mUnder->mode() != ZVE_BLEND_DST_OVER) return;
        mTextOver.emplace(color, mUnder->color(), mScene.textAlpha, order);
    }
    mText.emplace(color, mScene.textAlpha, order);
}

void StripDrawing::drawStrip(RowRange rows, PixelOrder order) {
    const PictureStrip place(mScene.picture, rows);
    if (mWaiting == nullptr || rows.end <= mDrawn.top || rows.begin >= mDrawn.bottom) {
        if (isLarge(mScene.picture)) {
            clearAside(place.pixels, place.byteCount());
        } else {
            std::memset(place.pixels, 0, place.byteCount());
        }
        return;
    }
    const bool aside = mFront.get() != nullptr;
    const PictureStrip front(aside ? mFront.get() : place.pixels, place.width, rows);
    std::memset(front.pixels, 0, front.byteCount());
    if (mTextOver) {
        drawTextOverColor(front, rows);
    } else if (mText) {
        drawText(front, rows);
    } else {
        drawLayers(front, rows, order);
    }
    if (aside) copyAside(place.pixels, front.pixels, front.byteCount());
}

const uint8_t* StripDrawing::coverageAt(int x, int y) const {
    return mScene.mask.pixels + static_cast<size_t>(y) * mScene.mask.width + x;
}

void StripDrawing::paintText(const PictureStrip& front, int y, int begin, int end) const {
    if (begin >= end) return;
    mText->paintRow(front.at(begin, y), coverageAt(begin, y), static_cast<size_t>(end - begin));
}

void StripDrawing::drawText(const PictureStrip& front, RowRange rows) const {
    const ZvRect& box = mScene.textRect;
    const int end = std::min(rows.end, box.bottom);
    for (int y = std::max(rows.begin, box.top); y < end; ++y) paintText(front, y, box.left, box.right);
}

void StripDrawing::drawTextOverColor(const PictureStrip& front, RowRange rows) const {
    for (ColorRows::Part part = mUnder->next(rows); part.height > 0; part = mUnder->next(rows)) {
        drawText(front, {rows.begin, part.top});
        drawTextOver(part, front);
        rows.begin = part.top + part.height;
    }
    drawText(front, rows);
}

// The rows of the part. Only the columns in its reach have the other colour.
void StripDrawing::drawTextOver(const ColorRows::Part& under, const PictureStrip& front) const {
    const ZvRect& box = mScene.textRect;
    const int width = clampToSize(INT_MAX, front.width);
    const int left = std::clamp(under.left, 0, width);
    const int right = static_cast<int>(std::clamp<int64_t>(int64_t{under.left} + under.width, left, width));
    for (int i = 0; i < under.height; ++i) {
        const int y = under.top + i;
        const auto underAt = [&](int x) {
            return under.coverage + ptrdiff_t{i} * under.stride + (ptrdiff_t{x} - under.left);
        };
        const bool hasText = y >= box.top && y < box.bottom;
        const int begin = std::clamp(hasText ? box.left : right, left, right);
        const int end = std::clamp(hasText ? box.right : right, begin, right);
        if (hasText) {
            paintText(front, y, box.left, std::min(box.right, left));
            paintText(front, y, std::max(box.left, right), box.right);
        }
        if (left == right) continue;
        mTextOver->paintUnder(front.at(left, y), underAt(left), static_cast<size_t>(begin - left));
        if (begin < end)
            mTextOver->paintBoth(front.at(begin, y), coverageAt(begin, y), underAt(begin),
                                 static_cast<size_t>(end - begin));
        mTextOver->paintUnder(front.at(end, y), underAt(end), static_cast<size_t>(right - end));
    }
}

void StripDrawing::drawLayers(const PictureStrip& front, RowRange rows, PixelOrder order) {
    const bool hasBack = mBack.get() != nullptr;
    const PictureStrip back(mBack.get(), front.width, rows);
    if (hasBack) std::memset(back.pixels, 0, back.byteCount());
    for (size_t i = 0; i < mScene.layers.size(); ++i) {
        const WaitingLayer& layer = mWaiting[i];
        if (layer.rows == nullptr || (layer.behind && !layer.both && !hasBack)) continue;
        layer.rows->draw(rows, layer.behind ? back : front, layer.both ? &front : nullptr);
    }
    finishStrip(front, back, rows, order);
}

void StripDrawing::finishStrip(const PictureStrip& front, const PictureStrip& back, RowRange rows,
                               PixelOrder order) {
    const bool hasBack = back.pixels != nullptr;
    const size_t left = static_cast<size_t>(mDrawn.left), count = static_cast<size_t>(mDrawn.right) - left;
    const int bottom = std::min(rows.end, mDrawn.bottom);
    for (int row = std::max(rows.begin, mDrawn.top); row < bottom; ++row) {
        const size_t at = (static_cast<size_t>(row - rows.begin) * front.width + left) * 4;
        if (hasBack && row >= mScene.textRect.top && row < mScene.textRect.bottom) {
            mergeBackRow(front.pixels + at, back.pixels + at,
                         mScene.mask.pixels + static_cast<size_t>(row) * mScene.mask.width + left, count);
        } else if (hasBack) {
            std::memcpy(front.pixels + at, back.pixels + at, count * 4);
        }
        finishRow(front.pixels + at, count, mScene.textAlpha, order);
    }
}

}  // namespace Zvex
