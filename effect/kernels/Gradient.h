// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_KERNELS_GRADIENT_H_
#define ZVEX_EFFECT_KERNELS_GRADIENT_H_

#include <cstdint>

#include "effect/LayerRows.h"
#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "effect/kernels/Buffer.h"
#include "effect/kernels/ColorTable.h"
#include "effect/kernels/Coverage.h"

namespace Zvex {

// Both gradient fills: each covered pixel of the text box takes a colour from a table by its position. Any
// coverage counts as full here; edge pixels are scaled later, by the text layer or when the two layers are
// joined.
class GradientRows : public LayerRows {
public:
    // Whether the settings and bitmaps allow drawing; the scale must be at least 0.1.
    static bool isDrawable(const ZvECore::ParamPostProcessing* param, const ZvGradientFillProperty* property);

    // False if memory is short. Does not keep the stops.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvGradientFillProperty& property);

    // Sides of the text box in pixels.
    float width() const { return static_cast<float>(mArea.width); }
    float height() const { return static_cast<float>(mArea.height); }

    // The fill. For a pixel whose top-left is at (dx, dy) from the middle of the box, take `down` * dy +
    // `right` * dx, or entriesOfPixel times the distance, and cut off its fraction. The pixel takes the table
    // entry that many entries after the middle one. Before the table's start it takes the first entry, beyond
    // its end the one before the last; the last is never drawn. Single precision. False if memory is short.
    bool setLinear(float down, float right);
    void setRadial(float entriesOfPixel);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override { return mPart; }

private:
    WorkingArea mArea;  // the text box
    ZvRect mPart;       // the part of it on the mask
    const ZvBitmap* mMask = nullptr;
    uint32_t mColors[kColorTableSize] = {};  // premultiplied
    Buffer<uint32_t> mRow;                   // of that part, premultiplied; 0 without coverage
    Buffer<uint32_t> mSame;  // the colours of all rows if they are the same, coverage aside; else null
    bool mRadial = false;
    float mDown = 0, mRight = 0;  // in the radial fill `mRight` holds the entries per pixel
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_GRADIENT_H_
