// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_STRIPDRAWING_H_
#define ZVEX_EFFECT_STRIPDRAWING_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "effect/LayerRows.h"
#include "effect/PixelOrder.h"
#include "raster/ZvRect.h"

namespace Zvex {

class ZvBitmap;
class ZvECore;

// Draws a picture by strips: a few rows are cleared, drawn on by all layers and finished before the next, so
// that no back picture and no finished layer is in memory as a whole.
class StripDrawing {
public:
    // All of it has to stay as it is. The layers are the library's own, in the order in which they draw; the
    // mask is as large as the picture, the text box within it and not empty.
    struct Scene {
        const std::vector<ZvECore*>& layers;
        ZvBitmap& picture;  // colours; anything
        ZvBitmap& mask;
        ZvRect& textRect;
        bool hasTwoPictures;
        uint8_t textAlpha;
    };

    explicit StripDrawing(const Scene& scene) : mScene(scene) {}

    // Has the layers make what needs the whole text. Without memory, and if it is not called, the picture
    // becomes transparent.
    void prepare();
    // Writes all pixels of the picture.
    void draw(PixelOrder order);
    // No pixel outside is drawn on.
    const ZvRect& drawn() const { return mDrawn; }

private:
    // A layer's rows, on the front or the back picture or both.
    struct WaitingLayer {
        std::unique_ptr<LayerRows> rows;
        bool behind = false, both = false;
    };

    bool isTextAlone() const;
    void drawTextAlone(PixelOrder order);
    void drawLayers(PixelOrder order);
    void clearStrip(const PictureStrip& front, RowRange rows);
    void finishStrip(const PictureStrip& front, const PictureStrip& back, RowRange rows, PixelOrder order);

    Scene mScene;
    ZvRect mDrawn;
    std::unique_ptr<WaitingLayer[]> mWaiting;  // as many as there are layers, or null
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_STRIPDRAWING_H_
