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
#include "foundation/SafeConvert.h"
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
    preparePlainColors(order);
    for (int y = 0; y < height;) {
        const RowRange rows = {y, height - y < step ? height : y + step};
        drawStrip(rows, order);
        y = rows.end;
    }
}

void StripDrawing::preparePlainColors(PixelOrder order) {
    const std::vector<ZvECore*>& layers = mScene.layers;
    if (mWaiting == nullptr || mScene.hasTwoPictures || layers.empty() || layers.size() > PlainColors::kMost)
        return;
    if (layers[0]->getStyle() != ZV_EFFECT_TEXT || mWaiting[0].rows == nullptr) return;
    uint32_t colors[PlainColors::kMost] = {layers[0]->getProperty()->color};
    size_t count = 1;
    for (size_t i = 1; i < layers.size(); ++i) {
        if (mWaiting[i].rows == nullptr) continue;
        ColorRows* const rows = mWaiting[i].rows->asColor();
        if (rows == nullptr || rows->mode() != ZVE_BLEND_DST_OVER) return;
        colors[count] = rows->color();
        mColorRows[count++] = rows;
    }
    if (count > 1 && !std::all_of(colors, colors + count, PlainColors::isPremultiplied)) return;
    mColorCount = count;
    mPlain.emplace(colors, count, mScene.textAlpha, order);
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
    if (mPlain) {
        drawPlainColors(front, rows);
    } else {
        drawLayers(front, rows, order);
    }
    if (aside) copyAside(place.pixels, front.pixels, front.byteCount());
}

void StripDrawing::drawPlainColors(const PictureStrip& front, RowRange rows) const {
    const ZvBitmap& mask = mScene.mask;
    const ZvRect& box = mScene.textRect;
    ColorRows::Part parts[PlainColors::kMost];
    for (ColorRows::Part& part : parts) part.top = rows.begin;
    const int end = std::min(rows.end, mDrawn.bottom);
    for (int y = std::max(rows.begin, mDrawn.top); y < end; ++y) {
        PlainColors::Coverage coverages[PlainColors::kMost];
        if (y >= box.top && y < box.bottom) {
            coverages[0] = {mask.pixels + static_cast<size_t>(y) * mask.width + box.left, box.left,
                            box.right};
        }
        for (size_t i = 1; i < mColorCount; ++i) {
            ColorRows::Part& part = parts[i];
            if (y >= part.top + part.height) {
                part = mColorRows[i]->next({y, rows.end});
                if (part.height <= 0) part.top = rows.end;  // none left in these rows
            }
            if (y < part.top) continue;
            coverages[i] = {part.coverage + ptrdiff_t{y - part.top} * part.stride, part.left,
                            clampToInt(int64_t{part.left} + part.width)};
        }
        mPlain->paintRow(front.at(mDrawn.left, y), mDrawn.left, mDrawn.right, coverages);
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
