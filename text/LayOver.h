// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_LAYOVER_H_
#define ZVEX_TEXT_LAYOVER_H_

namespace Zvex {

class ZvBitmap;

// Puts the background below the picture, blended in linear light as a text object blends its own. Both have
// the same size, straight words 0xAARRGGBB, and do not overlap. False, with the picture unchanged, if memory
// is short.
bool layOver(const ZvBitmap& background, ZvBitmap& picture);

}  // namespace Zvex

#endif  // ZVEX_TEXT_LAYOVER_H_
