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
    // The part of these rows that lies within a picture of `height` rows beginning at row `y`, counted from
    // that row.
    RowRange within(int y, int height) const;
};

// Rows of a colour picture as a bitmap of their own, for everything that draws onto bitmaps. The picture
// keeps the pixels. Ends where the picture ends; has no pixels if the picture has none.
class PictureStrip : public ZvBitmap {
public:
    PictureStrip(const ZvBitmap& picture, RowRange rows);
    // The same, with the rows' pixels elsewhere, for a picture that is never in memory as a whole.
    PictureStrip(uint8_t* pixels, uint32_t width, RowRange rows);
    PictureStrip(const PictureStrip&) = delete;
    PictureStrip& operator=(const PictureStrip&) = delete;
    ~PictureStrip() override;

    // Points to pixel (x, y) of the picture, within the strip; null if it is no colour picture.
    uint8_t* at(int x, int y) const;

    int top;
};

class ColorRows;

// A layer, ready to be drawn a few rows at a time: its memory is allocated, and planes that need the whole
// text are computed. So all layers can draw onto a few rows, and the composite can finish these, while they
// are in the cache.
class LayerRows {
public:
    virtual ~LayerRows() = default;

    // Draws those rows. They must begin where the rows before ended, or below. `target` and `other` are these
    // rows of the pictures; `other` only if the layer draws onto two. The layer, its settings and the mask
    // must not have changed.
    virtual void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) = 0;

    // This, if it is a layer of one colour, else null.
    virtual ColorRows* asColor() { return nullptr; }

    // No pixel outside this box changes. It may lie outside the picture, in part or wholly.
    virtual ZvRect reach() const = 0;
};

// The best number of rows to draw at a time in a picture of that width: a multiple of 8, few enough to stay
// in the cache.
int stripRows(uint32_t width);

// Ends every doPostProcessing: hands the rows to the caller if it asked for them, else draws them now. Null
// rows, from a layer that draws nothing, are ignored.
void drawLayer(const ZvECore::ParamPostProcessing* param, std::unique_ptr<LayerRows> rows);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_LAYERROWS_H_
