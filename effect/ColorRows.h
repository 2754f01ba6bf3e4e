// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_COLORROWS_H_
#define ZVEX_EFFECT_COLORROWS_H_

#include <cstddef>
#include <cstdint>

#include "effect/LayerRows.h"

namespace Zvex {

// A layer of one colour, blended through coverage. A picture of nothing but the text and such a layer can be
// made without blending (StripDrawing).
class ColorRows : public LayerRows {
public:
    // Coverage of some rows of the picture. Valid until the next call.
    struct Part {
        const uint8_t* coverage = nullptr;  // of the first pixel
        int stride = 0;                     // bytes from row to row
        int left = 0, top = 0;              // may lie outside the picture
        int width = 0, height = 0;
    };

    // Makes the coverage of the first few of those rows, counted from the picture's top; no rows if there is
    // no coverage left in them. Like draw, it must be called in order, each row once.
    virtual Part next(RowRange rows) = 0;

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) final;
    ColorRows* asColor() final { return this; }

    uint32_t color() const { return mColor; }  // 0xAARRGGBB
    int mode() const { return mMode; }         // ZVE_BLEND_...

protected:
    uint32_t mColor = 0;
    int mMode = 0;
    bool mDrawsOnOther = false;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_COLORROWS_H_
