// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_TEXT_FONTDATA_H_
#define ZVEX_TEXT_FONTDATA_H_

#include <minikin/MinikinFont.h>

#include <memory>

#include "text/FontManager.h"

namespace Zvex {

// The platform's font of collection index `index`; null if the bytes hold no such font. The font reads the
// bytes in place and shares their ownership until it is freed.
std::shared_ptr<minikin::MinikinFont> wrapFont(std::shared_ptr<ZvFontData> bytes, int index);

}  // namespace Zvex

#endif  // ZVEX_TEXT_FONTDATA_H_
