// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_LAYERJOIN_H_
#define ZVEX_EFFECT_LAYERJOIN_H_

#include <cstddef>

#include "raster/LayerBlend.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

// One of several layers. It owns nothing.
struct JoinedLayer {
    // Straight words 0xAARRGGBB, as ZvEffect::drawPicture makes them with PixelOrder::BlueFirst. Transparent
    // outside the picture, and everywhere if it is null or has not pixels of 4 bytes.
    const ZvBitmap* picture = nullptr;
    int x = 0, y = 0;  // its top-left in the joined picture; any ints
    LayerBlend blend = LayerBlend::Normal;
    float opacity = 1;  // clamped to 0..1; NaN is 0
    // Clips the layer to its base, the nearest layer behind it that is not clipped. Its alpha is multiplied
    // by the alpha that the base is joined with, after knockout and opacity. Without a base it does not show.
    bool clipped = false;
    // 8-bit coverage where the layer does not show: its alpha is multiplied by 1 - coverage / 255. Null, or
    // without pixels of 1 byte: no coverage.
    const ZvBitmap* knockout = nullptr;
    int knockoutX = 0, knockoutY = 0;  // its top-left in the joined picture
};

// Joins `count` layers, the backmost first, onto `picture`, which holds straight words 0xAARRGGBB. On entry
// it holds the background (transparent, or a canvas), afterwards the joined picture, its alpha multiplied by
// `opacity`. It must not overlap the layers' pictures. Does nothing if it has not 4 bytes a pixel.
//
// A byte of the result is within one level of the exact one, for any number of layers: they are joined in
// single precision and rounded once, half up (raster/LayerBlend.h). A word is 0 where its alpha is 0. Nothing
// is allocated. Costs some nanoseconds for each pixel if a translucent layer lies over another, else no more
// than a copy. Any thread.
void joinLayers(ZvBitmap* picture, const JoinedLayer* layers, size_t count, float opacity = 1);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_LAYERJOIN_H_
