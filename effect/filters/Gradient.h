// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_GRADIENT_H_
#define ZVEX_EFFECT_FILTERS_GRADIENT_H_

#include <cstdint>

#include "effect/ZvECore.h"
#include "effect/ZvProperty.h"
#include "effect/filters/Buffer.h"
#include "effect/filters/ColorTable.h"
#include "effect/filters/Coverage.h"

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

    // Draw onto the target, destination-over. A pixel whose top-left lies at (dx, dy) from the middle of the
    // box takes the table entry, its fraction cut off, down * dy + right * dx beyond the middle one, or
    // entriesOfPixel times the distance. Pixels beyond the ends of the table take its first entry or the one
    // before its last, which is never drawn. Single precision.
    void drawLinear(float down, float right);
    void drawRadial(float entriesOfPixel);

private:
    template <typename FillRow>
    void drawRows(FillRow fillRow);

    const ZvECore::ParamPostProcessing* param_ = nullptr;
    uint32_t colors_[COLOR_TABLE_SIZE] = {};  // premultiplied
    WorkingArea area_;                        // the text box
    Buffer<uint32_t> row_;                    // of the box, premultiplied, 0 where nothing is covered
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_GRADIENT_H_
