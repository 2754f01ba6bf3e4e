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

// Both gradient fills: a covered pixel of the text box takes a colour of a table by its position. Any
// coverage counts as full here; the text layer, or the joining of the two layers, scales edge pixels
// afterwards.
class GradientRows : public LayerRows {
public:
    // Whether the settings and the bitmaps are there to draw; the scale must be 0.1 or more.
    static bool isDrawable(const ZvECore::ParamPostProcessing* param, const ZvGradientFillProperty* property);

    // False when memory is short. The stops are not used afterwards.
    bool make(const ZvECore::ParamPostProcessing& param, const ZvGradientFillProperty& property);

    // Sides of the text box in pixels.
    float width() const { return static_cast<float>(mArea.width); }
    float height() const { return static_cast<float>(mArea.height); }

    // The fill: a pixel whose top-left lies at (dx, dy) from the middle of the box takes the table entry, its
    // fraction cut off, down * dy + right * dx beyond the middle one, or entriesOfPixel times the distance.
    // Pixels beyond the ends of the table take its first entry or the one before its last, which is never
    // drawn. Single precision.
    // False when memory is short.
    bool setLinear(float down, float right);
    void setRadial(float entriesOfPixel);

    void draw(RowRange rows, const PictureStrip& target, const PictureStrip* other) override;
    ZvRect reach() const override { return mPart; }

private:
    WorkingArea mArea;  // the text box
    ZvRect mPart;       // of it, on the mask
    const ZvBitmap* mMask = nullptr;
    uint32_t mColors[kColorTableSize] = {};  // premultiplied
    Buffer<uint32_t> mRow;                   // of that part, premultiplied, 0 where nothing is covered
    Buffer<uint32_t> mSame;  // what all rows would be if they were covered; null where they differ
    bool mRadial = false;
    float mDown = 0, mRight = 0;  // the radial fill has its entries in `mRight`
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_KERNELS_GRADIENT_H_
