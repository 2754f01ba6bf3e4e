// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_LAYERJOIN_H_
#define ZVEX_EFFECT_LAYERJOIN_H_

#include <cstddef>

#include "raster/LayerBlend.h"
#include "raster/ZvBitmap.h"

namespace Zvex {

// A picture as one of several layers. It owns nothing.
struct JoinedLayer {
    // Straight words 0xAARRGGBB, as ZvEffect::drawPicture makes them with PixelOrder::BlueFirst; transparent
    // outside. Null, or without pixels of 4 bytes: transparent throughout.
    const ZvBitmap* picture = nullptr;
    int x = 0, y = 0;  // its top-left in the joined picture; any ints
    LayerBlend blend = LayerBlend::Normal;
    float opacity = 1;  // held to 0..1, NaN being 0
    // Shows only where the nearest layer behind it that is not clipped itself does: its alpha is multiplied
    // by the one that layer is joined with, knocked out and at its opacity. Without such a layer it does not
    // show.
    bool clipped = false;
    // 8-bit coverage that the layer does not show in: its alpha is multiplied by 1 - coverage / 255. Null, or
    // without pixels of 1 byte: no coverage.
    const ZvBitmap* knockout = nullptr;
    int knockoutX = 0, knockoutY = 0;  // its top-left in the joined picture
};

// Joins `count` layers, the backmost first, onto `picture`: straight words 0xAARRGGBB, what lies behind all
// layers on entry (transparent, or a canvas) and the joined picture afterwards, its alpha multiplied by
// `opacity`. It must not overlap the layers' pictures. Not a picture of 4 bytes a pixel: nothing happens.
//
// A byte of the result is within one level of the exact one, through any number of layers: they are joined in
// single precision and rounded once, half up (raster/LayerBlend.h). Where the alpha is 0, so is the word.
// Nothing is allocated; costs some nanoseconds for each pixel where a translucent layer lies over another,
// and a copy where none does. Any thread.
void joinLayers(ZvBitmap* picture, const JoinedLayer* layers, size_t count, float opacity = 1);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_LAYERJOIN_H_
