// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_LAYERROWS_H_
#define ZVEX_EFFECT_LAYERROWS_H_

#include <cstdint>
#include <memory>

#include "effect/ZvECore.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvRect.h"

namespace Zvex {

// Rows of a picture, from `begin` to `end` - 1.
struct RowRange {
    int begin, end;

    int count() const { return end - begin; }
    // The rows that lie within a picture of `height` rows which begins at row `y`, counted from there.
    RowRange within(int y, int height) const;
};

// Those rows of a colour picture as a picture of their own, for everything that draws onto a bitmap; the
// pixels are the picture's. Empty where the picture ends, without pixels where it has none.
class PictureStrip : public ZvBitmap {
public:
    PictureStrip(const ZvBitmap& picture, RowRange rows);
    // The same with the rows' pixels elsewhere, for a picture that is never in memory as a whole.
    PictureStrip(uint8_t* pixels, uint32_t width, RowRange rows);
    PictureStrip(const PictureStrip&) = delete;
    PictureStrip& operator=(const PictureStrip&) = delete;
    ~PictureStrip() override;

    // A pixel of the picture within the strip; null in a strip that is no colour picture.
    uint8_t* at(int x, int y) const;

    int top;
};

// What a layer draws, ready to be drawn a few rows at a time: the memory is there and the planes that need
// the whole text are made. So all layers can draw onto a stretch of rows, and the composite finish it, while
// it is in the cache.
class LayerRows {
public:
    virtual ~LayerRows() = default;

    // Draws those rows, which follow on the ones before or lie below them; `target` and `other` are the rows
    // of the pictures, the second only where the layer draws onto two. The layer, its settings and the mask
    // must be what they were.
    virtual void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) = 0;

    // No pixel outside is changed. It may lie outside the picture, in part or wholly.
    virtual ZvRect reach() const = 0;
};

// How many rows of a picture of that width are best drawn at a time: a multiple of 8, few enough to stay in
// the cache.
int stripRows(uint32_t width);

// The end of every doPostProcessing: hands the rows to the caller that asked for them, or draws them now.
// Null, for a layer that draws nothing, is ignored.
void drawLayer(const ZvECore::ParamPostProcessing* param, std::unique_ptr<LayerRows> rows);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_LAYERROWS_H_
