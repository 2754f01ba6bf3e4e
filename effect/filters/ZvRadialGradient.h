// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_
#define ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_

#include "effect/GradientStops.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Fills the glyphs with colours that change with the distance from the middle of the text box, type 8.
//
// Position 0 of the stops lies in the middle, position 1 on a circle of half the box's width times the scale,
// whatever the height; the last colour goes on beyond. No margin: nothing is drawn outside the box. The
// record's angle is not read.
class ZvRadialGradient : public ZvECoreBase {
public:
    // Owned; its stops are the layer's own copy. See ColorTable.h for stops that do not rise.
    ZvRadialGradientProperty* property = nullptr;

    ZvRadialGradient();
    ~ZvRadialGradient() override;

    // As ZvLinearGradient's.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

private:
    GradientStops mStops;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVRADIALGRADIENT_H_
