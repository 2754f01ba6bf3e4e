// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVOUTERSHADOW_H_
#define ZVEX_EFFECT_FILTERS_ZVOUTERSHADOW_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// A blurred copy of the text in one colour, moved away from the light, type 1.
class ZvOuterShadow : public ZvECoreBase {
public:
    ZvOuterShadowProperty* property = nullptr;  // owned
    int dx = 0;                                 // the displacement in pixels, computed by setProperty
    int dy = 0;                                 // downwards

    ZvOuterShadow();
    ~ZvOuterShadow() override;

    // Draws the shadow onto target, destination-over, in the property's colour unchanged: the coverage of the
    // text box, blurred with the radius max(0, size rounded half up) and moved by dx, dy. It reaches at most
    // the radius beyond the moved text box; for larger radii the outermost pixels are too faint to show.
    // Draws nothing if the number of pixels of its working image (the text box extended by twice the radius)
    // does not fit an int.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // How far the shadow reaches beyond the text on each side. Can be negative for sizes below -1 and a short
    // displacement. All are 0 before setProperty.
    int getLeftOffset() override;
    int getRightOffset() override;
    int getTopOffset() override;
    int getBottomOffset() override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVOUTERSHADOW_H_
