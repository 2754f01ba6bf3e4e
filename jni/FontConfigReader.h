// SPDX-License-Identifier: Apache-2.0
#ifndef ZVEX_JNI_FONTCONFIGREADER_H_
#define ZVEX_JNI_FONTCONFIGREADER_H_

#include <jni.h>

namespace Zvex {

class List;

// Reads the system's font configuration, an android.text.FontConfig, and appends a ZvFontFamily for each
// family worth having to `out`, in the configuration's order; the caller owns them.
//
// Of the named families only the first is kept: the default font, loaded at once. The others are stand-ins
// for fonts asked for by name, which nobody does here. Unnamed families are the fallbacks; those without a
// language and the two for emoji and symbols are loaded at once, the rest when a text needs their language
// (FontManager::LoadMinikinFontFamily). A family is worth having when it has an upright font, not made as the
// fallback of a named family, whose file can be read in the build's ZVEX_SYSTEM_FONT_DIR.
//
// False, with an error line, when the configuration, a family or a font lacks a method; and when a method
// throws: the exception is pending then. `out` may have families already in either case.
bool ConvertToFontFamilies(JNIEnv* env, jobject config, List* out);

}  // namespace Zvex

#endif  // ZVEX_JNI_FONTCONFIGREADER_H_
