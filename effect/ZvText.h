// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_ZVTEXT_H_
#define ZVEX_EFFECT_ZVTEXT_H_

#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// The plain fill of the glyphs, type 12: the layer that every text has.
class ZvText : public ZvECoreBase {
public:
    ZvTextProperty* property = nullptr;  // owned

    ZvText();
    ~ZvText() override;

    // Paints the colour through the whole mask onto the target, destination-over. textRect is not read and
    // may be null.
    //
    // Two pictures: every pixel with any coverage gets the full colour; merging the pictures restores the
    // glyphs' smooth edges. One picture: it is then cut down to the glyphs. Pixels are scaled by their
    // coverage, and the target becomes transparent where the mask is 0 or ends. Layers that draw beside the
    // glyphs run after this one.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVTEXT_H_
