// SPDX-License-Identifier: Apache-2.0
// What a text has on a desktop alone. On the phone the platform's own classes lay words out, and its canvas
// draws the colours of glyphs only onto pictures of its own, where effects cannot use them.
#include "jni/GlyphColors.h"
#include "jni/WordLayout.h"

namespace Zvex {

std::unique_ptr<GlyphColors> GlyphColors::of(ZvTextObject&) {
    return nullptr;
}

bool layOutWords(ZvTextObject&, const char*, const WordSettings&, ZvRect*) {
    return false;
}

}  // namespace Zvex
