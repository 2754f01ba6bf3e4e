// SPDX-License-Identifier: Apache-2.0
#include "effect/Canvas.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>

#include "effect/PixelOrder.h"
#include "effect/ZvEffect.h"
#include "effect/ZvGlyph.h"
#include "effect/kernels/Buffer.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

namespace {

bool isPicture(const ZvBitmap* picture) {
    return picture != nullptr && picture->pixels != nullptr && picture->bytesPerPixel == 4 &&
           picture->width <= INT_MAX && picture->height <= INT_MAX;
}

}  // namespace

void fillCanvas(ZvBitmap* picture, uint32_t color) {
    if (!isPicture(picture)) return;
    const size_t count = picture->byteCount() / 4;
    for (size_t i = 0; i < count; ++i) std::memcpy(picture->pixels + i * 4, &color, 4);
}

// The full glyph is drawn in tiles, so that no second plane of the picture's size is needed.
void fillCanvas(ZvBitmap* picture, ZvEffect* fill) {
    constexpr int kTileSide = 256;
    if (!isPicture(picture) || fill == nullptr) return;
    Buffer<uint8_t> full;
    if (!full.allocate(kTileSide, kTileSide)) return;
    std::memset(full.get(), 255, size_t{kTileSide} * kTileSide);

    fill->initPicture(picture);
    const ZvBitmap* mask = fill->getSrcBitmap();
    if (mask == nullptr || mask->pixels == nullptr) {
        fill->releaseBitmap();
        return;
    }
    const int width = static_cast<int>(picture->width), height = static_cast<int>(picture->height);
    for (int64_t y = 0; y < height; y += kTileSide) {
        for (int64_t x = 0; x < width; x += kTileSide) {
            ZvGlyph tile;
            tile.pixels = full.get();
            tile.width = static_cast<uint16_t>(std::min<int64_t>(width - x, kTileSide));
            tile.height = static_cast<uint16_t>(std::min<int64_t>(height - y, kTileSide));
            fill->renderEffectLayer(static_cast<int>(x), static_cast<int>(y), &tile);
        }
    }
    fill->drawPicture(PixelOrder::BlueFirst);
}

}  // namespace Zvex
