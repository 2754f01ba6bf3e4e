// SPDX-License-Identifier: Apache-2.0
#include "effect/StripDrawing.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "effect/Composite.h"
#include "effect/LayerPlace.h"
#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Buffer.h"
#include "foundation/OutOfMemory.h"
#include "raster/ClearPixels.h"
#include "raster/Rects.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

namespace {

// How to clear pixels that no layer reaches.
void (*clearingOf(const ZvBitmap& picture))(uint8_t*, size_t) {
    constexpr size_t kLarge = size_t{4} << 20;  // at least as large as a core's own caches
    if (picture.byteCount() >= kLarge) return clearAside;
    return [](uint8_t* bytes, size_t count) { std::memset(bytes, 0, count); };
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
    if (isTextAlone()) {
        drawTextAlone(order);
    } else {
        drawLayers(order);
    }
}

bool StripDrawing::isTextAlone() const {
    return mWaiting != nullptr && !mScene.hasTwoPictures && mScene.layers.size() == 1 &&
           mScene.layers[0]->getStyle() == ZV_EFFECT_TEXT && mWaiting[0].rows != nullptr;
}

void StripDrawing::drawLayers(PixelOrder order) {
    ZvBitmap& picture = mScene.picture;
    const int width = clampToSize(INT_MAX, picture.width), height = clampToSize(INT_MAX, picture.height);
    const int step = std::min(stripRows(picture.width), height);
    Buffer<uint8_t> behind;
    if (mScene.hasTwoPictures) behind.allocate(step, width, 4);
    const bool hasBack = behind.get() != nullptr;
    for (int y = 0; y < height;) {
        const RowRange rows = {y, height - y < step ? height : y + step};
        const PictureStrip front(picture, rows), back(behind.get(), picture.width, rows);
        y = rows.end;
        clearStrip(front, rows);
        if (mWaiting == nullptr || rows.end <= mDrawn.top || rows.begin >= mDrawn.bottom) continue;
        if (hasBack) std::memset(back.pixels, 0, back.byteCount());
        for (size_t i = 0; i < mScene.layers.size(); ++i) {
            const WaitingLayer& layer = mWaiting[i];
            if (layer.rows == nullptr || (layer.behind && !layer.both && !hasBack)) continue;
            layer.rows->draw(rows, layer.behind ? back : front, layer.both ? &front : nullptr);
        }
        finishStrip(front, back, rows, order);
    }
}

// Clears past the caches where no layer draws.
void StripDrawing::clearStrip(const PictureStrip& front, RowRange rows) {
    const auto clear = clearingOf(mScene.picture);
    if (mWaiting == nullptr || rows.end <= mDrawn.top || rows.begin >= mDrawn.bottom)
        return clear(front.pixels, front.byteCount());
    const size_t left = static_cast<size_t>(mDrawn.left), right = static_cast<size_t>(mDrawn.right);
    for (int row = rows.begin; row < rows.end; ++row) {
        uint8_t* pixels = front.at(0, row);
        clear(pixels, left * 4);
        std::memset(pixels + left * 4, 0, (right - left) * 4);
        clear(pixels + right * 4, (front.width - right) * 4);
    }
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

void StripDrawing::drawTextAlone(PixelOrder order) {
    const ZvBitmap &picture = mScene.picture, &mask = mScene.mask;
    const ZvRect& box = mScene.textRect;
    const TextColors colors(mScene.layers[0]->getProperty()->color, mScene.textAlpha, order);
    const size_t width = picture.width, left = static_cast<size_t>(box.left),
                 right = static_cast<size_t>(box.right);
    const auto row = [&](int y) { return picture.pixels + static_cast<size_t>(y) * width * 4; };
    const auto clear = clearingOf(picture);
    const auto clearRows = [&](int top, int bottom) {
        clear(row(top), static_cast<size_t>(bottom - top) * width * 4);
    };
    clearRows(0, box.top);
    for (int y = box.top; y < box.bottom; ++y) {
        uint8_t* const pixels = row(y);
        clear(pixels, left * 4);
        std::memset(pixels + left * 4, 0, (right - left) * 4);
        colors.paintRow(pixels + left * 4, mask.pixels + static_cast<size_t>(y) * mask.width + left,
                        right - left);
        clear(pixels + right * 4, (width - right) * 4);
    }
    clearRows(box.bottom, clampToSize(INT_MAX, picture.height));
}

}  // namespace Zvex
