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

    // Paints the colour through the whole mask (textRect is not read, and may be null) onto the target,
    // destination-over.
    // Two layers: every pixel with any coverage gets the full colour; the merge of the two pictures brings
    // the glyphs' smooth edges back. One layer: the picture is then cut down to the glyphs: pixels are scaled
    // by their coverage, and all of the target where the mask is 0, or ends, becomes
    // transparent. What belongs beside the glyphs is drawn by layers that run after this one.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_ZVTEXT_H_
