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

// How to clear what no layer reaches.
void (*clearingOf(const ZvBitmap& picture))(uint8_t*, size_t) {
    constexpr size_t LARGE = size_t{4} << 20;  // as much as a core's own caches hold, and more
    if (picture.byteCount() >= LARGE) return clearAside;
    return [](uint8_t* bytes, size_t count) { std::memset(bytes, 0, count); };
}

}  // namespace

void StripDrawing::prepare() {
    waiting_.reset(new (std::nothrow) WaitingLayer[scene_.layers.size()]);
    if (waiting_ == nullptr) return markOutOfMemory();
    drawn_ = scene_.textRect;
    ZvECore::ParamPostProcessing param;
    param.target = &scene_.picture;  // the back picture is as large
    param.mask = &scene_.mask;
    param.textRect = &scene_.textRect;
    param.layerMode = scene_.hasTwoPictures ? 1 : 0;
    param.drawnArea = &drawn_;
    param.overLayers = true;  // the first draws onto nothing, where it is all the same
    WaitingLayer* waiting = waiting_.get();
    for (ZvECore* effect : scene_.layers) {
        const LayerPlace place = scene_.hasTwoPictures ? placeOf(effect) : LayerPlace();
        waiting->behind = place.behind;
        waiting->both = place.both;
        param.otherLayer = place.both ? &scene_.picture : nullptr;
        param.rows = &waiting->rows;
        effect->doPostProcessing(&param);
        if (waiting->rows != nullptr) drawn_ = united(drawn_, waiting->rows->reach());
        ++waiting;
    }
    drawn_ = clampedTo(drawn_, scene_.picture.width, scene_.picture.height);
}

void StripDrawing::draw(PixelOrder order) {
    if (isTextAlone()) {
        drawTextAlone(order);
    } else {
        drawLayers(order);
    }
}

bool StripDrawing::isTextAlone() const {
    return waiting_ != nullptr && !scene_.hasTwoPictures && scene_.layers.size() == 1 &&
           scene_.layers[0]->getStyle() == ZV_EFFECT_TEXT && waiting_[0].rows != nullptr;
}

void StripDrawing::drawLayers(PixelOrder order) {
    ZvBitmap& picture = scene_.picture;
    const int width = clampToSize(INT_MAX, picture.width), height = clampToSize(INT_MAX, picture.height);
    const int step = std::min(stripRows(picture.width), height);
    Buffer<uint8_t> behind;
    if (scene_.hasTwoPictures) behind.allocate(step, width, 4);
    const bool hasBack = behind.get() != nullptr;
    for (int y = 0; y < height;) {
        const RowRange rows = {y, height - y < step ? height : y + step};
        const PictureStrip front(picture, rows), back(behind.get(), picture.width, rows);
        y = rows.end;
        clearStrip(front, rows);
        if (waiting_ == nullptr || rows.end <= drawn_.top || rows.begin >= drawn_.bottom) continue;
        if (hasBack) std::memset(back.pixels, 0, back.byteCount());
        for (size_t i = 0; i < scene_.layers.size(); ++i) {
            const WaitingLayer& layer = waiting_[i];
            if (layer.rows == nullptr || (layer.behind && !layer.both && !hasBack)) continue;
            layer.rows->draw(rows, layer.behind ? back : front, layer.both ? &front : nullptr);
        }
        finishStrip(front, back, rows, order);
    }
}

// Past the caches where no layer draws.
void StripDrawing::clearStrip(const PictureStrip& front, RowRange rows) {
    const auto clear = clearingOf(scene_.picture);
    if (waiting_ == nullptr || rows.end <= drawn_.top || rows.begin >= drawn_.bottom)
        return clear(front.pixels, front.byteCount());
    const size_t left = static_cast<size_t>(drawn_.left), right = static_cast<size_t>(drawn_.right);
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
    const size_t left = static_cast<size_t>(drawn_.left), count = static_cast<size_t>(drawn_.right) - left;
    const int bottom = std::min(rows.end, drawn_.bottom);
    for (int row = std::max(rows.begin, drawn_.top); row < bottom; ++row) {
        const size_t at = (static_cast<size_t>(row - rows.begin) * front.width + left) * 4;
        if (hasBack && row >= scene_.textRect.top && row < scene_.textRect.bottom) {
            mergeBackRow(front.pixels + at, back.pixels + at,
                         scene_.mask.pixels + static_cast<size_t>(row) * scene_.mask.width + left, count);
        } else if (hasBack) {
            std::memcpy(front.pixels + at, back.pixels + at, count * 4);
        }
        finishRow(front.pixels + at, count, scene_.textAlpha, order);
    }
}

void StripDrawing::drawTextAlone(PixelOrder order) {
    const ZvBitmap &picture = scene_.picture, &mask = scene_.mask;
    const ZvRect& box = scene_.textRect;
    const TextColors colors(scene_.layers[0]->getProperty()->color, scene_.textAlpha, order);
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
