// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_LAYERPLACE_H_
#define ZVEX_EFFECT_LAYERPLACE_H_

namespace Zvex {

class ZvECore;

// Where a layer draws. A rendering has one picture or two. Of two, the front one shows within the glyphs, the
// back one around them.
struct LayerPlace {
    bool behind = false;  // if there are two pictures: on the back one
    bool both = false;  // and on the front one too: it draws on both sides of the edge and needs two pictures
    bool under = false;  // if there is one picture: under the text

    // Whether it lies below the text.
    bool isUnder(bool hasTwoPictures) const { return under && !(hasTwoPictures && both); }
};

// The place for the layer's type and settings. A layer without settings draws nothing; it counts as one that
// lies under the text and needs no second picture.
LayerPlace placeOf(ZvECore* layer);

}  // namespace Zvex

#endif  // ZVEX_EFFECT_LAYERPLACE_H_
