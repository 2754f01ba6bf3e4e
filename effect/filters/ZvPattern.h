// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVPATTERN_H_
#define ZVEX_EFFECT_FILTERS_ZVPATTERN_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Fills the text with a picture, scaled and repeated, type 11. Needs no room beside the text.
class ZvPattern : public ZvECoreBase {
public:
    ZvPatternProperty* property = nullptr;  // owned, and so is its bitmap

    ZvPattern();
    ~ZvPattern() override;

    // Draws the pattern onto target, destination-over, wherever there is any coverage; partial coverage gets
    // the full pattern. It repeats every (int)(scale * width) by (int)(scale * height) pixels from the
    // top-left of the text box. Pixels in between are interpolated; the last column and row blend into the
    // first ones. opacity scales the pattern's own alpha. Draws nothing if the bitmap is missing or has not 4
    // bytes a pixel, if the scale is below 0.1, or if a repeat is shorter than a pixel. Draws at most as many
    // columns and rows as the mask has, from the top-left of the box.
    int doPostProcessing(ParamPostProcessing* param) override;

    // Copies the bitmap as well.
    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVPATTERN_H_
