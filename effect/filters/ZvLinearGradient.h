// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVLINEARGRADIENT_H_
#define ZVEX_EFFECT_FILTERS_ZVLINEARGRADIENT_H_

#include "effect/GradientStops.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Fills the glyphs with colours that change along a line, type 7.
//
// The line runs through the middle of the text box at the property's angle, counter-clockwise from the
// positive x axis: 0 runs left to right, 90 bottom to top. At scale 1, positions 0 and 1 of the stops are
// where the line crosses the sides of the box. scale stretches it about the middle. Beyond the line's ends
// the end colours continue. No margin: nothing is drawn outside the box.
class ZvLinearGradient : public ZvECoreBase {
public:
    // Owned; its stops are the layer's own copy. See ColorTable.h for stops that do not rise.
    ZvLinearGradientProperty* property = nullptr;

    ZvLinearGradient();
    ~ZvLinearGradient() override;

    // Draws onto target, destination-over, wherever the mask has any coverage. Coverage does not scale the
    // colour; the text layer and the composite do that. Draws nothing without stops or at a scale below 0.1.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

private:
    GradientStops mStops;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVLINEARGRADIENT_H_
