// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_
#define ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_

#include "effect/GradientStops.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Fills the glyphs with colours that change with the distance from the middle of the text box, type 8.
//
// Position 0 of the stops is in the middle. Position 1 is a circle whose radius is half the box's width times
// the scale; the height does not matter. Beyond it the last colour continues. No margin: nothing is drawn
// outside the box. The record's angle is not read.
class ZvRadialGradient : public ZvECoreBase {
public:
    // Owned; its stops are the layer's own copy. See ColorTable.h for stops that do not rise.
    ZvRadialGradientProperty* property = nullptr;

    ZvRadialGradient();
    ~ZvRadialGradient() override;

    // Draws like ZvLinearGradient.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

private:
    GradientStops mStops;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_
