// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVINNERGLOW_H_
#define ZVEX_EFFECT_FILTERS_ZVINNERGLOW_H_

#include "effect/GradientStops.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Lights the glyphs from their edges inwards, type 4.
//
// The light has the property's colour, or the colours of its stops: position 0 is at the edge, position 1
// where the glow ends in the middle of thick strokes.
class ZvInnerGlow : public ZvECoreBase {
public:
    // Owned; its stops are the layer's own copy. See ColorTable.h for stops that do not rise.
    ZvInnerGlowProperty* property = nullptr;

    ZvInnerGlow();
    ~ZvInnerGlow() override;

    // Draws onto target, destination-over, also outside the glyphs: strongest around them, and opaque white
    // at its outer border. The text layer, or the joining of the two layers, removes what lies outside the
    // glyphs. Reach and sizes are those of ZvOuterGlow.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // The size rounded half up, 0 before setProperty.
    int getOffset() override;

    // The same as ZvOuterGlow's.
    void makeColorLUT(unsigned int* table, float fadeStart, int curve);
    void increaseByBoxFilter(unsigned char* image, int passes, int width, int height);

private:
    GradientStops mStops;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVINNERGLOW_H_
