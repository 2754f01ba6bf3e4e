// SPDX-License-Identifier: Apache-2.0
#include "effect/ColorRows.h"

#include <initializer_list>

#include "raster/ZvBlender.h"

namespace Zvex {

void ColorRows::draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) {
    for (Part part = next(rows); part.height > 0; part = next(rows)) {
        for (const PictureStrip* picture : {&target, other}) {
            if (picture == nullptr || (picture == other && !mDrawsOnOther)) continue;
            ZvBlender::drawBitmapBlend8(part.left, part.top - picture->top, picture, part.coverage,
                                        part.width, part.height, part.stride, mColor, mMode);
        }
        rows.begin = part.top + part.height;
    }
}

}  // namespace Zvex
