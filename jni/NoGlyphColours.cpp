// SPDX-License-Identifier: Apache-2.0
// On the phone: its canvas draws colours only onto pictures of its own, not as glyphs that effects can use.
#include "jni/GlyphColours.h"

namespace Zvex {

std::unique_ptr<GlyphColours> GlyphColours::of(ZvTextObject&) {
    return nullptr;
}

}  // namespace Zvex
