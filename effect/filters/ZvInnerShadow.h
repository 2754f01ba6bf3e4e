// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_
#define ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// The shadow of the surface that the text is cut into, type 2: what surrounds the text, blurred, moved away
// from the light and seen on the text. Needs no room beside the text.
class ZvInnerShadow : public ZvECoreBase {
public:
    ZvInnerShadowProperty* property = nullptr;  // owned

    ZvInnerShadow();
    ~ZvInnerShadow() override;

    // Draws the shadow onto target within the text box, destination-over, in the property's colour as it is.
    //
    // The blurred surroundings, with the radius max(0, size rounded half up), count in full wherever there is
    // any coverage: the glyphs' own layer makes the edges smooth. Rows and columns of the box that the moved
    // text does not come within the radius of are all shadow, beside the glyphs too. When the moved text is
    // beyond the radius altogether, the shadow is the coverage itself. Draws nothing when the text box has
    // more pixels than an int counts, or for a radius that Gaussian refuses.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    int getOffset() override;  // 0
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVINNERSHADOW_H_
