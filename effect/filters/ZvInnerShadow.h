// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_
#define ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Makes the text look cut into a surface, type 2: the surroundings of the text are blurred, moved away from
// the light and shown on the text as a shadow. Needs no room beside the text.
class ZvInnerShadow : public ZvECoreBase {
public:
    ZvInnerShadowProperty* property = nullptr;  // owned

    ZvInnerShadow();
    ~ZvInnerShadow() override;

    // Draws the shadow onto target within the text box, destination-over, in the property's colour unchanged.
    //
    // The blur's radius is max(0, size rounded half up). Where there is any coverage, the blurred
    // surroundings count in full: the glyphs' own layer makes the edges smooth. Rows and columns of the box
    // that are not within the radius of the moved text are all shadow, beside the glyphs too. If all of the
    // moved text is further away than the radius, the shadow is the coverage itself. Draws nothing if the
    // number of pixels of the text box does not fit an int, or for a radius that Gaussian refuses.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    int getOffset() override;  // 0
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_
