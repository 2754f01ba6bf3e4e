// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_FILTERS_ZVOUTERGLOW_H_
#define ZVEX_EFFECT_FILTERS_ZVOUTERGLOW_H_

#include "effect/GradientStops.h"
#include "effect/ZvECoreBase.h"
#include "effect/ZvProperty.h"

namespace Zvex {

// Surrounds the text with a halo that fades outwards, type 3.
//
// The halo has the property's colour, or the colours of its stops: position 0 is at the glyphs, position 1
// where the glow ends.
class ZvOuterGlow : public ZvECoreBase {
public:
    // Owned; its stops are the layer's own copy. See ColorTable.h for stops that do not rise.
    ZvOuterGlowProperty* property = nullptr;

    ZvOuterGlow();
    ~ZvOuterGlow() override;

    // Draws onto target, destination-over, also beneath the glyphs, where the glow is strongest. The picture
    // reaches 2 * ((int)size + 1) pixels beyond the text box, further than getOffset, and is cut off by the
    // target. A size of 0 is transparent; a size of -1 or less draws nothing.
    int doPostProcessing(ParamPostProcessing* param) override;

    void setProperty(ZvProperty* property) override;
    ZvProperty* getProperty() override;

    // The size rounded half up, 0 before setProperty.
    int getOffset() override;

    // Fills a table of 257 straight colours 0xAARRGGBB, from the strongest glow to none: makeGlowTable of
    // Glow.h with this layer's property. Does nothing if table is null or before setProperty.
    void makeColorLUT(unsigned int* table, float fadeStart, int curve);

    // Widens the bright parts of an 8-bit image: widenByBoxFilter of Glow.h. Does nothing if memory is short.
    void increaseByBoxFilter(unsigned char* image, int passes, int width, int height);

private:
    GradientStops mStops;
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_FILTERS_ZVOUTERGLOW_H_
