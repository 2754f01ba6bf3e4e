// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVPATTERN_H_
#define ZVEX_EFFECT_FILTERS_ZVPATTERN_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Fills the text with a picture, scaled and repeated, type 11. Needs no room beside the text.
class ZvPattern : public ZvECoreBase {
public:
    ZvPatternProperty* property = nullptr;  // owned, and with it the bitmap it points at

    ZvPattern();
    ~ZvPattern() override;

    // Draws the pattern onto target, destination-over, wherever there is any coverage: partial coverage gets
    // the full pattern. The pattern repeats every (int)(scale * width) by (int)(scale * height) pixels from
    // the top-left of the text box on. Pixels in between are interpolated, the last column and row towards
    // the first ones; opacity weights the pattern's own alpha. Draws nothing without a bitmap of 4 bytes a
    // pixel, at a scale below 0.1 and when a repeat is less than a pixel. At most as many columns and rows
    // as the mask has are drawn from the top-left of the box on.
    int doPostProcessing(ParamPostProcessing* param) override;

    // Copies the bitmap as well.
    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVPATTERN_H_
