// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_EFFECT_PIXELORDER_H_
#define ZVEX_EFFECT_PIXELORDER_H_

namespace Zvex {

// The order of a colour pixel's bytes in memory; alpha comes last.
enum class PixelOrder {
    RedFirst,
    BlueFirst,  // on a little-endian machine, words 0xAARRGGBB
};

}  // namespace Zvex

#endif  // ZVEX_EFFECT_PIXELORDER_H_
