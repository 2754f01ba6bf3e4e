// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_GRADIENT_H_
#define ZVEX_EFFECT_FILTERS_GRADIENT_H_

#include <cstdint>

#include "effect/Numbers.h"
#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "effect/filters/Buffer.h"
#include "effect/filters/ColorTable.h"
#include "effect/filters/Coverage.h"
#include "raster/ZvBitmap.h"
#include "raster/ZvBlender.h"
#include "raster/ZvRect.h"

namespace Zvex {

// What the gradient fills share: the covered pixels of the text box take colours of a table by where they
// lie. The coverage is a yes or no here: edge pixels get the whole colour, and what comes after the fill (the
// text layer, or the joining of the two layers) scales them.
class GradientFill {
public:
    // False when there is nothing to draw: parts of the record or the stops are missing, the scale is below
    // 0.1, or memory is short.
    bool begin(const ZvECore::ParamPostProcessing* param, const ZvGradientFillProperty* property);

    // Sides of the text box in pixels.
    float width() const { return static_cast<float>(area_.width); }
    float height() const { return static_cast<float>(area_.height); }

    // Draws onto the target, destination-over. stepsAt(dx, dy) tells how many table entries beyond
    // `centerEntry` the pixel takes whose top-left lies at (dx, dy) from the middle of the box; the fraction
    // is cut off. Pixels beyond the ends of the table take entries 0 and LAST_ENTRY.
    template <typename StepsAt>
    void draw(int centerEntry, StepsAt stepsAt) {
        const ZvRect& box = *param_->textRect;
        const ZvRect part = partWithin(*param_->mask, box);
        for (int y = part.top; y < part.bottom; ++y) {
            const uint8_t* coverage = param_->mask->pixels + static_cast<size_t>(y) * param_->mask->width;
            uint32_t* row = image_.get() + area_.row(y - box.top);
            const float dy = static_cast<float>(y - box.top) - height() * 0.5f;
            for (int x = part.left; x < part.right; ++x) {
                if (coverage[x] == 0) continue;
                const float dx = static_cast<float>(x - box.left) - width() * 0.5f;
                const int steps = truncateToInt(stepsAt(dx, dy));
                row[x - box.left] =
                    colors_[clampInt(steps, -centerEntry, LAST_ENTRY - centerEntry) + centerEntry];
            }
        }
        ZvBlender::drawBitmapBlend32(area_.x, area_.y, param_->target, image_.get(), area_.width,
                                     area_.height, area_.width, ZVE_BLEND_DST_OVER);
    }

private:
    static constexpr int LAST_ENTRY = 255;  // the last colour itself is one entry on, and never drawn

    const ZvECore::ParamPostProcessing* param_ = nullptr;
    uint32_t colors_[COLOR_TABLE_SIZE] = {};  // premultiplied
    WorkingArea area_;                        // the text box
    Buffer<uint32_t> image_;                  // premultiplied, 0 where nothing is covered
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_GRADIENT_H_
