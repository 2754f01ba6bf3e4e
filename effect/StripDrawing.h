// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_STRIPDRAWING_H_
#define ZVEX_EFFECT_STRIPDRAWING_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "effect/ColorRows.h"
#include "effect/Composite.h"
#include "effect/LayerRows.h"
#include "effect/PixelOrder.h"
#include "effect/kernels/Buffer.h"
#include "raster/ZvRect.h"

namespace Zvex {

class ZvBitmap;
class ZvECore;

// Draws a picture by strips: a few rows are cleared, all layers draw on them, and they are finished before
// the next rows. So neither a back picture nor a finished layer is in memory as a whole.
class StripDrawing {
public:
    // None of this may change while it is drawn. The layers are the library's own, in drawing order. The mask
    // is as large as the picture; the text box lies within it and is not empty.
    struct Scene {
        const std::vector<ZvECore*>& layers;
        ZvBitmap& picture;  // colours; undefined content
        ZvBitmap& mask;
        ZvRect& textRect;
        bool hasTwoPictures;
        uint8_t textAlpha;
    };

    explicit StripDrawing(const Scene& scene) : mScene(scene) {}

    // Lets the layers make what needs the whole text. If memory is short, or if this is not called, the
    // picture becomes transparent.
    void prepare();
    // Writes all pixels of the picture.
    void draw(PixelOrder order);
    // No pixel outside is drawn on.
    const ZvRect& drawn() const { return mDrawn; }

private:
    // A layer's rows and where they go: the front picture, the back one, or both.
    struct WaitingLayer {
        std::unique_ptr<LayerRows> rows;
        bool behind = false, both = false;
    };

    void preparePlainColors(PixelOrder order);
    void drawStrip(RowRange rows, PixelOrder order);
    void drawPlainColors(const PictureStrip& front, RowRange rows) const;
    void drawLayers(const PictureStrip& front, RowRange rows, PixelOrder order);
    void finishStrip(const PictureStrip& front, const PictureStrip& back, RowRange rows, PixelOrder order);

    Scene mScene;
    ZvRect mDrawn;
    std::unique_ptr<WaitingLayer[]> mWaiting;  // one for each layer, or null
    // If the picture is only text over colours.
    std::optional<PlainColors> mPlain;
    std::array<ColorRows*, PlainColors::kMost> mColorRows = {};  // null for the text
    size_t mColorCount = 0;
    // A strip of the picture, if that is larger than the caches: drawn here and then copied to its place.
    Buffer<uint8_t> mFront;
    Buffer<uint8_t> mBack;  // a strip of the back picture, if there is one
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_STRIPDRAWING_H_
