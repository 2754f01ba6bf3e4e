// SPDX-License-Identifier: Apache-2.0
#include "text/LayOver.h"

#include <SkBitmap.h>
#include <SkCanvas.h>
#include <SkColorSpace.h>
#include <SkImageInfo.h>

#include <cstddef>
#include <cstring>

#include "raster/ZvBitmap.h"

namespace Zvex {

bool layOver(const ZvBitmap& background, ZvBitmap& picture) {
    const ZvBitmap text(picture);
    if (background.pixels == nullptr || text.pixels == nullptr) return false;
    std::memcpy(picture.pixels, background.pixels, picture.byteCount());
    const SkImageInfo info =
        SkImageInfo::Make(static_cast<int>(picture.width), static_cast<int>(picture.height),
                          kRGBA_8888_SkColorType, kUnpremul_SkAlphaType, SkColorSpace::MakeSRGB());
    SkBitmap below, above;
    below.installPixels(info, picture.pixels, size_t{4} * picture.width);
    above.installPixels(info, text.pixels, size_t{4} * text.width);
    SkCanvas(below).drawBitmap(above, 0, 0);
    return true;
}

}  // namespace Zvex
