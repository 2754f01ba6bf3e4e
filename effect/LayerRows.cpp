// SPDX-License-Identifier: Apache-2.0
#include "effect/LayerRows.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace Zvex {

RowRange RowRange::within(int y, int height) const {
    const auto row = [&](int at) {
        return static_cast<int>(std::clamp<int64_t>(int64_t{at} - y, 0, height));
    };
    return {row(begin), row(end)};
}

PictureStrip::PictureStrip(const ZvBitmap& picture, RowRange rows) : top(rows.begin) {
    const int64_t end = std::min<int64_t>(rows.end, picture.height);
    width = picture.width;
    height = static_cast<uint32_t>(std::max<int64_t>(end - rows.begin, 0));
    format = picture.format;
    bytesPerPixel = picture.bytesPerPixel;
    if (picture.pixels != nullptr && height > 0) {
        pixels = picture.pixels + static_cast<size_t>(rows.begin) * width * bytesPerPixel;
    }
}

PictureStrip::PictureStrip(uint8_t* pixels_, uint32_t width_, RowRange rows) : top(rows.begin) {
    width = width_;
    height = static_cast<uint32_t>(rows.count());
    format = 1;
    bytesPerPixel = 4;
    pixels = pixels_;
}

PictureStrip::~PictureStrip() {
    pixels = nullptr;
}

uint8_t* PictureStrip::at(int x, int y) const {
    if (pixels == nullptr || bytesPerPixel != 4) return nullptr;
    return pixels + (static_cast<size_t>(y - top) * width + static_cast<size_t>(x)) * 4;
}

int stripRows(uint32_t width) {
    constexpr uint32_t kStripPixels = 1 << 16;
    constexpr uint32_t kLeast = 8, kMost = 64;
    return static_cast<int>(std::clamp(kStripPixels / std::max(width, 1u), kLeast, kMost) / 8 * 8);
}

void drawLayer(const ZvECore::ParamPostProcessing* param, std::unique_ptr<LayerRows> rows) {
    if (rows == nullptr) return;
    if (param->rows != nullptr) {
        *param->rows = std::move(rows);
        return;
    }
    int64_t height = param->target->height;
    if (param->otherLayer != nullptr) height = std::max<int64_t>(height, param->otherLayer->height);
    const ZvRect reach = rows->reach();
    const int end = static_cast<int>(std::min<int64_t>(reach.bottom, height));
    const int step = stripRows(param->target->width);
    for (int y = std::max(reach.top, 0); y < end;) {
        const RowRange range = {y, end - y < step ? end : y + step};
        const PictureStrip target(*param->target, range);
        if (param->otherLayer != nullptr) {
            const PictureStrip other(*param->otherLayer, range);
            rows->draw(range, target, &other);
        } else {
            rows->draw(range, target, nullptr);
        }
        y = range.end;
    }
}

}  // namespace Zvex
